// Calls and rings of 2^31 - 1 elements, the longest there are. Only a 64-bit address space holds
// their arrays.
#ifdef __LP64__

#include "qor/distributions.h"
#include "tests/streams/stream_support.h"
#include "tests/support/repeated_memory.h"

namespace {

using namespace qor::test;

// Moves a stream on by drawing words in calls of ordinary length, or by a skip where it can.
void move_on(const Stream& stream, int64_t count) {
  if (__ostSkipAheadStream(stream.get(), static_cast<uint64_t>(count)) == 0) return;
  constexpr int64_t step = 1 << 20;
  std::vector<uint32_t> words(step);
  const BrngProperties row = row_of(stream);
  for (; count > 0; count -= step)
    row.iBRng(stream.get(), static_cast<int32_t>(std::min(step, count)), words.data());
}

// draw(stream, n, r) fills n elements of `bytes` bytes: one call against ordinary ones at its end.
template <class Draw>
void expect_longest_call(int32_t brng, size_t bytes, Draw draw) {
  constexpr int32_t last = 1000;
  const RepeatedMemory memory(size_t{longest_count} * bytes);
  const Stream stream = new_stream(brng), other = new_stream(brng);
  draw(stream.get(), longest_count, memory.values<void>());
  move_on(other, longest_count - last);
  Bytes expected(last * bytes);
  draw(other.get(), last, expected.data());
  const auto* end = memory.values<unsigned char>() + size_t{longest_count} * bytes;
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), end - expected.size())) << brng;
  EXPECT_EQ(state_of(stream), state_of(other)) << brng;
}

// Some minutes: run with --gtest_also_run_disabled_tests.
TEST(LongestCalls, DISABLED_Words) {
  for (int32_t brng : linear_generators) {
    const BrngProperties row = row_of(new_stream(brng));
    expect_longest_call(brng, static_cast<size_t>(row.wordBytes), row.iBRng);
  }
}

template <class Real, class Output>
void expect_longest_reals(Output BrngProperties::*output) {
  for (int32_t brng : linear_generators) {
    const BrngProperties row = row_of(new_stream(brng));
    expect_longest_call(brng, sizeof(Real), [&](StreamState* s, int32_t n, void* r) {
      (row.*output)(s, n, static_cast<Real*>(r), -1, 3);
    });
  }
}
TEST(LongestCalls, DISABLED_Doubles) { expect_longest_reals<double>(&BrngProperties::dBRng); }
TEST(LongestCalls, DISABLED_Singles) { expect_longest_reals<float>(&BrngProperties::sBRng); }

// (Bernoulli's entry makes its uniforms in r itself, which repeated memory does not bear.)
TEST(LongestCalls, DISABLED_Distributions) {
  const auto expect = [](size_t bytes, auto draw) {
    for (int32_t brng : {QOR_BRNG_R250, QOR_BRNG_WH}) expect_longest_call(brng, bytes, draw);
  };
  expect(sizeof(float), [](StreamState* s, int32_t n, void* r) {
    ASSERT_EQ(_ostsRngUniform(QOR_RNG_ACCURATE, s, n, static_cast<float*>(r), -0.1f, 0.3f), 0);
  });
  expect(sizeof(double), [](StreamState* s, int32_t n, void* r) {
    ASSERT_EQ(_ostdRngUniform(QOR_RNG_ACCURATE, s, n, static_cast<double*>(r), -0.1, 0.3), 0);
  });
  expect(sizeof(int32_t), [](StreamState* s, int32_t n, void* r) {
    ASSERT_EQ(_ostiRngUniform(0, s, n, static_cast<int32_t*>(r), -50, 51), 0);
  });
}

// x^(d + 5) and x^(2 d) modulo x^d + x^k + 1.
TEST(LongestCalls, DISABLED_Polynomial) {
  constexpr int32_t d = longest_count, k = 1'000'000'007, words = d / 64 + 1;
  constexpr int32_t exponents[] = {0, k, d};
  std::vector<uint64_t> remainder(words);
  const auto takes_out = [&](int64_t exponent) {
    const auto at = static_cast<size_t>(exponent / 64);
    const uint64_t bit = uint64_t{1} << (exponent % 64);
    const bool there = (remainder[at] & bit) != 0;
    remainder[at] &= ~bit;
    return there;
  };
  for (const auto& [n, low, high] :
       {std::tuple{int64_t{d} + 5, 5, k + 5}, std::tuple{2 * int64_t{d}, 0, 2 * k}}) {
    ASSERT_EQ(__ostPolyRem(static_cast<uint64_t>(n), d, 3, exponents, words, remainder.data()), 0);
    EXPECT_TRUE(takes_out(low) && takes_out(high)) << n;
    EXPECT_EQ(std::ranges::count(remainder, 0u), words) << n;
  }
}

struct RingState {
  int32_t n, next, free;
};
RingState ring_state_of(const Stream& stream) {
  RingState state;
  std::memcpy(&state, state_of(stream).data(), sizeof state);
  return state;
}

// Gives ten where ten are wanted, else a whole ring: the numbers are what the memory holds.
int32_t fill_all(StreamState*, int32_t*, uint32_t*, int32_t* wanted, int32_t* room, int32_t*) {
  return *wanted == 10 ? 10 : *room;
}

TEST(LongestCalls, DISABLED_Ring) {
  constexpr size_t bytes = size_t{longest_count} * sizeof(uint32_t);
  const RepeatedMemory ring(bytes), memory(bytes);
  const Stream stream =
      made(__ostiNewAbstractStream, longest_count, ring.values<uint32_t>(), fill_all);
  for (int32_t m : {10, longest_count, longest_count - 20, 20})
    ASSERT_EQ(__ostiBRngiAbstract(stream.get(), m, memory.values<uint32_t>()), 0) << m;
  EXPECT_EQ(ring_state_of(stream).next, 10);
  EXPECT_EQ(ring_state_of(stream).free, longest_count);
}

// Only the pages that are touched take memory: reads go round the end of the ring.
TEST(LongestRing, GoesRoundItsEnd) {
  const size_t bytes = size_t{longest_count} * 4;
  void* const mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(mapped, MAP_FAILED);
  auto* const ring = static_cast<uint32_t*>(mapped);
  for (int32_t k = 0; k < 9; ++k) ring[(int64_t{longest_count} - 3 + k) % longest_count] = k;
  const Stream stream = made(__ostiNewAbstractStream, longest_count, ring, fill_all);
  Bytes image = image_of(stream);
  const RingState near_end{longest_count, longest_count - 3, longest_count - 9};  // nine unread
  std::memcpy(&image[24], &near_end, sizeof near_end);
  const Stream loaded = load_memory(image).stream;
  for (int32_t first : {0, 7}) {
    uint32_t r[7];
    ASSERT_EQ(__ostiBRngiAbstract(loaded.get(), 7, r), 0);
    for (int32_t k = 0; k < (first == 0 ? 7 : 2); ++k) EXPECT_EQ(r[k], first + k);
    EXPECT_EQ(ring_state_of(loaded).next, first + 4);
  }
  munmap(mapped, bytes);
}

}  // namespace

#endif
