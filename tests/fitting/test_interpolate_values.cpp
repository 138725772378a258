// Interpolants of the function values themselves: lookup and steps.

#include <limits>

#include "tests/fitting/api.h"

namespace qor::test {
namespace {

template <class Real>
class InterpolationOfValues : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(InterpolationOfValues, Precisions);

TYPED_TEST(InterpolationOfValues, Lookup) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 4}, ends[2] = {0, 3}, y[8] = {5, 6, 7, 8, 1, 2, 3, 4};
  Real r[8];
  for (const bool uniform : {false, true}) {
    Task<Real> task(4, uniform ? ends : x, uniform ? 4 : 0, 2, y, 0);
    ASSERT_EQ(task.spline(0, 6, nullptr), 0);
    const Real last = uniform ? ends[1] : x[3];
    const typename Task<Real>::Sites value{.derivatives = {1}};
    ASSERT_EQ(task.interpolate({0, 2, last, 1}, r, value), 0);
    const Real expected[8] = {5, 7, 8, 6, 1, 3, 4, 2};
    for (int k = 0; k < 8; ++k) EXPECT_EQ(r[k], expected[k]);
    for (const Real off : {Real(0.5), Real(-1), Real(9), std::numeric_limits<Real>::quiet_NaN()}) {
      EXPECT_EQ(task.interpolate({1, off}, r, value), QOR_DF_NOT_A_BREAKPOINT);
      EXPECT_EQ(task.interpolate({1, off}, r, {.derivatives = {1, 1}}), QOR_DF_NOT_A_BREAKPOINT);
    }
    EXPECT_EQ(task.interpolate({1}, r, {.derivatives = {1, 1}}), QOR_DF_LOOKUP_DERIVATIVES);
    EXPECT_EQ(task.interpolate({1}, r), QOR_DF_LOOKUP_DERIVATIVES);
    EXPECT_EQ(task.interpolate({1}, r, {.derivatives = {0}}), QOR_DF_LOOKUP_WITHOUT_VALUE);
    if (uniform) {
      const Real near = Real(1) - Real(0x1p-41);  // for float the breakpoint itself
      EXPECT_EQ(task.interpolate({near}, r, value), 0);
      EXPECT_EQ(r[0], 6);
    }
  }
}

TYPED_TEST(InterpolationOfValues, Steps) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 3}, ends[2] = {0, 3}, y[4] = {5, 6, 7, 8};
  const std::vector<Real> site = {-1, 0, 0.5, 1, 1.5, 2, 2.75, 3, 4};
  const Real from_right[9] = {5, 5, 5, 6, 6, 7, 7, 8, 8};
  const Real from_left[9] = {6, 5, 6, 6, 7, 7, 8, 8, 8};
  Real r[18];
  for (const bool uniform : {false, true}) {
    for (const int64_t yhint : {0, 32}) {
      Task<Real> task(4, uniform ? ends : x, uniform ? 4 : 0, 1, y, yhint);
      for (const int64_t type : {7, 8}) {
        ASSERT_EQ(task.spline(0, type, nullptr), 0);
        ASSERT_EQ(task.interpolate(site, r, {.derivatives = {1, 1}}), 0);
        for (int i = 0; i < 9; ++i) {
          EXPECT_EQ(r[2 * i], type == 7 ? from_right[i] : from_left[i]) << type << " " << i;
          EXPECT_EQ(r[2 * i + 1], 0);
        }
      }
    }
  }
}

}  // namespace
}  // namespace qor::test
