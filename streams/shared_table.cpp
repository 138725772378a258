// The table of shared read-only data. Entries are kept dense; a search walks them.

#include "streams/shared_table.h"

#include <atomic>

#include "services/services.h"

namespace qor::streams {
namespace {

constexpr int32_t kCapacity = 128;
// Chunks stop sharing one entry short of that.
constexpr int32_t kChunkLimit = 127;

qor_shared_entry entries[kCapacity];
int32_t entries_in_use = 0;

// Held for a search of the table at most, so that a waiting thread may spin.
class TableLock {
 public:
  TableLock() {
    for (int32_t free = 0; !word_.compare_exchange_weak(free, 1, std::memory_order_acquire);
         free = 0) {
    }
  }
  ~TableLock() { word_.store(0, std::memory_order_release); }
  TableLock(const TableLock&) = delete;
  TableLock& operator=(const TableLock&) = delete;

 private:
  std::atomic_ref<int32_t> word_{*qor_serv_process_lock(QOR_SERV_SHARED_DATA_LOCK)};
};

bool same(const qor_shared_id& a, const qor_shared_id& b) {
  return a.time == b.time && a.number == b.number;
}

// The functions from here to the end of the namespace are called with the lock held.

qor_shared_entry* find(const qor_shared_id& id) {
  if (is_none(id)) return nullptr;
  for (int32_t i = 0; i < entries_in_use; ++i) {
    if (same(entries[i].id, id)) return &entries[i];
  }
  return nullptr;
}

// Whoever registered data by hand told no size: then the chunk's own stands.
void refer(qor_shared_entry& entry, StreamChunk& chunk) {
  ++entry.references;
  chunk.data = entry.data;
  if (entry.size != QOR_SHARED_SIZE_UNKNOWN) chunk.size = static_cast<uint32_t>(entry.size);
}

void enter(StreamChunk& chunk) {
  if (entries_in_use >= kChunkLimit) {
    chunk.shared = {0, 0};
  } else {
    entries[entries_in_use++] = {chunk.shared, 1, chunk.data, chunk.size};
  }
}

// Takes a reference from every entry with this id; returns how many there were.
int32_t unrefer(const qor_shared_id& id) {
  int32_t found = 0;
  for (int32_t i = 0; i < entries_in_use;) {
    if (!same(entries[i].id, id)) {
      ++i;
      continue;
    }
    ++found;
    if (--entries[i].references != 0) {
      ++i;
      continue;
    }
    qor_serv_deallocate(entries[i].data);
    entries[i] = entries[--entries_in_use];
  }
  return found;
}

}  // namespace

void share(StreamChunk& chunk) {
  const TableLock lock;
  qor_shared_entry* entry = find(chunk.shared);
  if (entry != nullptr) {
    refer(*entry, chunk);
  } else {
    enter(chunk);
  }
}

void share_if_same_size(StreamChunk& chunk) {
  const TableLock lock;
  qor_shared_entry* entry = find(chunk.shared);
  if (entry == nullptr) {
    enter(chunk);
  } else if (entry->size == int64_t{chunk.size}) {
    refer(*entry, chunk);
  } else {
    chunk.shared = {0, 0};
  }
}

bool share_registered(StreamChunk& chunk) {
  const TableLock lock;
  qor_shared_entry* entry = find(chunk.shared);
  if (entry != nullptr) refer(*entry, chunk);
  return entry != nullptr;
}

void release_data(StreamChunk& chunk) {
  if (!is_none(chunk.shared)) {
    const TableLock lock;
    if (unrefer(chunk.shared) != 0) return;
  }
  qor_serv_deallocate(chunk.data);
}

}  // namespace qor::streams

using namespace qor::streams;

int32_t __ostFindGlobRODataTableEntry(qor_shared_entry** entry, const qor_shared_id* id) {
  if (id == nullptr || is_none(*id)) return QOR_STREAM_NO_SHARED_ENTRY;
  const TableLock lock;
  qor_shared_entry* found = find(*id);
  if (found == nullptr) return QOR_STREAM_NO_SHARED_ENTRY;
  *entry = found;
  return QOR_STREAM_OK;
}

int32_t __ostCreateGlobRODataTableEntry(qor_shared_entry** entry, const qor_shared_id* id,
                                        void* data) {
  const TableLock lock;
  if (entries_in_use >= kCapacity) return QOR_STREAM_SHARED_TABLE_FULL;
  *entry = &entries[entries_in_use++];
  **entry = {*id, 1, data, QOR_SHARED_SIZE_UNKNOWN};
  return QOR_STREAM_OK;
}

int32_t __ostRegisterGlobRODataReference(StreamChunk* chunk, const qor_shared_id* id) {
  const TableLock lock;
  qor_shared_entry* entry = find(*id);
  if (entry != nullptr) refer(*entry, *chunk);
  return QOR_STREAM_OK;
}

int32_t __ostUnregisterGlobRODataReference(const qor_shared_id* id) {
  const TableLock lock;
  unrefer(*id);
  return QOR_STREAM_OK;
}

int32_t __ostGenerateNewGlobalRODataTableEntryId(qor_shared_id* id, int32_t x) {
  const TableLock lock;
  do {
    *id = {qor::services::time_stamp(), static_cast<uint64_t>(int64_t{x})};
  } while (find(*id) != nullptr);
  return QOR_STREAM_OK;
}
