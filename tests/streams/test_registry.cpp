// Identifiers, the registry, and the life of a stream.

#include "tests/streams/stream_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

int32_t validity_of(int32_t id) {
  int32_t row = 0, sub = 0;
  const BrngProperties* table = __ostGetBrngBaseOffset(id, &row, &sub);
  return __ostIsBrngValid(table, row, sub);
}

TEST(Registry, IdentifiersDecodeToRowAndMember) {
  struct Case {
    int32_t id;
    const BrngProperties* table;
    int32_t row, sub, valid;
  };
  const Case cases[] = {
      {0x100000, __RegBrngsNew, 0, 0, 0},
      {0, __RegBrngs, 0, 0, 0},
      {3, __RegBrngs, 3, 0, 0},
      {4, __RegBrngs, 4, 0, 0},
      {276, __RegBrngs, 4, 272, 0},
      {277, __RegBrngs, 277, 0, 0},
      {278, __RegBrngs, 278, 0, 0},
      {280, __RegBrngs, 280, 0, 0},
      {281, __RegBrngs, 281, 0, -1000},
      {0x500110, __RegBrngsNew, 4, 272, 0},
      {0x500111, __RegBrngsNew, 4, 273, -1000},
      {0x901787, __RegBrngsNew, 8, 6023, 0},
      {0x901788, __RegBrngsNew, 8, 6024, -1000},
      {0x800001, __RegBrngsNew, 7, 1, -1000},
      {0x1000000, __RegBrngsNew, 15, 0, 0},
      {-1, __RegBrngs, -1, 0, 0},
      {0x7FF00000, __RegBrngsNew, 2046, 0, -1000},
  };
  for (const Case& c : cases) {
    int32_t row = 99, sub = 99;
    EXPECT_EQ(__ostGetBrngBaseOffset(c.id, &row, &sub), c.table) << std::hex << c.id;
    EXPECT_EQ(row, c.row) << std::hex << c.id;
    EXPECT_EQ(sub, c.sub) << std::hex << c.id;
    EXPECT_EQ(validity_of(c.id), c.valid) << std::hex << c.id;
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
  for (int32_t r = 0; r < 16; ++r) {
    const BrngProperties& row = __RegBrngsNew[r];
    const int32_t got[] = {row.stateBytes, row.seedWords, row.zeroFlag, row.wordBytes,
                           row.wordBits};
    for (int k = 0; k < 5; ++k) EXPECT_EQ(got[k], figures[r][k]) << "row " << r << " field " << k;
  }
  for (int32_t old = 0; old < 512; ++old) {
    const int32_t same_as = old < 4 ? old : old < 277 ? 4 : old < 279 ? old - 277 + 5 : 511;
    EXPECT_EQ(std::memcmp(&__RegBrngs[old], &__RegBrngsNew[same_as], sizeof(BrngProperties)), 0)
        << "row " << old;
  }
}

// Generators whose functions are still to come: no stream of them can be made.
TEST(Registry, RowsThatWaitRefuseStreams) {
  const std::vector<int32_t> waiting = {5, 6, 7, 8, 12, 13, 14, 15};
  for (int32_t row = 0; row < 16; ++row) {
    const bool waits = __RegBrngsNew[row].initStream == nullptr;
    EXPECT_EQ(waits, std::find(waiting.begin(), waiting.end(), row) != waiting.end()) << row;
    if (!waits) continue;
    StreamState* stream = nullptr;
    EXPECT_EQ(__ostNewStreamEx(&stream, (row + 1) << 20, 0, nullptr), -1000);
    EXPECT_EQ(stream, nullptr);
  }
}

TEST(Registry, InvalidIdentifiersLeaveTheOutputAlone) {
  StreamState sentinel{};
  BrngProperties row{};
  row.stateBytes = 77;
  for (int32_t id : {0xA00000, 0xB00000, 0xC00000, 0xA00001, 281, 279, -5, 0x500111, 0x1200000}) {
    StreamState* stream = &sentinel;
    EXPECT_EQ(__ostNewStreamEx(&stream, id, 0, nullptr), -1000) << std::hex << id;
    EXPECT_EQ(stream, &sentinel);
  }
  for (int32_t id : {281, -5, 0x500111}) {
    EXPECT_EQ(__ostGetBrngProperties(id, &row), -1000);
    EXPECT_EQ(row.stateBytes, 77);
  }
  StreamState* stream = &sentinel;
  EXPECT_EQ(__ostAllocateStream(&stream, __RegBrngsNew, 0x500111, 4, 273), -1000);
  StreamState unknown{};
  unknown.brng = 281;
  EXPECT_EQ(__ostCopyStream(&stream, &unknown), -1000);
  EXPECT_EQ(stream, &sentinel);
}

TEST(Streams, SizeOfFreshStream) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  EXPECT_EQ(__ostGetStreamSize(stream.get()), 32);
  EXPECT_EQ(__ostGetStreamStateBrng(stream.get()), QOR_BRNG_MCG31M1);
  EXPECT_EQ(stream->tagA, 1);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(stream.get()) % 128, 0u);
}

TEST(Streams, CopiesGoOnAsTheOriginal) {
  for (int32_t brng : linear_generators) {
    const Stream stream = new_stream(brng);
    words_of(stream, 333);
    const Stream copy = copy_of(stream);
    EXPECT_EQ(words_of(stream, 100), words_of(copy, 100)) << std::hex << brng;
  }
}

TEST(Streams, CopyStateTakesTheRecurrenceState) {
  const Stream source = new_stream(QOR_BRNG_MCG31M1, {5});
  ASSERT_EQ(__ostLeapfrogStream(source.get(), 1, 4), 0);
  const Stream destination = new_stream(QOR_BRNG_MCG31M1, {9});
  ASSERT_EQ(__ostCopyStreamState(destination.get(), source.get()), 0);
  const auto from = state_of(source), to = state_of(destination);
  EXPECT_EQ(std::memcmp(from.data(), to.data(), 4), 0);
  EXPECT_EQ(std::memcmp(to.data() + 4, state_of(new_stream(QOR_BRNG_MCG31M1)).data() + 4, 4), 0);
  // The WH row counts more bytes than the state has; all of it goes over, and no more.
  const Stream wh = new_stream(QOR_BRNG_WH, {1, 2, 3, 4}), other = new_stream(QOR_BRNG_WH, {});
  words_of(wh, 10);
  ASSERT_EQ(__ostCopyStreamState(other.get(), wh.get()), 0);
  EXPECT_EQ(state_of(other), state_of(wh));
}

TEST(Streams, CopyStateReplacesChunks) {
  const Stream source = new_stream(QOR_BRNG_MCG59), destination = new_stream(QOR_BRNG_MCG59);
  ASSERT_EQ(__ostAddChunk(source.get(), 1, nullptr, block_of({1, 2}), 2), 0);
  ASSERT_EQ(__ostAddChunk(destination.get(), 2, nullptr, block_of({3}), 1), 0);
  ASSERT_EQ(__ostCopyStreamState(destination.get(), source.get()), 0);
  EXPECT_EQ(__ostGetNumChunks(destination.get()), 1);
  EXPECT_NE(__ostSearchChunk(destination.get(), 1), nullptr);
  EXPECT_EQ(__ostCopyStreamState(source.get(), source.get()), 0);
  EXPECT_EQ(__ostGetNumChunks(source.get()), 1);
}

TEST(Streams, AllocationFailures) {
  const Stream source = new_stream(QOR_BRNG_MRG32K3A);
  ASSERT_EQ(__ostAddChunk(source.get(), 1, nullptr, block_of({1, 2, 3}), 3), 0);
  const long before = live_blocks();
  StreamState sentinel{};
  for (long allowed = 0; allowed < 3; ++allowed) {
    StreamState* stream = &sentinel;
    int32_t status = 0;
    {
      const FailingAllocations failing(allowed);
      status = __ostCopyStream(&stream, source.get());
    }
    EXPECT_EQ(status, -4) << allowed;
    if (allowed == 0) {
      EXPECT_EQ(stream, nullptr);
    } else {
      // A chunk found no room: the stream is there, without chunks.
      ASSERT_NE(stream, nullptr);
      EXPECT_EQ(__ostGetNumChunks(stream), 0);
      __ostDeleteStream(&stream);
      EXPECT_EQ(stream, nullptr);
    }
    EXPECT_EQ(live_blocks(), before);
  }
  StreamState* stream = &sentinel;
  const FailingAllocations failing(0);
  EXPECT_EQ(__ostNewStreamEx(&stream, QOR_BRNG_MCG59, 0, nullptr), -4);
  EXPECT_EQ(stream, nullptr);
  stream = &sentinel;
  EXPECT_EQ(__ostAllocateStream(&stream, __RegBrngsNew, QOR_BRNG_MCG59, 3, 0), -4);
  EXPECT_EQ(stream, nullptr);
}

// A generator of the test's own, with a record that is only a head.
int32_t counting_init(int32_t, StreamState*, int32_t, const void*) { return 0; }
int32_t fill_s(StreamState*, int32_t, float*, float, float) { return 5; }
int32_t fill_d(StreamState*, int32_t, double*, double, double) { return 5; }
int32_t fill_i(StreamState*, int32_t, void*) { return 5; }

TEST(Registration, ChecksInOrderAndAddsRows) {
  const BrngProperties good = {0, 1, 0, 4, 32, counting_init, fill_s, fill_d, fill_i};
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
  ASSERT_EQ(__ostGetNumRegBrngs(), 16);
  ASSERT_EQ(__ostRegisterBrng(&good), 0x1100000);
  EXPECT_EQ(__ostGetNumRegBrngs(), 17);
  EXPECT_EQ(validity_of(0x1100001), -1000);
  const Stream stream = new_stream(0x1100000);
  const Stream copy = copy_of(stream);
  EXPECT_EQ(copy->brng, 0x1100000);
  EXPECT_EQ(__ostRegisterBrng(&good), 0x1200000);
  for (int32_t row = 18; row < QOR_BRNG_ROWS; ++row) {
    ASSERT_EQ(__ostRegisterBrng(&good), (row + 1) * 0x100000);
  }
  EXPECT_EQ(__ostRegisterBrng(&good), -4);
  EXPECT_EQ(__ostGetNumRegBrngs(), QOR_BRNG_ROWS);
}

TEST(Processor, AnswersAreTheProcessors) {
  EXPECT_EQ(__ostCPUisAES(), __builtin_cpu_supports("aes") != 0);
  EXPECT_EQ(__ostCPUisRDRAND(), __builtin_cpu_supports("rdrnd") != 0);
  EXPECT_EQ(__ostCPUisVAES(), qor_serv_cpu_feature_test(4));
}

}  // namespace
