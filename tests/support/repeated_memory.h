// Arrays longer than memory: the same few pages come again and again, so that what is written last
// stands in all their places.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace qor::test {

inline constexpr int32_t longest_count = std::numeric_limits<int32_t>::max();

class RepeatedMemory {
 public:
  static constexpr size_t window = size_t{1} << 24;  // bytes that are really there

  explicit RepeatedMemory(size_t bytes) : bytes_((bytes + window - 1) / window * window) {
    const int file = memfd_create("window", 0);
    EXPECT_EQ(ftruncate(file, window), 0);
    start_ = static_cast<char*>(map(nullptr, bytes_, PROT_NONE, MAP_ANONYMOUS, -1));
    for (size_t at = 0; at < bytes_; at += window)
      map(start_ + at, window, PROT_READ | PROT_WRITE, MAP_FIXED, file);
    close(file);
  }
  ~RepeatedMemory() { munmap(start_, bytes_); }
  RepeatedMemory(const RepeatedMemory&) = delete;
  RepeatedMemory& operator=(const RepeatedMemory&) = delete;

  template <class Value>
  Value* values() const {
    return reinterpret_cast<Value*>(start_);
  }

 private:
  static void* map(void* at, size_t bytes, int access, int flags, int file) {
    void* mapped = mmap(at, bytes, access, MAP_SHARED | MAP_NORESERVE | flags, file, 0);
    EXPECT_NE(mapped, MAP_FAILED);
    return mapped;
  }

  size_t bytes_;
  char* start_;
};

}  // namespace qor::test
