// Identifiers, the registry, and the life of a stream.

#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

TEST(Registry, IdentifiersDecodeToRowAndMember) {
  for (const auto& [place, text] : table_lines("streams/identifiers.txt", 10)) {
    SCOPED_TRACE(place);
    std::istringstream in(text);
    int32_t id = 0, numbering = 0, expected[2] = {}, valid = 0, row = 99, sub = 99;
    std::string made;
    in >> std::hex >> id >> std::dec >> numbering >> expected[0] >> expected[1] >> valid >> made;
    const BrngProperties* table = __ostGetBrngBaseOffset(id, &row, &sub);
    EXPECT_EQ(table, numbering == 1 ? __RegBrngs : __RegBrngsNew);
    EXPECT_EQ(row, expected[0]);
    EXPECT_EQ(sub, expected[1]);
    EXPECT_EQ(__ostIsBrngValid(table, row, sub), valid);
    EXPECT_EQ(answer_of(__ostNewStreamEx, id, 0, nullptr).what,
              made == "0" ? "0 made" : "-1000 alone");
  }
}

TEST(Registry, TablesHoldTheSameRows) {
  // Bytes of the whole record and of its recurrence state, words, bits; two pointers wider where
  // pointers are.
  const int32_t wider = 2 * (static_cast<int32_t>(sizeof(void*)) - 4);
  const int32_t figures[16][5] = {
      {24, 1, 0, 4, 31},         {1024, 252, 1, 4, 32},     {40, 6, 1, 4, 32},
      {32, 1, 0, 8, 59},         {48, 4, 1, 16, 24},        {11712, 2604, 0, 4, 32},
      {84288, 10498, 0, 4, 32},  {2520, 625, 1, 4, 32},     {312, 70, 1, 4, 32},
      {40 + wider, 0, 1, 4, 32}, {56 + wider, 0, 1, 4, 32}, {48 + wider, 0, 1, 4, 32},
      {2536, 625, 1, 4, 32},     {24, 1, 0, 4, 32},         {72, 8, 1, 4, 32},
      {64, 8, 1, 4, 32}};
  for (int32_t r = 0; r < 16; ++r)
    EXPECT_EQ(std::memcmp(&__RegBrngsNew[r], figures[r], sizeof figures[r]), 0) << r;
  for (int32_t old = 0; old < 512; ++old) {
    const int32_t same_as = old < 4 ? old : old < 277 ? 4 : old < 279 ? old - 277 + 5 : 511;
    EXPECT_EQ(std::memcmp(&__RegBrngs[old], &__RegBrngsNew[same_as], sizeof(BrngProperties)), 0)
        << "row " << old;
  }
}

TEST(Registry, InvalidIdentifiersLeaveTheOutputAlone) {
  BrngProperties row{};
  row.stateBytes = 77;
  StreamState unknown{};
  for (int32_t id : {281, -5, 0x500111}) {
    EXPECT_EQ(__ostGetBrngProperties(id, &row), -1000);
    EXPECT_EQ(row.stateBytes, 77);
    unknown.brng = id;
    EXPECT_EQ(answer_of(__ostCopyStream, &unknown).what, "-1000 alone");
  }
  EXPECT_EQ(answer_of(__ostAllocateStream, __RegBrngsNew, 0x500111, 4, 273).what, "-1000 alone");
}

TEST(Streams, SizeOfFreshStream) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  EXPECT_EQ(__ostGetStreamSize(stream.get()), 32);
  EXPECT_EQ(__ostGetStreamStateBrng(stream.get()), QOR_BRNG_MCG31M1);
  EXPECT_EQ(stream->tagA, 1);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(stream.get()) % 128, 0u);
}

TEST(Streams, CopyStateTakesTheRecurrenceStateAndTheChunks) {
  const Stream source = new_stream(QOR_BRNG_MCG31M1, {5}), to = new_stream(QOR_BRNG_MCG31M1, {9});
  ASSERT_EQ(__ostLeapfrogStream(source.get(), 1, 4), 0);
  add_chunk(source, 1, {1, 2});
  add_chunk(to, 2, {3});
  Bytes expected = state_of(to);  // whose multiplier stays
  std::copy_n(state_of(source).begin(), 4, expected.begin());
  for (const Stream* each : {&to, &source}) {
    ASSERT_EQ(__ostCopyStreamState(each->get(), source.get()), 0);
    EXPECT_EQ(ids_of(*each), std::vector{1});
  }
  EXPECT_EQ(state_of(to), expected);
  // The WH row counts more bytes than the state has; all of it goes over, and no more.
  const Stream wh = new_stream(QOR_BRNG_WH, {1, 2, 3, 4}), other = new_stream(QOR_BRNG_WH, {});
  ASSERT_EQ(__ostLeapfrogStream(wh.get(), 1, 4), 0);
  ASSERT_EQ(__ostCopyStreamState(other.get(), wh.get()), 0);
  EXPECT_EQ(state_of(other), state_of(wh));
}

TEST(Streams, AllocationFailures) {
  const BlocksInBalance balance;
  const Stream source = new_stream(QOR_BRNG_MRG32K3A);
  add_chunk(source, 1, {1, 2, 3});
  void* data = qor_serv_allocate(1, 128);
  for (long allowed : {0, 1, 2}) {
    const FailingAllocations failing(allowed);
    const Answer copy = answer_of(__ostCopyStream, source.get());
    EXPECT_EQ(copy.what, allowed == 0 ? "-4 null" : "-4 made");
    // Where a chunk found no room, the stream is there, without chunks.
    EXPECT_TRUE(allowed == 0 || __ostGetNumChunks(copy.stream.get()) == 0);
  }
  const FailingAllocations failing(0);
  EXPECT_EQ(answer_of(__ostNewStreamEx, QOR_BRNG_MCG59, 0, nullptr).what, "-4 null");
  EXPECT_EQ(answer_of(__ostAllocateStream, __RegBrngsNew, QOR_BRNG_MCG59, 3, 0).what, "-4 null");
  const qor_shared_id id{4, 4};
  qor_shared_entry* entry = nullptr;
  EXPECT_EQ(__ostAddChunk(source.get(), 2, &id, data, 1), -4);
  EXPECT_EQ(__ostGetNumChunks(source.get()), 1);
  EXPECT_EQ(__ostFindGlobRODataTableEntry(&entry, &id), -3000);
  qor_serv_deallocate(data);
}

TEST(Registration, ChecksInOrderAndAddsRows) {
  // A generator of the test's own, with a record that is only a head.
  BrngProperties good = __RegBrngsNew[0];
  good.stateBytes = 0;
  good.initStream = [](int32_t, StreamState*, int32_t, const void*) { return 0; };
  BrngProperties bad{-1, 0, 0, 5, 0, nullptr, nullptr, nullptr, nullptr};
  EXPECT_EQ(__ostRegisterBrng(&bad), -1008);
  bad.stateBytes = 0;
  EXPECT_EQ(__ostRegisterBrng(&bad), -1009);
  bad.wordBytes = 16;
  EXPECT_EQ(__ostRegisterBrng(&bad), -1010);
  bad.seedWords = 1;
  EXPECT_EQ(__ostRegisterBrng(&bad), -1011);
  for (int k = 0; k < 4; ++k) {
    bad = good;
    if (k == 0) bad.dBRng = nullptr;
    if (k == 1) bad.sBRng = nullptr;
    if (k == 2) bad.iBRng = nullptr;
    if (k == 3) bad.initStream = nullptr;
    EXPECT_EQ(__ostRegisterBrng(&bad), -5);
  }
  for (int32_t row = 16; row < QOR_BRNG_ROWS; ++row) {
    EXPECT_EQ(__ostGetNumRegBrngs(), row);
    ASSERT_EQ(__ostRegisterBrng(&good), (row + 1) * 0x100000);
  }
  EXPECT_EQ(__ostRegisterBrng(&good), -4);
  EXPECT_EQ(__ostGetNumRegBrngs(), QOR_BRNG_ROWS);
  EXPECT_EQ(copy_of(new_stream(0x1100000))->brng, 0x1100000);
  EXPECT_EQ(answer_of(__ostNewStreamEx, 0x1100001, 0, nullptr).what, "-1000 alone");
}

TEST(Processor, AnswersAreTheProcessors) {
  EXPECT_EQ(__ostCPUisAES(), __builtin_cpu_supports("aes") != 0);
  EXPECT_EQ(__ostCPUisRDRAND(), __builtin_cpu_supports("rdrnd") != 0);
  EXPECT_EQ(__ostCPUisVAES(), qor_serv_cpu_feature_test(4));
}

}  // namespace
