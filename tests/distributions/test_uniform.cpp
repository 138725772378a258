// The uniform family on the generator's own output.

#include <algorithm>
#include <cmath>
#include <limits>

#include "qor/distributions.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;
using Integers = std::vector<int32_t>;

// A stream whose numbers the test gives, in order; the interval of the ring is 0 to 1.
std::vector<double> numbers;
size_t taken = 0;
int32_t give(StreamState*, int32_t*, double* buffer, int32_t*, int32_t*, int32_t* position) {
  if (taken == numbers.size()) return -1;
  buffer[*position] = numbers[taken++];
  return 1;
}
double ring[1];
Stream stream_of(std::vector<double> given) {
  numbers = std::move(given);
  taken = 0;
  return made(__ostdNewAbstractStream, 1, ring, 0.0, 1.0, give);
}

TEST(Uniform, IsTheGeneratorsOutput) {
  for (int32_t brng : linear_generators) {
    const Stream drawn = new_stream(brng), direct = new_stream(brng);
    std::vector<double> d(3001);
    std::vector<float> s(3001);
    ASSERT_EQ(_ostdRngUniform(QOR_RNG_ACCURATE, drawn.get(), 3001, d.data(), -2, 5), 0);
    ASSERT_EQ(_ostsRngUniform(0, drawn.get(), 3001, s.data(), -2, 5), 0);
    EXPECT_EQ(d, reals_of<double>(direct, 3001, -2, 5));
    EXPECT_EQ(s, reals_of<float>(direct, 3001, -2, 5));
    EXPECT_EQ(state_of(drawn), state_of(direct));
    // And the words.
    Bytes words(500 * static_cast<size_t>(row_of(drawn).wordBytes));
    ASSERT_EQ(_ostiRngUniformBits(3, drawn.get(), 500, words.data()), 0);
    EXPECT_EQ(words, words_of(direct, 500));
  }
}

TEST(Uniform, AccuracyFlagKeepsTheInterval) {
  // Numbers on and beyond the ring's own interval stand for what rounding can do.
  const std::vector<double> given = {-0.25, 0, 0.5, 1, 1.25};
  std::vector<double> r(5);
  ASSERT_EQ(_ostdRngUniform(0, stream_of(given).get(), 5, r.data(), 2, 6), 0);
  EXPECT_EQ(r, (std::vector<double>{1, 2, 4, 6, 7}));
  ASSERT_EQ(_ostdRngUniform(QOR_RNG_ACCURATE, stream_of(given).get(), 5, r.data(), 2, 6), 0);
  EXPECT_EQ(r, (std::vector<double>{2, 2, 4, 6, 6}));
  // Single output rounds up to b for the topmost words; the flag lets b stand.
  const Stream stream = new_stream(QOR_BRNG_MRG32K3A);
  std::vector<float> s(100000);
  const float a = 1, b = std::nextafter(1.0f, 2.0f);
  ASSERT_EQ(_ostsRngUniform(QOR_RNG_ACCURATE, stream.get(), 100000, s.data(), a, b), 0);
  EXPECT_TRUE(std::all_of(s.begin(), s.end(), [=](float v) { return v == a || v == b; }));
}

Integers integers(const Stream& stream, int32_t n, int32_t a, int32_t b, int32_t status = 0) {
  Integers r(static_cast<size_t>(n), -7);
  EXPECT_EQ(_ostiRngUniform(9, stream.get(), n, r.data(), a, b), status);
  return r;
}

TEST(UniformInteger, IsTheFloor) {
  const std::vector<double> given = {0, 0.25, 1.0 / 3, 0.5, 0.999, 2.0 / 3};
  EXPECT_EQ(integers(stream_of(given), 6, -4, 0), (Integers{-4, -3, -3, -2, -1, -2}));
  using Limits = std::numeric_limits<int32_t>;
  EXPECT_EQ(integers(stream_of({0, 1e-10, 1 - 1e-10}), 3, Limits::min(), Limits::max()),
            (Integers{Limits::min(), Limits::min(), Limits::max() - 1}));
}

// Streams whose first number is the extreme one of their generator.
std::vector<uint32_t> ring_of_r250(uint32_t first) {
  std::vector<uint32_t> seed(250, 1);
  seed[0] = first;
  seed[103] = 0;  // the other word of the first output
  return seed;
}
const std::vector<uint32_t> kAllBits = ring_of_r250(0xFFFFFFFF);
const struct LargestWord {
  int32_t brng;
  std::vector<uint32_t> seed;
} kLargest[] = {{QOR_BRNG_MCG31M1, {0x7FFFFFFE}},
                {QOR_BRNG_R250, kAllBits},
                {QOR_BRNG_MRG32K3A, {0, 0, 1, 0, 0, 55460180}},  // x' = 0, y' = 1
                {QOR_BRNG_MCG59, {0xFFFFFFFF, 0x7FFFFFF}},
                {QOR_BRNG_WH, {16770643, 1, 1, 1}}};  // (m - 4) / m and three next to 1 / m

TEST(UniformInteger, RoundingGivesNeitherBNorLessThanA) {
  for (const auto& [brng, seed] : kLargest) {
    const int32_t b = std::numeric_limits<int32_t>::max();
    ASSERT_EQ(reals_of<double>(new_stream(brng, seed), 1, b - 1, b)[0], b) << std::hex << brng;
    EXPECT_EQ(integers(new_stream(brng, seed), 9, b - 1, b), Integers(9, b - 1)) << brng;
  }
  const auto first = [](int32_t brng, const auto& seed, int32_t a, int32_t b) {
    return integers(new_stream(brng, seed), 1, a, b)[0];
  };
  EXPECT_EQ(first(QOR_BRNG_R250, kAllBits, 1000000000, 1000000006), 1000000005);
  EXPECT_EQ(first(QOR_BRNG_MCG59, kLargest[3].seed, 1, 7), 6);
  // Just above a power of two: what 1 is taken from for the floor rounds to a whole number.
  const int32_t a = -(1 << 30);
  EXPECT_EQ(first(QOR_BRNG_R250, ring_of_r250(512), a, a + 1), a);
  // An empty interval has no such bounds.
  for (int32_t at : {5, std::numeric_limits<int32_t>::min()})
    EXPECT_EQ(first(QOR_BRNG_R250, kAllBits, at, at), at);
}

TEST(UniformInteger, TakesADoubleEach) {
  for (int32_t n : {0, 1, 1023, 1024, 1025, 5000}) {
    const Stream stream = new_stream(QOR_BRNG_MCG59), other = new_stream(QOR_BRNG_MCG59);
    Integers expected;
    for (double u : reals_of<double>(other, n, -50, 51))
      expected.push_back(static_cast<int32_t>(std::floor(u)));
    EXPECT_EQ(integers(stream, n, -50, 51), expected);
    EXPECT_EQ(state_of(stream), state_of(other));
  }
}

TEST(UniformInteger, StopsAtAFailureWithTheBlocksBefore) {
  const Integers r = integers(stream_of(std::vector<double>(1034, 0.5)), 3000, 0, 10, -1120);
  EXPECT_EQ(r[1023], 5);
  EXPECT_EQ(r[2999], -7);
}

TEST(Bernoulli, ComparesSingleUniforms) {
  for (double p : {0.0, 0.25, 1.0 / 3, 0.9, 1 - 0x1p-24}) {
    const Stream stream = new_stream(QOR_BRNG_MCG31M1), other = new_stream(QOR_BRNG_MCG31M1);
    for (int32_t n : {0, 1, 3, 4, 1000}) {
      Integers r(static_cast<size_t>(n)), expected;
      ASSERT_EQ(_ostiRngBernoulli(0, stream.get(), n, r.data(), p), 0);
      for (float u : reals_of<float>(other, n, 0, 1))
        expected.push_back(u < static_cast<float>(p) ? 1 : 0);
      EXPECT_EQ(r, expected) << p;
    }
  }
  int32_t r = -7;
  EXPECT_EQ(_ostiRngBernoulli(0, stream_of({}).get(), 1, &r, 0.5), -1122);
}

// The largest words give singles of 1; so do doubles next to 1 as the probability.
TEST(Bernoulli, OfCertaintyGivesOnesOnly) {
  for (const auto& [brng, seed] : kLargest) {
    for (double p : {1.0, 1 - 1e-12}) {
      Integers r(100);
      ASSERT_EQ(_ostiRngBernoulli(0, new_stream(brng, seed).get(), 100, r.data(), p), 0);
      EXPECT_EQ(r, Integers(100, 1)) << std::hex << brng;
    }
    Integers none(100);
    ASSERT_EQ(_ostiRngBernoulli(0, new_stream(brng, seed).get(), 100, none.data(), 0), 0);
    EXPECT_EQ(none, Integers(100, 0));
  }
}

TEST(UniformBits, NarrowedWordsOfMcg59) {
  for (int32_t n : {0, 1, 1000, 1024, 2047, 2048, 2049, 4096, 5000}) {
    const Stream stream = new_stream(QOR_BRNG_MCG59), other = new_stream(QOR_BRNG_MCG59);
    std::vector<uint32_t> narrow(3 * static_cast<size_t>(n)), expected;
    ASSERT_EQ(_ostiRngUniformBits32(0, stream.get(), n, narrow.data()), 0);
    std::vector<uint64_t> wide(static_cast<size_t>(n)), words(narrow.size());
    ASSERT_EQ(_ostiRngUniformBits64(0, stream.get(), n, wide.data()), 0);
    std::memcpy(narrow.data() + n, wide.data(), 8 * wide.size());
    __ostiBRngMCG59(other.get(), 3 * n, words.data());
    for (uint64_t word : words) expected.push_back(static_cast<uint32_t>(word >> 27));
    EXPECT_EQ(narrow, expected);
    EXPECT_EQ(state_of(stream), state_of(other));
  }
}

TEST(UniformBits, OtherGeneratorsAreRefusedUntouched) {
  uint64_t wide = 77;
  uint32_t narrow = 77;
  // Generators of narrower words, identifiers of the first numbering beyond the families, abstract
  // and registered generators: the head alone says no.
  StreamState head{};
  for (int32_t brng :
       {0x100000, 0x200000, 0x300000, 0x500000, 0, 1, 2, 276, 277, 278, 0xA00000, 0x1100000}) {
    head.brng = brng;
    EXPECT_EQ(_ostiRngUniformBits32(0, &head, 1, &narrow), -1014) << brng;
    EXPECT_EQ(_ostiRngUniformBits64(0, &head, 1, &wide), -1014) << brng;
  }
  EXPECT_TRUE(narrow == 77 && wide == 77);
  EXPECT_EQ(_ostiRngUniformBits32(0, new_stream(3).get(), 1, &narrow), 0);
}

}  // namespace
