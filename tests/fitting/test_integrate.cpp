// Integration: against integrals in extended precision, exchanged limits, outer parts, callbacks.
// Its checks stand with those of interpolation.

#include <cmath>
#include <limits>

#include "tests/fitting/pieces.h"

namespace qor::test {
namespace {

template <class Real>
class Integration : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Integration, Precisions);

// All interpolants that have pieces, over all pairs of limits among breakpoints, places between and
// places outside.
TYPED_TEST(Integration, EqualsExtendedPrecision) {
  using Real = TypeParam;
  for_all_pieces<Real>([](const Pieces<Real>& p) {
    std::vector<Real> limits = p.x, l, u;
    for (const double at : {-3.0, -1.96875, 0.15625, 2.40625, 5.25, 6.0}) {
      limits.push_back(static_cast<Real>(at));
    }
    for (const Real a : limits) {
      for (const Real b : limits) {
        l.push_back(a);
        u.push_back(b);
      }
    }
    const size_t n = l.size(), ny = static_cast<size_t>(p.functions);
    std::vector<Real> r(n * ny), by_limit(n * ny), back(n * ny);
    ASSERT_EQ(p.task.integrate(l, u, r.data()), 0);
    ASSERT_EQ(p.task.integrate(l, u, by_limit.data(), {.layout = 32}), 0);
    ASSERT_EQ(p.task.integrate(u, l, back.data(), {.layout = 128}), 0);
    for (size_t k = 0; k < n * ny; ++k) {
      const size_t f = k / n, i = k % n;
      const Wide expected = p.integral(static_cast<int64_t>(f), l[i], u[i]);
      const Wide tolerance =
          2000 * std::numeric_limits<Real>::epsilon() * (1 + std::fabs(expected));
      ASSERT_NEAR(static_cast<double>(r[k]), static_cast<double>(expected),
                  static_cast<double>(tolerance))
          << l[i] << " " << u[i];
      ASSERT_EQ(back[k], -r[k]);
      ASSERT_EQ(by_limit[i * ny + f], r[k]);
      if (l[i] == u[i]) {
        ASSERT_EQ(r[k], 0);
      }
    }
  });
}

TYPED_TEST(Integration, LimitFormsGiveTheSameBits) {
  using Real = TypeParam;
  constexpr int64_t n = 700;
  const Pieces<Real> p(100, 1, 4);
  const std::vector<Real> left_ends = {-3, 30}, right_ends = {50, 10};
  const Real peak[5] = {0, 1, 0, 0, 50};
  const Real left_step = Real(33) / (n - 1), right_step = Real(-40) / (n - 1);
  std::vector<Real> l, u, expected(n), r(n);
  for (int i = 0; i < n; ++i) {
    l.push_back(static_cast<Real>(i) * left_step + left_ends[0]);
    u.push_back(static_cast<Real>(i) * right_step + right_ends[0]);
  }
  ASSERT_EQ(p.task.integrate(l, u, expected.data()), 0);
  ASSERT_EQ(p.task.integrate(l, u, r.data(), {.left_hint = QOR_DF_SORTED, .right_data_hint = peak}),
            0);
  EXPECT_EQ(r, expected);
  ASSERT_EQ(p.task.integrate(left_ends, right_ends, r.data(),
                             {.left_hint = 4, .right_hint = 4, .nlim = n}),
            0);
  EXPECT_EQ(r, expected);
}

// A part and its integrand, a constant.
template <class Real>
struct Part {
  int bit;
  Real lowest, highest, height;
  int status = 0;
};

template <class Real>
int integrate_part(const int64_t* n, const Real* l, const Real* u, Real* result, void* params,
                   void* zero) {
  const auto& part = *static_cast<Part<Real>*>(params);
  EXPECT_EQ(zero, nullptr);
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_TRUE(part.lowest <= l[i] && l[i] <= u[i] && u[i] <= part.highest) << l[i] << " " << u[i];
    result[i] = part.height * (u[i] - l[i]);
  }
  return part.status;
}

// Every subset of callbacks: their parts from them, the others from the spline y = 1. A user's
// function needs all three.
TYPED_TEST(Integration, Callbacks) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2};
  const std::vector<Real> at = {-3, -1, 0, 0.5, 1, 1.5, 2, 3, 5};
  Real c[4] = {1, 0, 1, 0}, r[1];
  const Task<Real> task(3, x, 0, 1, x);
  Part<Real> left{1, -9, 0, 2}, right{2, 2, 9, 4}, inside{4, 0, 2, 8};
  for (int mask = 0; mask < 8; ++mask) {
    const auto callback = [&](Part<Real>& part) {
      return typename Task<Real>::template Callback<typename Api<Real>::Integrals>{
          (mask & part.bit) != 0 ? integrate_part<Real> : nullptr, &part};
    };
    const typename Task<Real>::Limits s{
        .left = callback(left), .right = callback(right), .inside = callback(inside)};
    const auto check = [&](Real l, Real u, int status) {
      const Real low = std::min(l, u), high = std::max(l, u);
      Real sum = 0;
      int expected = 0;
      for (Part<Real>* part : {&left, &right, &inside}) {
        const Real a = std::clamp(low, part->lowest, part->highest);
        const Real b = std::clamp(high, part->lowest, part->highest);
        const bool asked = (mask & part->bit) != 0;
        sum += (asked ? part->height : 1) * (b - a);
        part->status = status;
        // The ends of the partition belong to it.
        const bool reached = part == &inside ? low <= part->highest && high >= part->lowest
                                             : low < part->highest && high > part->lowest;
        if (asked && reached) expected = status;
      }
      ASSERT_EQ(task.integrate({l}, {u}, r, s), expected) << mask << " " << l << " " << u;
      if (status != 0) return;
      ASSERT_NEAR(r[0], u >= l ? sum : -sum, 1e-4) << mask << " " << l << " " << u;
    };
    ASSERT_EQ(task.spline(2, 0, c), 0);
    for (const Real l : at) {
      for (const Real u : at) {
        check(l, u, 0);
        check(l, u, -9);
      }
    }
    ASSERT_EQ(task.spline(0, 3, nullptr), 0);
    if (mask == 7) {
      check(4, -2, 0);
    } else {
      EXPECT_EQ(task.integrate({0}, {1}, r, s), QOR_DF_BAD_TYPE);
    }
  }
}

}  // namespace
}  // namespace qor::test
