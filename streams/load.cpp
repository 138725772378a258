// Loading a stream, from a file or from memory.
//
// An image comes from outside: no field is believed before it has been tested, a failed read leaves
// zeros, and nothing is read beyond what the image's own sizes cover.

#include <algorithm>
#include <cstring>
#include <utility>

#include "services/file.h"
#include "services/services.h"
#include "streams/chunks.h"
#include "streams/generators/repair.h"
#include "streams/image.h"
#include "streams/record.h"
#include "streams/registry.h"

namespace {

using namespace qor::streams;
using namespace qor::services;

// What is known of the bytes ahead.
enum class Ahead { enough, too_few, unknown };

struct FileSource {
  static constexpr int32_t not_an_image = QOR_STREAM_BAD_FILE;
  FILE* file;
  uint64_t known_left = known_file_bytes(file);

  Ahead ahead(size_t count) const {
    if (known_left == unknown_file_bytes) return Ahead::unknown;
    return count <= known_left ? Ahead::enough : Ahead::too_few;
  }
  bool read(void* to, size_t count) {
    if (!read_item(file, to, count)) return false;
    if (known_left != unknown_file_bytes) known_left -= std::min<uint64_t>(count, known_left);
    return true;
  }
};

struct MemorySource {
  static constexpr int32_t not_an_image = QOR_STREAM_BAD_IMAGE;
  const char* next;

  static Ahead ahead(size_t) { return Ahead::enough; }
  bool read(void* to, size_t count) {
    std::memcpy(to, next, count);
    next += count;
    return true;
  }
};

// ---- Header -------------------------------------------------------------------------------------

// The rest of an older header, carried over into the current layout.
template <class Source>
bool read_old_header(Source& source, ImageHeader& header) {
  constexpr size_t known = offsetof(OldImageHeader, unused1);
  OldImageHeader old{};
  std::memcpy(&old, &header, known);
  const bool complete = source.read(reinterpret_cast<char*>(&old) + known, sizeof old - known);
  header.header_bytes = sizeof header;
  header.state_bytes = old.state_bytes;
  header.chunks = old.chunks;
  header.brng = old.brng;
  return complete;
}

template <class Source>
bool read_header(Source& source, ImageHeader& header) {
  constexpr size_t known = offsetof(ImageHeader, header_bytes);
  static_assert(known == offsetof(OldImageHeader, unused1));
  source.read(&header, known);
  if (header.version != image_version) return read_old_header(source, header);
  return source.read(reinterpret_cast<char*>(&header) + known, sizeof header - known);
}

// The magic stands in the second word or, in the oldest images, in the first.
bool has_magic(const ImageHeader& header) {
  uint32_t first = 0;
  std::memcpy(&first, &header, sizeof first);
  return (header.magic & image_magic_mask) == image_magic ||
         (first & image_magic_mask) == image_magic;
}

// The row of the image's generator, or null when this is no image of it. A header that says it is
// longer is read as if it were not.
const BrngProperties* row_of_image(const ImageHeader& header) {
  if (!has_magic(header) || header.header_bytes < sizeof header) return nullptr;
  const BrngProperties* row = usable_row(header.brng);
  return row != nullptr && generator_bytes(*row) == header.state_bytes ? row : nullptr;
}

// ---- Chunks -------------------------------------------------------------------------------------

// A payload of unknown length is read in pieces, each as long as what is there already: no more is
// allocated than twice what has come.
constexpr size_t kFirstPiece = size_t{1} << 20;

// The first `filled` bytes of the block in a larger one, or null; the block is freed.
void* enlarged(void* block, size_t filled, size_t room) {
  void* larger = qor_serv_allocate(room, work_alignment);
  if (larger != nullptr) qor_serv_memcpy_s(larger, room, block, filled);
  qor_serv_deallocate(block);
  return larger;
}

// Reads a payload into a block of its own. The block is there when 0 is returned, and for the
// failed read of no bytes; else null.
template <class Source>
int32_t read_payload(Source& source, size_t size, void*& block) {
  block = nullptr;
  const Ahead ahead = source.ahead(size);
  if (ahead == Ahead::too_few) return QOR_STREAM_FILE_READ;
  size_t filled = 0, room = ahead == Ahead::enough ? size : std::min(size, kFirstPiece);
  block = qor_serv_allocate(room, work_alignment);
  while (block != nullptr) {
    const bool complete = source.read(static_cast<char*>(block) + filled, room - filled);
    if (complete && room == size) return QOR_STREAM_OK;
    if (!complete) {
      if (size != 0) qor_serv_deallocate(std::exchange(block, nullptr));
      return QOR_STREAM_FILE_READ;
    }
    filled = room;
    room += std::min(size - room, room);
    block = enlarged(block, filled, room);
  }
  return QOR_STREAM_NO_MEMORY;
}

enum class Then { go_on, stop };

// One chunk; its payload's read decides the status. Behind a read that came to the end of the file
// there is nothing more to read; a payload without bytes fails, in a file, where it stands.
template <class Source>
Then read_chunk(Source& source, StreamState* stream, uint8_t version, int32_t& status) {
  int32_t id = 0;
  uint32_t size = 0;
  qor_shared_id shared{0, 0};
  source.read(&id, sizeof id);
  status = QOR_STREAM_FILE_READ;
  if (version > image_version) return Then::stop;
  if (version != 0) source.read(&shared, sizeof shared);
  if (!source.read(&size, sizeof size)) return Then::stop;
  void* data = nullptr;
  status = read_payload(source, size, data);
  if (data == nullptr) return Then::stop;
  const int32_t added = add_loaded_chunk(stream, id, shared, data, size);
  if (added == QOR_STREAM_OK) return Then::go_on;
  status = added;
  return Then::stop;
}

// ---- The whole ----------------------------------------------------------------------------------

// State and chunks behind the header.
template <class Source>
int32_t read_contents(Source& source, const ImageHeader& header, StreamState* stream) {
  if (!source.read(stream + 1, header.state_bytes)) return QOR_STREAM_FILE_READ;
  repair_state(stream);
  if (header.brng == QOR_BRNG_TRNG && __ostCPUisRDRAND() == 0) return QOR_STREAM_NO_RDRAND;
  int32_t status = QOR_STREAM_OK;
  for (uint32_t k = 0; k < header.chunks; ++k) {
    if (read_chunk(source, stream, header.version, status) == Then::stop) break;
  }
  return status;
}

// The stream is null unless 0 is returned, or a failure after its record was made.
template <class Source>
int32_t read_image(Source& source, StreamState** stream) {
  ImageHeader header{};
  if (!read_header(source, header)) return QOR_STREAM_FILE_READ;
  const BrngProperties* row = row_of_image(header);
  if (row == nullptr) return Source::not_an_image;
  *stream = allocate_record(*row, header.brng);
  if (*stream == nullptr) return QOR_STREAM_NO_MEMORY;
  return read_contents(source, header, *stream);
}

int32_t finish(int32_t status, StreamState** stream) {
  if (status < 0 && *stream != nullptr) __ostDeleteStream(stream);
  return status;
}

}  // namespace

int32_t __ostLoadStreamF(StreamState** stream, const char* name, int32_t length) {
  *stream = nullptr;
  const FileName file_name(name, length);
  if (file_name.text() == nullptr) return QOR_STREAM_NO_MEMORY;
  FILE* file = std::fopen(file_name.text(), "rb");
  if (file == nullptr) return QOR_STREAM_FILE_OPEN;
  FileSource source{file};
  int32_t status = read_image(source, stream);
  if (std::fclose(file) != 0) status = QOR_STREAM_FILE_CLOSE;
  return finish(status, stream);
}

int32_t __ostLoadStreamM(StreamState** stream, const void* memory) {
  *stream = nullptr;
  MemorySource source{static_cast<const char*>(memory)};
  return finish(read_image(source, stream), stream);
}
