// The linear generators: known answers, and that neither the cut of the calls nor the place of the
// array changes a bit.

#include <algorithm>
#include <cfenv>

#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

// A line of golden.txt; tools/golden_streams has its meaning.
struct GoldenCase {
  int32_t brng = 0, leap_k = 0, leap_n = 0;  // no leapfrog when leap_n is 0
  std::vector<uint32_t> seed;
  uint64_t skip = 0;
  int32_t n = 0;
  float a = 0, b = 0;  // which hold what is written exactly
  uint64_t words = 0, doubles = 0, singles = 0, state = 0;

  explicit GoldenCase(std::istringstream& in) {
    std::string origin, seeds, leap, first_word;
    in >> origin >> std::hex >> brng >> std::dec >> seeds >> leap >> skip >> n >> a >> b >>
        first_word >> std::hex >> words >> doubles >> singles >> state;
    EXPECT_TRUE(in);
    std::istringstream values(seeds);
    for (std::string value; seeds != "-" && std::getline(values, value, ',');)
      seed.push_back(static_cast<uint32_t>(std::stoul(value)));
    std::sscanf(leap.c_str(), "%d/%d", &leap_k, &leap_n);
  }

  Stream stream() const {
    Stream stream = new_stream(brng, seed);
    EXPECT_EQ(leap_n != 0 ? __ostLeapfrogStream(stream.get(), leap_k, leap_n) : 0, 0);
    EXPECT_EQ(skip != 0 ? __ostSkipAheadStream(stream.get(), skip) : 0, 0);
    return stream;
  }
};

// FNV-1a, 64 bits, of the bytes.
template <class Value>
uint64_t hash(const std::vector<Value>& values) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(values.data());
  uint64_t h = 0xCBF29CE484222325;
  for (size_t i = 0; i < values.size() * sizeof(Value); ++i) h = (h ^ bytes[i]) * 0x100000001B3;
  return h;
}

TEST(LinearGenerators, KnownAnswers) {
  for (const auto& [place, text] : table_lines("streams/golden.txt", 10)) {
    SCOPED_TRACE(place);
    std::istringstream in(text);
    const GoldenCase c(in);
    const Stream words = c.stream(), doubles = c.stream(), singles = c.stream();
    EXPECT_EQ(hash(words_of(words, c.n)), c.words);
    EXPECT_EQ(hash(reals_of<double>(doubles, c.n, c.a, c.b)), c.doubles);
    EXPECT_EQ(hash(reals_of<float>(singles, c.n, c.a, c.b)), c.singles);
    for (const Stream* stream : {&words, &doubles, &singles})
      EXPECT_EQ(hash(state_of(*stream)), c.state);
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

constexpr int32_t kLong = 15'000;  // several rounds of every block form

// Draws kLong outputs of `bytes` bytes in calls of changing sizes, starting `offset` bytes past a
// word's boundary, and compares with one call.
using Draw = std::function<void(StreamState*, int32_t, void*)>;
void expect_cut_does_not_matter(int32_t brng, size_t bytes, const Draw& draw) {
  const std::vector<int32_t> cuts[] = {{1},
                                       {7, 0, 15, 16, 17, 31, 32, 33, 63, 64, 65, 249, 250, 251},
                                       {1023, 2, 2048, 1, 6143, 6144, 1}};
  Bytes expected(kLong * bytes), got(expected.size() + 64);
  draw(new_stream(brng).get(), kLong, expected.data());
  for (size_t offset : {size_t{0}, size_t{1}, bytes, size_t{36}}) {
    for (const auto& cut : cuts) {
      const Stream stream = new_stream(brng);
      unsigned char* const place = got.data() + offset;
      for (size_t k = 0, done = 0; done < kLong; ++k) {
        const int32_t count = std::min(cut[k % cut.size()], kLong - static_cast<int32_t>(done));
        draw(stream.get(), count, place + done * bytes);
        done += static_cast<size_t>(count);
      }
      ASSERT_EQ(std::memcmp(place, expected.data(), expected.size()), 0)
          << std::hex << brng << " offset " << offset << " first cut " << cut[0];
    }
  }
}

TEST(LinearGenerators, CutAndPlaceDoNotMatter) {
  for (int32_t brng : linear_generators) {
    const BrngProperties row = row_of(new_stream(brng));
    expect_cut_does_not_matter(brng, static_cast<size_t>(row.wordBytes), row.iBRng);
    // The array of reals is passed on as it lies.
    expect_cut_does_not_matter(brng, sizeof(double), [&](StreamState* s, int32_t n, void* r) {
      row.dBRng(s, n, static_cast<double*>(r), -1, 3);
    });
    expect_cut_does_not_matter(brng, sizeof(float), [&](StreamState* s, int32_t n, void* r) {
      row.sBRng(s, n, static_cast<float*>(r), -1, 3);
    });
  }
}

TEST(LinearGenerators, WordsAreExactInAnyRoundingMode) {
  for (int32_t brng : linear_generators) {
    const Stream usual = new_stream(brng);
    const Bytes expected = words_of(usual, kLong);
    for (int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
      const Stream stream = new_stream(brng);
      std::fesetround(mode);
      const Bytes words = words_of(stream, kLong);
      std::fesetround(FE_TONEAREST);
      EXPECT_EQ(words, expected) << std::hex << brng << " mode " << mode;
      EXPECT_EQ(state_of(stream), state_of(usual));
    }
  }
}

}  // namespace
