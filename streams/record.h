// The stream record: its head, the generator state behind it, and its chunk list.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "qor/streams.h"

namespace qor::streams {

static_assert(sizeof(StreamState) == 16);
static_assert(sizeof(void*) == 8 || sizeof(BrngProperties) == 36);

// The generator's state, as the plain struct of its file.
template <class State>
State& state_of(StreamState* stream) {
  return *reinterpret_cast<State*>(stream + 1);
}
template <class State>
const State& state_of(const StreamState* stream) {
  return *reinterpret_cast<const State*>(stream + 1);
}

inline StreamChunk* first_chunk(const StreamState* stream) {
  return reinterpret_cast<StreamChunk*>(static_cast<intptr_t>(stream->chunks));
}
inline void set_first_chunk(StreamState* stream, StreamChunk* chunk) {
  stream->chunks = reinterpret_cast<intptr_t>(chunk);
}

// Bytes of a row's record: a registered row may ask for less than the head needs.
inline size_t record_bytes(const BrngProperties& row) {
  return std::max(static_cast<size_t>(row.stateBytes), sizeof(StreamState));
}
inline size_t generator_bytes(const BrngProperties& row) {
  return record_bytes(row) - sizeof(StreamState);
}

// A record of the row with its head filled in, or null.
StreamState* allocate_record(const BrngProperties& row, int32_t id);

}  // namespace qor::streams
