// The remainder of a long division of magnitudes, on integers: exact for any two finite numbers,
// denormals included, whatever the floating-point environment.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "kernels/scalar/bits.h"

namespace qor::kernels {

// A magnitude as significand * 2^exponent, the significand normalised to all its digits.
template <class T>
struct Scaled {
  static constexpr int digits = std::numeric_limits<T>::digits;
  uint64_t significand;
  int exponent;

  // Of the magnitude of x, finite and not 0; 2^0 is the last place of the denormals.
  static Scaled of(T x) {
    const auto bits = static_cast<uint64_t>(magnitude_bits(x));
    const auto field = static_cast<int>(bits >> (digits - 1));
    const uint64_t leading = uint64_t{1} << (digits - 1);
    if (field != 0) return {(bits & (leading - 1)) | leading, field - 1};
    const int shift = std::countl_zero(bits) - (64 - digits);
    return {bits << shift, -shift};
  }
};

// What is left of x / y, in units of the exponent of y, and whether the quotient is odd (which says
// nothing when nothing is left).
struct Division {
  uint64_t rest;
  bool odd_quotient;
};

// x.exponent is not below y.exponent. Brings down as many bits at a time as a word holds.
template <class T>
inline Division divide(const Scaled<T>& x, const Scaled<T>& y) {
  constexpr int bits_a_step = 64 - Scaled<T>::digits;
  uint64_t quotient = x.significand / y.significand;
  uint64_t rest = x.significand % y.significand;
  for (int left = x.exponent - y.exponent; left > 0 && rest != 0; left -= bits_a_step) {
    const uint64_t dividend = rest << (left < bits_a_step ? left : bits_a_step);
    quotient = dividend / y.significand;
    rest = dividend % y.significand;
  }
  return {rest, (quotient & 1) != 0};
}

// The bits of significand * 2^exponent, a number of the type: the significand has no more than its
// digits, and no bit below the last place of the denormals.
template <class T>
inline uint64_t compose(uint64_t significand, int exponent) {
  if (significand == 0) return 0;
  if (exponent < 0) return significand >> -exponent;
  const int to_normal = std::countl_zero(significand) - (64 - Scaled<T>::digits);
  const int shift = to_normal < exponent ? to_normal : exponent;
  // The leading bit of a normal significand adds one to the exponent field.
  return (static_cast<uint64_t>(exponent - shift) << (Scaled<T>::digits - 1)) +
         (significand << shift);
}

}  // namespace qor::kernels
