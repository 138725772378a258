// What scalar routines ask of a number's bits: no comparison here raises a flag.
#pragma once

#include <bit>
#include <limits>

#include "kernels/lanes.h"

namespace qor::kernels {

template <class T>
using Bits = typename lanes::Lanes<T>::Integer;

template <class T>
inline constexpr Bits<T> infinity_bits = std::bit_cast<Bits<T>>(std::numeric_limits<T>::infinity());
template <class T>
inline constexpr Bits<T> sign_mask = std::numeric_limits<Bits<T>>::min();

// The NaN that the processor answers to an invalid operation.
template <class T>
inline constexpr T default_nan = std::bit_cast<T>(sign_mask<T> | infinity_bits<T> |
                                                  Bits<T>{1}
                                                      << (std::numeric_limits<T>::digits - 2));

template <class T>
constexpr Bits<T> bits_of(T x) {
  return std::bit_cast<Bits<T>>(x);
}
template <class T>
inline T magnitude(T x) {
  return std::bit_cast<T>(bits_of(x) & ~sign_mask<T>);
}
// They order as the magnitudes do, and do so when denormals count as zero.
template <class T>
inline Bits<T> magnitude_bits(T x) {
  return bits_of(x) & ~sign_mask<T>;
}
template <class T>
inline bool is_negative(T x) {
  return bits_of(x) < 0;
}
template <class T>
inline bool is_nan(T x) {
  return magnitude_bits(x) > infinity_bits<T>;
}
template <class T>
inline bool is_infinite(T x) {
  return magnitude_bits(x) == infinity_bits<T>;
}
template <class T>
inline bool is_finite(T x) {
  return magnitude_bits(x) < infinity_bits<T>;
}

// The next number away from zero.
template <class T>
constexpr T next_magnitude(T x) {
  return std::bit_cast<T>(bits_of(x) + 1);
}

// 2^n, normal.
template <class T>
constexpr T power_of_two(int n) {
  constexpr int bias = std::numeric_limits<T>::max_exponent - 1;
  return std::bit_cast<T>(static_cast<Bits<T>>(bias + n) << (std::numeric_limits<T>::digits - 1));
}

}  // namespace qor::kernels
