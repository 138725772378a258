// The per-thread block's life: one process-wide slot, one private heap, a block a thread, which the
// services give back when the thread ends.
//
// Slot and heap are made at most once, each under a lock word of its own, the first test being a
// plain read (relaxed: the lock orders what it finds).

#include "frame/thread_state.h"

#include <atomic>

#include "services/services.h"

namespace qor::frame {
namespace {

constexpr int kMessageNoState = 773;
constexpr int kExitNoState = 3;

std::atomic<unsigned> slot{QOR_SERV_NO_SLOT};
std::atomic<qor_serv_heap*> heap{nullptr};

void print_no_state() { qor_serv_print(1, kMessageNoState, 0); }

// Makes the slot when there is none. Returns whether this call made it.
bool make_slot() {
  const services::LockGuard guard(*qor_serv_process_lock(QOR_SERV_SLOT_LOCK));
  if (slot.load(std::memory_order_relaxed) != QOR_SERV_NO_SLOT) return false;
  slot.store(qor_serv_open_slot(), std::memory_order_release);
  return true;
}

qor_serv_heap* private_heap() {
  qor_serv_heap* known = heap.load(std::memory_order_acquire);
  if (known != nullptr) return known;
  const services::LockGuard guard(*qor_serv_process_lock(QOR_SERV_HEAP_LOCK));
  known = heap.load(std::memory_order_relaxed);
  if (known == nullptr) {
    known = qor_serv_open_heap();
    heap.store(known, std::memory_order_release);
  }
  return known;
}

// The new block of the calling thread, or null.
ThreadState* make_block() {
  qor_serv_heap* owner = private_heap();
  if (owner == nullptr) return nullptr;
  auto* block = static_cast<ThreadState*>(qor_serv_heap_allocate(owner, sizeof(ThreadState)));
  if (block == nullptr) return nullptr;
  if (qor_serv_set_slot(slot.load(std::memory_order_relaxed), block) == 0) {
    qor_serv_heap_free(block);
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
  const services::ErrnoKept kept;
  if (slot.load(std::memory_order_acquire) == QOR_SERV_NO_SLOT && make_slot() &&
      slot.load(std::memory_order_relaxed) == QOR_SERV_NO_SLOT) {
    print_no_state();
  }
  return make_block_or_exit();
}

void free_own_block() {
  const unsigned known = slot.load(std::memory_order_acquire);
  if (known == QOR_SERV_NO_SLOT) return;
  void* block = services::thread_block(known);
  if (block == nullptr) return;
  qor_serv_set_slot(known, nullptr);
  qor_serv_heap_free(block);
}

int32_t attach_process() {
  if (!make_slot()) return 1;
  if (slot.load(std::memory_order_relaxed) != QOR_SERV_NO_SLOT && make_block() != nullptr) return 1;
  print_no_state();
  return 0;
}

// Other threads may be ending: from when the slot is closed on none of them touches its block.
void detach_process() {
  free_own_block();
  qor_serv_close_slot(slot.exchange(QOR_SERV_NO_SLOT, std::memory_order_acq_rel));
  qor_serv_close_heap(heap.exchange(nullptr, std::memory_order_acq_rel));
}

}  // namespace

ThreadState& thread_state() {
  const unsigned known = slot.load(std::memory_order_acquire);
  if (known != QOR_SERV_NO_SLOT) [[likely]] {
    void* block = services::thread_block(known);
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
