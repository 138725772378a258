// The linear generators: known answers, and that neither the cut of the calls nor the place of the
// array changes a bit.

#include <array>
#include <cfenv>

#include "tests/streams/golden_file.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

Stream stream_of(const GoldenCase& c) {
  Stream stream = new_stream(c.brng, c.seed);
  if (c.leap_n != 0) {
    EXPECT_EQ(__ostLeapfrogStream(stream.get(), c.leap_k, c.leap_n), 0);
  }
  if (c.skip != 0) {
    EXPECT_EQ(__ostSkipAheadStream(stream.get(), c.skip), 0);
  }
  return stream;
}

TEST(LinearGenerators, KnownAnswers) {
  const auto cases = golden_cases();
  ASSERT_GT(cases.size(), 30u);
  for (const GoldenCase& c : cases) {
    SCOPED_TRACE(c.line);
    const Stream words = stream_of(c), doubles = stream_of(c), singles = stream_of(c);
    const auto w = words_of(words, c.n);
    uint64_t first = 0;  // of a WH word, the first of its four
    std::memcpy(&first, w.data(), row_of(words).wordBytes == 8 ? 8 : 4);
    EXPECT_EQ(first, c.first);
    EXPECT_EQ(hash(w.data(), w.size()), c.words);
    const auto n = static_cast<size_t>(c.n);
    std::vector<double> d(n);
    ASSERT_EQ(row_of(doubles).dBRng(doubles.get(), c.n, d.data(), c.a, c.b), 0);
    EXPECT_EQ(hash(d.data(), n * sizeof(double)), c.doubles);
    std::vector<float> s(n);
    const auto a = static_cast<float>(c.a), b = static_cast<float>(c.b);
    ASSERT_EQ(row_of(singles).sBRng(singles.get(), c.n, s.data(), a, b), 0);
    EXPECT_EQ(hash(s.data(), n * sizeof(float)), c.singles);
    for (const Stream* stream : {&words, &doubles, &singles}) {
      const auto state = state_of(*stream);
      EXPECT_EQ(hash(state.data(), state.size()), c.state);
    }
  }
}

// The published sequence of MRG32K3A: all initial values 12345.
TEST(LinearGenerators, PublishedUniforms) {
  const Stream stream = new_stream(QOR_BRNG_MRG32K3A, std::vector<uint32_t>(6, 12345));
  double u[3];
  ASSERT_EQ(__ostdBRngMRG32K3A(stream.get(), 3, u, 0, 1), 0);
  EXPECT_NEAR(u[0], 0.127011122046577, 1e-9);
  EXPECT_NEAR(u[1], 0.318527565396784, 1e-9);
  EXPECT_NEAR(u[2], 0.309186015583104, 1e-9);
}

// Draws `total` outputs of `bytes` bytes in calls of changing sizes, starting `offset` bytes past a
// word's boundary, and compares with one call.
template <class Draw>
void expect_cut_does_not_matter(int32_t brng, size_t bytes, int32_t total, Draw draw) {
  const std::vector<std::vector<int32_t>> cuts = {{1},
                                                  {7, 15, 16, 17},
                                                  {249, 250, 251},
                                                  {31, 32, 33, 63, 64, 65},
                                                  {1023, 2, 2048, 1},
                                                  {6143, 6144, 1}};
  const Stream whole = new_stream(brng);
  const size_t size = static_cast<size_t>(total) * bytes;
  std::vector<unsigned char> expected(size), got(size + 64);
  draw(whole, total, expected.data());
  for (size_t offset : {size_t{0}, size_t{1}, bytes, size_t{36}}) {
    for (const auto& cut : cuts) {
      const Stream stream = new_stream(brng);
      int32_t done = 0;
      for (size_t k = 0; done < total; ++k) {
        const int32_t count = std::min(cut[k % cut.size()], total - done);
        draw(stream, count, got.data() + offset + static_cast<size_t>(done) * bytes);
        done += count;
      }
      ASSERT_EQ(std::memcmp(got.data() + offset, expected.data(), size), 0)
          << std::hex << brng << " offset " << offset << " first cut " << cut[0];
    }
  }
}

constexpr int32_t kLong = 15'000;  // several rounds of every block form

TEST(LinearGenerators, CutAndPlaceDoNotMatter) {
  for (int32_t brng : linear_generators) {
    const BrngProperties row = row_of(new_stream(brng));
    expect_cut_does_not_matter(
        brng, static_cast<size_t>(row.wordBytes), kLong,
        [&](const Stream& s, int32_t n, void* r) { row.iBRng(s.get(), n, r); });
    // The array of reals is passed on as it lies.
    expect_cut_does_not_matter(brng, sizeof(double), kLong,
                               [&](const Stream& s, int32_t n, void* r) {
                                 row.dBRng(s.get(), n, static_cast<double*>(r), -1, 3);
                               });
    expect_cut_does_not_matter(brng, sizeof(float), kLong,
                               [&](const Stream& s, int32_t n, void* r) {
                                 row.sBRng(s.get(), n, static_cast<float*>(r), -1, 3);
                               });
  }
}

TEST(LinearGenerators, WordsAreExactInAnyRoundingMode) {
  for (int32_t brng : linear_generators) {
    const Stream usual = new_stream(brng);
    const auto expected = words_of(usual, kLong);
    for (int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      const Stream stream = new_stream(brng);
      std::fesetround(mode);
      const auto words = words_of(stream, kLong);
      std::fesetround(FE_TONEAREST);
      EXPECT_EQ(words, expected) << std::hex << brng << " mode " << mode;
      EXPECT_EQ(state_of(stream), state_of(usual));
    }
  }
}

TEST(LinearGenerators, NoOutputsChangeNothing) {
  for (int32_t brng : linear_generators) {
    const Stream stream = new_stream(brng);
    const auto before = state_of(stream);
    const BrngProperties row = row_of(stream);
    EXPECT_EQ(row.iBRng(stream.get(), 0, nullptr), 0);
    EXPECT_EQ(row.dBRng(stream.get(), 0, nullptr, 0, 1), 0);
    EXPECT_EQ(row.sBRng(stream.get(), 0, nullptr, 0, 1), 0);
    EXPECT_EQ(state_of(stream), before);
  }
}

TEST(LinearGenerators, WhIsOneFamilyUnderTwoNumberings) {
  for (int32_t member : {0, 1, 136, 272}) {
    const std::vector<uint32_t> seed = {9, 8, 7, 6};
    EXPECT_EQ(words_of(new_stream(4 + member, seed), 50),
              words_of(new_stream(QOR_BRNG_WH + member, seed), 50));
  }
}

}  // namespace
