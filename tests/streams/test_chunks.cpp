// The chunk list and the table of shared data.

#include <atomic>
#include <thread>

#include "tests/streams/stream_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

qor_shared_id new_id() {
  qor_shared_id id{};
  EXPECT_EQ(__ostGenerateNewGlobalRODataTableEntryId(&id, -7), 0);
  return id;
}

bool is_registered(const qor_shared_id& id) {
  qor_shared_entry* entry = nullptr;
  return __ostFindGlobRODataTableEntry(&entry, &id) == 0;
}

uint32_t references_of(const qor_shared_id& id) {
  qor_shared_entry* entry = nullptr;
  return __ostFindGlobRODataTableEntry(&entry, &id) == 0 ? entry->references : 0;
}

int first_byte(const StreamState* stream, int32_t id) {
  return *static_cast<const unsigned char*>(__ostSearchChunk(stream, id));
}

TEST(Chunks, NewestIsFoundFirst) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  EXPECT_EQ(__ostSearchChunk(stream.get(), 1), nullptr);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({10}), 1);
  __ostAddChunk(stream.get(), 2, nullptr, block_of({20}), 1);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({11}), 1);
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 3);
  EXPECT_EQ(first_byte(stream.get(), 1), 11);
  EXPECT_EQ(__ostGetStreamSize(stream.get()), 32 + 3 * 25);
  __ostDeleteChunks(stream.get());
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 0);
}

TEST(Chunks, DeleteByIdHeadsTheListWithTheLastThatStayed) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  __ostAddChunk(stream.get(), 6, nullptr, block_of({1}), 1);
  __ostAddChunk(stream.get(), 3, nullptr, block_of({2}), 1);
  __ostAddChunk(stream.get(), 6, nullptr, block_of({3}), 1);
  __ostDeleteChunksById(stream.get(), 6);
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 1);
  EXPECT_EQ(first_byte(stream.get(), 3), 2);
  __ostDeleteChunksById(stream.get(), 3);
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 0);
  // Two that stay: the list starts with the second.
  __ostAddChunk(stream.get(), 6, nullptr, block_of({1}), 1);
  __ostAddChunk(stream.get(), 2, nullptr, block_of({5}), 1);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({4}), 1);
  auto* cut_off = reinterpret_cast<StreamChunk*>(static_cast<intptr_t>(stream->chunks));
  __ostDeleteChunksById(stream.get(), 6);
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 1);
  EXPECT_EQ(first_byte(stream.get(), 2), 5);
  qor_serv_deallocate(cut_off->data);
  qor_serv_deallocate(cut_off);
}

TEST(Chunks, CopiesAreReversedAndTheirOwn) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({10}), 1);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({11}), 1);
  const Stream copy = copy_of(stream);
  EXPECT_EQ(first_byte(copy.get(), 1), 10);
  EXPECT_NE(__ostSearchChunk(copy.get(), 1), __ostSearchChunk(stream.get(), 1));
}

TEST(SharedData, IsHeldOnceAndFreedLast) {
  const long before = live_blocks();
  const qor_shared_id id = new_id(), later = new_id();
  {
    const Stream owner = new_stream(QOR_BRNG_MCG31M1);
    Stream first = new_stream(QOR_BRNG_MCG31M1);
    ASSERT_EQ(__ostAddChunk(first.get(), 9, &id, block_of({42}), 1), 0);
    ASSERT_EQ(__ostAddChunk(owner.get(), 9, &later, block_of({43}), 1), 0);
    Stream second = copy_of(first);
    EXPECT_EQ(__ostSearchChunk(first.get(), 9), __ostSearchChunk(second.get(), 9));
    EXPECT_EQ(references_of(id), 2u);
    // Data of a known identifier stays with the caller.
    void* mine = block_of({42});
    Stream third = new_stream(QOR_BRNG_MCG31M1);
    ASSERT_EQ(__ostAddChunk(third.get(), 9, &id, mine, 1), 0);
    EXPECT_EQ(__ostSearchChunk(third.get(), 9), __ostSearchChunk(first.get(), 9));
    qor_serv_deallocate(mine);
    third.reset();
    first.reset();
    EXPECT_EQ(first_byte(second.get(), 9), 42);
    second.reset();
    EXPECT_FALSE(is_registered(id));
    EXPECT_EQ(references_of(later), 1u);
  }
  EXPECT_FALSE(is_registered(later));
  EXPECT_EQ(live_blocks(), before);
}

TEST(SharedData, EntriesByHand) {
  qor_shared_entry* entry = nullptr;
  const qor_shared_id none{0, 0}, id = new_id();
  EXPECT_EQ(id.number, static_cast<uint64_t>(-7));
  EXPECT_EQ(__ostFindGlobRODataTableEntry(&entry, nullptr), -3000);
  EXPECT_EQ(__ostFindGlobRODataTableEntry(&entry, &none), -3000);
  EXPECT_EQ(__ostFindGlobRODataTableEntry(&entry, &id), -3000);
  EXPECT_EQ(entry, nullptr);
  void* data = block_of({1});
  ASSERT_EQ(__ostCreateGlobRODataTableEntry(&entry, &id, data), 0);
  EXPECT_EQ(entry->references, 1u);
  StreamChunk chunk{};
  EXPECT_EQ(__ostRegisterGlobRODataReference(&chunk, &id), 0);
  EXPECT_EQ(chunk.data, data);
  EXPECT_EQ(entry->references, 2u);
  __ostUnregisterGlobRODataReference(&id);
  __ostUnregisterGlobRODataReference(&id);
  EXPECT_FALSE(is_registered(id));
}

TEST(SharedData, ChunksStopSharingAtOneShortOfTheTable) {
  const long before = live_blocks();
  {
    const Stream stream = new_stream(QOR_BRNG_MCG31M1);
    std::vector<qor_shared_id> ids;
    for (int k = 0; k < 128; ++k) {
      ids.push_back({1, static_cast<uint64_t>(k) + 1});
      ASSERT_EQ(__ostAddChunk(stream.get(), k, &ids.back(), block_of({7}), 1), 0);
    }
    EXPECT_TRUE(is_registered(ids[126]));
    EXPECT_FALSE(is_registered(ids[127]));
    EXPECT_NE(__ostSearchChunk(stream.get(), 127), nullptr);
    qor_shared_entry sentinel{}, *entry = &sentinel;
    EXPECT_EQ(__ostCreateGlobRODataTableEntry(&entry, &ids[127], block_of({1})), 0);
    void* spare = block_of({1});
    const qor_shared_id another{2, 2};
    entry = &sentinel;
    EXPECT_EQ(__ostCreateGlobRODataTableEntry(&entry, &another, spare), -3001);
    EXPECT_EQ(entry, &sentinel);
    qor_serv_deallocate(spare);
    __ostUnregisterGlobRODataReference(&ids[127]);
  }
  EXPECT_EQ(live_blocks(), before);
}

TEST(SharedData, ThreadsShareOnePayload) {
  const long before = live_blocks();
  const qor_shared_id id = new_id();
  const Stream source = new_stream(QOR_BRNG_MCG31M1);
  ASSERT_EQ(__ostAddChunk(source.get(), 9, &id, block_of({42}), 1), 0);
  std::atomic<int> wrong{0};
  const auto work = [&](uint64_t thread) {
    for (uint64_t round = 0; round < 300; ++round) {
      Stream mine = copy_of(source);
      if (first_byte(mine.get(), 9) != 42) ++wrong;
      // All threads come and go with one more identifier, so that its entry does too.
      const qor_shared_id common{3, 1 + round % 5};
      void* data = block_of({static_cast<unsigned char>(common.number)});
      __ostAddChunk(mine.get(), 10, &common, data, 1);
      if (first_byte(mine.get(), 10) != static_cast<int>(common.number)) ++wrong;
      if (__ostSearchChunk(mine.get(), 10) != data) qor_serv_deallocate(data);
      const Stream copy = copy_of(mine);
      mine.reset();
      if (first_byte(copy.get(), 10) != static_cast<int>(common.number)) ++wrong;
      qor_shared_id fresh{};
      __ostGenerateNewGlobalRODataTableEntryId(&fresh, static_cast<int32_t>(thread));
    }
  };
  std::vector<std::thread> threads;
  for (uint64_t t = 0; t < 4; ++t) threads.emplace_back(work, t);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(references_of(id), 1u);
  EXPECT_EQ(live_blocks(), before + 3);  // the source's record, the one chunk and its data
}

TEST(SharedData, AllocationFailureLeavesEverythingAsItWas) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  const qor_shared_id id = new_id();
  void* data = block_of({1});
  {
    const FailingAllocations failing(0);
    EXPECT_EQ(__ostAddChunk(stream.get(), 1, &id, data, 1), -4);
  }
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 0);
  EXPECT_FALSE(is_registered(id));
  qor_serv_deallocate(data);
}

}  // namespace
