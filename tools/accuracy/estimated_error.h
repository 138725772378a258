// The error of a result by an estimate of the exact value in a wider type.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "reference/reference.h"

namespace qor::tools {

// The wider type of a type.
template <class T>
using Wider = std::conditional_t<sizeof(T) == sizeof(float), double, long double>;

// The e of |x| in [2^(e - 1), 2^e), x normal.
inline int exponent_of(double x) {
  return static_cast<int>(std::bit_cast<uint64_t>(x) >> 52 & 0x7FF) - 1022;
}
inline int exponent_of(long double x) {
  uint16_t sign_and_exponent;
  std::memcpy(&sign_and_exponent, reinterpret_cast<const char*>(&x) + 8, 2);
  return (sign_and_exponent & 0x7FFF) - 16382;
}

// The error of y in ulp where the exact value is about r; NaN where only the exact one can tell:
// where y is of another kind or sign than r, and at the edge of overflow.
template <class T>
double estimated_error(T y, Wider<T> r) {
  using R = Wider<T>;
  constexpr reference::Format format = reference::format_of<T>;
  constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
  if (std::isnan(r) && std::isnan(y)) return 0;
  if (std::isnan(r) || std::isnan(y) || std::signbit(r) != std::signbit(y)) return kUnknown;
  const int exponent = exponent_of(r);
  if (std::isinf(y)) return exponent > format.max_exponent + 1 ? 0 : kUnknown;
  if (exponent > format.max_exponent) return kUnknown;
  const R distance = std::abs(static_cast<R>(y) - r);
  return static_cast<double>(
      std::ldexp(distance, format.digits - std::max(exponent, format.min_exponent)));
}

}  // namespace qor::tools
