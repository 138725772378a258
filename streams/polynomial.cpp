// x^nskip mod p over GF(2).

#include "streams/polynomial.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "qor/streams.h"
#include "services/services.h"

namespace {

using namespace qor::streams;

// The bits of a half word at the even places of a word.
uint64_t spread(uint64_t half) {
  half = (half | half << 16) & 0x0000FFFF0000FFFF;
  half = (half | half << 8) & 0x00FF00FF00FF00FF;
  half = (half | half << 4) & 0x0F0F0F0F0F0F0F0F;
  half = (half | half << 2) & 0x3333333333333333;
  return (half | half << 1) & 0x5555555555555555;
}

// Squares in place: without carries a square is the spread of its root. From the top down, so that
// no word is overwritten before it was read.
void square(uint64_t* words, int32_t count) {
  for (int32_t w = count - 1; w >= 0; --w) {
    const uint64_t root = words[w];
    words[2 * w] = spread(root & 0xFFFFFFFF);
    words[2 * w + 1] = spread(root >> 32);
  }
}

void shift_left_once(uint64_t* words, int32_t count) {
  for (int32_t w = count - 1; w > 0; --w) words[w] = words[w] << 1 | words[w - 1] >> 63;
  words[0] <<= 1;
}

// to += slice x^shift
void add_shifted(uint64_t* to, const uint64_t* slice, int64_t count, int64_t shift) {
  uint64_t* out = to + shift / 64;
  const auto low = static_cast<int>(shift % 64);
  if (low == 0) {
    for (int64_t w = 0; w < count; ++w) out[w] ^= slice[w];
    return;
  }
  out[0] ^= slice[0] << low;
  for (int64_t w = 1; w < count; ++w) out[w] ^= slice[w] << low | slice[w - 1] >> (64 - low);
  out[count] ^= slice[count - 1] >> (64 - low);
}

// Cuts the bits from `low` up to `top` out of `words` into `slice`; returns the words of the slice.
int64_t cut(uint64_t* words, int64_t low, int64_t top, uint64_t* slice) {
  const int64_t first = low / 64, last = top / 64;
  const auto shift = static_cast<int>(low % 64);
  for (int64_t w = first; w <= last; ++w) {
    const uint64_t above = w < last && shift != 0 ? words[w + 1] << (64 - shift) : 0;
    slice[w - first] = words[w] >> shift | above;
  }
  words[first] &= (uint64_t{1} << shift) - 1;
  std::fill(words + first + 1, words + last + 1, 0);
  return (top - low) / 64 + 1;
}

// p, and what its reduction needs.
struct Modulus {
  int64_t degree;
  int32_t terms;
  const int32_t* exponents;  // increasing, `degree` last

  // Bits of one slice: what it is replaced by ends below it.
  int64_t gap() const {
    return terms > 1 ? std::max(int64_t{1}, degree - exponents[terms - 2]) : degree;
  }

  // words mod p, in place; all bits lie at `top` or below.
  void reduce(uint64_t* words, int64_t top, uint64_t* slice) const {
    while (top >= degree) {
      const int64_t low = std::max(degree, top - gap() + 1);
      const int64_t count = cut(words, low, top, slice);
      for (int32_t k = 0; k < terms - 1; ++k)
        add_shifted(words, slice, count, low - degree + exponents[k]);
      top = low - 1;
    }
  }
};

// words = x^nskip mod p for nskip of at least the degree. `words` holds twice the polynomial.
void power_of_x(uint64_t nskip, const Modulus& p, int32_t half, uint64_t* words, uint64_t* slice) {
  words[0] = 2;
  int64_t top = 1;  // nothing stands above
  for (int bit = 62 - std::countl_zero(nskip); bit >= 0; --bit) {
    square(words, half);
    top *= 2;
    if ((nskip >> bit & 1) != 0) {
      shift_left_once(words, 2 * half);
      ++top;
    }
    p.reduce(words, top, slice);
    top = std::min(top, p.degree - 1);
  }
}

}  // namespace

int32_t __ostPolyRem(uint64_t nskip, int32_t degree, int32_t terms, const int32_t* exponents,
                     int32_t words, uint64_t* out) {
  std::fill_n(out, words, 0);
  if (degree < 1) return QOR_STREAM_OK;
  if (nskip < static_cast<uint64_t>(degree)) {
    out[nskip / 64] = uint64_t{1} << (nskip % 64);
    return QOR_STREAM_OK;
  }
  // A square with the word that shifting it touches, and a slice.
  const int32_t half = degree / 64 + 1;
  const auto size = static_cast<size_t>(3 * half + 2) * sizeof(uint64_t);
  auto* work = static_cast<uint64_t*>(qor_serv_allocate(size, qor::services::work_alignment));
  if (work == nullptr) return QOR_STREAM_NO_MEMORY;
  std::memset(work, 0, size);
  power_of_x(nskip, {degree, terms, exponents}, half, work, work + 2 * half + 1);
  std::copy_n(work, std::min(words, half), out);
  qor_serv_deallocate(work);
  return QOR_STREAM_OK;
}
