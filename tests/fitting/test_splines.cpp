// Every kind of spline under every boundary, storage, partition, precision and number of functions,
// against its definition.

#include <cmath>
#include <limits>
#include <random>

#include "tests/fitting/spline_case.h"

namespace qor::test {
namespace {

enum class Storage { separate, interleaved, pointers };

struct Form {
  int64_t nx, xhint, functions;
  Storage storage;
};

// Input of a task, all functions, in the task's precision.
template <class Real>
struct Input {
  std::vector<Real> x, all_x, knots, inner, bc;
  std::vector<std::vector<Real>> y;
};

template <class Real>
Input<Real> make_input(const Form& form, bool periodic, std::mt19937& random) {
  std::uniform_real_distribution<Real> unit(Real(0.25), Real(1));
  Input<Real> in;
  const auto n = static_cast<size_t>(form.nx);
  const bool uniform = form.xhint == QOR_DF_UNIFORM_PARTITION;
  Real at = Real(-1.25);
  for (size_t i = 0; i < n; ++i) {
    in.all_x.push_back(at);
    at += uniform ? Real(0.75) : unit(random);
  }
  in.x = uniform ? std::vector<Real>{in.all_x.front(), in.all_x.back()} : in.all_x;
  in.knots.push_back(in.all_x[0]);
  for (size_t i = 1; i < n; ++i) {
    in.knots.push_back(in.all_x[i - 1] +
                       (in.all_x[i] - in.all_x[i - 1]) * unit(random) * Real(0.75));
  }
  in.knots.push_back(in.all_x[n - 1]);
  for (size_t i = 2; i < n; ++i) in.inner.push_back(unit(random) - Real(0.5));
  in.bc = {unit(random), -unit(random)};
  for (int64_t f = 0; f < form.functions; ++f) {
    in.y.emplace_back();
    for (size_t i = 0; i < n; ++i) in.y.back().push_back(4 * unit(random) - 2);
    if (periodic) in.y.back()[n - 1] = in.y.back()[0];
  }
  return in;
}

// Coefficients of all functions as the kernel gives them.
template <class Real>
std::vector<std::vector<Real>> construct(const SplineShape& shape, int64_t bc_type,
                                         const Form& form, const Input<Real>& in) {
  const auto n = static_cast<size_t>(form.nx);
  const size_t cells = shape.kind == SplineKind::knot_quadratic ? n : n - 1;
  const size_t length = cells * static_cast<size_t>(shape.order);
  std::vector<Real> y;
  const bool interleaved = form.storage == Storage::interleaved;
  for (size_t k = 0; k < n * in.y.size(); ++k) {
    y.push_back(interleaved ? in.y[k % in.y.size()][k / in.y.size()] : in.y[k / n][k % n]);
  }
  const bool pointers = form.storage == Storage::pointers;
  Task<Real> task(form.nx, in.x.data(), form.xhint, form.functions,
                  pointers ? in.y[0].data() : y.data(),
                  interleaved ? 32
                  : pointers  ? 128
                              : 0);
  const bool on_knots = shape.kind == SplineKind::knot_quadratic;
  const bool given = shape.kind == SplineKind::by_second || shape.kind == SplineKind::hermite;
  const Real* ic = on_knots ? in.knots.data() : given ? in.inner.data() : nullptr;
  std::vector<std::vector<Real>> c(in.y.size(), std::vector<Real>(length));
  std::vector<Real> together(length * in.y.size());
  EXPECT_EQ(Api<Real>::edit_spline(task, shape.order, shape.s_type, bc_type, in.bc.data(),
                                   ic != nullptr ? 1 : 0, ic,
                                   pointers ? c[0].data() : together.data(), pointers ? 128 : 0),
            QOR_DF_OK);
  for (size_t f = 1; pointers && f < in.y.size(); ++f) {
    const auto index = static_cast<int64_t>(f);
    EXPECT_EQ(Api<Real>::edit_entry(task, QOR_DF_Y, index, in.y[f].data()), 0);
    EXPECT_EQ(Api<Real>::edit_entry(task, QOR_DF_SCOEFF, index, c[f].data()), 0);
  }
  EXPECT_EQ(kernel_of<Real>(shape.kind)(task, 0, 0, nullptr), QOR_DF_OK) << shape.name;
  if (!pointers) {
    for (size_t k = 0; k < together.size(); ++k) c[k / length][k % length] = together[k];
  }
  return c;
}

template <class Real>
SplineData wide_data(const Input<Real>& in, size_t function) {
  SplineData s;
  s.x.assign(in.all_x.begin(), in.all_x.end());
  s.y.assign(in.y[function].begin(), in.y[function].end());
  s.knots.assign(in.knots.begin(), in.knots.end());
  s.inner.assign(in.inner.begin(), in.inner.end());
  s.bc[0] = in.bc[0];
  s.bc[1] = in.bc[1];
  return s;
}

template <class Real>
void check_case(const SplineShape& shape, int64_t bc_type, const Form& form, std::mt19937& random) {
  const Input<Real> in = make_input<Real>(form, bc_type == 64, random);
  const auto c = construct<Real>(shape, bc_type, form, in);
  // Widths are about 1 and values up to 2; slopes of cells reach 16, and a recurrence over cells of
  // unlike width (the midpoint form) lets an error grow.
  const Wide ulps = shape.kind == SplineKind::midpoint_quadratic ? 4096 : 512;
  for (size_t f = 0; f < in.y.size(); ++f) {
    const auto expected = defined_spline(shape, bc_type, wide_data(in, f));
    ASSERT_EQ(expected.size(), c[f].size()) << shape.name << " " << bc_type << " " << form.nx;
    Wide largest = 2;
    for (const Wide e : expected) largest = std::max(largest, std::fabs(e));
    for (size_t k = 0; k < expected.size(); ++k) {
      ASSERT_NEAR(static_cast<double>(c[f][k] - expected[k]), 0,
                  static_cast<double>(ulps * largest * std::numeric_limits<Real>::epsilon()))
          << shape.name << " boundary " << bc_type << " nx " << form.nx << " xhint " << form.xhint
          << " storage " << static_cast<int>(form.storage) << " function " << f << " coefficient "
          << k << " is " << c[f][k];
    }
  }
}

template <class Real>
class Splines : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Splines, Precisions);

TYPED_TEST(Splines, EqualTheirDefinition) {
  std::mt19937 random(2203);
  for (const SplineShape& shape : spline_shapes()) {
    for (const int64_t bc_type : shape.boundaries) {
      const int64_t fewest = fewest_breakpoints(shape, bc_type);
      for (const int64_t nx : {fewest, fewest + 1, fewest + 2, fewest + 3, int64_t{11}}) {
        for (const int64_t xhint : {0, 2, 4}) {
          for (const int64_t functions : {1, 3, 5}) {
            for (const Storage s : {Storage::separate, Storage::interleaved, Storage::pointers}) {
              check_case<TypeParam>(shape, bc_type, {nx, xhint, functions, s}, random);
            }
          }
        }
      }
    }
  }
}

// The polynomials of a kind's order, where the conditions are those of the polynomial itself.
TYPED_TEST(Splines, ReproduceTheirPolynomials) {
  using Real = TypeParam;
  const std::vector<Real> x = {-2, -1, Real(0.5), 1, 3, 4, Real(4.5)};
  const auto n = static_cast<int64_t>(x.size());
  std::vector<Real> y, first, second;
  for (const Real t : x) {
    y.push_back(t * t * t - 2 * t * t + 3 * t - 1);
    first.push_back(3 * t * t - 4 * t + 3);
    second.push_back(6 * t - 4);
  }
  struct Case {
    Kernel kernel;
    int64_t bc_type;
    std::vector<Real> bc, ic;
  };
  const std::vector<Real> inner_first(first.begin() + 1, first.end() - 1);
  const std::vector<Real> inner_second(second.begin() + 1, second.end() - 1);
  const Case cases[] = {
      {Api<Real>::natural, 1, {}, {}},
      {Api<Real>::natural, 12, {first.front(), first.back()}, {}},
      {Api<Real>::natural, 24, {second.front(), first.back()}, {}},
      {Api<Real>::natural, 36, {first.front(), second.back()}, {}},
      {Api<Real>::natural, 48, {second.front(), second.back()}, {}},
      {Api<Real>::hermite, 1, {}, inner_first},
      {Api<Real>::hermite, 48, {second.front(), second.back()}, inner_first},
      {Api<Real>::by_second, 1, {}, inner_second},
      {Api<Real>::by_second, 12, {first.front(), first.back()}, inner_second},
  };
  for (const Case& s : cases) {
    std::vector<Real> c(static_cast<size_t>(4 * (n - 1)));
    Task<Real> task(n, x.data(), 0, 1, y.data());
    ASSERT_EQ(task.spline(4, 5, c.data(), s.bc_type, s.bc.empty() ? nullptr : s.bc.data(),
                          s.ic.empty() ? 0 : 1, s.ic.empty() ? nullptr : s.ic.data()),
              0);
    ASSERT_EQ(s.kernel(task, 0, 0, nullptr), 0);
    for (size_t i = 0; i + 1 < x.size(); ++i) {
      const Real tolerance = 100 * std::numeric_limits<Real>::epsilon();
      EXPECT_EQ(c[4 * i], y[i]);
      EXPECT_NEAR(c[4 * i + 1], first[i], 32 * tolerance) << s.bc_type;
      EXPECT_NEAR(c[4 * i + 2], second[i] / 2, 32 * tolerance) << s.bc_type;
      EXPECT_NEAR(c[4 * i + 3], 1, 32 * tolerance) << s.bc_type;
    }
  }
}

TYPED_TEST(Splines, ScaleExactlyByPowersOfTwo) {
  using Real = TypeParam;
  std::mt19937 random(7);
  for (const SplineShape& shape : spline_shapes()) {
    if (shape.kind == SplineKind::akima) continue;  // has a change of slope that it neglects
    for (const int64_t bc_type : shape.boundaries) {
      const Form form{9, 1, 2, Storage::separate};
      const Input<Real> in = make_input<Real>(form, bc_type == 64, random);
      Input<Real> scaled = in;
      // Squares of such steps underflow, and no coefficient does.
      const bool wide = sizeof(Real) == sizeof(double);
      const int ex = wide ? -540 : -75, ey = wide ? -700 : -105;
      const Real sx = std::ldexp(Real(1), ex), sy = std::ldexp(Real(1), ey);
      for (auto* v : {&scaled.x, &scaled.all_x, &scaled.knots}) {
        for (Real& e : *v) e *= sx;
      }
      for (auto& v : scaled.y) {
        for (Real& e : v) e *= sy;
      }
      const auto by_order = [&](int64_t bits, int64_t first_bit, int64_t second_bit) {
        return (bits & first_bit) != 0 ? sy / sx : (bits & second_bit) != 0 ? sy / sx / sx : sy;
      };
      const bool hermite = shape.kind == SplineKind::hermite;
      const Real periodic = hermite ? sy / sx : sy / sx / sx;
      scaled.bc[0] *= bc_type == 64 ? periodic : by_order(bc_type, 4, 16);
      scaled.bc[1] *= by_order(bc_type, 8, 32);
      for (Real& e : scaled.inner) e *= periodic;
      const auto c = construct<Real>(shape, bc_type, form, in);
      const auto d = construct<Real>(shape, bc_type, form, scaled);
      for (size_t f = 0; f < c.size(); ++f) {
        for (size_t k = 0; k < c[f].size(); ++k) {
          const auto power = static_cast<int>(k) % shape.order;
          ASSERT_EQ(d[f][k], std::ldexp(c[f][k], ey - power * ex))
              << shape.name << " " << bc_type << " " << k;
        }
      }
    }
  }
}

// Rules of single kinds that random data do not reach.
TYPED_TEST(Splines, EdgesOfKinds) {
  using Real = TypeParam;
  const std::vector<Real> x = {0, 1, 2, 3, 4, 5};
  std::vector<Real> c(20);
  const auto fit = [&](Kernel kernel, const std::vector<Real>& y, int64_t bc_type) {
    Task<Real> task(static_cast<int64_t>(y.size()), x.data(), 0, 1, y.data());
    EXPECT_EQ(task.spline(4, 4, c.data(), bc_type), 0);
    return kernel(task, 0, 0, nullptr);
  };
  // A line has no changes of slope to weigh.
  ASSERT_EQ(fit(Api<Real>::akima, {1, 3, 5, 7, 9, 11}, 0), 0);
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(c[4 * i + 1], 2);
    EXPECT_EQ(c[4 * i + 2], 0);
    EXPECT_EQ(c[4 * i + 3], 0);
  }
  // No derivative at an extremum or beside a flat cell, and three times the flatter slope at most.
  ASSERT_EQ(fit(Api<Real>::hyman, {0, 4, 4, 3, 8, 9}, 2), 0);
  EXPECT_EQ(c[4], 4);
  EXPECT_EQ(c[5], 0);
  EXPECT_EQ(c[9], 0);
  EXPECT_EQ(c[13], 0);
  EXPECT_EQ(c[17], 3);
  // Slopes whose product would vanish keep their sign.
  const Real tiny = std::numeric_limits<Real>::min() * 1024;
  ASSERT_EQ(fit(Api<Real>::hyman, {0, tiny, 2 * tiny, 3 * tiny, 4 * tiny, 5 * tiny}, 2), 0);
  EXPECT_EQ(c[9], tiny);
  // A NaN goes where the stencil takes it and no further.
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  ASSERT_EQ(fit(Api<Real>::bessel, {0, 1, 0, 2, 1, nan}, 2), 0);
  for (size_t k = 0; k < 12; ++k) EXPECT_TRUE(std::isfinite(c[k])) << k;
  EXPECT_TRUE(std::isnan(c[17]));
  ASSERT_EQ(fit(Api<Real>::akima, {0, 1, 0, 2, nan, 1}, 0), 0);
  EXPECT_TRUE(std::isfinite(c[1]));
}

}  // namespace
}  // namespace qor::test
