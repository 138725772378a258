// The bits of coefficients, values and integrals are the same at every build level, on every
// platform and with every compiler: their hash is a constant.

#include <cstring>

#include "tests/fitting/spline_case.h"

namespace qor::test {
namespace {

class Hash {
 public:
  template <class Real>
  void add(const std::vector<Real>& values) {
    for (const Real v : values) {
      unsigned char bytes[sizeof v];
      std::memcpy(bytes, &v, sizeof v);
      for (const unsigned char b : bytes) hash_ = (hash_ ^ b) * 0x100000001B3;  // FNV-1a
    }
  }
  uint64_t value() const { return hash_; }

 private:
  uint64_t hash_ = 0xCBF29CE484222325;
};

// Fractions from -1 to 1 with the digits of a linear congruence.
template <class Real>
class Digits {
 public:
  Real operator()() {
    state_ = state_ * 1664525 + 1013904223;
    return static_cast<Real>(static_cast<int32_t>(state_) / 256) / 0x800000;
  }

 private:
  uint32_t state_ = 1;
};

template <class Real>
uint64_t hash_of_all_kinds() {
  constexpr size_t n = 70;
  Hash hash;
  Digits<Real> digit;
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
  for (const SplineShape& shape : spline_shapes()) {
    for (const int64_t bc_type : shape.boundaries) {
      for (const int64_t xhint : {0, 4}) {
        std::vector<Real> c(3 * 4 * n), r(2 * 3 * site.size());
        Task<Real> task(n, xhint == 4 ? ends.data() : x.data(), xhint, 3, y.data());
        const bool on_knots = shape.kind == SplineKind::knot_quadratic;
        if (on_knots && xhint == 4) continue;
        const bool none = shape.kind == SplineKind::midpoint_quadratic;
        EXPECT_EQ(task.spline(shape.order, shape.s_type, c.data(), bc_type, bc.data(), none ? 0 : 1,
                              none       ? nullptr
                              : on_knots ? knots.data()
                                         : inner.data()),
                  0);
        EXPECT_EQ(kernel_of<Real>(shape.kind)(task, 0, 0, nullptr), 0);
        hash.add(c);
        EXPECT_EQ(task.interpolate(site, r.data()), 0);
        hash.add(r);
        EXPECT_EQ(task.interpolate(site, r.data(), {.derivatives = {0, 1, 1}, .layout = 32}), 0);
        hash.add(r);
        EXPECT_EQ(task.integrate(900, site.data(), limit.data(), r.data()), 0);
        hash.add(r);
      }
    }
  }
  return hash.value();
}

TEST(Bits, AreThoseOfEveryLevel) {
  EXPECT_EQ(hash_of_all_kinds<double>(), 13047611057932271856u);
  EXPECT_EQ(hash_of_all_kinds<float>(), 8156750102067823382u);
}

}  // namespace
}  // namespace qor::test
