// The only door from the library's rooms to the companion services and to the platform.
#pragma once

#include <pthread.h>

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

// A process-wide slot with a value per thread. `all ones` means that there is none.
using ThreadSlot = pthread_key_t;
inline constexpr ThreadSlot no_thread_slot = ~ThreadSlot{0};

// Returns a new slot whose non-null values are handed to `at_thread_end` when their thread ends, or
// no_thread_slot.
ThreadSlot create_thread_slot(void (*at_thread_end)(void* value));
void delete_thread_slot(ThreadSlot slot);
inline void* thread_slot_value(ThreadSlot slot) { return pthread_getspecific(slot); }
bool set_thread_slot_value(ThreadSlot slot, void* value);

// A private heap: zeroed blocks of its own, all of which go when the heap goes. Any thread.
struct PrivateHeap;
PrivateHeap* create_private_heap();
void destroy_private_heap(PrivateHeap* heap);
void* heap_allocate(PrivateHeap* heap, size_t size);
void heap_free(PrivateHeap* heap, void* block);

}  // namespace qor::services
