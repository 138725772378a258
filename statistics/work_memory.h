// The work memory of one call: taken piece by piece, given back at its end.
#pragma once

#include <iterator>

#include "services/scratch.h"

namespace qor::statistics {

class WorkMemory {
 public:
  WorkMemory() = default;
  ~WorkMemory() {
    for (int i = 0; i < taken_; ++i) qor_serv_deallocate(blocks_[i]);
  }
  WorkMemory(const WorkMemory&) = delete;
  WorkMemory& operator=(const WorkMemory&) = delete;

  // Memory for `count` values; null for none, and where there is no memory, which is remembered.
  template <class T>
  T* take(int64_t count) {
    if (count == 0 || failed_) return nullptr;
    T* block = services::allocate_values<T>(count);
    failed_ = block == nullptr;
    if (!failed_) blocks_[taken_++] = block;
    return block;
  }

  bool failed() const { return failed_; }

 private:
  static constexpr int kMost = 6;  // pieces of one call

  void* blocks_[kMost];
  int taken_ = 0;
  bool failed_ = false;
};

}  // namespace qor::statistics
