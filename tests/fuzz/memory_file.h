// A file in memory, for what is read by name.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace qor::fuzz {

inline void require(bool condition) {
  if (!condition) std::abort();
}

// The name of a file in memory that holds the bytes until the next call.
inline const std::string& file_of(const void* bytes, size_t size) {
  static const int descriptor = memfd_create("input", 0);
  static const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
  require(ftruncate(descriptor, 0) == 0 &&
          pwrite(descriptor, bytes, size, 0) == static_cast<ssize_t>(size));
  return name;
}

}  // namespace qor::fuzz
