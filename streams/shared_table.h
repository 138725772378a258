// The table of shared read-only data: payloads that several chunks hold, counted.
#pragma once

#include "qor/streams.h"

namespace qor::streams {

inline bool is_none(const qor_shared_id& id) { return id.time == 0 && id.number == 0; }

// Lets the chunk hold the data that is registered under its identifier, or registers the chunk's
// own data. With 127 entries in use nothing is added: the identifier is cleared and the data stays
// the chunk's own.
void share(StreamChunk& chunk);

// As share, for data that is registered already: returns false, and leaves the chunk alone, when it
// is not.
bool share_registered(StreamChunk& chunk);

// Frees the chunk's data, or gives back its reference.
void release_data(StreamChunk& chunk);

// Gives a chunk that holds registered data its own block instead, unless the registered data is
// known to have the size that the chunk tells.
void unshare_unless_same_size(StreamChunk& chunk, void* own_data);

}  // namespace qor::streams
