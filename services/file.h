// Files, as the C library has them, and their names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "services/services.h"

namespace qor::services {

// A file name of `length` bytes with its terminating zero, in a block of its own; null without
// memory. A negative length means that the name ends with a zero already.
class FileName {
 public:
  FileName(const char* name, int32_t length) : text_(name) {
    if (length < 0) return;
    const auto bytes = static_cast<size_t>(length);
    block_ = static_cast<char*>(qor_serv_allocate(bytes + 1, work_alignment));
    if (block_ != nullptr) {
      qor_serv_memcpy_s(block_, bytes, name, bytes);
      block_[bytes] = '\0';
    }
    text_ = block_;
  }
  ~FileName() { qor_serv_deallocate(block_); }
  FileName(const FileName&) = delete;
  FileName& operator=(const FileName&) = delete;
  const char* text() const { return text_; }

 private:
  const char* text_;
  char* block_ = nullptr;
};

// One item of `bytes` bytes, whole. An item without bytes counts as failed, as in the C library.
inline bool write_item(FILE* file, const void* item, size_t bytes) {
  return std::fwrite(item, bytes, 1, file) == 1;
}
inline bool read_item(FILE* file, void* item, size_t bytes) {
  return std::fread(item, bytes, 1, file) == 1;
}

// The bytes of a file that is known to have that many, from its start; unknown for pipes, devices
// and the like.
inline constexpr uint64_t unknown_file_bytes = UINT64_MAX;
uint64_t known_file_bytes(FILE* file);

}  // namespace qor::services
