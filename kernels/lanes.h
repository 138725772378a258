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
#include <iterator>
#include <limits>
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

// Shifted as unsigned images.
inline i32 shift_right(i32 x, int by) { return std::bit_cast<i32>(std::bit_cast<u32>(x) >> by); }
inline i64 shift_right(i64 x, int by) { return std::bit_cast<i64>(std::bit_cast<u64>(x) >> by); }

inline f32 abs(f32 x) { return from_image(image(x) & 0x7FFFFFFF); }
inline f64 abs(f64 x) { return from_image(image(x) & 0x7FFFFFFFFFFFFFFF); }

// The sign bit alone, and a magnitude (or any value without a sign) with that of `sign`.
inline i32 sign_bit(f32 x) { return image(x) & std::numeric_limits<int32_t>::min(); }
inline i64 sign_bit(f64 x) { return image(x) & std::numeric_limits<int64_t>::min(); }
inline f32 with_sign(f32 magnitude, f32 sign) {
  return from_image(image(magnitude) | sign_bit(sign));
}
inline f64 with_sign(f64 magnitude, f64 sign) {
  return from_image(image(magnitude) | sign_bit(sign));
}

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

// Lanes whose signed image (of a double its high word) is not within first to last.
inline Doubt<float> outside(i32 image, int32_t first, int32_t last) {
  constexpr uint32_t sign = 0x80000000;  // turns the signed compare into an unsigned one
  const u32 moved = std::bit_cast<u32>(image) - (static_cast<uint32_t>(first) + sign);
  return above(std::bit_cast<i32>(moved),
               static_cast<int32_t>(last - first) ^ std::numeric_limits<int32_t>::min());
}
inline Doubt<double> outside(i64 image, int32_t first, int32_t last) {
  constexpr uint32_t sign = 0x80000000;
  const uint64_t move = static_cast<uint64_t>(static_cast<uint32_t>(first) + sign) << 32;
  const u64 moved = std::bit_cast<u64>(image) - move;
  return high_word_above(std::bit_cast<i64>(moved),
                         static_cast<int32_t>(last - first) ^ std::numeric_limits<int32_t>::min());
}

// Magnitudes whose image (of a double the high word) is not within first to last.
template <class V>
inline auto magnitude_outside(V x, int32_t first, int32_t last) {
  return outside(image(abs(x)), first, last);
}

// Magnitudes whose image (of a double the high word) is above `last`.
inline Doubt<float> magnitude_above(f32 x, int32_t last) { return above(image(abs(x)), last); }
inline Doubt<double> magnitude_above(f64 x, int32_t last) {
  return high_word_above(image(abs(x)), last);
}

// Infinities and NaN.
inline Doubt<float> not_finite(f32 x) { return magnitude_above(x, 0x7F7FFFFF); }
inline Doubt<double> not_finite(f64 x) { return magnitude_above(x, 0x7FEFFFFF); }

// Lanes with x equal to y; a quiet NaN is equal to nothing and raises nothing.
inline Doubt<float> equal(f32 x, f32 y) {
#if QOR_LANES_512
  return {_mm512_cmp_ps_mask(std::bit_cast<__m512>(x), std::bit_cast<__m512>(y), _CMP_EQ_OQ)};
#else
  return {x == y};
#endif
}
inline Doubt<double> equal(f64 x, f64 y) {
#if QOR_LANES_512
  return {_mm512_cmp_pd_mask(std::bit_cast<__m512d>(x), std::bit_cast<__m512d>(y), _CMP_EQ_OQ)};
#else
  return {x == y};
#endif
}

// Whole-lane mask of the magnitudes at or above a power of two, infinity and NaN included; raises
// no flag.
inline Lanes<float>::M magnitude_from(f32 magnitude, float power) {
  return image(magnitude) > std::bit_cast<int32_t>(power) - 1;
}
inline Lanes<double>::M magnitude_from(f64 magnitude, double power) {
#if QOR_LANES_512 || QOR_LANES_256
  return image(magnitude) > std::bit_cast<int64_t>(power) - 1;
#else
  const auto high = static_cast<int32_t>(std::bit_cast<int64_t>(power) >> 32);
  const i32 words = std::bit_cast<i32>(magnitude) > high - 1;
  return std::bit_cast<i64>(_mm_shuffle_epi32(std::bit_cast<__m128i>(words), 0xF5));
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

// Estrin's scheme (1960), coefficients from the highest power down: a shorter chain than Horner's
// rule for a few more multiplications. powers[i] is x^(2^i).
template <size_t first, size_t terms, class V, class T, size_t count, size_t power_count>
inline V estrin_part(const V (&powers)[power_count], const T (&coefficients)[count]) {
  if constexpr (terms == 1) {
    return all(coefficients[first]);
  } else {
    constexpr size_t split = std::bit_ceil(terms) / 2;  // terms of the lower half
    const V upper = estrin_part<first, terms - split>(powers, coefficients);
    const V lower = estrin_part<first + terms - split, split>(powers, coefficients);
    return multiply_add(upper, powers[std::countr_zero(split)], lower);
  }
}
template <class V, class T, size_t count>
inline V estrin(V x, const T (&coefficients)[count]) {
  V powers[std::bit_width(count - 1)] = {x};
  for (size_t i = 1; i < std::size(powers); ++i) powers[i] = powers[i - 1] * powers[i - 1];
  return estrin_part<0, count>(powers, coefficients);
}

// The same polynomial as two of x^2, of the even and the odd powers: half the latency.
template <class V, class T, size_t count>
inline V even_odd(V x, const T (&coefficients)[count]) {
  const V square = x * x;
  V sums[2] = {all(coefficients[0]), all(coefficients[1])};
  for (size_t i = 2; i < count; ++i) {
    sums[i % 2] = multiply_add(sums[i % 2], square, coefficients[i]);
  }
  return multiply_add(sums[count % 2], x, sums[(count + 1) % 2]);
}

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

// Two registers of doubles as floats; and the low words of their images.
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

// A row of a table of fours, and four registers.
template <class T>
struct alignas(4 * sizeof(T)) Row4 {
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

// Rows table[index], a register for each column: rows loaded whole and transposed, a square of four
// rows at a time. On Zen 4 that takes the time of one gather.
inline Four<f64> gather_rows(const Row4<double>* table, i64 index) {
#if QOR_LANES_512 || QOR_LANES_256
  using Quad [[gnu::vector_size(32)]] = double;
  constexpr int count = Lanes<double>::count;
  const auto row = [&](int lane) {
    Quad loaded;
    std::memcpy(&loaded, table + index[lane], sizeof loaded);
    return loaded;
  };
  const auto rows = [&](int lane) {
#if QOR_LANES_512
    return __builtin_shufflevector(row(lane), row(lane + 4), 0, 1, 2, 3, 4, 5, 6, 7);
#else
    return row(lane);
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
  const Row4<double>&p = table[index[0]], &q = table[index[1]];
  const f64 p01 = {p.a, p.b}, p23 = {p.c, p.d}, q01 = {q.a, q.b}, q23 = {q.c, q.d};
  return {__builtin_shufflevector(p01, q01, 0, 2), __builtin_shufflevector(p01, q01, 1, 3),
          __builtin_shufflevector(p23, q23, 0, 2), __builtin_shufflevector(p23, q23, 1, 3)};
#endif
}

inline Four<f32> gather_rows(const Row4<float>* table, i32 index) {
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

// ---- Parts of a number ----------------------------------------------------------------------

inline f32 to_float(i32 x) { return __builtin_convertvector(x, f32); }

// The biased exponent less `offset`, for x > 0.
inline f32 biased_exponent(f32 x, float offset = 0) { return to_float(image(x) >> 23) - offset; }
inline f64 biased_exponent(f64 x, double offset = 0) {
  constexpr double shifter = 0x1p+52;  // there is no conversion from 64 bits below 512
  const auto biased = std::bit_cast<i64>(std::bit_cast<u64>(x) >> 52);
  return from_image(biased | std::bit_cast<int64_t>(shifter)) - (shifter + offset);
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

// x times a power of 2, in [0.75, 1.5), for normal x > 0.
inline f32 mantissa_around_one(f32 x) {
#if QOR_LANES_512
  return std::bit_cast<f32>(_mm512_maskz_getmant_ps(0xFFFF, std::bit_cast<__m512>(x),
                                                    _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero));
#else
  constexpr int32_t least = 0x3F400000;
  return from_image(((image(x) - least) & 0x7FFFFF) + least);
#endif
}
inline f64 mantissa_around_one(f64 x) {
#if QOR_LANES_512
  return std::bit_cast<f64>(_mm512_maskz_getmant_pd(0xFF, std::bit_cast<__m512d>(x),
                                                    _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_zero));
#else
  constexpr int64_t least = 0x3FE8000000000000;
  return from_image(((image(x) - least) & 0xFFFFFFFFFFFFF) + least);
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
