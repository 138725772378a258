// The uniform family on the generator's own output.

#include <cmath>
#include <limits>

#include "qor/distributions.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

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
  StreamState* stream = nullptr;
  EXPECT_EQ(__ostdNewAbstractStream(&stream, 1, ring, 0, 1, give), 0);
  return Stream(stream);
}

TEST(Uniform, IsTheGeneratorsOutput) {
  for (int32_t brng : linear_generators) {
    const Stream drawn = new_stream(brng), direct = new_stream(brng);
    std::vector<double> d(3001), expected(3001);
    ASSERT_EQ(_ostdRngUniform(QOR_RNG_ACCURATE, drawn.get(), 3001, d.data(), -2, 5), 0);
    row_of(direct).dBRng(direct.get(), 3001, expected.data(), -2, 5);
    EXPECT_EQ(d, expected);
    std::vector<float> s(3001), single(3001);
    ASSERT_EQ(_ostsRngUniform(0, drawn.get(), 3001, s.data(), -2, 5), 0);
    row_of(direct).sBRng(direct.get(), 3001, single.data(), -2, 5);
    EXPECT_EQ(s, single);
    EXPECT_EQ(state_of(drawn), state_of(direct));
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

TEST(UniformInteger, IsTheFloor) {
  const std::vector<double> given = {0, 0.25, 1.0 / 3, 0.5, 0.999, 2.0 / 3};
  std::vector<int32_t> r(6);
  ASSERT_EQ(_ostiRngUniform(9, stream_of(given).get(), 6, r.data(), -4, 0), 0);
  EXPECT_EQ(r, (std::vector<int32_t>{-4, -3, -3, -2, -1, -2}));
  constexpr int32_t low = std::numeric_limits<int32_t>::min(),
                    high = std::numeric_limits<int32_t>::max();
  ASSERT_EQ(_ostiRngUniform(0, stream_of({0, 1e-10, 1 - 1e-10}).get(), 3, r.data(), low, high), 0);
  EXPECT_EQ(r[0], low);
  EXPECT_EQ(r[1], low);
  EXPECT_EQ(r[2], high - 1);
}

TEST(UniformInteger, TakesADoubleEach) {
  for (int32_t n : {0, 1, 1023, 1024, 1025, 5000}) {
    const Stream stream = new_stream(QOR_BRNG_MCG59), other = new_stream(QOR_BRNG_MCG59);
    std::vector<int32_t> r(static_cast<size_t>(n));
    std::vector<double> d(static_cast<size_t>(n));
    ASSERT_EQ(_ostiRngUniform(0, stream.get(), n, r.data(), -50, 51), 0);
    __ostdBRngMCG59(other.get(), n, d.data(), -50, 51);
    EXPECT_EQ(state_of(stream), state_of(other));
    for (size_t i = 0; i < r.size(); ++i) ASSERT_EQ(r[i], static_cast<int32_t>(std::floor(d[i])));
  }
}

TEST(UniformInteger, StopsAtAFailureWithTheBlocksBefore) {
  std::vector<double> given(1024 + 10, 0.5);
  std::vector<int32_t> r(3000, -7);
  EXPECT_EQ(_ostiRngUniform(0, stream_of(given).get(), 3000, r.data(), 0, 10), -1120);
  EXPECT_EQ(r[1023], 5);
  EXPECT_EQ(r[2999], -7);
}

TEST(Bernoulli, ComparesSingleUniforms) {
  for (double p : {0.0, 0.25, 1.0 / 3, 0.9, 1.0}) {
    for (int32_t n : {0, 1, 3, 4, 1000}) {
      const Stream stream = new_stream(QOR_BRNG_MCG31M1), other = new_stream(QOR_BRNG_MCG31M1);
      std::vector<int32_t> r(static_cast<size_t>(n));
      std::vector<float> u(static_cast<size_t>(n));
      ASSERT_EQ(_ostiRngBernoulli(0, stream.get(), n, r.data(), p), 0);
      __ostsBRngMCG31M1(other.get(), n, u.data(), 0, 1);
      for (size_t i = 0; i < r.size(); ++i)
        ASSERT_EQ(r[i], u[i] < static_cast<float>(p) ? 1 : 0) << p;
      EXPECT_EQ(state_of(stream), state_of(other));
    }
  }
  int32_t r = -7;
  EXPECT_EQ(_ostiRngBernoulli(0, stream_of({}).get(), 1, &r, 0.5), -1122);
}

TEST(UniformBits, AreTheGeneratorsWords) {
  for (int32_t brng : linear_generators) {
    const Stream stream = new_stream(brng);
    const auto expected = words_of(new_stream(brng), 500);
    std::vector<unsigned char> got(expected.size());
    ASSERT_EQ(_ostiRngUniformBits(3, stream.get(), 500, got.data()), 0);
    EXPECT_EQ(got, expected);
  }
}

TEST(UniformBits, NarrowedWordsOfMcg59) {
  for (int32_t n : {0, 1, 1000, 1024, 2047, 2048, 2049, 4096, 5000}) {
    const Stream stream = new_stream(QOR_BRNG_MCG59), pairs = new_stream(QOR_BRNG_MCG59);
    const Stream other = new_stream(QOR_BRNG_MCG59);
    std::vector<uint64_t> words(2 * static_cast<size_t>(n) + 1), wide(static_cast<size_t>(n));
    std::vector<uint32_t> narrow(static_cast<size_t>(n));
    __ostiBRngMCG59(other.get(), n, words.data());
    ASSERT_EQ(_ostiRngUniformBits32(0, stream.get(), n, narrow.data()), 0);
    EXPECT_EQ(state_of(stream), state_of(other));
    __ostiBRngMCG59(other.get(), n, words.data() + n);
    ASSERT_EQ(_ostiRngUniformBits64(0, pairs.get(), n, wide.data()), 0);
    EXPECT_EQ(state_of(pairs), state_of(other));
    for (size_t i = 0; i < narrow.size(); ++i) {
      ASSERT_EQ(narrow[i], static_cast<uint32_t>(words[i] >> 27));
      ASSERT_EQ(wide[i], (words[2 * i] >> 27) | (words[2 * i + 1] >> 27) << 32);
    }
  }
}

TEST(UniformBits, OtherGeneratorsAreRefusedUntouched) {
  for (int32_t brng : {0x100000, 0x200000, 0x300000, 0x500000, 0, 1, 2, 276}) {
    const Stream stream = new_stream(brng);
    const auto before = state_of(stream);
    uint64_t r = 77;
    EXPECT_EQ(_ostiRngUniformBits32(0, stream.get(), 1, reinterpret_cast<uint32_t*>(&r)), -1014);
    EXPECT_EQ(_ostiRngUniformBits64(0, stream.get(), 1, &r), -1014);
    EXPECT_EQ(r, 77u);
    EXPECT_EQ(state_of(stream), before);
  }
  uint32_t narrow = 0;
  EXPECT_EQ(_ostiRngUniformBits32(0, new_stream(3).get(), 1, &narrow), 0);
  // Identifiers of the first numbering beyond the families, and registered rows.
  StreamState head{};
  for (int32_t brng : {277, 278, 0x1100000, 0xA00000}) {
    head.brng = brng;
    EXPECT_EQ(_ostiRngUniformBits32(0, &head, 1, &narrow), -1014);
  }
}

}  // namespace
