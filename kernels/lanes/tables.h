// Look-up in constant tables.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "kernels/lanes/memory.h"
#include "kernels/lanes/types.h"

namespace qor::lanes {

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

// An entry of a table of pairs.
template <class T>
struct TablePair {
  T high, low;
};

// Entries table[index], the halves in a register each: gathered half by half, or (gather_entries)
// entry by entry and transposed, where that is faster.
template <class T>
inline Two<typename Lanes<T>::V> gather_halves(const TablePair<T>* table,
                                               typename Lanes<T>::I index) {
  const T* flat = &table->high;
  return {gather(flat, index * 2), gather(flat + 1, index * 2)};
}
template <class T>
inline Two<typename Lanes<T>::V> gather_entries(const TablePair<T>* table,
                                                typename Lanes<T>::I index) {
  return gather_halves(table, index);
}

#if QOR_LANES_512
// Two rows of four doubles; four pairs of doubles. Inserted from memory, which leaves the port of
// the transpositions alone; shuffles of loaded rows do not.
inline f64 rows_together(const double* first, const double* second) {
  const __m512d low = _mm512_castpd256_pd512(_mm256_loadu_pd(first));
  return std::bit_cast<f64>(_mm512_maskz_insertf64x4(0xFF, low, _mm256_loadu_pd(second), 1));
}
inline f64 pairs_together(const double* first, const double* second, const double* third,
                          const double* fourth) {
  __m256d low = _mm256_castpd128_pd256(_mm_loadu_pd(first));
  low = _mm256_insertf128_pd(low, _mm_loadu_pd(second), 1);
  __m256d high = _mm256_castpd128_pd256(_mm_loadu_pd(third));
  high = _mm256_insertf128_pd(high, _mm_loadu_pd(fourth), 1);
  return std::bit_cast<f64>(_mm512_maskz_insertf64x4(0xFF, _mm512_castpd256_pd512(low), high, 1));
}
#endif

// Rows loaded whole and transposed: on Zen 4 about two thirds of the time of two gathers.
template <>
inline Two<f64> gather_entries<double>(const TablePair<double>* table, i64 index) {
  using Pair [[gnu::vector_size(16)]] = double;
  const double* flat = &table->high;
  const i64 at = index * 2;
  [[maybe_unused]] const auto row = [&](int lane) {
    Pair loaded;
    std::memcpy(&loaded, flat + at[lane], sizeof loaded);
    return loaded;
  };
#if QOR_LANES_512
  const auto four = [&](int lane) {
    return pairs_together(flat + at[lane], flat + at[lane + 2], flat + at[lane + 4],
                          flat + at[lane + 6]);
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
inline Two<f32> gather_entries<float>(const TablePair<float>* table, i32 index) {
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

// An entry of a table of fours, and four registers.
template <class T>
struct alignas(4 * sizeof(T)) TableQuad {
  T a, b, c, d;
};
template <class V>
struct Four {
  V a, b, c, d;
};

// The lanes of a and b (from `count` on) in the order that from(lane) gives.
template <auto from, class V>
inline V shuffle(V a, V b) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return __builtin_shufflevector(a, b, from(lane)...);
  }
  (std::make_integer_sequence<int, sizeof(V) / sizeof a[0]>{});
}

// Entries table[index], a register for each column: rows loaded whole and transposed, a square of
// four rows at a time. On Zen 4 that takes the time of one gather.
inline Four<f64> gather_entries(const TableQuad<double>* table, i64 index) {
#if QOR_LANES_512 || QOR_LANES_256
  constexpr int count = Lanes<double>::count;
  const auto rows = [&](int lane) {
#if QOR_LANES_512
    return rows_together(&table[index[lane]].a, &table[index[lane + 4]].a);
#else
    return load(&table[index[lane]].a);
#endif
  };
  const f64 a = rows(0), b = rows(1), c = rows(2), d = rows(3);
  constexpr auto even = [](int i) { return i % 2 * count + i / 2 * 2; };
  constexpr auto odd = [](int i) { return i % 2 * count + i / 2 * 2 + 1; };
  constexpr auto low = [](int i) { return i / 4 * 4 + i % 2 + i / 2 % 2 * count; };
  constexpr auto high = [](int i) { return i / 4 * 4 + i % 2 + i / 2 % 2 * count + 2; };
  const f64 ab02 = shuffle<even>(a, b), ab13 = shuffle<odd>(a, b);
  const f64 cd02 = shuffle<even>(c, d), cd13 = shuffle<odd>(c, d);
  return {shuffle<low>(ab02, cd02), shuffle<low>(ab13, cd13), shuffle<high>(ab02, cd02),
          shuffle<high>(ab13, cd13)};
#else
  const TableQuad<double>&p = table[index[0]], &q = table[index[1]];
  const f64 p01 = {p.a, p.b}, p23 = {p.c, p.d}, q01 = {q.a, q.b}, q23 = {q.c, q.d};
  return {__builtin_shufflevector(p01, q01, 0, 2), __builtin_shufflevector(p01, q01, 1, 3),
          __builtin_shufflevector(p23, q23, 0, 2), __builtin_shufflevector(p23, q23, 1, 3)};
#endif
}

inline Four<f32> gather_entries(const TableQuad<float>* table, i32 index) {
  using Quad [[gnu::vector_size(16)]] = float;
  constexpr int count = Lanes<float>::count;
  const auto row = [&](int lane) {
    Quad loaded;
    std::memcpy(&loaded, table + index[lane], sizeof loaded);
    return loaded;
  };
  const auto rows = [&](int lane) {
#if QOR_LANES_512
    return __builtin_shufflevector(
        __builtin_shufflevector(row(lane), row(lane + 4), 0, 1, 2, 3, 4, 5, 6, 7),
        __builtin_shufflevector(row(lane + 8), row(lane + 12), 0, 1, 2, 3, 4, 5, 6, 7), 0, 1, 2, 3,
        4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
#elif QOR_LANES_256
    return __builtin_shufflevector(row(lane), row(lane + 4), 0, 1, 2, 3, 4, 5, 6, 7);
#else
    return row(lane);
#endif
  };
  const f32 a = rows(0), b = rows(1), c = rows(2), d = rows(3);
  constexpr auto lower = [](int i) { return i / 4 * 4 + i % 4 / 2 + i % 2 * count; };
  constexpr auto upper = [](int i) { return i / 4 * 4 + i % 4 / 2 + i % 2 * count + 2; };
  constexpr auto low = [](int i) { return i / 4 * 4 + i % 2 + i / 2 % 2 * count; };
  constexpr auto high = [](int i) { return i / 4 * 4 + i % 2 + i / 2 % 2 * count + 2; };
  const f32 ab01 = shuffle<lower>(a, b), ab23 = shuffle<upper>(a, b);
  const f32 cd01 = shuffle<lower>(c, d), cd23 = shuffle<upper>(c, d);
  return {shuffle<low>(ab01, cd01), shuffle<high>(ab01, cd01), shuffle<low>(ab23, cd23),
          shuffle<high>(ab23, cd23)};
}

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

// Elements table[index mod 8].
inline f32 look_up(const float (&table)[8], i32 index) {
#if QOR_LANES_256 && !QOR_LANES_512
  return std::bit_cast<f32>(
      _mm256_permutevar8x32_ps(_mm256_loadu_ps(table), std::bit_cast<__m256i>(index)));
#else
  return gather(table, index & 7);
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

}  // namespace qor::lanes
