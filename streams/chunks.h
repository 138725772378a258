// Chunks that come from an image.
#pragma once

#include "qor/streams.h"

namespace qor::streams {

// Hands a payload over to a new chunk at the head of the stream's list, or frees it: when it is
// shared data of this size that is there already, the chunk takes that instead. Registered data of
// another size is not believed to be the same: the chunk keeps its own. 0 or -4.
int32_t add_loaded_chunk(StreamState* stream, int32_t id, const qor_shared_id& shared, void* data,
                         uint32_t size);

}  // namespace qor::streams
