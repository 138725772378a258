// Estimates of inverses.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>

#include "kernels/lanes/types.h"

namespace qor::lanes {

// 1 / sqrt(x) to a relative error below 1.5 * 2^-12, x positive and normal (the same instruction
// family at all levels, not the same bits).
inline f32 inverse_root_estimate(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_maskz_rsqrt14_ps(0xFFFF, std::bit_cast<__m512>(x)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_rsqrt_ps(std::bit_cast<__m256>(x)));
#else
  return std::bit_cast<f32>(_mm_rsqrt_ps(std::bit_cast<__m128>(x)));
#endif
}

// Below 512 bits by way of floats: the even part of the exponent is set apart and halved.
inline f64 inverse_root_estimate(f64 x) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_maskz_rsqrt14_pd(0xFF, std::bit_cast<__m512d>(x)));
#else
  const u64 bits = std::bit_cast<u64>(x);
  const u64 near_one = (bits & 0x001FFFFFFFFFFFFF) + 0x3FE0000000000000;  // in [1/2, 2)
  const u64 scale = 0x1FF0000000000000 - ((bits >> 1) & 0x3FF0000000000000);
#if QOR_LANES_256
  const __m128 narrow = _mm256_cvtpd_ps(std::bit_cast<__m256d>(near_one));
  const u64 estimate = std::bit_cast<u64>(_mm256_cvtps_pd(_mm_rsqrt_ps(narrow)));
#else
  const __m128 narrow = _mm_cvtpd_ps(std::bit_cast<__m128d>(near_one));
  // The unused half would be zero, with an infinite estimate: harmless, and not looked at.
  const u64 estimate = std::bit_cast<u64>(_mm_cvtps_pd(_mm_rsqrt_ps(narrow)));
#endif
  return std::bit_cast<f64>(estimate + scale);
#endif
}

// An estimate of 1 / x, relative error below 1.5 * 2^-12 (the same instruction family at all
// levels, not the same bits).
inline f32 reciprocal_estimate(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_rcp14_ps(std::bit_cast<__m512>(x)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_rcp_ps(std::bit_cast<__m256>(x)));
#else
  return std::bit_cast<f32>(_mm_rcp_ps(std::bit_cast<__m128>(x)));
#endif
}

}  // namespace qor::lanes
