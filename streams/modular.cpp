// Modular powers, for skip-ahead and leapfrog.

#include "streams/modular.h"

#include <cstring>

#include "qor/streams.h"
#include "services/services.h"

namespace {

using namespace qor::streams;

// a^e by squaring, from the low bit of e up.
template <class Word, class Multiply>
Word power(Word a, uint64_t e, Multiply multiply) {
  Word result = 1;
  for (; e != 0; e >>= 1) {
    if ((e & 1) != 0) result = multiply(result, a);
    a = multiply(a, a);
  }
  return result;
}

bool bit_of(const uint64_t* words, int64_t b) { return (words[b / 64] >> (b % 64) & 1) != 0; }

// The modulus is a template argument so that no division is left.
template <uint32_t m>
void apply_table(uint32_t* v, int32_t n, const uint64_t* nskip, const uint32_t* table) {
  for (int64_t b = 0; b < int64_t{64} * n; ++b) {
    if (bit_of(nskip, b)) multiply_mod(table + 9 * b, v, m);
  }
}

}  // namespace

uint32_t __ostiPowMod(uint32_t a, uint64_t e, uint32_t m) {
  return power(a, e,
               [m](uint32_t x, uint32_t y) { return static_cast<uint32_t>(mul_mod(x, y, m)); });
}

uint32_t __ostiPowMod2P31M1(uint32_t a, uint64_t e) {
  constexpr uint32_t m = 0x7FFFFFFF;
  return power(a % m, e, [](uint32_t x, uint32_t y) {
    const uint64_t p = uint64_t{x} * y;
    const auto t = static_cast<uint32_t>((p & m) + (p >> 31));
    return t >= m ? t - m : t;
  });
}

uint64_t __ostiPowMod2P59(uint64_t a, uint64_t e) {
  constexpr uint64_t mask = (uint64_t{1} << 59) - 1;
  return power(a, e, [](uint64_t x, uint64_t y) { return x * y & mask; });
}

void __ostiVect3PowMod(uint32_t* v, const uint32_t* row, uint32_t m, uint64_t e) {
  Matrix3 matrix = companion(row);
  for (; e != 0; e >>= 1) {
    if ((e & 1) != 0) multiply_mod(matrix.data(), v, m);
    if (e > 1) matrix = square_mod(matrix, m);
  }
}

int32_t __ostiVect3PowArrayMod(uint32_t* v, const uint32_t* row, uint32_t m, int32_t n,
                               const uint64_t* nskip) {
  if (n <= 0) return QOR_STREAM_OK;
  // The count is used up as the matrix is squared; the caller's stays as it is.
  const size_t bytes = static_cast<size_t>(n) * sizeof(uint64_t);
  auto* count = static_cast<uint64_t*>(qor_serv_allocate(bytes, qor::services::work_alignment));
  if (count == nullptr) return QOR_STREAM_NO_MEMORY;
  std::memcpy(count, nskip, bytes);
  Matrix3 matrix = companion(row);
  for (int32_t word = 0; word < n; ++word) {
    for (int bit = 0; bit < 64; ++bit, count[word] >>= 1) {
      if ((count[word] & 1) != 0) multiply_mod(matrix.data(), v, m);
      matrix = square_mod(matrix, m);
    }
  }
  qor_serv_deallocate(count);
  return QOR_STREAM_OK;
}

void __ostiVect3PowArrayMod_M1(uint32_t* v, int32_t n, const uint64_t* nskip,
                               const uint32_t* table) {
  apply_table<mrg_m1>(v, n, nskip, table);
}

void __ostiVect3PowArrayMod_M2(uint32_t* v, int32_t n, const uint64_t* nskip,
                               const uint32_t* table) {
  apply_table<mrg_m2>(v, n, nskip, table);
}
