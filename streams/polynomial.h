// Polynomials over GF(2), as bits of 64-bit words, least significant first.
#pragma once

#include <bit>
#include <cstdint>

namespace qor::streams {

inline bool coefficient(const uint64_t* words, int64_t k) {
  return (words[k / 64] >> (k % 64) & 1) != 0;
}

// The degree, or -1 of the zero polynomial.
inline int64_t degree_of(const uint64_t* words, int32_t count) {
  for (int32_t w = count - 1; w >= 0; --w) {
    if (words[w] != 0) return int64_t{64} * w + 63 - std::countl_zero(words[w]);
  }
  return -1;
}

}  // namespace qor::streams
