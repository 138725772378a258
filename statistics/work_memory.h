// The work memory of one call: taken piece by piece, given back at its end.
#pragma once

#include <new>

#include "services/scratch.h"

namespace qor::statistics {

class WorkMemory {
 public:
  WorkMemory() = default;
  ~WorkMemory() {
    while (last_ != nullptr) {
      Piece* piece = last_;
      last_ = piece->before;
      qor_serv_deallocate(piece);
    }
  }
  WorkMemory(const WorkMemory&) = delete;
  WorkMemory& operator=(const WorkMemory&) = delete;

  // Memory for `count` values; null for none, and where there is no memory, which is remembered.
  template <class T>
  T* take(int64_t count) {
    if (count == 0 || failed_) return nullptr;
    const int64_t bytes = services::counted_product(count, int64_t{sizeof(T)});
    if (bytes <= kOnStack - used_) {
      char* piece = on_stack_ + used_;
      used_ += (bytes + kUnit - 1) / kUnit * kUnit;
      return reinterpret_cast<T*>(piece);
    }
    char* block = services::allocate_values<char>(services::counted_sum(kUnit, bytes));
    failed_ = block == nullptr;
    if (failed_) return nullptr;
    last_ = new (block) Piece{last_};
    return reinterpret_cast<T*>(block + kUnit);
  }

  bool failed() const { return failed_; }

 private:
  // What stands before an allocated piece: they are a chain, so that there may be any number.
  struct Piece {
    Piece* before;
  };
  static constexpr int64_t kUnit{services::work_alignment};
  static constexpr int64_t kOnStack = 64 * kUnit;  // most of what a call over few variables takes
  static_assert(kUnit >= int64_t{sizeof(Piece)});

  Piece* last_ = nullptr;
  int64_t used_ = 0;
  bool failed_ = false;
  alignas(services::work_alignment) char on_stack_[kOnStack];
};

}  // namespace qor::statistics
