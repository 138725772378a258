// Roots, ordered operations, extremes, rounding: single instructions.
#pragma once

#include <immintrin.h>

#include <bit>

#include "kernels/lanes/types.h"

namespace qor::lanes {

// (The masked forms at 512 bits are the same instruction; g++ 12 warns in its own header at the
// others.)
inline f32 sqrt(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_maskz_sqrt_ps(0xFFFF, std::bit_cast<__m512>(x)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_sqrt_ps(std::bit_cast<__m256>(x)));
#else
  return std::bit_cast<f32>(_mm_sqrt_ps(std::bit_cast<__m128>(x)));
#endif
}

inline f64 sqrt(f64 x) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_maskz_sqrt_pd(0xFF, std::bit_cast<__m512d>(x)));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_sqrt_pd(std::bit_cast<__m256d>(x)));
#else
  return std::bit_cast<f64>(_mm_sqrt_pd(std::bit_cast<__m128d>(x)));
#endif
}

// a + b and a * b with the operands in this order, so that of two NaN the first is the result
// wherever the element stands: the compiler is free to swap the operands of + and *.
inline f32 ordered_sum(f32 a, f32 b) {
#if QOR_LANES_512
  asm("vaddps %1, %0, %0" : "+v"(a) : "v"(b));
#elif QOR_LANES_256
  asm("vaddps %1, %0, %0" : "+x"(a) : "x"(b));
#else
  asm("addps %1, %0" : "+x"(a) : "x"(b));
#endif
  return a;
}
inline f64 ordered_sum(f64 a, f64 b) {
#if QOR_LANES_512
  asm("vaddpd %1, %0, %0" : "+v"(a) : "v"(b));
#elif QOR_LANES_256
  asm("vaddpd %1, %0, %0" : "+x"(a) : "x"(b));
#else
  asm("addpd %1, %0" : "+x"(a) : "x"(b));
#endif
  return a;
}
inline f32 ordered_product(f32 a, f32 b) {
#if QOR_LANES_512
  asm("vmulps %1, %0, %0" : "+v"(a) : "v"(b));
#elif QOR_LANES_256
  asm("vmulps %1, %0, %0" : "+x"(a) : "x"(b));
#else
  asm("mulps %1, %0" : "+x"(a) : "x"(b));
#endif
  return a;
}
inline f64 ordered_product(f64 a, f64 b) {
#if QOR_LANES_512
  asm("vmulpd %1, %0, %0" : "+v"(a) : "v"(b));
#elif QOR_LANES_256
  asm("vmulpd %1, %0, %0" : "+x"(a) : "x"(b));
#else
  asm("mulpd %1, %0" : "+x"(a) : "x"(b));
#endif
  return a;
}

// The processor's maximum and minimum: of equal operands (zeros of either sign) the second. (The
// masked forms at 512 bits are the same instruction; g++ 12 warns in its own header at the others.)
inline f32 maximum(f32 a, f32 b) {
#if QOR_LANES_512
  return std::bit_cast<f32>(
      _mm512_maskz_max_ps(0xFFFF, std::bit_cast<__m512>(a), std::bit_cast<__m512>(b)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_max_ps(std::bit_cast<__m256>(a), std::bit_cast<__m256>(b)));
#else
  return std::bit_cast<f32>(_mm_max_ps(std::bit_cast<__m128>(a), std::bit_cast<__m128>(b)));
#endif
}
inline f64 maximum(f64 a, f64 b) {
#if QOR_LANES_512
  return std::bit_cast<f64>(
      _mm512_maskz_max_pd(0xFF, std::bit_cast<__m512d>(a), std::bit_cast<__m512d>(b)));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_max_pd(std::bit_cast<__m256d>(a), std::bit_cast<__m256d>(b)));
#else
  return std::bit_cast<f64>(_mm_max_pd(std::bit_cast<__m128d>(a), std::bit_cast<__m128d>(b)));
#endif
}
inline f32 minimum(f32 a, f32 b) {
#if QOR_LANES_512
  return std::bit_cast<f32>(
      _mm512_maskz_min_ps(0xFFFF, std::bit_cast<__m512>(a), std::bit_cast<__m512>(b)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_min_ps(std::bit_cast<__m256>(a), std::bit_cast<__m256>(b)));
#else
  return std::bit_cast<f32>(_mm_min_ps(std::bit_cast<__m128>(a), std::bit_cast<__m128>(b)));
#endif
}
inline f64 minimum(f64 a, f64 b) {
#if QOR_LANES_512
  return std::bit_cast<f64>(
      _mm512_maskz_min_pd(0xFF, std::bit_cast<__m512d>(a), std::bit_cast<__m512d>(b)));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_min_pd(std::bit_cast<__m256d>(a), std::bit_cast<__m256d>(b)));
#else
  return std::bit_cast<f64>(_mm_min_pd(std::bit_cast<__m128d>(a), std::bit_cast<__m128d>(b)));
#endif
}

// To an integer in the direction given, by one instruction, where the level has it: the sign stays,
// NaN is quieted, the inexact flag says that the value changed.
enum class Direction {
  nearest = _MM_FROUND_TO_NEAREST_INT,
  down = _MM_FROUND_TO_NEG_INF,
  up = _MM_FROUND_TO_POS_INF,
  to_zero = _MM_FROUND_TO_ZERO
};
#if QOR_LANES_512
inline constexpr bool has_round = true;
template <Direction direction>
inline f32 round_to(f32 x) {
  return std::bit_cast<f32>(
      _mm512_maskz_roundscale_ps(0xFFFF, std::bit_cast<__m512>(x), static_cast<int>(direction)));
}
template <Direction direction>
inline f64 round_to(f64 x) {
  return std::bit_cast<f64>(
      _mm512_maskz_roundscale_pd(0xFF, std::bit_cast<__m512d>(x), static_cast<int>(direction)));
}
#elif QOR_LANES_256
inline constexpr bool has_round = true;
template <Direction direction>
inline f32 round_to(f32 x) {
  return std::bit_cast<f32>(_mm256_round_ps(std::bit_cast<__m256>(x), static_cast<int>(direction)));
}
template <Direction direction>
inline f64 round_to(f64 x) {
  return std::bit_cast<f64>(
      _mm256_round_pd(std::bit_cast<__m256d>(x), static_cast<int>(direction)));
}
#else
inline constexpr bool has_round = false;
template <Direction direction, class V>
V round_to(V x);  // never asked for
#endif

}  // namespace qor::lanes
