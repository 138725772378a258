// Complete images for the fuzz targets: a reader of a memory image cannot know its length, so what
// the image's own sizes cover is made to be there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace qor::fuzz {

// The bytes that an image with these sizes covers; walks headers and chunk records only. Sizes
// beyond `limit` end the walk.
inline size_t covered_bytes(const std::vector<uint8_t>& image, size_t limit) {
  const auto field = [&](size_t at, size_t bytes) {
    uint32_t value = 0;
    if (at + bytes <= image.size()) std::memcpy(&value, image.data() + at, bytes);
    return value;
  };
  const unsigned version = field(0, 1);
  const bool current = version == 2;
  const size_t chunks = current ? field(16, 2) : field(12, 2);
  const size_t record = version == 0 ? 8 : 24;
  size_t end = (current ? 24 : 20) + (current ? size_t{field(12, 4)} : size_t{field(10, 2)});
  if (version > 2) return end + (chunks != 0 ? 4 : 0);
  for (size_t k = 0; k < chunks && end <= limit; ++k) end += record + field(end + record - 4, 4);
  return end;
}

}  // namespace qor::fuzz
