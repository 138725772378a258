// Multiply-add, and polynomials by it.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstddef>
#include <iterator>

#include "kernels/lanes/bits.h"

namespace qor::lanes {

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
  return multiply_add(a, b, broadcast(c));
}

// Horner's rule, coefficients from the highest power down.
template <class V, class T>
inline V horner(V, T constant) {
  return broadcast(constant);
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
  return horner_from(x, broadcast(highest), next, rest...);
}

template <class V, class T, size_t count>
inline V horner(V x, const T (&coefficients)[count]) {
  V sum = broadcast(coefficients[0]);
  for (size_t i = 1; i < count; ++i) sum = multiply_add(sum, x, coefficients[i]);
  return sum;
}

// Estrin's scheme (1960), coefficients from the highest power down: a shorter chain than Horner's
// rule for a few more multiplications. powers[i] is x^(2^i).
template <size_t first, size_t terms, class V, class T, size_t count, size_t power_count>
inline V estrin_part(const V (&powers)[power_count], const T (&coefficients)[count]) {
  if constexpr (terms == 1) {
    return broadcast(coefficients[first]);
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
  V sums[2] = {broadcast(coefficients[0]), broadcast(coefficients[1])};
  for (size_t i = 2; i < count; ++i) {
    sums[i % 2] = multiply_add(sums[i % 2], square, coefficients[i]);
  }
  return multiply_add(sums[count % 2], x, sums[(count + 1) % 2]);
}

}  // namespace qor::lanes
