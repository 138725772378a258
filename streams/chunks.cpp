// The chunk list of a stream: blocks of data with an id, newest first.

#include "streams/chunks.h"

#include "services/services.h"
#include "streams/record.h"
#include "streams/shared_table.h"

using namespace qor::streams;

namespace {

StreamChunk* new_chunk(int32_t id, uint32_t size, void* data) {
  auto* chunk = static_cast<StreamChunk*>(
      qor_serv_allocate(sizeof(StreamChunk), qor::services::work_alignment));
  if (chunk != nullptr) *chunk = {id, size, data, nullptr, {0, 0}};
  return chunk;
}

void link_at_head(StreamState* stream, StreamChunk* chunk) {
  chunk->next = first_chunk(stream);
  set_first_chunk(stream, chunk);
}

void delete_chunk(StreamChunk* chunk) {
  release_data(*chunk);
  qor_serv_deallocate(chunk);
}

// A copy that shares the data, when it is registered, or has a copy of it; null without memory.
StreamChunk* copy_chunk(const StreamChunk& source) {
  StreamChunk* copy = new_chunk(source.id, source.size, nullptr);
  if (copy == nullptr) return nullptr;
  copy->shared = source.shared;
  if (!is_none(copy->shared) && share_registered(*copy)) return copy;
  copy->data = qor_serv_allocate(source.size, qor::services::work_alignment);
  if (copy->data == nullptr) {
    qor_serv_deallocate(copy);
    return nullptr;
  }
  void* own = copy->data;
  qor_serv_memcpy_s(own, source.size, source.data, source.size);
  if (!is_none(copy->shared)) share(*copy);
  if (copy->data != own) qor_serv_deallocate(own);
  return copy;
}

// Adds a chunk, whose data is registered under the identifier, if there is one, as told.
StreamChunk* add_chunk(StreamState* stream, int32_t id, const qor_shared_id* shared, void* data,
                       uint32_t size, void share_as_told(StreamChunk&)) {
  StreamChunk* chunk = new_chunk(id, size, data);
  if (chunk == nullptr) return nullptr;
  if (shared != nullptr && !is_none(*shared)) {
    chunk->shared = *shared;
    share_as_told(*chunk);
  }
  link_at_head(stream, chunk);
  return chunk;
}

}  // namespace

int32_t qor::streams::add_loaded_chunk(StreamState* stream, int32_t id, const qor_shared_id& shared,
                                       void* data, uint32_t size) {
  const StreamChunk* chunk = add_chunk(stream, id, &shared, data, size, share_if_same_size);
  if (chunk == nullptr || chunk->data != data) qor_serv_deallocate(data);
  return chunk != nullptr ? QOR_STREAM_OK : QOR_STREAM_NO_MEMORY;
}

int32_t __ostAddChunk(StreamState* stream, int32_t id, const qor_shared_id* shared, void* data,
                      uint32_t size) {
  const StreamChunk* chunk = add_chunk(stream, id, shared, data, size, share);
  return chunk != nullptr ? QOR_STREAM_OK : QOR_STREAM_NO_MEMORY;
}

void* __ostSearchChunk(const StreamState* stream, int32_t id) {
  for (const StreamChunk* chunk = first_chunk(stream); chunk != nullptr; chunk = chunk->next) {
    if (chunk->id == id) return chunk->data;
  }
  return nullptr;
}

int32_t __ostGetNumChunks(const StreamState* stream) {
  int32_t count = 0;
  for (const StreamChunk* chunk = first_chunk(stream); chunk != nullptr; chunk = chunk->next)
    ++count;
  return count;
}

int32_t __ostDeleteChunks(StreamState* stream) {
  for (StreamChunk* chunk = first_chunk(stream); chunk != nullptr;) {
    StreamChunk* next = chunk->next;
    delete_chunk(chunk);
    chunk = next;
  }
  stream->chunks = 0;
  return QOR_STREAM_OK;
}

int32_t __ostDeleteChunksById(StreamState* stream, int32_t id) {
  StreamChunk* kept = nullptr;
  for (StreamChunk* chunk = first_chunk(stream); chunk != nullptr;) {
    StreamChunk* next = chunk->next;
    if (chunk->id != id) {
      kept = chunk;
    } else {
      delete_chunk(chunk);
      if (kept != nullptr) kept->next = next;
    }
    chunk = next;
  }
  // The last that stayed, not the first: the rule of the interface, see streams.h.
  set_first_chunk(stream, kept);
  return QOR_STREAM_OK;
}

int32_t __ostCopyChunks(StreamState* destination, const StreamState* source) {
  for (const StreamChunk* chunk = first_chunk(source); chunk != nullptr; chunk = chunk->next) {
    StreamChunk* copy = copy_chunk(*chunk);
    if (copy == nullptr) {
      __ostDeleteChunks(destination);
      return QOR_STREAM_NO_MEMORY;
    }
    link_at_head(destination, copy);
  }
  return QOR_STREAM_OK;
}
