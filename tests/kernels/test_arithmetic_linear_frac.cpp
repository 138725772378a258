// LinearFrac: which loop the scalars choose. The vector that a loop does not use holds NaN here.

#include "tests/kernels/arithmetic_support.h"

namespace qor::test {
namespace {

template <class T>
struct Rows;
template <>
struct Rows<float> {
  static constexpr auto contiguous = _arksLinearFrac;
  static constexpr auto strided = _arksLinearFracI;
};
template <>
struct Rows<double> {
  static constexpr auto contiguous = _arkdLinearFrac;
  static constexpr auto strided = _arkdLinearFracI;
};

template <class T>
struct Scalars {
  T a_scale, a_shift, b_scale, b_shift;
};

// Runs both forms, expects them to agree and no report, and returns the results.
template <class T>
std::vector<T> run(const std::vector<T>& a, const std::vector<T>& b, const Scalars<T>& s) {
  const auto n = static_cast<int32_t>(a.size());
  std::vector<T> y(a.size()), spread(3 * a.size());
  const Reports reports;
  Rows<T>::contiguous(n, a.data(), b.data(), s.a_scale, s.a_shift, s.b_scale, s.b_shift, y.data());
  Rows<T>::strided(n, a.data(), 1, b.data(), 1, s.a_scale, s.a_shift, s.b_scale, s.b_shift,
                   spread.data(), 3);
  for (size_t i = 0; i < y.size(); ++i) EXPECT_TRUE(same(spread[3 * i], y[i])) << i;
  EXPECT_TRUE(Reports::list.empty());
  EXPECT_EQ(_arkGetErrStatus(), 0);
  return y;
}

template <class T>
class LinearFrac : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(LinearFrac, Reals);

template <class T>
std::vector<T> powers_of_two() {
  std::vector<T> powers;
  for (int k = -10; k <= 10; ++k) powers.push_back(std::ldexp(T{1}, k));
  return powers;
}

TYPED_TEST(LinearFrac, Ratio) {
  using T = TypeParam;
  const std::vector<T> a = powers_of_two<T>(), b(a.rbegin(), a.rend());
  const auto y = run<T>(a, b, {3, 5, -7, 2});
  for (size_t i = 0; i < a.size(); ++i) EXPECT_EQ(y[i], (3 * a[i] + 5) / (-7 * b[i] + 2));
  EXPECT_EQ(run<T>({1}, {2}, {3, 5, -7, 14})[0], kInfinity<T>);
}

TYPED_TEST(LinearFrac, NoBScaleDividesTheScalars) {
  using T = TypeParam;
  const std::vector<T> a = powers_of_two<T>(), b(a.size(), kNan<T>);
  const T shift = T(0.7), divisor = T(3);
  const T q1 = T(5) / divisor, q2 = shift / divisor, r = 1 / divisor;
  const auto y = run<T>(a, b, {5, shift, 0, divisor});
  int told_apart = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(y[i], a[i] * q1 + q2);  // the product is exact
    told_apart += y[i] != (a[i] * 5 + shift) * r;
  }
  EXPECT_GT(told_apart, 0);
}

// Quotients of the scalars that are not normal numbers: 0, denormal or infinite.
TYPED_TEST(LinearFrac, NoBScaleMultipliesByTheReciprocal) {
  using T = TypeParam;
  std::vector<T> a;
  for (int i = 1; i < 40; ++i) a.push_back(static_cast<T>(i));
  const std::vector<T> b(a.size(), kNan<T>);
  const auto y = run<T>(a, b, {5, 0, 0, 3});
  int told_apart = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(y[i], (a[i] * 5) * (T{1} / 3));
    told_apart += y[i] != a[i] * (T{5} / 3);
  }
  EXPECT_GT(told_apart, 0);
  const T tiny = kSmallest<T> * 3;
  EXPECT_EQ(run<T>({1}, {kNan<T>}, {1, tiny, T(-0.0), 4})[0], T(0.25));
  const auto over_zero = run<T>({-2, 0, -1}, {1, 1, 1}, {1, 1, 0, 0});
  EXPECT_EQ(over_zero[0], -kInfinity<T>);
  EXPECT_EQ(over_zero[1], kInfinity<T>);
  EXPECT_TRUE(std::isnan(over_zero[2]));
}

TYPED_TEST(LinearFrac, NoAScaleReadsB) {
  using T = TypeParam;
  const auto y = run<T>({kNan<T>, kNan<T>, kNan<T>}, {1, 2, 3}, {0, 6, 1, -2});
  EXPECT_EQ(y, (std::vector<T>{-6, kInfinity<T>, 6}));
  // With both scales zero it is b that is not read.
  const auto z = run<T>({1, kNan<T>}, {kNan<T>, 1}, {0, 6, 0, 2});
  EXPECT_EQ(z[0], 3);
  EXPECT_TRUE(std::isnan(z[1]));
}

}  // namespace
}  // namespace qor::test
