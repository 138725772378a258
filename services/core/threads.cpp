// Blocks of threads: slots with a place on every thread, and the heaps that the blocks come from.
//
// A thread may end while the library that gave it a block is being unloaded, and after that. What
// runs then is here, in a library that stays, and looks only at what stays: a key is never deleted,
// so that no other's destructor gets a value of ours; a place belongs to its thread, which alone
// frees it; and whoever closes a slot empties its places under the lock that a thread's end takes.

#include <pthread.h>

#include <cstdlib>
#include <cstring>

#include "services/services.h"

namespace {

struct ThreadsGuard : qor::services::LockGuard {
  ThreadsGuard() : LockGuard(*qor_serv_process_lock(QOR_SERV_THREADS_LOCK)) {}
};

// ---- Rings: a head and its nodes, each of which knows its neighbours ----------------------------

template <class Node>
void insert_behind(Node* at, Node* node) {
  node->next = at->next;
  node->previous = at;
  at->next->previous = node;
  at->next = node;
}

template <class Node>
void remove(Node* node) {
  node->previous->next = node->next;
  node->next->previous = node->previous;
}

// ---- Heaps --------------------------------------------------------------------------------------

// What stands in front of a block.
struct alignas(16) Header {
  Header* next;
  Header* previous;
};

Header* header_of(void* block) { return static_cast<Header*>(block) - 1; }

}  // namespace

struct qor_serv_heap {
  Header blocks;
};

qor_serv_heap* qor_serv_open_heap() {
  auto* heap =
      static_cast<qor_serv_heap*>(qor_serv_allocate(sizeof(qor_serv_heap), alignof(qor_serv_heap)));
  if (heap != nullptr) heap->blocks = {&heap->blocks, &heap->blocks};
  return heap;
}

void qor_serv_close_heap(qor_serv_heap* heap) {
  if (heap == nullptr) return;
  while (heap->blocks.next != &heap->blocks) qor_serv_heap_free(heap->blocks.next + 1);
  qor_serv_deallocate(heap);
}

void* qor_serv_heap_allocate(qor_serv_heap* heap, size_t size) {
  auto* header = static_cast<Header*>(qor_serv_allocate(sizeof(Header) + size, alignof(Header)));
  if (header == nullptr) return nullptr;
  std::memset(header + 1, 0, size);
  const ThreadsGuard guard;
  insert_behind(&heap->blocks, header);
  return header + 1;
}

void qor_serv_heap_free(void* block) {
  {
    const ThreadsGuard guard;
    remove(header_of(block));
  }
  qor_serv_deallocate(header_of(block));
}

// ---- Slots --------------------------------------------------------------------------------------

namespace {

// A thread's place in a slot: what the slot's key has as the thread's value.
struct Place : qor_serv_place {
  Place* next;
  Place* previous;
};

// A closed slot waits with its key to be opened again: threads keep their places.
struct Slot {
  pthread_key_t key;
  bool open;
  Place places;
  Slot* next;
};

Slot* slots = nullptr;

// Called with the lock held, as what follows.
Slot* slot_of(unsigned key) {
  for (Slot* slot = slots; slot != nullptr; slot = slot->next) {
    if (slot->open && slot->key == key) return slot;
  }
  return nullptr;
}

Slot* closed_slot() {
  for (Slot* slot = slots; slot != nullptr; slot = slot->next) {
    if (!slot->open) return slot;
  }
  return nullptr;
}

void at_thread_end(void* value) {
  auto* place = static_cast<Place*>(static_cast<qor_serv_place*>(value));
  Header* header = nullptr;
  {
    const ThreadsGuard guard;
    remove(place);
    if (place->block != nullptr) {
      header = header_of(place->block);
      remove(header);
    }
  }
  qor_serv_deallocate(header);
  std::free(place);
}

Slot* new_slot() {
  auto* slot = static_cast<Slot*>(std::calloc(1, sizeof(Slot)));
  if (slot == nullptr) return nullptr;
  if (pthread_key_create(&slot->key, at_thread_end) != 0) {
    std::free(slot);
    return nullptr;
  }
  slot->places.next = slot->places.previous = &slot->places;
  slot->next = slots;
  slots = slot;
  return slot;
}

// The calling thread's new place in the slot, or null.
Place* new_place(Slot* slot) {
  auto* place = static_cast<Place*>(std::calloc(1, sizeof(Place)));
  if (place == nullptr) return nullptr;
  if (pthread_setspecific(slot->key, static_cast<qor_serv_place*>(place)) != 0) {
    std::free(place);
    return nullptr;
  }
  insert_behind(&slot->places, place);
  return place;
}

}  // namespace

unsigned qor_serv_open_slot() {
  const ThreadsGuard guard;
  Slot* slot = closed_slot();
  if (slot == nullptr) slot = new_slot();
  if (slot == nullptr) return QOR_SERV_NO_SLOT;
  slot->open = true;
  return slot->key;
}

void qor_serv_close_slot(unsigned key) {
  const ThreadsGuard guard;
  Slot* slot = slot_of(key);
  if (slot == nullptr) return;
  for (Place* place = slot->places.next; place != &slot->places; place = place->next)
    place->block = nullptr;
  slot->open = false;
}

int qor_serv_set_slot(unsigned key, void* block) {
  const ThreadsGuard guard;
  Slot* slot = slot_of(key);
  if (slot == nullptr) return 0;
  auto* place = static_cast<qor_serv_place*>(pthread_getspecific(slot->key));
  if (place == nullptr) place = new_place(slot);
  if (place == nullptr) return 0;
  place->block = block;
  return 1;
}
