// The scalar routines of the powers: special values in their order, then the power of one pair.
#pragma once

#include "kernels/power/double.h"
#include "kernels/power/single.h"

namespace qor::kernels {

enum class Parity { fraction, even, odd };

// Whether y is an integer, and of which kind; numbers without fraction bits left are even, and so
// counts 0.
template <class T>
inline Parity parity(T y) {
  constexpr int mantissa_bits = std::numeric_limits<T>::digits - 1;
  const auto bits = bits_of(magnitude(y));
  const int exponent =
      static_cast<int>(bits >> mantissa_bits) - (std::numeric_limits<T>::max_exponent - 1);
  if (bits == 0 || exponent > mantissa_bits) return Parity::even;
  if (exponent < 0) return Parity::fraction;
  const auto unit = Bits<T>{1} << (mantissa_bits - exponent);
  if ((bits & (unit - 1)) != 0) return Parity::fraction;
  const bool is_odd = exponent == 0 || (bits & unit) != 0;
  return is_odd ? Parity::odd : Parity::even;
}

inline float power_of_one(float x, float y) { return spow::power_of_one(x, y); }
inline double power_of_one(double x, double y) { return dpow::power_of_one(x, y); }

// x or y is an infinity or NaN.
template <class T>
inline T power_beyond_finite(T x, T y, T sign) {
  if (y == 0 || x == 1) return 1;
  if (is_nan(x) || is_nan(y)) return x + y;
  const bool grows = is_infinite(y) ? (magnitude(x) > 1) == (y > 0) : y > 0;
  return sign * (grows ? std::numeric_limits<T>::infinity() : T{0});
}

// Pow. A zero to a negative power is a domain error, underflow reports nothing.
template <class T>
inline Outcome<T> pow_scalar(T x, T y) {
  const Parity kind = parity(y);
  const bool is_integer = kind != Parity::fraction;
  const T sign = kind == Parity::odd && is_negative(x) && is_finite(y) ? T{-1} : T{1};
  if (x == 0 && y != 0 && !is_nan(y)) {
    if (is_negative(y)) return {sign / (x * x), QOR_ERROR_DOMAIN};
    return {sign * (x * x)};
  }
  if (x == -1 && (is_infinite(y) || (is_integer && is_finite(y)))) return {sign};
  if (!is_finite(x) || !is_finite(y)) return {power_beyond_finite(x, y, sign)};
  if (is_negative(x) && !is_integer) return {undefined<T>(), QOR_ERROR_DOMAIN};
  if (y == 0) return {1};
  const T power = sign * power_of_one(magnitude(x), y);
  return {power, is_infinite(power) ? QOR_ERROR_OVERFLOW : QOR_ERROR_NONE};
}

// Powr, e^(y ln x): as IEEE 754 has powr. A pole is a domain error as in Pow; a denormal result is
// an underflow.
template <class T>
inline Outcome<T> powr_scalar(T x, T y) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  if (is_nan(x)) return {x + y};
  if (is_negative(x) && x != 0) return {undefined<T>(), QOR_ERROR_DOMAIN};
  if (is_nan(y)) return {x + y};
  const bool is_extreme = x == 0 || is_infinite(x);
  if ((is_extreme && y == 0) || (x == 1 && is_infinite(y))) {
    return {undefined<T>(), QOR_ERROR_DOMAIN};
  }
  if (x == 0 && is_finite(y) && y < 0) return {pole(T{1}), QOR_ERROR_DOMAIN};
  if (is_extreme || is_infinite(y)) return {(x > 1) == (y > 0) ? infinity : T{0}};
  if (y == 0) return {1};
  const T power = power_of_one(x, y);
  if (is_infinite(power)) return {power, QOR_ERROR_OVERFLOW};
  const bool is_small = power < std::numeric_limits<T>::min();
  return {power, is_small ? QOR_ERROR_UNDERFLOW : QOR_ERROR_NONE};
}

}  // namespace qor::kernels
