// What the tests of the exact kernels share: arguments that meet every edge, comparison of images,
// and a record of the reports of a call.
#pragma once

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "qor/vector_math.h"
#include "tests/support/reports.h"

namespace qor::test {

template <class T>
using ImageOf = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
template <class T>
inline ImageOf<T> image(T x) {
  return std::bit_cast<ImageOf<T>>(x);
}
template <class T>
inline T from_image(ImageOf<T> bits) {
  return std::bit_cast<T>(bits);
}

template <class T>
inline constexpr T kInfinity = std::numeric_limits<T>::infinity();
template <class T>
inline constexpr T kNan = std::numeric_limits<T>::quiet_NaN();
template <class T>
inline constexpr T kDenormal = std::numeric_limits<T>::denorm_min();
template <class T>
inline constexpr T kSmallest = std::numeric_limits<T>::min();
template <class T>
inline constexpr T kLargest = std::numeric_limits<T>::max();

// Equal images, or both quiet NaN.
template <class T>
inline bool same(T actual, T expected) {
  constexpr auto quiet_bit = ImageOf<T>{1} << (std::numeric_limits<T>::digits - 2);
  if (std::isnan(expected)) return std::isnan(actual) && (image(actual) & quiet_bit) != 0;
  return image(actual) == image(expected);
}

// Finite values on both sides of where a kernel may change its way, and those that are not finite;
// quiet NaN only.
template <class T>
std::vector<T> edge_values() {
  std::vector<T> positive = {0, kDenormal<T>, kSmallest<T>, kLargest<T> * T(0.375), kLargest<T>};
  for (const double x : {0.25, 0.5, 0.75, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 7.0, 1e10, 2147483647.0}) {
    positive.push_back(static_cast<T>(x));
  }
  positive.push_back(1 / std::numeric_limits<T>::epsilon());  // from here on all are integers
  std::vector<T> values;
  for (const T x : positive) {
    for (const T near : {std::nextafter(x, T{-1}), x, std::nextafter(x, kLargest<T>)}) {
      values.push_back(near);
      values.push_back(-near);
    }
  }
  values.insert(values.end(), {kInfinity<T>, -kInfinity<T>, kNan<T>, -kNan<T>});
  return values;
}

// Random images, half of them with exponents near 0, where fractions and ties are.
template <class T>
std::vector<T> random_values(int count, unsigned seed) {
  std::mt19937_64 random(seed);
  std::vector<T> values;
  while (static_cast<int>(values.size()) < count) {
    const T any = from_image<T>(static_cast<ImageOf<T>>(random()));
    if (std::isnan(any)) continue;
    values.push_back(any);
    const auto scaled = static_cast<T>(static_cast<double>(random() % 40000) / 8 - 2500);
    values.push_back(scaled);
  }
  return values;
}

// The distance of a result from the exact value, which is not 0, in units of its last place.
template <class T>
double places_off(T result, long double exact) {
  using Limits = std::numeric_limits<T>;
  const int exponent = std::max(std::ilogb(exact), Limits::min_exponent - 1);
  const auto error =
      std::scalbn(static_cast<long double>(result) - exact, Limits::digits - 1 - exponent);
  return std::fabs(static_cast<double>(error));
}

// A number with its neighbours.
template <class T>
std::vector<T> with_neighbours(T x) {
  return {std::nextafter(x, -kLargest<T>), x, std::nextafter(x, kLargest<T>)};
}

// Exception flags of MXCSR that say more than "inexact" or "denormal operand".
inline constexpr unsigned kInvalid = 0x01, kDivideByZero = 0x04, kOverflow = 0x08,
                          kUnderflow = 0x10;
inline unsigned flags() {
  return _mm_getcsr() & (kInvalid | kDivideByZero | kOverflow | kUnderflow);
}
inline void clear_flags() { _mm_setcsr(_mm_getcsr() & ~0x3Fu); }

// While one of these lives, the thread's reports are written down.
class Reports {
 public:
  struct Report {
    int code, index;
    std::string name;
    bool operator==(const Report&) const = default;
  };

  Reports() {
    list.clear();
    _arkSetErrorCallBack([](ErrorContext* context) {
      list.push_back({context->code, context->index, context->funcName});
      return 1;
    });
    _arkClearErrStatus();
  }
  ~Reports() {
    _arkClearErrorCallBack();
    _arkClearErrStatus();
  }
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;

  static inline std::vector<Report> list;

 private:
  ModeScope mode_{QOR_MODE_ERRORS_CALLBACK};
};

inline void PrintTo(const Reports::Report& report, std::ostream* out) {
  *out << report.name << "[" << report.index << "] code " << report.code;
}

}  // namespace qor::test
