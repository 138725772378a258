// Life of a stream: create, copy, delete; and the dispatch of skip-ahead and leapfrog.

#include <algorithm>

#include "services/services.h"
#include "streams/generators/repair.h"
#include "streams/record.h"
#include "streams/registry.h"

namespace qor::streams {

StreamState* allocate_record(const BrngProperties& row, int32_t id) {
  auto* stream =
      static_cast<StreamState*>(qor_serv_allocate(record_bytes(row), services::work_alignment));
  if (stream != nullptr) *stream = {id, 1, 0, 0, 0};
  return stream;
}

namespace {

// Abstract streams are made by entries of their own, which know what their state needs.
bool is_abstract(int32_t id) {
  return (id & ~0x100000) == QOR_BRNG_IABSTRACT || id == QOR_BRNG_SABSTRACT;
}

}  // namespace
}  // namespace qor::streams

using namespace qor::streams;

int32_t __ostAllocateStream(StreamState** stream, const BrngProperties* table, int32_t id,
                            int32_t row, int32_t sub) {
  const BrngProperties* properties = valid_row(table, row, sub);
  if (properties == nullptr) return QOR_STREAM_BAD_GENERATOR;
  *stream = allocate_record(*properties, id);
  return *stream != nullptr ? QOR_STREAM_OK : QOR_STREAM_NO_MEMORY;
}

int32_t __ostNewStreamEx(StreamState** stream, int32_t id, int32_t n, const uint32_t* params) {
  if (is_abstract(id)) return QOR_STREAM_BAD_GENERATOR;
  const BrngProperties* row = usable_row(id);
  if (row == nullptr) return QOR_STREAM_BAD_GENERATOR;
  *stream = allocate_record(*row, id);
  if (*stream == nullptr) return QOR_STREAM_NO_MEMORY;
  return row->initStream(QOR_BRNG_CREATE, *stream, n, params);
}

int32_t __ostCopyStream(StreamState** stream, const StreamState* source) {
  const BrngProperties* row = usable_row(source->brng);
  if (row == nullptr) return QOR_STREAM_BAD_GENERATOR;
  *stream = allocate_record(*row, source->brng);
  if (*stream == nullptr) return QOR_STREAM_NO_MEMORY;
  qor_serv_memcpy_s(*stream, record_bytes(*row), source, record_bytes(*row));
  (*stream)->chunks = 0;
  return __ostCopyChunks(*stream, source);
}

int32_t __ostCopyStreamState(StreamState* destination, const StreamState* source) {
  if (destination == source) return QOR_STREAM_OK;
  const BrngProperties& row = row_of(source);
  // The product of the WH row is twice what the state holds; another generator's may hold less.
  const uint64_t words =
      static_cast<uint64_t>(row.wordBytes) * static_cast<uint64_t>(row.seedWords);
  const size_t room = std::min(generator_bytes(row), generator_bytes(row_of(destination)));
  qor_serv_memcpy_s(destination + 1, room, source + 1,
                    words < room ? static_cast<size_t>(words) : room);
  repair_state(destination);
  __ostDeleteChunks(destination);
  return __ostCopyChunks(destination, source);
}

int32_t __ostDeleteStream(StreamState** stream) {
  __ostDeleteChunks(*stream);
  qor_serv_deallocate(*stream);
  *stream = nullptr;
  return QOR_STREAM_OK;
}

int32_t __ostGetStreamStateBrng(const StreamState* stream) { return stream->brng; }

int32_t __ostLeapfrogStream(StreamState* stream, int32_t k, int32_t nstreams) {
  if (nstreams < 0) return QOR_STREAM_BAD_STRIDE;
  return row_of(stream).initStream(QOR_BRNG_LEAPFROG, stream, nstreams, &k);
}

int32_t __ostSkipAheadStream(StreamState* stream, uint64_t nskip) {
  return row_of(stream).initStream(QOR_BRNG_SKIP_AHEAD, stream, 2, &nskip);
}

int32_t __ostSkipAheadStreamEx(StreamState* stream, int32_t n, const uint64_t* nskip) {
  return row_of(stream).initStream(QOR_BRNG_SKIP_AHEAD_EX, stream, n, nskip);
}
