// Saving a stream, to a file or to memory.

#include <cstring>
#include <limits>

#include "services/file.h"
#include "streams/image.h"
#include "streams/record.h"
#include "streams/registry.h"

namespace {

using namespace qor::streams;
using namespace qor::services;

struct FileSink {
  FILE* file;
  bool write(const void* bytes, size_t count) { return write_item(file, bytes, count); }
};

struct MemorySink {
  char* next;
  bool write(const void* bytes, size_t count) {
    std::memcpy(next, bytes, count);
    next += count;
    return true;
  }
};

// The image's field of the count has no more.
bool has_too_many_chunks(const StreamState* stream) {
  return __ostGetNumChunks(stream) > std::numeric_limits<uint16_t>::max();
}

uint64_t image_bytes(const StreamState* stream) {
  uint64_t bytes = sizeof(ImageHeader) + generator_bytes(row_of(stream));
  for (const StreamChunk* chunk = first_chunk(stream); chunk != nullptr; chunk = chunk->next)
    bytes += uint64_t{chunk->size} + image_chunk_bytes;
  return bytes;
}

ImageHeader header_of(const StreamState* stream) {
  const auto state_bytes = static_cast<uint32_t>(generator_bytes(row_of(stream)));
  return {.version = image_version,
          .unused0 = {},
          .magic = image_magic,
          .header_bytes = sizeof(ImageHeader),
          .unused1 = 0,
          .state_bytes = state_bytes,
          .chunks = static_cast<uint16_t>(__ostGetNumChunks(stream)),
          .unused2 = 0,
          .brng = stream->brng};
}

// The payload's write alone decides: a failure before it makes it fail too.
template <class Sink>
bool write_chunk(Sink& sink, const StreamChunk& chunk) {
  sink.write(&chunk.id, sizeof chunk.id);
  sink.write(&chunk.shared.time, sizeof chunk.shared.time);
  sink.write(&chunk.shared.number, sizeof chunk.shared.number);
  sink.write(&chunk.size, sizeof chunk.size);
  return sink.write(chunk.data, chunk.size);
}

template <class Sink>
bool write_image(Sink& sink, const StreamState* stream) {
  const ImageHeader header = header_of(stream);
  if (!sink.write(&header, sizeof header)) return false;
  if (!sink.write(stream + 1, header.state_bytes)) return false;
  bool written = true;  // the last chunk's answer stands
  for (const StreamChunk* chunk = first_chunk(stream); chunk != nullptr; chunk = chunk->next)
    written = write_chunk(sink, *chunk);
  return written;
}

}  // namespace

int32_t __ostGetStreamSize(const StreamState* stream) {
  const uint64_t bytes = image_bytes(stream);
  constexpr int32_t most = std::numeric_limits<int32_t>::max();
  return bytes <= uint64_t{most} ? static_cast<int32_t>(bytes) : QOR_STREAM_FILE_WRITE;
}

int32_t __ostSaveStreamF(const StreamState* stream, const char* name, int32_t length) {
  const FileName file_name(name, length);
  if (file_name.text() == nullptr) return QOR_STREAM_NO_MEMORY;
  if (has_too_many_chunks(stream)) return QOR_STREAM_FILE_WRITE;
  FILE* file = std::fopen(file_name.text(), "wb");
  if (file == nullptr) return QOR_STREAM_FILE_OPEN;
  FileSink sink{file};
  const bool written = write_image(sink, stream);
  if (std::fclose(file) != 0) return QOR_STREAM_FILE_CLOSE;
  return written ? QOR_STREAM_OK : QOR_STREAM_FILE_WRITE;
}

int32_t __ostSaveStreamM(const StreamState* stream, void* memory) {
  if (has_too_many_chunks(stream) || __ostGetStreamSize(stream) < 0) return QOR_STREAM_FILE_WRITE;
  MemorySink sink{static_cast<char*>(memory)};
  write_image(sink, stream);
  return QOR_STREAM_OK;
}
