// The logarithms where only they know what is due: exact results, relative accuracy beside 1, the
// borders of table rows and cells, tiny and large arguments of Log1p, denormals.

#include <fenv.h>

#include "kernels/log_limits.h"
#include "tests/kernels/arithmetic_support.h"

namespace qor::test {
namespace {

namespace limits = kernels::limits;

template <class T>
using Kernel = void (*)(int32_t, const T*, T*);

template <class T>
std::vector<T> run(Kernel<T> kernel, const std::vector<T>& a) {
  std::vector<T> y(a.size());
  kernel(static_cast<int32_t>(a.size()), a.data(), y.data());
  return y;
}

template <class T>
constexpr T epsilon = std::numeric_limits<T>::epsilon();

// The worst error in units of the last place of results, none of them denormal. The reference has
// 64 bits of precision.
template <class T, class Reference>
double worst_error(Kernel<T> kernel, const std::vector<T>& a, Reference reference) {
  const std::vector<T> y = run(kernel, a);
  double worst = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    worst = std::max(worst, places_off(y[i], reference(static_cast<long double>(a[i]))));
  }
  return worst;
}

// Flags that a logarithm of a positive finite number never raises.
void expect_no_flags() {
  EXPECT_FALSE(fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW));
}

// ---- Exact results --------------------------------------------------------------------------

template <class T>
void check_powers_of_two(Kernel<T> log2, Kernel<T> logb, int first, int last) {
  std::vector<T> powers, exponents;
  for (int k = first; k <= last; ++k) {
    powers.push_back(std::scalbn(T{1}, k));
    exponents.push_back(static_cast<T>(k));
  }
  EXPECT_EQ(run(log2, powers), exponents);
  EXPECT_EQ(run(logb, powers), exponents);
}

TEST(Log, PowersOfTwoAreExact) {
  check_powers_of_two<float>(_arksLog2, _arksLogb, -149, 127);
  check_powers_of_two<double>(_arkdLog2, _arkdLogb, -1074, 1023);
}

template <class T>
void check_powers_of_ten(Kernel<T> log10, int last) {
  T power = 1;
  for (int k = 0; k <= last; ++k, power *= 10) EXPECT_EQ(run(log10, {power})[0], k);
}

TEST(Log, PowersOfTenAreExact) {
  check_powers_of_ten<float>(_arksLog10, 10);
  check_powers_of_ten<double>(_arkdLog10, 22);
}

TEST(Log, OneGivesPositiveZero) {
  for (const auto kernel : {_arksLn, _arksLog2, _arksLog10}) {
    EXPECT_TRUE(same(run(kernel, {1.0f})[0], 0.0f));
  }
  for (const auto kernel : {_arkdLn, _arkdLog2, _arkdLog10}) {
    EXPECT_TRUE(same(run(kernel, {1.0})[0], 0.0));
  }
}

// ---- Accuracy where a reduction could lose it -----------------------------------------------

// 1 and its neighbours, then ever further: the result's own size is what counts there.
template <class T>
std::vector<T> beside_one() {
  std::vector<T> values;
  for (const T side : {T{-0.5}, T{1}}) {
    for (int k = 1; k < 3000; ++k) values.push_back(1 + side * static_cast<T>(k) * epsilon<T>);
    for (T step = 2000 * epsilon<T>; step < T(0.3); step *= T(1.003)) {
      values.push_back(1 + side * step);
    }
  }
  return values;
}

// Both sides of every multiple of 2^-11 in [1/2, 2), where rows and cells change, and of the same
// with a great exponent.
template <class T>
std::vector<T> at_borders() {
  std::vector<T> values;
  for (int i = 1024; i < 4096; ++i) {
    for (const int exponent : {0, std::numeric_limits<T>::max_exponent - 3}) {
      const T border = std::scalbn(static_cast<T>(i), exponent - 11);
      if (border == 1) continue;
      values.insert(values.end(), {std::nextafter(border, T{0}), border});
    }
  }
  return values;
}

template <class T>
void check_accuracy(Kernel<T> ln, Kernel<T> log2, Kernel<T> log10, double ln_bound) {
  for (const auto& a : {beside_one<T>(), at_borders<T>()}) {
    EXPECT_LT(worst_error(ln, a, [](long double x) { return std::log(x); }), ln_bound);
    EXPECT_LT(worst_error(log2, a, [](long double x) { return std::log2(x); }), 0.8);
    EXPECT_LT(worst_error(log10, a, [](long double x) { return std::log10(x); }), 0.8);
  }
}

TEST(Log, AccurateBesideOneAndAtBorders) {
  check_accuracy<float>(_arksLn, _arksLog2, _arksLog10, 0.9);
  check_accuracy<double>(_arkdLn, _arkdLog2, _arkdLog10, 0.55);
}

// ---- Log1p ----------------------------------------------------------------------------------

template <class T>
void check_log1p(Kernel<T> log1p, T last) {
  std::vector<T> tiny, small, large;
  for (T x = kDenormal<T>; x < epsilon<T> / 4; x *= T(2.5)) tiny.insert(tiny.end(), {x, -x});
  for (T x = epsilon<T> / 8; x < 2; x *= T(1.01)) small.insert(small.end(), {x, -x / 2});
  for (T x = 1; x < last / 2; x *= T(1.7)) large.push_back(x);
  small.push_back(epsilon<T> / 2 - 1);
  large.insert(large.end(), {std::nextafter(last, T{0}), last, kLargest<T>});
  feclearexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(run(log1p, tiny), tiny);
  for (const auto& a : {small, large}) {
    EXPECT_LT(worst_error(log1p, a, [](long double x) { return std::log1p(x); }), 0.8);
  }
  expect_no_flags();
}

TEST(Log1p, TinySmallAndLarge) {
  check_log1p<float>(_arksLog1p, from_image<float>(limits::slog1p::last_image + 1));
  constexpr auto last = static_cast<uint64_t>(limits::dlog1p::last_high_word) + 1;
  check_log1p<double>(_arkdLog1p, from_image<double>(last << 32));
}

// ---- Denormals and the side path ------------------------------------------------------------

// Both sides of the vector path's first argument, and denormals down to the least.
template <class T>
void check_denormals(Kernel<T> ln, Kernel<T> log2, Kernel<T> log10, double ln_bound) {
  std::vector<T> a = {std::nextafter(kSmallest<T>, T{0}), kSmallest<T>, kDenormal<T>};
  for (T x = 3 * kDenormal<T>; x < kSmallest<T>; x *= T(1.4)) a.push_back(x);
  const Reports reports;
  feclearexcept(FE_ALL_EXCEPT);
  EXPECT_LT(worst_error(ln, a, [](long double x) { return std::log(x); }), ln_bound);
  EXPECT_LT(worst_error(log2, a, [](long double x) { return std::log2(x); }), 0.8);
  EXPECT_LT(worst_error(log10, a, [](long double x) { return std::log10(x); }), 0.8);
  EXPECT_EQ(Reports::list.size(), 0u);
  expect_no_flags();
}

TEST(Log, DenormalsAreAccurate) {
  check_denormals<float>(_arksLn, _arksLog2, _arksLog10, 0.8);
  check_denormals<double>(_arkdLn, _arkdLog2, _arkdLog10, 0.55);
}

// A bad lane does not change what its neighbours give, and each bad lane has its code and flag.
TEST(Log, BadLanesAmongGoodOnes) {
  std::vector<double> good(40, 3.0), mixed = good;
  mixed[5] = 0.0;
  mixed[17] = -2.0;
  mixed[38] = kDenormal<double>;
  const std::vector<double> expected = run(_arkdLog10, good);
  const Reports reports;
  feclearexcept(FE_ALL_EXCEPT);
  const std::vector<double> y = run(_arkdLog10, mixed);
  EXPECT_TRUE(fetestexcept(FE_DIVBYZERO));
  EXPECT_TRUE(fetestexcept(FE_INVALID));
  for (size_t i = 0; i < y.size(); ++i) {
    if (mixed[i] == good[i]) {
      EXPECT_EQ(y[i], expected[i]);
    }
  }
  const std::vector<Reports::Report> due = {{QOR_ERROR_SINGULARITY, 5, "vdLog10"},
                                            {QOR_ERROR_DOMAIN, 17, "vdLog10"}};
  EXPECT_EQ(Reports::list, due);
}

}  // namespace
}  // namespace qor::test
