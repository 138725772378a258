// Streams for tests: owned, compared and copied through the exported entries.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "qor/services.h"
#include "qor/streams.h"
#include "tests/support/services_interposer.h"
#include "tests/support/tables.h"

namespace qor::test {

using Bytes = std::vector<unsigned char>;

struct DeleteStream {
  void operator()(StreamState* stream) const { __ostDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

// What an entry that makes a stream answers.
struct Answer {
  std::string what;  // the status and what became of the output: "-4 null", "-3 alone", "0 made"
  Stream stream;
};
template <class Entry, class... Arguments>
Answer answer_of(Entry entry, Arguments... arguments) {
  StreamState sentinel{}, *stream = &sentinel;
  const std::string status = std::to_string(entry(&stream, arguments...));
  if (stream == &sentinel) return {status + " alone", nullptr};
  return {status + (stream == nullptr ? " null" : " made"), Stream(stream)};
}
template <class Entry, class... Arguments>
Stream made(Entry entry, Arguments... arguments) {
  Answer answer = answer_of(entry, arguments...);
  EXPECT_EQ(answer.what, "0 made");
  return std::move(answer.stream);
}

inline Stream new_stream(int32_t brng, const std::vector<uint32_t>& seed = {7777777}) {
  SCOPED_TRACE(brng);
  return made(__ostNewStreamEx, brng, static_cast<int32_t>(seed.size()), seed.data());
}

inline Stream copy_of(const Stream& source) { return made(__ostCopyStream, source.get()); }

inline BrngProperties row_of(const Stream& stream) {
  BrngProperties row{};
  EXPECT_EQ(__ostGetBrngProperties(stream->brng, &row), 0);
  return row;
}

// The generator state, as bytes.
inline Bytes state_of(const Stream& stream) {
  const auto* first = reinterpret_cast<const unsigned char*>(stream.get() + 1);
  return {first, first + row_of(stream).stateBytes - 16};
}

inline Bytes words_of(const Stream& stream, int32_t n) {
  const BrngProperties row = row_of(stream);
  Bytes words(static_cast<size_t>(n) * static_cast<size_t>(row.wordBytes));
  EXPECT_EQ(row.iBRng(stream.get(), n, words.data()), 0);
  return words;
}

template <class Real>
std::vector<Real> reals_of(const Stream& stream, int32_t n, Real a, Real b) {
  using Output = int32_t (*)(StreamState*, int32_t, Real*, Real, Real);
  const BrngProperties row = row_of(stream);
  std::vector<Real> r(static_cast<size_t>(n));
  const auto output = std::get<Output>(std::tuple(row.sBRng, row.dBRng));
  EXPECT_EQ(output(stream.get(), n, r.data(), a, b), 0);
  return r;
}

// Adds a chunk of these bytes; returns their block, one of the services as chunks want them.
inline void* add_chunk(const Stream& stream, int32_t id, const Bytes& bytes,
                       const qor_shared_id* shared = nullptr) {
  void* block = qor_serv_allocate(bytes.size(), 128);
  std::copy(bytes.begin(), bytes.end(), static_cast<unsigned char*>(block));
  EXPECT_EQ(__ostAddChunk(stream.get(), id, shared, block, static_cast<uint32_t>(bytes.size())), 0);
  return block;
}

// The ids of its chunks, newest first.
inline std::vector<int32_t> ids_of(const Stream& stream) {
  std::vector<int32_t> ids;
  for (auto* c = reinterpret_cast<StreamChunk*>(static_cast<intptr_t>(stream->chunks));
       c != nullptr; c = c->next)
    ids.push_back(c->id);
  return ids;
}

inline Bytes image_of(const Stream& stream) {
  Bytes image(static_cast<size_t>(__ostGetStreamSize(stream.get())));
  EXPECT_EQ(__ostSaveStreamM(stream.get(), image.data()), 0);
  return image;
}
inline Answer load_memory(const Bytes& image) { return answer_of(__ostLoadStreamM, image.data()); }

// Expects as many blocks of the services at its end as there were at its start.
struct BlocksInBalance {
  const long before = live_blocks();
  ~BlocksInBalance() { EXPECT_EQ(live_blocks(), before); }
};

inline const int32_t linear_generators[] = {QOR_BRNG_MCG31M1, QOR_BRNG_R250, QOR_BRNG_MRG32K3A,
                                            QOR_BRNG_MCG59, QOR_BRNG_WH + 100};

}  // namespace qor::test
