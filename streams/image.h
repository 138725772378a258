// The image of a stream, in a file and in memory.
#pragma once

#include <cstdint>

#include "qor/streams.h"

namespace qor::streams {

// The current header. The magic is the low 24 bits of its word.
struct ImageHeader {
  uint8_t version;
  uint8_t unused0[3];
  uint32_t magic;
  uint16_t header_bytes;
  uint16_t unused1;
  uint32_t state_bytes;  // of the generator state, which follows the header
  uint16_t chunks;
  uint16_t unused2;
  int32_t brng;
};
static_assert(sizeof(ImageHeader) == 24);

// The header of versions 0 and 1, still read.
struct OldImageHeader {
  uint8_t version;
  uint8_t unused0[3];
  uint32_t magic;
  uint16_t unused1;
  uint16_t state_bytes;
  uint16_t chunks;
  uint16_t unused2;
  int32_t brng;
};
static_assert(sizeof(OldImageHeader) == 20);

inline constexpr uint8_t image_version = 2;
inline constexpr uint32_t image_magic = 0x474E52;  // "RNG"
inline constexpr uint32_t image_magic_mask = 0xFFFFFF;

// A chunk's record: id, shared identifier (from version 1 on), size, payload.
inline constexpr int32_t image_chunk_bytes = 24;

}  // namespace qor::streams
