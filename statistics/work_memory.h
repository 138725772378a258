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
    const int64_t values = services::counted_product(count, static_cast<int64_t>(sizeof(T)));
    char* block = services::allocate_values<char>(services::counted_sum(kHead, values));
    failed_ = block == nullptr;
    if (failed_) return nullptr;
    last_ = new (block) Piece{last_};
    return reinterpret_cast<T*>(block + kHead);
  }

  bool failed() const { return failed_; }

 private:
  // What stands before a piece's values: the pieces are a chain, so that there may be any number.
  struct Piece {
    Piece* before;
  };
  static constexpr int64_t kHead{services::work_alignment};
  static_assert(kHead >= int64_t{sizeof(Piece)});

  Piece* last_ = nullptr;
  bool failed_ = false;
};

}  // namespace qor::statistics
