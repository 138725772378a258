// Work memory of known count, with sizes that do not wrap.
#pragma once

#include <cstddef>
#include <cstdint>

#include "services/services.h"

namespace qor::services {

// Counts that stop at the largest value instead of wrapping; no allocation of that size succeeds.
inline constexpr int64_t too_many = INT64_MAX;

inline int64_t counted_product(int64_t a, int64_t b) {
  int64_t product;
  return a < 0 || b < 0 || __builtin_mul_overflow(a, b, &product) ? too_many : product;
}
inline int64_t counted_sum(int64_t a, int64_t b) {
  int64_t sum;
  return a < 0 || b < 0 || __builtin_add_overflow(a, b, &sum) ? too_many : sum;
}

// Memory for `count` values of type T, or null.
template <class T>
T* allocate_values(int64_t count) {
  constexpr int64_t largest = PTRDIFF_MAX / static_cast<int64_t>(sizeof(T));
  if (count < 0 || count > largest) return nullptr;
  const size_t size = static_cast<size_t>(count) * sizeof(T);
  return static_cast<T*>(qor_serv_allocate(size, work_alignment));
}

// Scratch for the length of a scope: on the stack for up to OnStack values, else allocated. data()
// is null when there was no memory.
template <class T, int64_t OnStack>
class Scratch {
 public:
  explicit Scratch(int64_t count)
      : allocated_(count > OnStack ? allocate_values<T>(count) : nullptr),
        data_(count > OnStack ? allocated_ : on_stack_) {}
  ~Scratch() { qor_serv_deallocate(allocated_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  T* data() const { return data_; }

 private:
  T on_stack_[OnStack];
  T* allocated_;
  T* data_;
};

// Scratch that is always allocated.
template <class T>
class HeapScratch {
 public:
  explicit HeapScratch(int64_t count) : data_(allocate_values<T>(count)) {}
  ~HeapScratch() { qor_serv_deallocate(data_); }
  HeapScratch(const HeapScratch&) = delete;
  HeapScratch& operator=(const HeapScratch&) = delete;

  T* data() const { return data_; }

 private:
  T* data_;
};

}  // namespace qor::services
