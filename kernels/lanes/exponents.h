// Exponent and mantissa of a number.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <limits>

#include "kernels/lanes/bits.h"

namespace qor::lanes {

inline f32 to_float(i32 x) { return __builtin_convertvector(x, f32); }

// The biased exponent less `offset`, for x > 0.
inline f32 biased_exponent(f32 x, float offset = 0) { return to_float(bits(x) >> 23) - offset; }
inline f64 biased_exponent(f64 x, double offset = 0) {
  constexpr double shifter = 0x1p+52;  // there is no conversion from 64 bits below 512
  const auto biased = std::bit_cast<i64>(std::bit_cast<u64>(x) >> 52);
  return from_bits(biased | std::bit_cast<int64_t>(shifter)) - (shifter + offset);
}

// floor(log2 x), for normal x > 0.
inline f32 exponent(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_maskz_getexp_ps(0xFFFF, std::bit_cast<__m512>(x)));
#else
  return biased_exponent(x, 127);
#endif
}
inline f64 exponent(f64 x) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_maskz_getexp_pd(0xFF, std::bit_cast<__m512d>(x)));
#else
  return biased_exponent(x, 1023);
#endif
}

// x / 2^denormal_exponent, for denormal x > 0 or 0: by its bits, since arithmetic on denormals may
// take a hundred times longer. Other lanes get some number, and raise no flag but inexact.
template <class T>
inline constexpr int denormal_exponent =
    std::numeric_limits<T>::min_exponent - std::numeric_limits<T>::digits;
inline f32 denormal_units(f32 x) { return to_float(bits(x)); }
inline f64 denormal_units(f64 x) {
  constexpr double shifter = 0x1p+52;
  constexpr int64_t fraction = 0xFFFFFFFFFFFFF;
  return from_bits((bits(x) & fraction) | std::bit_cast<int64_t>(shifter)) - shifter;
}

// x times a power of 2, in [0.75, 1.5), for normal x > 0.
inline f32 mantissa_around_one(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_maskz_getmant_ps(0xFFFF, std::bit_cast<__m512>(x),
                                                    _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero));
#else
  constexpr int32_t least = 0x3F400000;
  return from_bits(((bits(x) - least) & 0x7FFFFF) + least);
#endif
}
inline f64 mantissa_around_one(f64 x) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_maskz_getmant_pd(0xFF, std::bit_cast<__m512d>(x),
                                                    _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero));
#else
  constexpr int64_t least = 0x3FE8000000000000;
  return from_bits(((bits(x) - least) & 0xFFFFFFFFFFFFF) + least);
#endif
}

}  // namespace qor::lanes
