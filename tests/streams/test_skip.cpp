// Skip-ahead and the arithmetic behind it. Leapfrogs, and skips after them, stand in golden.txt.

#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

TEST(Powers, EqualKnownOnes) {
  EXPECT_EQ(__ostiPowMod(0, 0, 17), 1u);
  EXPECT_EQ(__ostiPowMod(4294967295u, 1, 4294967291u), 4u);
  EXPECT_EQ(__ostiPowMod2P31M1(2147483650u, 2), 9u);
  EXPECT_EQ(__ostiPowMod2P59(13, 13), 302875106592253u);
  EXPECT_EQ(__ostiPowMod2P59((uint64_t{1} << 60) + 2, 58), uint64_t{1} << 58);
  // The order of a unit divides m - 1 for a prime m, and 2^57 for 2^59.
  EXPECT_EQ(__ostiPowMod(2, 4294967086, 4294967087), 1u);
  EXPECT_EQ(__ostiPowMod2P31M1(7, 2147483646), 1u);
  EXPECT_EQ(__ostiPowMod2P59(13, uint64_t{1} << 57), 1u);
}

// Of the matrix of MRG32K3A's first component, against the state.
TEST(MatrixPowers, EqualSkips) {
  const uint32_t m = 4294967087, row[] = {m - 810728, 1403580, 0};
  for (uint64_t e : {uint64_t{0}, uint64_t{1}, uint64_t{2}, uint64_t{3}, ~uint64_t{0}}) {
    const Stream stream = new_stream(QOR_BRNG_MRG32K3A, {5, m - 1, 7});
    std::vector<uint32_t> v = {5, m - 1, 7}, w = v, expected(3);
    __ostSkipAheadStream(stream.get(), e);
    std::memcpy(expected.data(), state_of(stream).data(), 12);
    __ostiVect3PowMod(v.data(), row, m, e);
    EXPECT_EQ(v, expected) << e;
    EXPECT_EQ(__ostiVect3PowArrayMod(w.data(), row, m, 1, &e), 0);
    EXPECT_EQ(w, expected) << e;
  }
}

// The state of a stream after skips by these counts.
Bytes skipped(int32_t brng, const std::vector<uint64_t>& counts) {
  const Stream stream = new_stream(brng);
  for (uint64_t count : counts) EXPECT_EQ(__ostSkipAheadStream(stream.get(), count), 0);
  return state_of(stream);
}
Bytes skipped_ex(const std::vector<std::vector<uint64_t>>& counts) {
  const Stream stream = new_stream(QOR_BRNG_MRG32K3A);
  for (const auto& count : counts) {
    const auto n = static_cast<int32_t>(count.size());
    EXPECT_EQ(__ostSkipAheadStreamEx(stream.get(), n, count.data()), 0);
  }
  return state_of(stream);
}

constexpr uint64_t kTop = uint64_t{1} << 63;

TEST(SkipAhead, EqualsDrawing) {
  for (int32_t brng : {0x100000, 0x300000, 0x400000, QOR_BRNG_WH + 3}) {
    SCOPED_TRACE(brng);
    for (int32_t count : {1, 4097}) {
      const Stream drawn = new_stream(brng);
      words_of(drawn, count);
      EXPECT_EQ(state_of(drawn), skipped(brng, {static_cast<uint64_t>(count)})) << count;
    }
    const uint64_t half = kTop / 2 + kTop / (uint64_t{1} << 32);  // bits of both halves
    EXPECT_EQ(skipped(brng, {half, half + 5}), skipped(brng, {2 * half + 5}));
  }
}

TEST(SkipAhead, ExtendedCountsOfAnyLength) {
  EXPECT_EQ(skipped_ex({{}, {0, 0, 0, 0}}), skipped_ex({}));
  EXPECT_EQ(skipped_ex({{5, 0, 0, 0}}), skipped(QOR_BRNG_MRG32K3A, {5}));
  EXPECT_EQ(skipped_ex({{0, 0, 1}}), skipped_ex({{0, kTop, 0}, {0, kTop, 0}}));
  // Beyond the tables: twice the last bit that they hold.
  EXPECT_EQ(skipped_ex({{0, 0, 0, 1}}), skipped_ex({{0, 0, kTop}, {0, 0, kTop}}));
  EXPECT_EQ(skipped_ex({{7, 0, 0, 2}}), skipped_ex({{0, 0, 0, 1}, {0, 0, 0, 1}, {7}}));
}

TEST(SkipAhead, ExtendedWithoutMemoryChangesNothing) {
  const BlocksInBalance balance;
  const Stream stream = new_stream(QOR_BRNG_MRG32K3A);
  const uint64_t words[] = {1, 0, 0, 1};
  for (long allowed : {0, 1}) {
    const FailingAllocations failing(allowed);
    EXPECT_EQ(__ostSkipAheadStreamEx(stream.get(), 4, words), -4);
  }
  EXPECT_EQ(state_of(stream), skipped_ex({}));
}

TEST(SkipAndLeapfrog, WhatIsNotOfferedIsRefused) {
  // The answers to a leapfrog, a skip and an extended skip.
  const int32_t answers[][4] = {{QOR_BRNG_MCG31M1, 0, 0, -1004},
                                {QOR_BRNG_R250, -1002, -1003, -1004},
                                {QOR_BRNG_MRG32K3A, -1002, 0, 0},
                                {QOR_BRNG_MCG59, 0, 0, -1004},
                                {QOR_BRNG_WH, 0, 0, -1004}};
  for (const auto& [brng, leapfrog, skip, skip_ex] : answers) {
    const Stream stream = new_stream(brng);
    const uint64_t none[] = {0};
    EXPECT_EQ(__ostLeapfrogStream(stream.get(), 0, -1), -1013);
    EXPECT_EQ(__ostSkipAheadStream(stream.get(), 0), skip);
    EXPECT_EQ(__ostSkipAheadStreamEx(stream.get(), 1, none), skip_ex);
    for (int32_t method : {4, -1})
      EXPECT_EQ(row_of(stream).initStream(method, stream.get(), 1, none), -2);
    EXPECT_EQ(state_of(stream), state_of(new_stream(brng)));
    EXPECT_EQ(__ostLeapfrogStream(stream.get(), 0, 2), leapfrog);
  }
}

}  // namespace
