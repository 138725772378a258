// Vector registers of the build level: the compiler's vector types, plus what the language lacks.
//
// The only place that looks at the instruction level. A level is a whole build (the library is
// compiled once per level), so everything here may be inlined freely.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace qor::lanes {

#if defined(__AVX512F__) && defined(__AVX512DQ__)
#define QOR_LANES_512 1
inline constexpr int register_bytes = 64;
#elif defined(__AVX2__) && defined(__FMA__)
#define QOR_LANES_256 1
inline constexpr int register_bytes = 32;
#else
inline constexpr int register_bytes = 16;
#endif

// Whether multiply_add rounds once.
#if defined(__FMA__)
inline constexpr bool has_fma = true;
#else
inline constexpr bool has_fma = false;
#endif

using f32 [[gnu::vector_size(register_bytes)]] = float;
using f64 [[gnu::vector_size(register_bytes)]] = double;
using i32 [[gnu::vector_size(register_bytes)]] = int32_t;
using u32 [[gnu::vector_size(register_bytes)]] = uint32_t;
using i64 [[gnu::vector_size(register_bytes)]] = int64_t;
using u64 [[gnu::vector_size(register_bytes)]] = uint64_t;

// The types that go with an element type: register V, integer images I and U, lane mask M (all ones
// or all zeros per lane), count of lanes.
template <class T>
struct Lanes;

template <>
struct Lanes<float> {
  using V = f32;
  using I = i32;
  using U = u32;
  using M = decltype(f32{} < f32{});
  using Integer = int32_t;
  static constexpr int count = register_bytes / 4;
};

template <>
struct Lanes<double> {
  using V = f64;
  using I = i64;
  using U = u64;
  using M = decltype(f64{} < f64{});
  using Integer = int64_t;
  static constexpr int count = register_bytes / 8;
};

// A pair of registers: two inputs, two outputs, or high and low parts.
template <class V>
struct Two {
  V first, second;
};

// ---- Bit images and broadcasts --------------------------------------------------------------

inline i32 image(f32 x) { return std::bit_cast<i32>(x); }
inline i64 image(f64 x) { return std::bit_cast<i64>(x); }
inline f32 from_image(i32 bits) { return std::bit_cast<f32>(bits); }
inline f64 from_image(i64 bits) { return std::bit_cast<f64>(bits); }

// A value in every lane.
template <class T>
inline typename Lanes<T>::V all(T x) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return typename Lanes<T>::V{(static_cast<void>(lane), x)...};
  }
  (std::make_integer_sequence<int, Lanes<T>::count>{});
}

inline f32 abs(f32 x) { return from_image(image(x) & 0x7FFFFFFF); }
inline f64 abs(f64 x) { return from_image(image(x) & 0x7FFFFFFFFFFFFFFF); }

// ---- Masks ----------------------------------------------------------------------------------

// The lane mask as bits, bit i for lane i.
inline uint32_t bits(Lanes<float>::M m) {
#if QOR_LANES_512
  return _mm512_movepi32_mask(std::bit_cast<__m512i>(m));
#elif QOR_LANES_256
  return static_cast<uint32_t>(_mm256_movemask_ps(std::bit_cast<__m256>(m)));
#else
  return static_cast<uint32_t>(_mm_movemask_ps(std::bit_cast<__m128>(m)));
#endif
}

inline uint32_t bits(Lanes<double>::M m) {
#if QOR_LANES_512
  return _mm512_movepi64_mask(std::bit_cast<__m512i>(m));
#elif QOR_LANES_256
  return static_cast<uint32_t>(_mm256_movemask_pd(std::bit_cast<__m256d>(m)));
#else
  return static_cast<uint32_t>(_mm_movemask_pd(std::bit_cast<__m128d>(m)));
#endif
}

// Lanes that need care, in the cheapest form of the level: mask bits where compares give them, else
// vectors of which only each lane's sign counts.
template <class T>
struct Doubt {
#if QOR_LANES_512
  uint32_t lanes;
  Doubt operator|(Doubt other) const { return {lanes | other.lanes}; }
#else
  typename Lanes<T>::M lanes;
  Doubt operator|(Doubt other) const { return {lanes | other.lanes}; }
#endif
};

template <class T>
inline uint32_t bits(Doubt<T> doubt) {
#if QOR_LANES_512
  return doubt.lanes;
#else
  return bits(doubt.lanes);
#endif
}

// Lanes with left > right, signed.
inline Doubt<float> above(i32 left, int32_t right) {
#if QOR_LANES_512
  return {_mm512_cmpgt_epi32_mask(std::bit_cast<__m512i>(left), _mm512_set1_epi32(right))};
#else
  return {left > right};
#endif
}

// Lanes whose high word is above `right`, signed.
inline Doubt<double> high_word_above(i64 left, int32_t right) {
#if QOR_LANES_512
  const int64_t last = static_cast<int64_t>((static_cast<uint64_t>(right) << 32) | 0xFFFFFFFF);
  return {_mm512_cmpgt_epi64_mask(std::bit_cast<__m512i>(left), _mm512_set1_epi64(last))};
#else
  // There is no 64-bit compare at the lowest level, and none is needed: the high word decides.
  return {std::bit_cast<Lanes<double>::M>(std::bit_cast<i32>(left) > right)};
#endif
}

// The bits of the first `count` lanes.
inline uint32_t first_lanes(int count) { return (uint32_t{1} << count) - 1; }

// ---- Arithmetic -----------------------------------------------------------------------------

// a * b + c: one rounding where the level has the instruction, two elsewhere.
inline f32 multiply_add(f32 a, f32 b, f32 c) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_fmadd_ps(std::bit_cast<__m512>(a), std::bit_cast<__m512>(b),
                                            std::bit_cast<__m512>(c)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_fmadd_ps(std::bit_cast<__m256>(a), std::bit_cast<__m256>(b),
                                            std::bit_cast<__m256>(c)));
#else
  return a * b + c;
#endif
}

inline f64 multiply_add(f64 a, f64 b, f64 c) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_fmadd_pd(std::bit_cast<__m512d>(a), std::bit_cast<__m512d>(b),
                                            std::bit_cast<__m512d>(c)));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_fmadd_pd(std::bit_cast<__m256d>(a), std::bit_cast<__m256d>(b),
                                            std::bit_cast<__m256d>(c)));
#else
  return a * b + c;
#endif
}

template <class V, class T>
inline V multiply_add(V a, V b, T c) {
  return multiply_add(a, b, all(c));
}

// Horner's rule, coefficients from the highest power down.
template <class V, class T>
inline V horner(V, T constant) {
  return all(constant);
}
template <class V, class T, class... Rest>
inline V horner_from(V x, V sum, T next, Rest... rest) {
  sum = multiply_add(sum, x, next);
  if constexpr (sizeof...(rest) == 0) {
    return sum;
  } else {
    return horner_from(x, sum, rest...);
  }
}
template <class V, class T, class... Rest>
inline V horner(V x, T highest, T next, Rest... rest) {
  return horner_from(x, all(highest), next, rest...);
}

template <class V, class T, size_t count>
inline V horner(V x, const T (&coefficients)[count]) {
  V sum = all(coefficients[0]);
  for (size_t i = 1; i < count; ++i) sum = multiply_add(sum, x, coefficients[i]);
  return sum;
}

// The larger of two numbers; b if they are unordered.
inline f32 larger(f32 a, f32 b) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_mask_max_ps(_mm512_setzero_ps(), 0xFFFF,
                                               std::bit_cast<__m512>(a), std::bit_cast<__m512>(b)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_max_ps(std::bit_cast<__m256>(a), std::bit_cast<__m256>(b)));
#else
  return std::bit_cast<f32>(_mm_max_ps(std::bit_cast<__m128>(a), std::bit_cast<__m128>(b)));
#endif
}

inline f32 sqrt(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_sqrt_ps(std::bit_cast<__m512>(x)));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_sqrt_ps(std::bit_cast<__m256>(x)));
#else
  return std::bit_cast<f32>(_mm_sqrt_ps(std::bit_cast<__m128>(x)));
#endif
}

inline f64 sqrt(f64 x) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_sqrt_pd(std::bit_cast<__m512d>(x)));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_sqrt_pd(std::bit_cast<__m256d>(x)));
#else
  return std::bit_cast<f64>(_mm_sqrt_pd(std::bit_cast<__m128d>(x)));
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

// ---- Tables ---------------------------------------------------------------------------------

// Elements table[index] of a constant table, a lane each. Indices are not negative.
inline f32 gather(const float* table, i32 index) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_mask_i32gather_ps(_mm512_setzero_ps(), 0xFFFF,
                                                     std::bit_cast<__m512i>(index), table, 4));
#elif QOR_LANES_256
  return std::bit_cast<f32>(_mm256_i32gather_ps(table, std::bit_cast<__m256i>(index), 4));
#else
  return f32{table[index[0]], table[index[1]], table[index[2]], table[index[3]]};
#endif
}

inline f64 gather(const double* table, i64 index) {
#if QOR_LANES_512
  return std::bit_cast<f64>(
      _mm512_mask_i64gather_pd(_mm512_setzero_pd(), 0xFF, std::bit_cast<__m512i>(index), table, 8));
#elif QOR_LANES_256
  return std::bit_cast<f64>(_mm256_i64gather_pd(table, std::bit_cast<__m256i>(index), 8));
#else
  return f64{table[index[0]], table[index[1]]};
#endif
}

// A row of a table of pairs.
template <class T>
struct Row {
  T high, low;
};

// Rows table[index], the halves in a register each.
template <class T>
inline Two<typename Lanes<T>::V> gather_rows(const Row<T>* table, typename Lanes<T>::I index) {
  const T* flat = &table->high;
  return {gather(flat, index * 2), gather(flat + 1, index * 2)};
}

// Rows loaded whole and transposed: on Zen 4 about two thirds of the time of two gathers.
template <>
inline Two<f64> gather_rows<double>(const Row<double>* table, i64 index) {
  using Pair [[gnu::vector_size(16)]] = double;
  const double* flat = &table->high;
  const i64 at = index * 2;
  const auto row = [&](int lane) {
    Pair loaded;
    std::memcpy(&loaded, flat + at[lane], sizeof loaded);
    return loaded;
  };
#if QOR_LANES_512
  const auto four = [&](int lane) {
    return __builtin_shufflevector(
        __builtin_shufflevector(row(lane), row(lane + 2), 0, 1, 2, 3),
        __builtin_shufflevector(row(lane + 4), row(lane + 6), 0, 1, 2, 3), 0, 1, 2, 3, 4, 5, 6, 7);
  };
  const f64 even = four(0), odd = four(1);
  return {__builtin_shufflevector(even, odd, 0, 8, 2, 10, 4, 12, 6, 14),
          __builtin_shufflevector(even, odd, 1, 9, 3, 11, 5, 13, 7, 15)};
#elif QOR_LANES_256
  const f64 even = __builtin_shufflevector(row(0), row(2), 0, 1, 2, 3);
  const f64 odd = __builtin_shufflevector(row(1), row(3), 0, 1, 2, 3);
  return {__builtin_shufflevector(even, odd, 0, 4, 2, 6),
          __builtin_shufflevector(even, odd, 1, 5, 3, 7)};
#else
  const f64 even = row(0), odd = row(1);
  return {__builtin_shufflevector(even, odd, 0, 2), __builtin_shufflevector(even, odd, 1, 3)};
#endif
}

#if !QOR_LANES_512 && !QOR_LANES_256
// Rows loaded whole and transposed.
template <>
inline Two<f32> gather_rows<float>(const Row<float>* table, i32 index) {
  const auto row = [&](int lane) {
    double loaded;  // a row of floats has the size of a double
    std::memcpy(&loaded, table + index[lane], sizeof loaded);
    return loaded;
  };
  const auto rows = [&](int lane) { return std::bit_cast<f32>(f64{row(lane), row(lane + 1)}); };
  const f32 first = rows(0), second = rows(2);
  return {__builtin_shufflevector(first, second, 0, 2, 4, 6),
          __builtin_shufflevector(first, second, 1, 3, 5, 7)};
}
#endif

// Whether `look_up` of the type is a permutation of registers, much faster than a gather.
#if QOR_LANES_512
template <class T>
inline constexpr bool has_register_tables = true;
#elif QOR_LANES_256
template <class T>
inline constexpr bool has_register_tables = sizeof(T) == sizeof(float);
#else
template <class T>
inline constexpr bool has_register_tables = false;
#endif

// Elements table[index mod 16].
inline f32 look_up(const float (&table)[16], i32 index) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_mask_permutexvar_ps(
      _mm512_setzero_ps(), 0xFFFF, std::bit_cast<__m512i>(index), _mm512_loadu_ps(table)));
#elif QOR_LANES_256
  const auto at = std::bit_cast<__m256i>(index);
  const auto lower = _mm256_permutevar8x32_ps(_mm256_loadu_ps(table), at);
  const auto upper = _mm256_permutevar8x32_ps(_mm256_loadu_ps(table + 8), at);
  return std::bit_cast<f32>(
      _mm256_blendv_ps(lower, upper, _mm256_castsi256_ps(_mm256_slli_epi32(at, 28))));
#else
  return gather(table, index & 15);
#endif
}

inline f64 look_up(const double (&table)[16], i64 index) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_permutex2var_pd(
      _mm512_loadu_pd(table), std::bit_cast<__m512i>(index), _mm512_loadu_pd(table + 8)));
#else
  return gather(table, index & 15);
#endif
}

// ---- Loads and stores -----------------------------------------------------------------------

template <class T>
inline typename Lanes<T>::V load(const T* from) {
  typename Lanes<T>::V x;
  std::memcpy(&x, from, sizeof x);
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

// The first `count` lanes from memory, at least one and not all, the rest holding `filler`. Nothing
// behind them is read.
inline f32 load_first(const float* from, int count, float filler) {
#if QOR_LANES_512
  const auto active = static_cast<__mmask16>(first_lanes(count));
  return std::bit_cast<f32>(_mm512_mask_loadu_ps(_mm512_set1_ps(filler), active, from));
#elif QOR_LANES_256
  const __m256i active = first_lanes_mask(count, filler);
  return std::bit_cast<f32>(_mm256_blendv_ps(
      _mm256_set1_ps(filler), _mm256_maskload_ps(from, active), _mm256_castsi256_ps(active)));
#else
  return f32{from[0], count > 1 ? from[1] : filler, count > 2 ? from[2] : filler, filler};
#endif
}

inline f64 load_first(const double* from, int count, double filler) {
#if QOR_LANES_512
  const auto active = static_cast<__mmask8>(first_lanes(count));
  return std::bit_cast<f64>(_mm512_mask_loadu_pd(_mm512_set1_pd(filler), active, from));
#elif QOR_LANES_256
  const __m256i active = first_lanes_mask(count, filler);
  return std::bit_cast<f64>(_mm256_blendv_pd(
      _mm256_set1_pd(filler), _mm256_maskload_pd(from, active), _mm256_castsi256_pd(active)));
#else
  static_cast<void>(count);
  return f64{from[0], filler};
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
