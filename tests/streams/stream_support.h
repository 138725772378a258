// Streams for tests: owned, compared and copied through the exported entries.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "qor/services.h"
#include "qor/streams.h"

namespace qor::test {

struct DeleteStream {
  void operator()(StreamState* stream) const { __ostDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

inline Stream new_stream(int32_t brng, const std::vector<uint32_t>& seed = {7777777}) {
  StreamState* stream = nullptr;
  const auto n = static_cast<int32_t>(seed.size());
  EXPECT_EQ(__ostNewStreamEx(&stream, brng, n, seed.data()), 0) << std::hex << brng;
  return Stream(stream);
}

inline Stream copy_of(const Stream& source) {
  StreamState* stream = nullptr;
  EXPECT_EQ(__ostCopyStream(&stream, source.get()), 0);
  return Stream(stream);
}

inline BrngProperties row_of(const Stream& stream) {
  BrngProperties row{};
  EXPECT_EQ(__ostGetBrngProperties(stream->brng, &row), 0);
  return row;
}

// The generator state, as bytes.
inline std::vector<unsigned char> state_of(const Stream& stream) {
  const auto* first = reinterpret_cast<const unsigned char*>(stream.get() + 1);
  return {first, first + row_of(stream).stateBytes - 16};
}

inline std::vector<unsigned char> words_of(const Stream& stream, int32_t n) {
  const BrngProperties row = row_of(stream);
  std::vector<unsigned char> words(static_cast<size_t>(n) * static_cast<size_t>(row.wordBytes));
  EXPECT_EQ(row.iBRng(stream.get(), n, words.data()), 0);
  return words;
}

template <class Word>
Word next_word(const Stream& stream) {
  Word word;
  std::memcpy(&word, words_of(stream, 1).data(), sizeof word);
  return word;
}

// A block of the services with these bytes, as chunks want them.
inline void* block_of(const std::vector<unsigned char>& bytes) {
  void* block = qor_serv_allocate(bytes.size(), 128);
  if (!bytes.empty()) std::memcpy(block, bytes.data(), bytes.size());
  return block;
}

inline const int32_t linear_generators[] = {QOR_BRNG_MCG31M1, QOR_BRNG_R250, QOR_BRNG_MRG32K3A,
                                            QOR_BRNG_MCG59, QOR_BRNG_WH + 100};

}  // namespace qor::test
