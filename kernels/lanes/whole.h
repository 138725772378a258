// Arithmetic on whole numbers that the vector types lack.
#pragma once

#include <immintrin.h>

#include <bit>

#include "kernels/lanes/types.h"

namespace qor::lanes {

// The product of the low halves of each lane.
inline u64 low_half_product(u64 a, u64 b) {
#if QOR_LANES_512
  // The masked form: the plain one warns in the compiler's own header.
  return std::bit_cast<u64>(
      _mm512_maskz_mul_epu32(0xFF, std::bit_cast<__m512i>(a), std::bit_cast<__m512i>(b)));
#elif QOR_LANES_256
  return std::bit_cast<u64>(_mm256_mul_epu32(std::bit_cast<__m256i>(a), std::bit_cast<__m256i>(b)));
#else
  return std::bit_cast<u64>(_mm_mul_epu32(std::bit_cast<__m128i>(a), std::bit_cast<__m128i>(b)));
#endif
}

}  // namespace qor::lanes
