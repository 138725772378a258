// The tridiagonal services: L U gives the matrix back, solutions satisfy their system, pivots that
// vanish are told.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "qor/services.h"

namespace {

struct DoubleRoutines {
  using Real = double;
  static constexpr auto factor = ddttrfb_4dfl;
  static constexpr auto solve = ddttrsb_4dfl;
  static constexpr auto factor_and_solve = ddtsvb_4dfl;
};
struct FloatRoutines {
  using Real = float;
  static constexpr auto factor = sdttrfb_4dfl;
  static constexpr auto solve = sdttrsb_4dfl;
  static constexpr auto factor_and_solve = sdtsvb_4dfl;
};

template <class Routines>
class Tridiagonal : public testing::Test {};
using Precisions = testing::Types<DoubleRoutines, FloatRoutines>;
TYPED_TEST_SUITE(Tridiagonal, Precisions);

TYPED_TEST(Tridiagonal, FactorsAndSolves) {
  using Real = typename TypeParam::Real;
  std::mt19937 random(5);
  std::uniform_real_distribution<Real> unit(-1, 1);
  for (const int64_t n : {1, 2, 3, 50}) {
    for (const int64_t nrhs : {0, 1, 3, 4, 9}) {
      const int64_t ldb = n + 2;
      const auto rows = static_cast<size_t>(n);
      std::vector<Real> dl(rows), d(rows), du(rows), b(static_cast<size_t>(ldb * nrhs));
      for (size_t i = 0; i < rows; ++i) {
        dl[i] = unit(random);
        du[i] = unit(random);
        d[i] = 3 + unit(random);
      }
      for (Real& v : b) v = unit(random);
      auto l = dl, u = d, w = du, x = b, y = b;
      int64_t info = 7;
      TypeParam::factor(&n, l.data(), u.data(), w.data(), &info);
      ASSERT_EQ(info, 0);
      const Real eps = 8 * std::numeric_limits<Real>::epsilon();
      EXPECT_EQ(w, du);
      for (size_t i = 0; i + 1 < rows; ++i) {
        EXPECT_NEAR(l[i] * u[i], dl[i], eps);
        EXPECT_NEAR(u[i + 1] + l[i] * du[i], d[i + 1], 4 * eps);
      }
      TypeParam::solve("N", &n, &nrhs, l.data(), u.data(), w.data(), x.data(), &ldb, &info);
      ASSERT_EQ(info, 0);
      auto l2 = dl, u2 = d, w2 = du;
      TypeParam::factor_and_solve(&n, &nrhs, l2.data(), u2.data(), w2.data(), y.data(), &ldb,
                                  &info);
      ASSERT_EQ(info, 0);
      EXPECT_EQ(x, y);
      for (int64_t k = 0; k < nrhs; ++k) {
        const Real* column = x.data() + k * ldb;
        for (size_t i = 0; i < rows; ++i) {
          Real sum = d[i] * column[i];
          if (i > 0) sum += dl[i - 1] * column[i - 1];
          if (i + 1 < rows) sum += du[i] * column[i + 1];
          EXPECT_NEAR(sum, b[static_cast<size_t>(k * ldb) + i], 2 * eps);
        }
        for (int64_t i = n; i < ldb; ++i) {
          EXPECT_EQ(column[i], b[static_cast<size_t>(k * ldb + i)]);
        }
      }
    }
  }
}

TYPED_TEST(Tridiagonal, ReportsZeroPivots) {
  using Real = typename TypeParam::Real;
  const int64_t n = 3, nrhs = 1;
  int64_t info = 0;
  Real dl[2] = {1, 1}, d[3] = {1, 1, 5}, du[2] = {1, 1}, b[3] = {1, 2, 3};
  TypeParam::factor_and_solve(&n, &nrhs, dl, d, du, b, &n, &info);
  EXPECT_EQ(info, 2);
  EXPECT_EQ(b[0], 1);
  Real zero[3] = {0, 1, 1};
  TypeParam::factor(&n, dl, zero, du, &info);
  EXPECT_EQ(info, 1);
  Real at_end[3] = {1, 1, 1}, half[2] = {0, 1};
  TypeParam::factor(&n, half, at_end, du, &info);
  EXPECT_EQ(info, 3);
  TypeParam::solve("T", &n, &nrhs, dl, d, du, b, &n, &info);
  EXPECT_LT(info, 0);
}

}  // namespace
