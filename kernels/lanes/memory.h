// Loads and stores.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "kernels/lanes/masks.h"

namespace qor::lanes {

template <class T>
inline typename Lanes<T>::V load(const T* from) {
  typename Lanes<T>::V x;
  std::memcpy(&x, from, sizeof x);
  return x;
}

// x in a register. g++ may give each operation that takes x a load of its own, and those that cross
// a cache line then cost more than the operations.
template <class V>
inline V loaded_once(V x) {
  asm("" : "+v"(x));
  return x;
}

template <class T>
inline void store(T* to, typename Lanes<T>::V x) {
  std::memcpy(to, &x, sizeof x);
}

#if QOR_LANES_256
// The mask of the first `count` lanes.
inline __m256i first_lanes_mask(int count, float) {
  return _mm256_cmpgt_epi32(_mm256_set1_epi32(count), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}
inline __m256i first_lanes_mask(int count, double) {
  return _mm256_cmpgt_epi64(_mm256_set1_epi64x(count), _mm256_setr_epi64x(0, 1, 2, 3));
}
#endif

// The first `count` lanes from memory, at least one and not all, the rest holding `stand_in`.
// Nothing behind them is read.
inline f32 load_first(const float* from, int count, float stand_in) {
#if QOR_LANES_512
  const auto active = static_cast<__mmask16>(first_lanes(count));
  return std::bit_cast<f32>(_mm512_mask_loadu_ps(_mm512_set1_ps(stand_in), active, from));
#elif QOR_LANES_256
  const __m256i active = first_lanes_mask(count, stand_in);
  return std::bit_cast<f32>(_mm256_blendv_ps(
      _mm256_set1_ps(stand_in), _mm256_maskload_ps(from, active), _mm256_castsi256_ps(active)));
#else
  return f32{from[0], count > 1 ? from[1] : stand_in, count > 2 ? from[2] : stand_in, stand_in};
#endif
}

inline f64 load_first(const double* from, int count, double stand_in) {
#if QOR_LANES_512
  const auto active = static_cast<__mmask8>(first_lanes(count));
  return std::bit_cast<f64>(_mm512_mask_loadu_pd(_mm512_set1_pd(stand_in), active, from));
#elif QOR_LANES_256
  const __m256i active = first_lanes_mask(count, stand_in);
  return std::bit_cast<f64>(_mm256_blendv_pd(
      _mm256_set1_pd(stand_in), _mm256_maskload_pd(from, active), _mm256_castsi256_pd(active)));
#else
  static_cast<void>(count);
  return f64{from[0], stand_in};
#endif
}

inline void store_first(float* to, int count, f32 x) {
#if QOR_LANES_512
  _mm512_mask_storeu_ps(to, static_cast<__mmask16>(first_lanes(count)), std::bit_cast<__m512>(x));
#elif QOR_LANES_256
  _mm256_maskstore_ps(to, first_lanes_mask(count, 0.0f), std::bit_cast<__m256>(x));
#else
  to[0] = x[0];
  if (count > 1) to[1] = x[1];
  if (count > 2) to[2] = x[2];
#endif
}

inline void store_first(double* to, int count, f64 x) {
#if QOR_LANES_512
  _mm512_mask_storeu_pd(to, static_cast<__mmask8>(first_lanes(count)), std::bit_cast<__m512d>(x));
#elif QOR_LANES_256
  _mm256_maskstore_pd(to, first_lanes_mask(count, 0.0), std::bit_cast<__m256d>(x));
#else
  static_cast<void>(count);
  to[0] = x[0];
#endif
}

// The same for elements `increment` apart: an element each, in lane order.
template <class T>
inline typename Lanes<T>::V load_strided(const T* from, int64_t increment) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return typename Lanes<T>::V{from[lane * increment]...};
  }
  (std::make_integer_sequence<int, Lanes<T>::count>{});
}

template <class T>
inline void store_strided(T* to, int64_t increment, typename Lanes<T>::V x) {
  for (int lane = 0; lane < Lanes<T>::count; ++lane) to[lane * increment] = x[lane];
}

}  // namespace qor::lanes
