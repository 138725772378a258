// The platform behind services.h: thread slots and the private heap.

#include <cstring>

#include "services/services.h"

namespace qor::services {

ThreadSlot create_thread_slot(void (*at_thread_end)(void* value)) {
  ThreadSlot slot = no_thread_slot;
  return pthread_key_create(&slot, at_thread_end) == 0 ? slot : no_thread_slot;
}

void delete_thread_slot(ThreadSlot slot) { pthread_key_delete(slot); }

bool set_thread_slot_value(ThreadSlot slot, void* value) {
  return pthread_setspecific(slot, value) == 0;
}

namespace {

// A block's header; the blocks of a heap form a ring through the heap itself.
struct alignas(16) Link {
  Link* next;
  Link* previous;
};

void insert_behind(Link* at, Link* link) {
  link->next = at->next;
  link->previous = at;
  at->next->previous = link;
  at->next = link;
}

void remove(Link* link) {
  link->previous->next = link->next;
  link->next->previous = link->previous;
}

}  // namespace

struct PrivateHeap {
  Link blocks;
  int32_t lock;
};

PrivateHeap* create_private_heap() {
  auto* heap = static_cast<PrivateHeap*>(qor_serv_allocate(sizeof(PrivateHeap), alignof(Link)));
  if (heap == nullptr) return nullptr;
  heap->blocks = {&heap->blocks, &heap->blocks};
  heap->lock = 0;
  return heap;
}

void destroy_private_heap(PrivateHeap* heap) {
  if (heap == nullptr) return;
  while (heap->blocks.next != &heap->blocks) heap_free(heap, heap->blocks.next + 1);
  qor_serv_deallocate(heap);
}

void* heap_allocate(PrivateHeap* heap, size_t size) {
  auto* link = static_cast<Link*>(qor_serv_allocate(sizeof(Link) + size, alignof(Link)));
  if (link == nullptr) return nullptr;
  std::memset(link + 1, 0, size);
  LockGuard guard(heap->lock);
  insert_behind(&heap->blocks, link);
  return link + 1;
}

void heap_free(PrivateHeap* heap, void* block) {
  Link* link = static_cast<Link*>(block) - 1;
  {
    LockGuard guard(heap->lock);
    remove(link);
  }
  qor_serv_deallocate(link);
}

}  // namespace qor::services
