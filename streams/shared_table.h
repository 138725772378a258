// The table of shared read-only data: payloads that several chunks hold, counted.
#pragma once

#include "qor/streams.h"

namespace qor::streams {

inline bool is_none(const qor_shared_id& id) { return id.time == 0 && id.number == 0; }

// Lets the chunk hold the data that is registered under its identifier, with the size it has there,
// or registers the chunk's own data. With 127 entries in use nothing is added: the identifier is
// cleared and the data stays the chunk's own.
void share(StreamChunk& chunk);

// The same for a chunk whose size comes from outside: registered data of another size, or of none
// that is known, is not taken, but the identifier cleared.
void share_if_same_size(StreamChunk& chunk);

// As share, for data that is registered already: returns false, and leaves the chunk alone, when it
// is not.
bool share_registered(StreamChunk& chunk);

// Frees the chunk's data, or gives back its reference.
void release_data(StreamChunk& chunk);

}  // namespace qor::streams
