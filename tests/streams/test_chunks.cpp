// The chunk list and the table of shared data.

#include <atomic>
#include <thread>

#include "tests/streams/stream_support.h"
#include "tests/support/forks.h"

namespace {

using namespace qor::test;

qor_shared_id new_id() {
  qor_shared_id id{};
  EXPECT_EQ(__ostGenerateNewGlobalRODataTableEntryId(&id, -7), 0);
  return id;
}

// 0 for an identifier that is not registered.
uint32_t references_of(const qor_shared_id& id) {
  qor_shared_entry* entry = nullptr;
  return __ostFindGlobRODataTableEntry(&entry, &id) == 0 ? entry->references : 0;
}

int first_byte(const Stream& stream, int32_t id) {
  return *static_cast<const unsigned char*>(__ostSearchChunk(stream.get(), id));
}

TEST(Chunks, NewestIsFoundFirst) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  EXPECT_EQ(__ostSearchChunk(stream.get(), 1), nullptr);
  add_chunk(stream, 1, {10});
  add_chunk(stream, 2, {20});
  add_chunk(stream, 1, {11});
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 3);
  EXPECT_EQ(first_byte(stream, 1), 11);
  EXPECT_EQ(__ostGetStreamSize(stream.get()), 32 + 3 * 25);
  const Stream copy = copy_of(stream);  // which has them the other way round, each its own
  EXPECT_EQ(first_byte(copy, 1), 10);
  EXPECT_NE(__ostSearchChunk(copy.get(), 2), __ostSearchChunk(stream.get(), 2));
  __ostDeleteChunks(stream.get());
  EXPECT_EQ(__ostGetNumChunks(stream.get()), 0);
}

TEST(Chunks, DeleteByIdHeadsTheListWithTheLastThatStayed) {
  using Ids = std::vector<int32_t>;
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  for (int32_t id : {6, 3, 6}) add_chunk(stream, id, {1});
  __ostDeleteChunksById(stream.get(), 6);
  EXPECT_EQ(ids_of(stream), Ids{3});
  __ostDeleteChunksById(stream.get(), 3);
  EXPECT_EQ(ids_of(stream), Ids{});
  // Two that stay: the list starts with the second.
  for (int32_t id : {6, 2, 1}) add_chunk(stream, id, {1});
  auto* cut_off = reinterpret_cast<StreamChunk*>(static_cast<intptr_t>(stream->chunks));
  __ostDeleteChunksById(stream.get(), 6);
  EXPECT_EQ(ids_of(stream), Ids{2});
  qor_serv_deallocate(cut_off->data);
  qor_serv_deallocate(cut_off);
}

TEST(SharedData, EntriesByHand) {
  qor_shared_entry* entry = nullptr;
  const qor_shared_id none{0, 0}, id = new_id();
  EXPECT_EQ(id.number, static_cast<uint64_t>(-7));
  for (const qor_shared_id* missing : {static_cast<const qor_shared_id*>(nullptr), &none, &id})
    EXPECT_EQ(__ostFindGlobRODataTableEntry(&entry, missing), -3000);
  EXPECT_EQ(entry, nullptr);
  ASSERT_EQ(__ostCreateGlobRODataTableEntry(&entry, &id, qor_serv_allocate(1, 128)), 0);
  StreamChunk chunk{};
  EXPECT_EQ(__ostRegisterGlobRODataReference(&chunk, &id), 0);
  EXPECT_EQ(chunk.data, entry->data);
  for (uint32_t left : {2u, 1u, 0u}) {
    EXPECT_EQ(references_of(id), left);
    __ostUnregisterGlobRODataReference(&id);
  }
}

TEST(SharedData, AChunkHasTheSizeOfWhatItShares) {
  const BlocksInBalance balance;
  const Stream first = new_stream(QOR_BRNG_MCG31M1), second = new_stream(QOR_BRNG_MCG31M1);
  const qor_shared_id id = new_id();
  add_chunk(first, 1, {5, 6, 7}, &id);
  qor_serv_deallocate(add_chunk(second, 1, Bytes(100000), &id));
  EXPECT_EQ(image_of(second), image_of(first));
  qor_serv_deallocate(add_chunk(second, 1, {}, &id));
  EXPECT_EQ(__ostGetStreamSize(second.get()), 32 + 2 * 27);
  StreamChunk chunk{};
  chunk.size = 100000;
  __ostRegisterGlobRODataReference(&chunk, &id);
  EXPECT_EQ(chunk.size, 3u);
  __ostUnregisterGlobRODataReference(&id);
  // Of data that was registered by hand each chunk's owner knows the size.
  qor_shared_entry* entry = nullptr;
  const qor_shared_id by_hand = new_id();
  ASSERT_EQ(__ostCreateGlobRODataTableEntry(&entry, &by_hand, qor_serv_allocate(2, 128)), 0);
  qor_serv_deallocate(add_chunk(first, 2, {8, 9}, &by_hand));
  EXPECT_EQ(__ostGetStreamSize(first.get()), 32 + 27 + 26);
  __ostUnregisterGlobRODataReference(&by_hand);
}

TEST(SharedData, ChunksStopSharingAtOneShortOfTheTable) {
  const BlocksInBalance balance;
  Stream first = new_stream(QOR_BRNG_MCG31M1);
  const Stream others = new_stream(QOR_BRNG_MCG31M1);
  qor_shared_id id{1, 0};
  for (int32_t k = 1; k <= 128; ++k) {
    ++id.number;
    add_chunk(k == 1 ? first : others, k, {7}, &id);
    EXPECT_EQ(references_of(id), k < 128 ? 1u : 0u);
  }
  EXPECT_EQ(first_byte(others, 128), 7);
  // By hand there is room for one more.
  qor_shared_entry sentinel{}, *entry = &sentinel;
  EXPECT_EQ(__ostCreateGlobRODataTableEntry(&entry, &id, qor_serv_allocate(1, 128)), 0);
  entry = &sentinel;
  EXPECT_EQ(__ostCreateGlobRODataTableEntry(&entry, &id, nullptr), -3001);
  EXPECT_EQ(entry, &sentinel);
  __ostUnregisterGlobRODataReference(&id);
  // When the first entry goes, the last that is left stays.
  first.reset();
  --id.number;
  EXPECT_EQ(references_of(id), 1u);
}

TEST(SharedData, ThreadsShareOnePayload) {
  const BlocksInBalance balance;
  const qor_shared_id id = new_id();
  Stream source = new_stream(QOR_BRNG_MCG31M1);
  const void* payload = add_chunk(source, 9, {42}, &id);
  std::atomic<int> wrong{0};
  const auto work = [&] {
    for (int round = 0; round < 300; ++round) {
      Stream mine = copy_of(source);
      // All threads come and go with one more identifier, so that its entry does too.
      const auto common = static_cast<unsigned char>(1 + round % 5);
      const qor_shared_id common_id{3, common};
      void* data = add_chunk(mine, 10, {common}, &common_id);
      wrong += __ostSearchChunk(mine.get(), 9) != payload || first_byte(mine, 10) != common;
      // Data of a known identifier stays with the caller.
      if (__ostSearchChunk(mine.get(), 10) != data) qor_serv_deallocate(data);
      const Stream copy = copy_of(mine);
      mine.reset();
      wrong += first_byte(copy, 10) != common || first_byte(copy, 9) != 42;
      new_id();
    }
  };
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(references_of(id), 1u);
  source.reset();
  EXPECT_EQ(references_of(id), 0u);
}

TEST(SharedData, ForkedChildrenFindTheTableFree) {
  const qor_shared_id id = new_id();
  const Stream source = new_stream(QOR_BRNG_MCG31M1);
  add_chunk(source, 9, {42}, &id);
  const auto share = [&] { copy_of(source); };
  expect_children_to_end(share, share);
}

}  // namespace
