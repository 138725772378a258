// States that no seed leads to, as images and other generators' streams bring them.

#include <cstring>

#include "qor/distributions.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

// Words that are no residues stand for theirs.
TEST(Images, WordsOfWhMayBeAnyOfTheirClass) {
  const Stream stream = new_stream(QOR_BRNG_WH, {});
  Bytes image = image_of(stream);
  const uint32_t moduli[4] = {16770647, 16770643, 16770623, 16770617};
  const uint32_t words[8] = {1, 1, 1, 1, 125, 117, 127, 126};
  for (size_t j = 0; j < 8; ++j) {
    const uint32_t word = words[j] + 200 * moduli[j % 4];
    std::memcpy(&image[24 + 4 * j], &word, sizeof word);
  }
  const Stream loaded = load_memory(image).stream;
  for (const int n : {7, 100}) EXPECT_EQ(words_of(loaded, n), words_of(stream, n)) << n;
}

// They are repaired once: nothing leaves the interval, and the cut of the calls does not matter.
void expect_sound(const Stream& stream) {
  const Stream once = copy_of(stream), cut = copy_of(stream), real = copy_of(stream),
               die = copy_of(stream);
  const Bytes words = words_of(once, 300);
  Bytes pieces;
  for (int32_t n : {1, 40, 3, 256}) {
    const Bytes piece = words_of(cut, n);
    pieces.insert(pieces.end(), piece.begin(), piece.end());
  }
  EXPECT_EQ(pieces, words);
  EXPECT_EQ(state_of(cut), state_of(once));
  for (double u : reals_of<double>(real, 300, 5, 7)) EXPECT_TRUE(u >= 5 && u <= 7) << u;
  for (float u : reals_of<float>(real, 300, 5, 7)) EXPECT_TRUE(u >= 5 && u <= 7) << u;
  int32_t rolls[300];
  ASSERT_EQ(_ostiRngUniform(0, die.get(), 300, rolls, 1, 7), 0);
  for (int32_t k : rolls) EXPECT_TRUE(k >= 1 && k < 7) << k;
}

TEST(Images, ImpossibleStatesAreRepaired) {
  for (int32_t brng : linear_generators) {
    SCOPED_TRACE(brng);
    const Bytes image = image_of(new_stream(brng));
    for (int byte : {0x00, 0xFF, 0x7F}) {
      Bytes spoiled = image;
      std::fill(spoiled.begin() + 24, spoiled.end(), static_cast<unsigned char>(byte));
      expect_sound(load_memory(spoiled).stream);
    }
    for (int32_t other : linear_generators) {
      const Stream stream = new_stream(brng);
      ASSERT_EQ(__ostCopyStreamState(stream.get(), new_stream(other).get()), 0);
      expect_sound(stream);
    }
  }
  // The modulus itself, of which every multiple is 0.
  Bytes image = image_of(new_stream(QOR_BRNG_MCG31M1));
  const uint32_t state[2] = {0x7FFFFFFF, 0x7FFFFFFF};
  std::memcpy(&image[24], state, sizeof state);
  const Stream loaded = load_memory(image).stream;
  EXPECT_EQ(words_of(loaded, 100), words_of(new_stream(QOR_BRNG_MCG31M1, {1}), 100));
}

}  // namespace
