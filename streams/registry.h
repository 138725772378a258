// Look-up of generators by identifier.
#pragma once

#include "qor/streams.h"

namespace qor::streams {

// The row of a stream's generator; the stream is trusted.
inline const BrngProperties& row_of(const StreamState* stream) {
  int32_t row = 0, sub = 0;
  const BrngProperties* table = __ostGetBrngBaseOffset(stream->brng, &row, &sub);
  return table[row];
}

// The number of a stream's generator within its family.
inline int32_t member_of(const StreamState* stream) {
  int32_t row = 0, sub = 0;
  __ostGetBrngBaseOffset(stream->brng, &row, &sub);
  return sub;
}

// A row in a place that exists, or null: __ostIsBrngValid lets negative rows of the first numbering
// pass.
const BrngProperties* valid_row(const BrngProperties* table, int32_t row, int32_t sub);

// The row of `id` if streams of it can be made, else null: rows without functions do not do.
const BrngProperties* usable_row(int32_t id);

}  // namespace qor::streams
