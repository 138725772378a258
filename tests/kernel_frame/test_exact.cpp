// Exact arithmetic of the level, in registers and in scalars, against MPFR.

#include <gtest/gtest.h>
#include <mpfr.h>

#include <cmath>
#include <random>

#include "kernels/exact/exact.h"

namespace qor::test {
namespace {

namespace exact = kernels::exact;

class Real {
 public:
  Real() { mpfr_init2(value_, 2400); }
  explicit Real(double x) : Real() { mpfr_set_d(value_, x, MPFR_RNDN); }
  template <class T>
  explicit Real(exact::Sum<T> x) : Real(static_cast<double>(x.high)) {
    mpfr_add_d(value_, value_, static_cast<double>(x.low), MPFR_RNDN);
  }
  Real(const Real& other) : Real() { mpfr_set(value_, other.value_, MPFR_RNDN); }
  Real& operator=(const Real&) = delete;
  ~Real() { mpfr_clear(value_); }

  using Operation = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);
  Real by(Operation operation, const Real& y) const {
    Real result;
    operation(result.value_, value_, y.value_, MPFR_RNDN);
    return result;
  }
  Real root() const {
    Real result;
    mpfr_sqrt(result.value_, value_, MPFR_RNDN);
    return result;
  }
  double get() const { return mpfr_get_d(value_, MPFR_RNDN); }

 private:
  mpfr_t value_;
};

// |computed / value - 1|, or |computed| where the value is 0.
template <class T>
double relative_error(exact::Sum<T> computed, const Real& value) {
  const Real error = Real(computed).by(mpfr_sub, value);
  return std::fabs(value.get() == 0 ? error.get() : error.by(mpfr_div, value).get());
}

// Numbers of either sign within 30 binades around 1, and sums of such with a second part.
template <class T>
class Numbers {
 public:
  T number() {
    const T size = std::ldexp(1 + static_cast<T>(random_() >> 11) * T(0x1p-53),
                              static_cast<int>(random_() % 30) - 15);
    return (random_() & 1) != 0 ? size : -size;
  }
  exact::Sum<T> sum() {
    const T high = number();
    return exact::fast_two_sum(high,
                               high * std::numeric_limits<T>::epsilon() * number() * T(0x1p-17));
  }

 private:
  std::mt19937_64 random_{3};
};

// The same in a register: every lane computes what the scalar does.
template <class T, class Function>
void expect_in_lanes(Function function, T a, T b, exact::Sum<T> expected) {
  const auto in_lanes = function(lanes::broadcast(a), lanes::broadcast(b));
  EXPECT_EQ(in_lanes.high[0], expected.high);
  EXPECT_EQ(in_lanes.low[0], expected.low);
}

template <class T>
class Exact : public testing::Test {};
using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(Exact, Types);

TYPED_TEST(Exact, SumsAndProductsOfTwoNumbersLoseNothing) {
  using T = TypeParam;
  Numbers<T> numbers;
  const auto two_sum = [](auto a, auto b) { return exact::two_sum(a, b); };
  const auto fast = [](auto a, auto b) { return exact::fast_two_sum(a, b); };
  const auto product = [](auto a, auto b) { return exact::two_product(a, b); };
  for (int i = 0; i < 2000; ++i) {
    T a = numbers.number(), b = numbers.number();
    const Real exact_sum = Real(a).by(mpfr_add, Real(b));
    EXPECT_EQ(relative_error(two_sum(a, b), exact_sum), 0) << a << ' ' << b;
    EXPECT_EQ(relative_error(product(a, b), Real(a).by(mpfr_mul, Real(b))), 0) << a << ' ' << b;
    expect_in_lanes(two_sum, a, b, two_sum(a, b));
    expect_in_lanes(product, a, b, product(a, b));
    if (std::fabs(a) < std::fabs(b)) std::swap(a, b);
    EXPECT_EQ(relative_error(fast(a, b), exact_sum), 0) << a << ' ' << b;
    expect_in_lanes(fast, a, b, fast(a, b));
  }
}

TYPED_TEST(Exact, ArithmeticInTwoPartsKeepsItsBounds) {
  using T = TypeParam;
  constexpr double u = std::numeric_limits<T>::epsilon() / 2, square = u * u;
  Numbers<T> numbers;
  for (int i = 0; i < 2000; ++i) {
    const exact::Sum<T> x = numbers.sum(), y = numbers.sum();
    const Real a(x), b(y);
    EXPECT_LE(relative_error(exact::add(x, y), a.by(mpfr_add, b)), 3.1 * square);
    EXPECT_LE(relative_error(exact::multiply(x, y), a.by(mpfr_mul, b)), 5 * square);
    EXPECT_LE(relative_error(exact::divide(x, y), a.by(mpfr_div, b)), 15 * square);
    if (x.high < 0) continue;
    EXPECT_LE(relative_error(exact::square_root(x), a.root()), 25.0 / 8 * square);
  }
}

TYPED_TEST(Exact, LeadingPartsHaveTheirBitsAndSquaresTheirRest) {
  using T = TypeParam;
  constexpr int digits = std::numeric_limits<T>::digits, half = digits / 2 + 1;
  Numbers<T> numbers;
  for (int i = 0; i < 2000; ++i) {
    const T x = numbers.number(), unit = std::ldexp(T{1}, std::ilogb(x) + 1 - (digits - half));
    EXPECT_EQ(exact::leading<half>(x), std::trunc(x / unit) * unit);
    EXPECT_EQ(exact::nearest_leading<half>(x), std::round(x / unit) * unit);
    EXPECT_EQ(exact::leading<half>(lanes::broadcast(x))[0], exact::leading<half>(x));
    // The second part is below 2^(2 - kept) of the square, and within 2 u of itself.
    const Real value = Real(x).by(mpfr_mul, Real(x));
    EXPECT_LE(relative_error(exact::square<half>(x), value),
              std::ldexp(1.0, 3 - 2 * digits + half));
  }
}

}  // namespace
}  // namespace qor::test
