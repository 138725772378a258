// Skip-ahead, leapfrog, and the arithmetic behind them.

#include "tests/streams/stream_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

constexpr uint32_t kM1 = 4294967087u, kM2 = 4294944443u;

TEST(Powers, EqualRepeatedMultiplication) {
  EXPECT_EQ(__ostiPowMod(0, 0, 17), 1u);
  EXPECT_EQ(__ostiPowMod(5, 0, 17), 1u);
  EXPECT_EQ(__ostiPowMod(4294967295u, 1, 4294967291u), 4u);
  uint64_t p = 1, q = 1, r = 1;
  for (uint64_t e = 0; e < 300; ++e) {
    EXPECT_EQ(__ostiPowMod(1403580, e, kM1), p);
    EXPECT_EQ(__ostiPowMod2P31M1(1132489760, e), q);
    EXPECT_EQ(__ostiPowMod2P59(302875106592253, e), r);
    p = p * 1403580 % kM1;
    q = q * 1132489760 % 2147483647;
    r = r * 302875106592253 % (uint64_t{1} << 59);
  }
  // Fermat: the order of a unit divides m - 1.
  EXPECT_EQ(__ostiPowMod2P31M1(7, 2147483646), 1u);
  EXPECT_EQ(__ostiPowMod(2, kM1 - 1, kM1), 1u);
}

// Steps of x' = row . x, one after the other.
std::vector<uint32_t> stepped(std::vector<uint32_t> v, const uint32_t* row, uint32_t m, int steps) {
  for (; steps > 0; --steps) {
    uint64_t sum = 0;
    for (size_t k = 0; k < 3; ++k) sum = (sum + uint64_t{row[k]} * v[k] % m) % m;
    v = {v[1], v[2], static_cast<uint32_t>(sum)};
  }
  return v;
}

TEST(MatrixPowers, EqualSteps) {
  const uint32_t row[] = {kM2 - 1370589, 0, 527612};
  for (int e : {0, 1, 2, 3, 10, 77, 1000}) {
    std::vector<uint32_t> v = {5, kM2 - 1, 7};
    const auto expected = stepped(v, row, kM2, e);
    std::vector<uint32_t> general = v;
    __ostiVect3PowMod(v.data(), row, kM2, static_cast<uint64_t>(e));
    EXPECT_EQ(v, expected) << e;
    const uint64_t words[5] = {static_cast<uint64_t>(e), 0, 0, 0, 0};
    ASSERT_EQ(__ostiVect3PowArrayMod(general.data(), row, kM2, 5, words), 0);
    EXPECT_EQ(general, expected) << e;
  }
}

TEST(MatrixPowers, TablesAreAppliedBitByBit) {
  // Entries of a table of the test's own: the unit matrix but for bit 1 of the first word and bit 0
  // of the second.
  std::vector<uint32_t> table(128 * 9, 0);
  for (size_t b = 0; b < 128; ++b) table[9 * b] = table[9 * b + 4] = table[9 * b + 8] = 1;
  table[9 * 1 + 1] = 3;         // x0 += 3 x1
  table[9 * 64 + 8] = kM1 - 1;  // x2 = -x2
  uint32_t v[] = {10, 20, 30};
  const uint64_t words[] = {0b11, 1};
  __ostiVect3PowArrayMod_M1(v, 2, words, table.data());
  EXPECT_EQ(v[0], 70u);
  EXPECT_EQ(v[1], 20u);
  EXPECT_EQ(v[2], kM1 - 30);
  uint32_t w[] = {10, 20, 30};
  __ostiVect3PowArrayMod_M2(w, 1, words, table.data());
  EXPECT_EQ(w[0], 70u);
  EXPECT_EQ(w[2], 30u);
}

TEST(SkipAhead, EqualsDrawing) {
  for (int32_t brng : {0x100000, 0x300000, 0x400000, QOR_BRNG_WH + 3}) {
    for (int32_t count : {0, 1, 2, 3, 17, 1000, 4097}) {
      const Stream drawn = new_stream(brng), skipped = new_stream(brng);
      words_of(drawn, count);
      ASSERT_EQ(__ostSkipAheadStream(skipped.get(), static_cast<uint64_t>(count)), 0);
      EXPECT_EQ(state_of(drawn), state_of(skipped)) << std::hex << brng << " " << count;
    }
    // Far jumps add up.
    const Stream once = new_stream(brng), twice = new_stream(brng);
    __ostSkipAheadStream(once.get(), uint64_t{1} << 62);
    __ostSkipAheadStream(once.get(), (uint64_t{1} << 62) + 5);
    __ostSkipAheadStream(twice.get(), (uint64_t{1} << 63) + 5);
    EXPECT_EQ(state_of(once), state_of(twice));
  }
}

TEST(SkipAhead, ExtendedCountsOfAnyLength) {
  const auto skipped = [](std::vector<uint64_t> words, int times = 1) {
    const Stream stream = new_stream(QOR_BRNG_MRG32K3A);
    for (; times > 0; --times) {
      EXPECT_EQ(
          __ostSkipAheadStreamEx(stream.get(), static_cast<int32_t>(words.size()), words.data()),
          0);
    }
    return state_of(stream);
  };
  const auto fresh = state_of(new_stream(QOR_BRNG_MRG32K3A));
  EXPECT_EQ(skipped({}), fresh);
  EXPECT_EQ(skipped({0, 0, 0, 0}), fresh);
  EXPECT_EQ(skipped({5, 0, 0, 0}), skipped({5}));
  EXPECT_EQ(skipped({0, 0, 1}), skipped({0, uint64_t{1} << 63, 0}, 2));
  // Beyond the tables: twice the last bit that they hold.
  EXPECT_EQ(skipped({0, 0, 0, 1}), skipped({0, 0, uint64_t{1} << 63}, 2));
  const Stream in_parts = new_stream(QOR_BRNG_MRG32K3A);
  const uint64_t part[] = {0, 0, 0, 1}, rest[] = {7};
  __ostSkipAheadStreamEx(in_parts.get(), 4, part);
  __ostSkipAheadStreamEx(in_parts.get(), 4, part);
  __ostSkipAheadStreamEx(in_parts.get(), 1, rest);
  EXPECT_EQ(skipped({7, 0, 0, 2}), state_of(in_parts));
}

TEST(SkipAhead, ExtendedWithoutMemoryChangesNothing) {
  const Stream stream = new_stream(QOR_BRNG_MRG32K3A);
  const auto before = state_of(stream);
  const uint64_t words[] = {1, 0, 0, 1};
  for (long allowed : {0, 1}) {
    const FailingAllocations failing(allowed);
    EXPECT_EQ(__ostSkipAheadStreamEx(stream.get(), 4, words), -4);
    EXPECT_EQ(state_of(stream), before);
  }
}

TEST(Leapfrog, DealsTheSequenceOut) {
  for (int32_t brng : {0x100000, 0x400000, QOR_BRNG_WH + 272}) {
    const auto bytes = static_cast<size_t>(row_of(new_stream(brng)).wordBytes);
    const int32_t n = 3;
    const auto whole = words_of(new_stream(brng), n * 100);
    for (int32_t k = 0; k < n; ++k) {
      const Stream stream = new_stream(brng);
      ASSERT_EQ(__ostLeapfrogStream(stream.get(), k, n), 0);
      const auto part = words_of(stream, 100);
      for (size_t i = 0; i < 100; ++i) {
        const size_t at = (i * n + static_cast<size_t>(k)) * bytes;
        ASSERT_EQ(std::memcmp(part.data() + i * bytes, whole.data() + at, bytes), 0)
            << std::hex << brng;
      }
    }
    // From then on a skip counts strided outputs.
    const Stream strided = new_stream(brng), base = new_stream(brng);
    __ostLeapfrogStream(strided.get(), 0, n);
    __ostSkipAheadStream(strided.get(), 10);
    __ostSkipAheadStream(base.get(), 10 * n);
    EXPECT_EQ(words_of(strided, 1), words_of(base, 1));
  }
}

TEST(SkipAndLeapfrog, WhatIsNotOfferedIsRefused) {
  struct Case {
    int32_t brng, leapfrog, skip, skip_ex;
  };
  const Case cases[] = {{QOR_BRNG_MCG31M1, 0, 0, -1004},
                        {QOR_BRNG_R250, -1002, -1003, -1004},
                        {QOR_BRNG_MRG32K3A, -1002, 0, 0},
                        {QOR_BRNG_MCG59, 0, 0, -1004},
                        {QOR_BRNG_WH, 0, 0, -1004}};
  for (const Case& c : cases) {
    const Stream stream = new_stream(c.brng);
    const auto before = state_of(stream);
    const uint64_t none[] = {0};
    EXPECT_EQ(__ostLeapfrogStream(stream.get(), 0, -1), -1013);
    EXPECT_EQ(__ostSkipAheadStream(stream.get(), 0), c.skip);
    EXPECT_EQ(__ostSkipAheadStreamEx(stream.get(), 1, none), c.skip_ex);
    EXPECT_EQ(row_of(stream).initStream(4, stream.get(), 1, none), -2);
    EXPECT_EQ(row_of(stream).initStream(-1, stream.get(), 1, none), -2);
    EXPECT_EQ(state_of(stream), before);
    EXPECT_EQ(__ostLeapfrogStream(stream.get(), 0, 2), c.leapfrog);
  }
}

}  // namespace
