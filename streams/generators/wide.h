// Vectors of 64-bit lanes, as wide as the level has them, for the block forms of generators.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>
#include <utility>

#include "kernels/lanes/whole.h"

namespace qor::streams {

inline constexpr int wide_bytes = lanes::register_bytes;
inline constexpr int wide_lanes = wide_bytes / 8;

using Wide [[gnu::vector_size(wide_bytes)]] = uint64_t;
using WideWords [[gnu::vector_size(wide_bytes)]] = uint32_t;
using WideReal [[gnu::vector_size(wide_bytes)]] = double;
using WideMask [[gnu::vector_size(wide_bytes)]] = int64_t;
using WideIntegers [[gnu::vector_size(wide_bytes / 2)]] = int32_t;

inline Wide mul_low(Wide a, Wide b) { return lanes::low_half_product(a, b); }

inline Wide wide(uint64_t value) { return value - Wide{}; }

// t mod m for m = 2^32 - fold, in the low half of each lane: two folds leave less than 2 m,
// whatever t is; the subtraction of m is an addition of `fold` whose carry out of 32 bits says
// whether it was due.
template <uint64_t fold>
Wide reduce_wide(Wide t) {
  constexpr uint64_t low = 0xFFFFFFFF;
  t = mul_low(t >> 32, wide(fold)) + (t & low);
  t = mul_low(t >> 32, wide(fold)) + (t & low);
  const Wide due = (t + fold) >> 32;
  return t + mul_low(due, wide(fold));
}

// Whether the caller's floating-point environment is one where integers may be worked on in double
// precision by rounding to nearest: that mode, and inexact results masked.
inline bool has_usual_environment() { return (_mm_getcsr() & 0x7000) == 0x1000; }

inline WideReal load_wide(const double* from) {
  WideReal v;
  std::memcpy(&v, from, sizeof v);
  return v;
}

// Truncation, of lanes or of one value.
inline WideIntegers truncate(WideReal v) { return __builtin_convertvector(v, WideIntegers); }
inline int32_t truncate(double v) { return static_cast<int32_t>(v); }
inline WideReal to_real(WideIntegers k) { return __builtin_convertvector(k, WideReal); }
inline double to_real(int32_t k) { return k; }

// Lanes shift, ..., last of a, then the first of b.
template <int shift>
Wide shift_in(Wide a, Wide b) {
  return [=]<int... i>(std::integer_sequence<int, i...>) {
    return __builtin_shufflevector(a, b, (i + shift)...);
  }
  (std::make_integer_sequence<int, wide_lanes>{});
}

// The low halves of the lanes of a, then of b.
inline WideWords low_halves(Wide a, Wide b) {
  return [=]<int... i>(std::integer_sequence<int, i...>) {
    return __builtin_shufflevector(reinterpret_cast<WideWords>(a), reinterpret_cast<WideWords>(b),
                                   (2 * i)...);
  }
  (std::make_integer_sequence<int, 2 * wide_lanes>{});
}

}  // namespace qor::streams
