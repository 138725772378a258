// The only door from the library's rooms to the companion services and to the platform.
#pragma once

#include <pthread.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "qor/services.h"

namespace qor::services {

// Work memory of the library is aligned to this many bytes.
inline constexpr size_t work_alignment = 128;

// Holds a lock word of the services for the length of a scope.
class LockGuard {
 public:
  explicit LockGuard(int32_t& word) : word_(word) { qor_serv_lock(&word_); }
  ~LockGuard() { qor_serv_unlock(&word_); }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  int32_t& word_;
};

// The calling thread's block in a slot, or null.
inline void* thread_block(unsigned slot) {
  auto* place = static_cast<const qor_serv_place*>(pthread_getspecific(slot));
  return place != nullptr ? place->block : nullptr;
}

// Keeps the caller's errno over a scope.
class ErrnoKept {
 public:
  ErrnoKept() : value_(errno) {}
  ~ErrnoKept() { errno = value_; }
  ErrnoKept(const ErrnoKept&) = delete;
  ErrnoKept& operator=(const ErrnoKept&) = delete;

 private:
  int value_;
};

// The feature words ECX and EDX of the processor's identification leaf 1, asked for at each call;
// zero when there is no such leaf.
struct FeatureWords {
  uint32_t ecx = 0, edx = 0;
};
FeatureWords processor_features();

// A counter of the processor that goes on between any two calls.
uint64_t time_stamp();

}  // namespace qor::services
