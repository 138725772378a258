// Between the element types, and parts of lanes.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <utility>

#include "kernels/lanes/types.h"

namespace qor::lanes {

// The 32-bit lanes as 64-bit ones, the lower half first: floats and integers to doubles.
#if QOR_LANES_512 || QOR_LANES_256
template <class Whole, class Convert>
inline auto convert_halves(Whole x, Convert convert) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    constexpr int half = sizeof...(lane);
    return Two{convert(__builtin_shufflevector(x, x, lane...)),
               convert(__builtin_shufflevector(x, x, (half + lane)...))};
  }
  (std::make_integer_sequence<int, Lanes<double>::count>{});
}
inline Two<f64> widen(f32 x) {
  return convert_halves(x, [](auto half) {
#if QOR_LANES_512
    return std::bit_cast<f64>(_mm512_maskz_cvtps_pd(0xFF, std::bit_cast<__m256>(half)));
#else
    return std::bit_cast<f64>(_mm256_cvtps_pd(std::bit_cast<__m128>(half)));
#endif
  });
}
inline Two<f64> to_double(i32 x) {
  return convert_halves(x, [](auto half) {
#if QOR_LANES_512
    return std::bit_cast<f64>(_mm512_maskz_cvtepi32_pd(0xFF, std::bit_cast<__m256i>(half)));
#else
    return std::bit_cast<f64>(_mm256_cvtepi32_pd(std::bit_cast<__m128i>(half)));
#endif
  });
}
#else
inline Two<f64> widen(f32 x) {
  const auto v = std::bit_cast<__m128>(x);
  return {std::bit_cast<f64>(_mm_cvtps_pd(v)),
          std::bit_cast<f64>(_mm_cvtps_pd(_mm_movehl_ps(v, v)))};
}
inline Two<f64> to_double(i32 x) {
  const auto v = std::bit_cast<__m128i>(x);
  return {std::bit_cast<f64>(_mm_cvtepi32_pd(v)),
          std::bit_cast<f64>(_mm_cvtepi32_pd(_mm_unpackhi_epi64(v, v)))};
}
#endif

// Two registers of doubles as floats; and the low words of their bits.
inline f32 narrow(Two<f64> x) {
#if QOR_LANES_512 || QOR_LANES_256
#if QOR_LANES_512
  const auto half = [](f64 wide) {
    return _mm512_maskz_cvtpd_ps(0xFF, std::bit_cast<__m512d>(wide));
  };
#else
  const auto half = [](f64 wide) { return _mm256_cvtpd_ps(std::bit_cast<__m256d>(wide)); };
#endif
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return std::bit_cast<f32>(__builtin_shufflevector(half(x.first), half(x.second), lane...));
  }
  (std::make_integer_sequence<int, Lanes<float>::count>{});
#else
  return std::bit_cast<f32>(_mm_movelh_ps(_mm_cvtpd_ps(std::bit_cast<__m128d>(x.first)),
                                          _mm_cvtpd_ps(std::bit_cast<__m128d>(x.second))));
#endif
}
inline i32 low_words(Two<f64> x) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return __builtin_shufflevector(std::bit_cast<i32>(x.first), std::bit_cast<i32>(x.second),
                                   2 * lane...);
  }
  (std::make_integer_sequence<int, Lanes<float>::count>{});
}

// The high half of the product of each 16-bit part with `factor`.
template <class I>
inline I high_product_16(I x, int factor) {
#if QOR_LANES_512
  return std::bit_cast<I>(_mm512_mulhi_epu16(std::bit_cast<__m512i>(x),
                                             _mm512_set1_epi16(static_cast<int16_t>(factor))));
#elif QOR_LANES_256
  return std::bit_cast<I>(_mm256_mulhi_epu16(std::bit_cast<__m256i>(x),
                                             _mm256_set1_epi16(static_cast<int16_t>(factor))));
#else
  return std::bit_cast<I>(
      _mm_mulhi_epu16(std::bit_cast<__m128i>(x), _mm_set1_epi16(static_cast<int16_t>(factor))));
#endif
}

}  // namespace qor::lanes
