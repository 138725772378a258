// Lane masks, and sets of lanes.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <limits>

#include "kernels/lanes/bits.h"

namespace qor::lanes {

// The lane mask as bits, bit i for lane i.
inline uint32_t lane_bits(Lanes<float>::M m) {
#if QOR_LANES_512
  return _mm512_movepi32_mask(std::bit_cast<__m512i>(m));
#elif QOR_LANES_256
  return static_cast<uint32_t>(_mm256_movemask_ps(std::bit_cast<__m256>(m)));
#else
  return static_cast<uint32_t>(_mm_movemask_ps(std::bit_cast<__m128>(m)));
#endif
}

inline uint32_t lane_bits(Lanes<double>::M m) {
#if QOR_LANES_512
  return _mm512_movepi64_mask(std::bit_cast<__m512i>(m));
#elif QOR_LANES_256
  return static_cast<uint32_t>(_mm256_movemask_pd(std::bit_cast<__m256d>(m)));
#else
  return static_cast<uint32_t>(_mm_movemask_pd(std::bit_cast<__m128d>(m)));
#endif
}

// A set of lanes, in the cheapest form of the level: mask bits where compares give them, else
// vectors of which only each lane's sign counts.
template <class T>
struct LaneSet {
#if QOR_LANES_512
  uint32_t lanes;
#else
  typename Lanes<T>::M lanes;
#endif
  LaneSet operator|(LaneSet other) const { return {lanes | other.lanes}; }
  LaneSet operator&(LaneSet other) const { return {lanes & other.lanes}; }
  LaneSet without(LaneSet other) const { return {lanes & ~other.lanes}; }
};

template <class T>
inline uint32_t lane_bits(LaneSet<T> special) {
#if QOR_LANES_512
  return special.lanes;
#else
  return lane_bits(special.lanes);
#endif
}

// Whether there is a lane in the set.
template <class T>
inline bool any(LaneSet<T> set) {
  return lane_bits(set) != 0;
}

// y in the lanes of the set, n elsewhere.
inline f32 select(LaneSet<float> set, f32 y, f32 n) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_mask_blend_ps(
      static_cast<__mmask16>(set.lanes), std::bit_cast<__m512>(n), std::bit_cast<__m512>(y)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_blendv_ps(std::bit_cast<__m256>(n), std::bit_cast<__m256>(y),
                                             std::bit_cast<__m256>(set.lanes)));
#else
  const i32 whole = std::bit_cast<i32>(set.lanes) >> 31;
  return from_bits((bits(y) & whole) | (bits(n) & ~whole));
#endif
}
inline f64 select(LaneSet<double> set, f64 y, f64 n) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_mask_blend_pd(
      static_cast<__mmask8>(set.lanes), std::bit_cast<__m512d>(n), std::bit_cast<__m512d>(y)));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_blendv_pd(std::bit_cast<__m256d>(n), std::bit_cast<__m256d>(y),
                                             std::bit_cast<__m256d>(set.lanes)));
#else
  const __m128i words = _mm_srai_epi32(std::bit_cast<__m128i>(set.lanes), 31);
  const i64 whole = std::bit_cast<i64>(_mm_shuffle_epi32(words, 0xF5));
  return from_bits((bits(y) & whole) | (bits(n) & ~whole));
#endif
}
template <class T>
inline typename Lanes<T>::V select(LaneSet<T> set, T y, T n) {
  return select(set, broadcast(y), broadcast(n));
}
template <class T>
inline typename Lanes<T>::V select(LaneSet<T> set, T y, typename Lanes<T>::V n) {
  return select(set, broadcast(y), n);
}

// y + x in the lanes of the set, y elsewhere: how a NaN or an infinity x passes through y, which is
// an ordinary result there. A NaN comes out quiet.
template <class T, class V = typename Lanes<T>::V>
inline V pass_through(V y, V x, LaneSet<T> set) {
  return y + select(set, x, broadcast(T{-0.0}));
}

// Lanes with the sign bit.
inline LaneSet<float> negative(f32 x) {
#if QOR_LANES_512
  return {_mm512_movepi32_mask(std::bit_cast<__m512i>(x))};
#else
  return {std::bit_cast<Lanes<float>::M>(x)};
#endif
}
inline LaneSet<double> negative(f64 x) {
#if QOR_LANES_512
  return {_mm512_movepi64_mask(std::bit_cast<__m512i>(x))};
#else
  return {std::bit_cast<Lanes<double>::M>(x)};
#endif
}

// Lanes with x at or above (below) the bound; x is not a NaN.
inline LaneSet<float> at_least(f32 x, float bound) {
#if QOR_LANES_512
  return {_mm512_cmp_ps_mask(std::bit_cast<__m512>(x), _mm512_set1_ps(bound), _CMP_GE_OQ)};
#else
  return {x >= bound};
#endif
}
inline LaneSet<double> at_least(f64 x, double bound) {
#if QOR_LANES_512
  return {_mm512_cmp_pd_mask(std::bit_cast<__m512d>(x), _mm512_set1_pd(bound), _CMP_GE_OQ)};
#else
  return {x >= bound};
#endif
}
inline LaneSet<float> at_most(f32 x, float bound) {
#if QOR_LANES_512
  return {_mm512_cmp_ps_mask(std::bit_cast<__m512>(x), _mm512_set1_ps(bound), _CMP_LE_OQ)};
#else
  return {x <= bound};
#endif
}
inline LaneSet<double> at_most(f64 x, double bound) {
#if QOR_LANES_512
  return {_mm512_cmp_pd_mask(std::bit_cast<__m512d>(x), _mm512_set1_pd(bound), _CMP_LE_OQ)};
#else
  return {x <= bound};
#endif
}

#if !QOR_LANES_512
// left > right of signed words. Of a compare with a negative constant g++ makes two instructions at
// 256 bits, of one with a bound that it cannot see one.
inline i32 words_above(i32 left, int32_t right) {
  i32 bound = i32{} + right;
#if QOR_LANES_256
  if (right < 0) asm("" : "+x"(bound));
#endif
  return left > bound;
}
#endif

// Lanes with left > right, signed.
inline LaneSet<float> above(i32 left, int32_t right) {
#if QOR_LANES_512
  return {_mm512_cmpgt_epi32_mask(std::bit_cast<__m512i>(left), _mm512_set1_epi32(right))};
#else
  return {words_above(left, right)};
#endif
}

// Lanes whose high word is above `right`, signed.
inline LaneSet<double> high_word_above(i64 left, int32_t right) {
#if QOR_LANES_512
  const int64_t last = static_cast<int64_t>((static_cast<uint64_t>(right) << 32) | 0xFFFFFFFF);
  return {_mm512_cmpgt_epi64_mask(std::bit_cast<__m512i>(left), _mm512_set1_epi64(last))};
#else
  // There is no 64-bit compare at the lowest level, and none is needed: the high word decides.
  return {std::bit_cast<Lanes<double>::M>(words_above(std::bit_cast<i32>(left), right))};
#endif
}

// Lanes whose signed bits (of a double its high word) is not within first to last.
inline LaneSet<float> outside(i32 bits, int32_t first, int32_t last) {
  constexpr uint32_t sign = 0x80000000;  // turns the signed compare into an unsigned one
  const u32 moved = std::bit_cast<u32>(bits) - (static_cast<uint32_t>(first) + sign);
  return above(std::bit_cast<i32>(moved),
               static_cast<int32_t>(last - first) ^ std::numeric_limits<int32_t>::min());
}
inline LaneSet<double> outside(i64 bits, int32_t first, int32_t last) {
  constexpr uint32_t sign = 0x80000000;
  const uint64_t move = static_cast<uint64_t>(static_cast<uint32_t>(first) + sign) << 32;
  const u64 moved = std::bit_cast<u64>(bits) - move;
  return high_word_above(std::bit_cast<i64>(moved),
                         static_cast<int32_t>(last - first) ^ std::numeric_limits<int32_t>::min());
}

// Magnitudes whose bits (of a double the high word) is not within first to last.
template <class V>
inline auto magnitude_outside(V x, int32_t first, int32_t last) {
  return outside(bits(abs(x)), first, last);
}

// Magnitudes whose bits (of a double the high word) is above `last`.
inline LaneSet<float> magnitude_above(f32 x, int32_t last) { return above(bits(abs(x)), last); }
inline LaneSet<double> magnitude_above(f64 x, int32_t last) {
  return high_word_above(bits(abs(x)), last);
}

// Infinities and NaN.
inline LaneSet<float> not_finite(f32 x) { return magnitude_above(x, 0x7F7FFFFF); }
inline LaneSet<double> not_finite(f64 x) { return magnitude_above(x, 0x7FEFFFFF); }

// Lanes with x equal to y; a quiet NaN is equal to nothing and raises nothing.
inline LaneSet<float> equal(f32 x, f32 y) {
#if QOR_LANES_512
  return {_mm512_cmp_ps_mask(std::bit_cast<__m512>(x), std::bit_cast<__m512>(y), _CMP_EQ_OQ)};
#else
  return {x == y};
#endif
}
inline LaneSet<double> equal(f64 x, f64 y) {
#if QOR_LANES_512
  return {_mm512_cmp_pd_mask(std::bit_cast<__m512d>(x), std::bit_cast<__m512d>(y), _CMP_EQ_OQ)};
#else
  return {x == y};
#endif
}

// Lanes where x or y is a NaN; a signalling one raises invalid.
inline LaneSet<float> unordered(f32 x, f32 y) {
#if QOR_LANES_512
  return {_mm512_cmp_ps_mask(std::bit_cast<__m512>(x), std::bit_cast<__m512>(y), _CMP_UNORD_Q)};
#elif QOR_LANES_256
  return {std::bit_cast<Lanes<float>::M>(
      _mm256_cmp_ps(std::bit_cast<__m256>(x), std::bit_cast<__m256>(y), _CMP_UNORD_Q))};
#else
  return {std::bit_cast<Lanes<float>::M>(
      _mm_cmpunord_ps(std::bit_cast<__m128>(x), std::bit_cast<__m128>(y)))};
#endif
}
inline LaneSet<double> unordered(f64 x, f64 y) {
#if QOR_LANES_512
  return {_mm512_cmp_pd_mask(std::bit_cast<__m512d>(x), std::bit_cast<__m512d>(y), _CMP_UNORD_Q)};
#elif QOR_LANES_256
  return {std::bit_cast<Lanes<double>::M>(
      _mm256_cmp_pd(std::bit_cast<__m256d>(x), std::bit_cast<__m256d>(y), _CMP_UNORD_Q))};
#else
  return {std::bit_cast<Lanes<double>::M>(
      _mm_cmpunord_pd(std::bit_cast<__m128d>(x), std::bit_cast<__m128d>(y)))};
#endif
}

// Whole-lane mask of the magnitudes at or above a power of two, infinity and NaN included; raises
// no flag.
inline Lanes<float>::M magnitude_from(f32 magnitude, float power) {
  return bits(magnitude) > std::bit_cast<int32_t>(power) - 1;
}
inline Lanes<double>::M magnitude_from(f64 magnitude, double power) {
#if QOR_LANES_512 || QOR_LANES_256
  return bits(magnitude) > std::bit_cast<int64_t>(power) - 1;
#else
  const auto high = static_cast<int32_t>(std::bit_cast<int64_t>(power) >> 32);
  const i32 words = std::bit_cast<i32>(magnitude) > high - 1;
  return std::bit_cast<i64>(_mm_shuffle_epi32(std::bit_cast<__m128i>(words), 0xF5));
#endif
}

// The bits of the first `count` lanes.
inline uint32_t first_lanes(int count) { return (uint32_t{1} << count) - 1; }

}  // namespace qor::lanes
