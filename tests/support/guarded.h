// A vector with a page on either side that may not be touched.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <new>

namespace qor::test {

template <class T>
class Guarded {
 public:
  // Room for `most` elements, which ends at a guard page, and starts at one up to a page's rest.
  explicit Guarded(size_t most) : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    bytes_ = (most * sizeof(T) + page_ - 1) / page_ * page_;
    base_ = static_cast<std::byte*>(mmap(nullptr, bytes_ + 2 * page_, PROT_READ | PROT_WRITE,
                                         MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED) throw std::bad_alloc();
    mprotect(base_, page_, PROT_NONE);
    mprotect(base_ + page_ + bytes_, page_, PROT_NONE);
  }
  ~Guarded() { munmap(base_, bytes_ + 2 * page_); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  // The first element, right behind the guard page before it.
  T* first() { return reinterpret_cast<T*>(base_ + page_); }
  // n elements whose last stands right before the guard page behind it.
  T* last(size_t n) { return reinterpret_cast<T*>(base_ + page_ + bytes_) - n; }

 private:
  size_t page_, bytes_;
  std::byte* base_;
};

}  // namespace qor::test
