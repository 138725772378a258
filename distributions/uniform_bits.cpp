// Words of a generator, and words of which all 32 or 64 bits are uniform.

#include <algorithm>
#include <iterator>

#include "qor/distributions.h"
#include "streams/generators/output.h"
#include "streams/registry.h"

namespace {

using namespace qor::streams;

// `count` 32-bit words to r, counted in 64 bits: two make a 64-bit result.
using FullWords = int32_t (*)(StreamState* stream, int64_t count, void* r);

// The generator's words have 32 bits already.
int32_t direct(StreamState* stream, int64_t count, void* r) {
  constexpr int64_t longest_call = int64_t{1} << 30;
  int32_t status = QOR_STREAM_OK;
  for (auto* out = static_cast<uint32_t*>(r); count > 0; out += longest_call) {
    status =
        _ostiRngUniformBits(0, stream, static_cast<int32_t>(std::min(count, longest_call)), out);
    if (status < 0) return status;
    count -= longest_call;
  }
  return status;
}

// MCG59: the upper 32 of its 59 bits. A last call is made even for no words.
int32_t narrow(StreamState* stream, int64_t count, void* r) {
  constexpr int64_t block = 2048;
  constexpr int upper = 59 - 32;
  uint64_t words[block];
  for (auto* out = static_cast<char*>(r);; out += block * int64_t{sizeof(uint32_t)}) {
    const auto now = static_cast<int32_t>(std::min(count, block));
    const int32_t status = _ostiRngUniformBits(0, stream, now, words);
    if (status < 0) return status;
    for (int32_t i = 0; i < now; ++i) store(out, i, static_cast<uint32_t>(words[i] >> upper));
    if (count < block) return status;
    count -= block;
  }
}

// By row of the new numbering; rows that are not here, and those of registered generators, have no
// full words.
constexpr FullWords kFullWords[16] = {
    nullptr,                    // MCG31M1
    nullptr,                    // R250
    nullptr,                    // MRG32K3A
    narrow,                     // MCG59
    nullptr,                    // WH
    nullptr, nullptr,           // Sobol, Niederr
    direct,  direct,            // MT19937, MT2203
    nullptr, nullptr, nullptr,  // the abstract ones
    direct,  direct,            // SFMT19937, TRNG
    direct,  direct,            // ARS5, PHILOX4X32X10
};
constexpr int32_t kRows = std::size(kFullWords);

int32_t full_words(StreamState* stream, int64_t count, void* r) {
  int32_t row = 0, sub = 0;
  __ostGetBrngBaseOffset(stream->brng, &row, &sub);
  const FullWords words = row >= 0 && row < kRows ? kFullWords[row] : nullptr;
  return words != nullptr ? words(stream, count, r) : QOR_STREAM_NO_FULL_WORDS;
}

}  // namespace

int32_t _ostiRngUniformBits(int32_t /*method*/, StreamState* stream, int32_t n, void* r) {
  return row_of(stream).iBRng(stream, n, r);
}

int32_t _ostiRngUniformBits32(int32_t /*method*/, StreamState* stream, int32_t n, uint32_t* r) {
  return full_words(stream, n, r);
}

int32_t _ostiRngUniformBits64(int32_t /*method*/, StreamState* stream, int32_t n, uint64_t* r) {
  return full_words(stream, int64_t{2} * n, r);
}
