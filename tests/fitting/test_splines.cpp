// Every kind of spline under every boundary, storage, partition, precision and number of functions,
// against its definition.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/fitting/spline_case.h"

namespace qor::test {
namespace {

enum class Storage { separate, interleaved, pointers };

struct Form {
  int64_t nx, xhint, functions;
  Storage storage = Storage::separate;
  // By which powers of two x and y are made smaller. Results become smaller by the same, exactly.
  int ex = 0, ey = 0;
};

// Numbers of the precision under test: those of `one`, and the values of all functions.
struct Input {
  SplineData one;
  std::vector<std::vector<Wide>> y;
};

template <class Real>
Input make_input(const Form& form, bool periodic, std::mt19937& random) {
  std::uniform_real_distribution<Real> unit(Real(0.25), Real(1));
  Input in;
  auto& [x, none, knots, inner, bc] = in.one;
  const auto n = static_cast<size_t>(form.nx);
  Real at = Real(-1.25);
  for (size_t i = 0; i < n; ++i) {
    x.push_back(at);
    at += form.xhint == QOR_DF_UNIFORM_PARTITION ? Real(0.75) : unit(random);
  }
  knots = {x[0]};
  for (size_t i = 1; i < n; ++i) {
    knots.push_back(static_cast<Real>(x[i - 1] + (x[i] - x[i - 1]) * unit(random) * 0.75));
  }
  knots.push_back(x[n - 1]);
  for (size_t i = 2; i < n; ++i) inner.push_back(unit(random) - Real(0.5));
  bc = {unit(random), -unit(random)};
  in.y.resize(static_cast<size_t>(form.functions));
  for (auto& y : in.y) {
    for (size_t i = 0; i < n; ++i) y.push_back(4 * unit(random) - 2);
    if (n > 5) y[n / 2] = y[n / 2 - 1];  // a flat cell
    if (periodic) y[n - 1] = y[0];
  }
  if (in.y.size() > 2) in.y[2].assign(n, 1);  // no change of slope
  return in;
}

template <class Real>
std::vector<Real> narrow(const std::vector<Wide>& values) {
  std::vector<Real> v;
  for (const Wide value : values) v.push_back(static_cast<Real>(value));
  return v;
}

// Coefficients of all functions as the kernel gives them.
template <class Real>
std::vector<std::vector<Real>> construct(const SplineShape& shape, int64_t bc_type,
                                         const Form& form, const Input& in) {
  const auto n = static_cast<size_t>(form.nx), functions = in.y.size();
  const size_t cells = shape.is(Kind::knotted) ? n : n - 1;
  const size_t length = cells * static_cast<size_t>(shape.order);
  const bool interleaved = form.storage == Storage::interleaved;
  const bool pointers = form.storage == Storage::pointers;
  std::vector<Real> x = narrow<Real>(in.one.x), y(n * functions), together(length * functions);
  if (form.xhint == QOR_DF_UNIFORM_PARTITION) x = {x.front(), x.back()};
  // What is reached by pointers does not stand in order.
  const auto array = [&](size_t f) { return pointers ? functions - 1 - f : f; };
  for (size_t f = 0; f < functions; ++f) {
    for (size_t i = 0; i < n; ++i) {
      y[interleaved ? i * functions + f : array(f) * n + i] = static_cast<Real>(in.y[f][i]);
    }
  }
  const auto bc = narrow<Real>(in.one.bc);
  const auto inner = narrow<Real>(in.one.inner), knots = narrow<Real>(in.one.knots);
  const int64_t hint = pointers ? 128 : 0;
  Task<Real> task(form.nx, x.data(), form.xhint, form.functions, &y[array(0) * n],
                  interleaved ? 32 : hint);
  EXPECT_EQ(
      set_spline(task, shape, bc_type, bc.data(), inner, knots, &together[array(0) * length], hint),
      QOR_DF_OK);
  for (size_t f = 1; pointers && f < functions; ++f) {
    const auto index = static_cast<int64_t>(f);
    EXPECT_EQ(Api<Real>::edit_entry(task, QOR_DF_Y, index, &y[array(f) * n]), 0);
    EXPECT_EQ(Api<Real>::edit_entry(task, QOR_DF_SCOEFF, index, &together[array(f) * length]), 0);
  }
  EXPECT_EQ(kernel_of<Real>(shape.kind)(task, 0, 0, nullptr), QOR_DF_OK) << shape.name;
  std::vector<std::vector<Real>> c;
  for (size_t f = 0; f < functions; ++f) {
    const Real* first = &together[array(f) * length];
    c.emplace_back(first, first + length);
  }
  return c;
}

// The input made smaller by the form's powers of two.
Input scaled(const SplineShape& shape, int64_t bc_type, const Form& form, Input in) {
  const auto scale = [](std::vector<Wide>& values, int exponent) {
    for (Wide& v : values) v = std::ldexp(v, exponent);
  };
  scale(in.one.x, form.ex);
  scale(in.one.knots, form.ex);
  for (auto& y : in.y) scale(y, form.ey);
  const int given = shape.is(Kind::hermite) ? 1 : 2;
  scale(in.one.inner, form.ey - given * form.ex);
  for (const size_t end : {0u, 1u}) {
    const bool first = ((bc_type >> end) & 4) != 0;  // the derivative that the end is given
    const int derivative = bc_type == 128 ? 0 : bc_type == 64 ? given : first ? 1 : 2;
    in.one.bc[end] = std::ldexp(in.one.bc[end], form.ey - derivative * form.ex);
  }
  return in;
}

template <class Real>
void check_case(const SplineShape& shape, int64_t bc_type, const Form& form, std::mt19937& random) {
  const Input in = make_input<Real>(form, bc_type == 64, random);
  const auto c = construct<Real>(shape, bc_type, form, scaled(shape, bc_type, form, in));
  SplineData one = in.one;
  for (size_t f = 0; f < in.y.size(); ++f) {
    one.y = in.y[f];
    std::vector<Wide> wide;
    for (size_t k = 0; k < c[f].size(); ++k) {
      const int power = static_cast<int>(k) % shape.order;
      wide.push_back(std::ldexp(static_cast<Wide>(c[f][k]), power * form.ex - form.ey));
    }
    ASSERT_LE(failure(shape, bc_type, one, wide), 64 * std::numeric_limits<Real>::epsilon())
        << shape.name << " boundary " << bc_type << " nx " << form.nx << " xhint " << form.xhint
        << " storage " << static_cast<int>(form.storage) << " scale " << form.ex << " function "
        << f;
  }
}

template <class Real>
class Splines : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Splines, Precisions);

TYPED_TEST(Splines, EqualTheirDefinition) {
  constexpr bool kDouble = sizeof(TypeParam) == sizeof(double);
  std::mt19937 random(2203);
  for (const SplineShape& shape : spline_shapes()) {
    for (const int64_t bc_type : shape.boundaries) {
      const int64_t fewest = bc_type == 1 ? std::max<int64_t>(shape.fewest, 3) : shape.fewest;
      for (const int64_t nx : {fewest, fewest + 1, fewest + 2, fewest + 3, int64_t{11}}) {
        for (const int64_t xhint : {0, 2, 4}) {
          for (const Storage s : {Storage::separate, Storage::interleaved, Storage::pointers}) {
            check_case<TypeParam>(shape, bc_type, {nx, xhint, 1 + nx % 3, s}, random);
          }
        }
      }
      if (shape.is(Kind::akima)) continue;  // has a change of slope that it neglects
      // Squares of such steps, and products of such slopes, underflow, and no coefficient does.
      const Form steps{9, 1, 2, Storage::separate, kDouble ? -540 : -75, kDouble ? -700 : -108};
      const Form slopes{9, 1, 2, Storage::separate, 0, kDouble ? -600 : -80};
      for (const Form& f : {steps, slopes}) check_case<TypeParam>(shape, bc_type, f, random);
    }
  }
}

// A NaN or an infinite value reaches the cells that its kind's arithmetic takes it to, and nothing
// else: not other cells, not other functions.
TYPED_TEST(Splines, BadValuesStayWhereTheirArithmeticIs) {
  using Real = TypeParam;
  constexpr size_t kBad = 11;
  constexpr Wide kInfinity = std::numeric_limits<Wide>::infinity();
  std::mt19937 random(5);
  for (const SplineShape& shape : spline_shapes()) {
    for (const int64_t bc_type : shape.boundaries) {
      const Form form{24, 1, 2};
      Input in = make_input<Real>(form, bc_type == 64, random);
      const auto wanted = construct<Real>(shape, bc_type, form, in);
      const auto order = static_cast<size_t>(shape.order);
      for (const Wide value : {std::numeric_limits<Wide>::quiet_NaN(), kInfinity, -kInfinity}) {
        SCOPED_TRACE(std::string(shape.name) + " " + std::to_string(bc_type));
        in.y[0][kBad] = value;
        const auto got = construct<Real>(shape, bc_type, form, in);
        EXPECT_EQ(got[1], wanted[1]);
        for (size_t cell = 0; cell + 1 < 24; ++cell) {
          const Real *c = &got[0][cell * order], *good = &wanted[0][cell * order];
          const bool beside = cell == kBad - 1 || cell == kBad;
          if (beside) {
            EXPECT_FALSE(std::all_of(c, c + order, [](Real v) { return std::isfinite(v); }));
          } else if (shape.reach != 0 &&
                     (cell + shape.reach < kBad || cell >= kBad + shape.reach)) {
            EXPECT_TRUE(std::equal(c, c + order, good)) << cell;
          }
        }
      }
    }
  }
}

// The bits of coefficients, values and integrals are the same at every build level, on every
// platform and with every compiler: their hash (FNV-1a) is a constant.
template <class Real>
void add_to_hash(uint64_t& hash, const std::vector<Real>& values) {
  for (const Real v : values) {
    unsigned char bytes[sizeof v];
    std::memcpy(bytes, &v, sizeof v);
    for (const unsigned char b : bytes) hash = (hash ^ b) * 0x100000001B3;
  }
}

template <class Real>
uint64_t hash_of_all_kinds() {
  constexpr size_t n = 70;
  // Fractions from -1 to 1 with the digits of a linear congruence.
  auto digit = [state = uint32_t{1}]() mutable {
    state = state * 1664525 + 1013904223;
    return static_cast<Real>(static_cast<int32_t>(state) / 256) / 0x800000;
  };
  std::vector<Real> x, y(3 * n), inner(n), knots = {0}, site(900), limit(900), bc(2);
  for (size_t i = 0; i < n; ++i) x.push_back(static_cast<Real>(i) + (i > 0 ? digit() / 4 : 0));
  for (size_t i = 1; i < n; ++i) knots.push_back((x[i - 1] + x[i]) / 2);
  knots.push_back(x.back());
  for (auto* v : {&y, &inner, &bc}) {
    for (Real& e : *v) e = digit();
  }
  for (auto* v : {&site, &limit}) {
    for (Real& e : *v) e = 36 + 37 * digit();
  }
  for (size_t f = 0; f < 3; ++f) y[f * n + n - 1] = y[f * n];
  const std::vector<Real> ends = {x.front(), x.back()};
  uint64_t hash = 0xCBF29CE484222325;
  for (const SplineShape& shape : spline_shapes()) {
    for (const int64_t bc_type : shape.boundaries) {
      for (const int64_t xhint : {0, 4}) {
        if (shape.is(Kind::knotted) && xhint == 4) continue;
        std::vector<Real> c(3 * 4 * n), r(2 * 3 * site.size());
        Task<Real> task(n, xhint == 4 ? ends.data() : x.data(), xhint, 3, y.data());
        EXPECT_EQ(set_spline(task, shape, bc_type, bc.data(), inner, knots, c.data()), 0);
        EXPECT_EQ(kernel_of<Real>(shape.kind)(task, 0, 0, nullptr), 0);
        add_to_hash(hash, c);
        EXPECT_EQ(task.interpolate(site, r.data()), 0);
        add_to_hash(hash, r);
        EXPECT_EQ(task.interpolate(site, r.data(), {.derivatives = {0, 1, 1}, .layout = 32}), 0);
        add_to_hash(hash, r);
        EXPECT_EQ(task.integrate(site, limit, r.data()), 0);
        add_to_hash(hash, r);
      }
    }
  }
  return hash;
}

TEST(Bits, AreThoseOfEveryLevel) {
  EXPECT_EQ(hash_of_all_kinds<double>(), 13047611057932271856u);
  EXPECT_EQ(hash_of_all_kinds<float>(), 8156750102067823382u);
}

}  // namespace
}  // namespace qor::test
