// The per-thread block's life: one process-wide slot, one private heap, a block a thread.
//
// Both are made at most once, each under a lock word of its own, the first test being a plain read
// (relaxed: the lock orders what it finds).

#include "frame/thread_state.h"

#include <atomic>

#include "services/services.h"

namespace qor::frame {
namespace {

using services::LockGuard;
using services::no_thread_slot;
using services::PrivateHeap;
using services::ThreadSlot;

constexpr int kMessageNoState = 773;
constexpr int kExitNoState = 3;

std::atomic<ThreadSlot> slot{no_thread_slot};
std::atomic<PrivateHeap*> heap{nullptr};
int32_t slot_lock = 0;
int32_t heap_lock = 0;

void print_no_state() { qor_serv_print(1, kMessageNoState, 0); }

void free_block_at_thread_end(void* block) {
  PrivateHeap* owner = heap.load(std::memory_order_acquire);
  if (owner != nullptr) services::heap_free(owner, block);
}

// Makes the slot when there is none. Returns whether this call made it.
bool make_slot() {
  LockGuard guard(slot_lock);
  if (slot.load(std::memory_order_relaxed) != no_thread_slot) return false;
  slot.store(services::create_thread_slot(free_block_at_thread_end), std::memory_order_release);
  return true;
}

PrivateHeap* private_heap() {
  PrivateHeap* known = heap.load(std::memory_order_acquire);
  if (known != nullptr) return known;
  LockGuard guard(heap_lock);
  known = heap.load(std::memory_order_relaxed);
  if (known == nullptr) {
    known = services::create_private_heap();
    heap.store(known, std::memory_order_release);
  }
  return known;
}

// The new block of the calling thread, or null.
ThreadState* make_block() {
  PrivateHeap* owner = private_heap();
  if (owner == nullptr) return nullptr;
  auto* block = static_cast<ThreadState*>(services::heap_allocate(owner, sizeof(ThreadState)));
  if (block == nullptr) return nullptr;
  if (!services::set_thread_slot_value(slot.load(std::memory_order_relaxed), block)) {
    services::heap_free(owner, block);
    return nullptr;
  }
  block->mode = 0;
  block->errStatus = 0;
  block->errCallback = nullptr;
  block->spare0 = 0;
  block->spare1 = 0;
  return block;
}

ThreadState& make_block_or_exit() {
  ThreadState* block = make_block();
  if (block == nullptr) {
    print_no_state();
    qor_serv_exit(kExitNoState);
  }
  return *block;
}

[[gnu::cold, gnu::noinline]] ThreadState& first_use() {
  if (slot.load(std::memory_order_acquire) == no_thread_slot && make_slot() &&
      slot.load(std::memory_order_relaxed) == no_thread_slot) {
    print_no_state();
  }
  return make_block_or_exit();
}

void free_own_block() {
  const ThreadSlot known = slot.load(std::memory_order_acquire);
  if (known == no_thread_slot) return;
  void* block = services::thread_slot_value(known);
  if (block == nullptr) return;
  free_block_at_thread_end(block);
  services::set_thread_slot_value(known, nullptr);
}

int32_t attach_process() {
  if (!make_slot()) return 1;
  if (slot.load(std::memory_order_relaxed) != no_thread_slot && make_block() != nullptr) return 1;
  print_no_state();
  return 0;
}

void detach_process() {
  free_own_block();
  const ThreadSlot known = slot.exchange(no_thread_slot, std::memory_order_acq_rel);
  if (known != no_thread_slot) services::delete_thread_slot(known);
  services::destroy_private_heap(heap.exchange(nullptr, std::memory_order_acq_rel));
}

}  // namespace

ThreadState& thread_state() {
  const ThreadSlot known = slot.load(std::memory_order_acquire);
  if (known != no_thread_slot) [[likely]] {
    void* block = services::thread_slot_value(known);
    if (block != nullptr) [[likely]]
      return *static_cast<ThreadState*>(block);
  }
  return first_use();
}

int32_t library_entry(void* /*instance*/, Notice notice, void* reserved) {
  switch (notice) {
    case Notice::process_attach:
      return attach_process();
    case Notice::thread_attach:
      return 1;
    case Notice::thread_detach:
      free_own_block();
      return 1;
    case Notice::process_detach:
      if (reserved == nullptr) detach_process();
      return 1;
  }
  return 1;
}

}  // namespace qor::frame
