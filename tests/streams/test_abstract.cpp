// Abstract streams: rings of the test's numbers 0, 1, 2, ... and what their callback is asked.

#include <array>
#include <cmath>
#include <set>

#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;
using Words = std::vector<uint32_t>;

// What the callback does and saw; the entries give it no context.
struct Feeder {
  uint32_t next = 0;     // the number to give
  int32_t at_most = 99;  // of what it is offered room for
  int32_t answer = 0;    // given instead of a count, where not 0
  std::vector<int32_t> wanted, positions;
};
Feeder feeder;

template <class Element>
int32_t feed(StreamState*, int32_t* n, Element* buffer, int32_t* wanted, int32_t* room,
             int32_t* position) {
  feeder.wanted.push_back(*wanted);
  feeder.positions.push_back(*position);
  if (feeder.answer != 0) return feeder.answer;
  const int32_t count = std::min(*room, feeder.at_most);
  for (int32_t k = 0; k < count; ++k)
    buffer[(*position + k) % *n] = static_cast<Element>(feeder.next++);
  return count;
}

uint32_t words[64];
double doubles[6];
float singles[6];

Stream ring_of(int32_t n) {
  feeder = {};
  return made(__ostiNewAbstractStream, n, words, feed<uint32_t>);
}

// Streams of all three kinds, in the order of their rows.
std::array<Stream, 3> kinds() {
  return {ring_of(6), made(__ostdNewAbstractStream, 6, doubles, -1.0, 2.0, feed<double>),
          made(__ostsNewAbstractStream, 6, singles, -1.0f, 2.0f, feed<float>)};
}

Words draw(const Stream& stream, int32_t m, int32_t status = 0) {
  Words r(static_cast<size_t>(m), 777);
  EXPECT_EQ(__ostiBRngiAbstract(stream.get(), m, r.data()), status);
  return r;
}

TEST(AbstractStreams, DeliverTheRingInOrder) {
  for (int32_t n : {1, 2, 5, 8, 64}) {
    for (int32_t at_most : {1, 2, 3, 7, 99}) {
      const Stream stream = ring_of(n);
      feeder.at_most = at_most;
      uint32_t expected = 0;
      for (int32_t m : {0, 1, 3, 2, 7, 0, 1, 30, 5, 100, 4}) {
        for (uint32_t got : draw(stream, m)) ASSERT_EQ(got, expected++) << n << " " << at_most;
      }
    }
  }
}

TEST(AbstractStreams, AskForWhatTheCallLacks) {
  const Stream stream = ring_of(4);
  draw(stream, 3);  // four come, one stays
  draw(stream, 7);  // six more
  draw(stream, 2);
  feeder.at_most = 1;
  draw(stream, 2);
  EXPECT_EQ(feeder.wanted, (std::vector{3, 4, 2, 2, 1}));
  EXPECT_EQ(feeder.positions, (std::vector{0, 0, 0, 0, 1}));
}

TEST(AbstractStreams, FailuresLeaveTheState) {
  const Stream stream = ring_of(4);
  draw(stream, 1);
  const auto before = state_of(stream);
  for (int32_t answer : {-1, 5}) {
    feeder.answer = answer;
    EXPECT_EQ(draw(stream, 5, -1120)[2], 3u);  // what was there has gone out
  }
  feeder.answer = feeder.at_most = 0;
  draw(stream, 5, -1121);
  EXPECT_EQ(state_of(stream), before);
}

template <class Real>
void expect_mapped(const Stream& stream) {
  feeder = {};
  const Real low = -1, high = 2, a = 10, b = 12;
  const auto r = reals_of(stream, 9, a, b);
  for (size_t k = 0; k < 9; ++k)
    EXPECT_EQ(r[k], (static_cast<Real>(k) - low) * ((b - a) / (high - low)) + a);
}

TEST(AbstractStreams, MapTheInterval) {
  expect_mapped<double>(kinds()[1]);
  expect_mapped<float>(kinds()[2]);
}

TEST(AbstractStreams, OtherTypesAndMethodsAreRefused) {
  const auto streams = kinds();
  for (size_t own = 0; own < 3; ++own) {
    StreamState* stream = streams[own].get();
    const BrngProperties row = row_of(streams[own]);
    EXPECT_EQ(row.iBRng(stream, 0, nullptr), own == 0 ? 0 : -1122);
    EXPECT_EQ(row.dBRng(stream, 0, nullptr, 0, 1), own == 1 ? 0 : -1122);
    EXPECT_EQ(row.sBRng(stream, 0, nullptr, 0, 1), own == 2 ? 0 : -1122);
    EXPECT_EQ(__ostLeapfrogStream(stream, 0, 2), -1002);
    EXPECT_EQ(__ostSkipAheadStream(stream, 1), -1003);
    EXPECT_EQ(__ostSkipAheadStreamEx(stream, 0, nullptr), -1004);
    EXPECT_EQ(row.initStream(9, stream, 0, nullptr), -2);
  }
}

TEST(AbstractStreams, OneFunctionRefuses) {
  std::set<void*> refusals;
  const BrngProperties &i = __RegBrngsNew[9], &d = __RegBrngsNew[10], &s = __RegBrngsNew[11];
  for (auto f : {i.sBRng, d.sBRng}) refusals.insert(reinterpret_cast<void*>(f));
  for (auto f : {i.dBRng, s.dBRng}) refusals.insert(reinterpret_cast<void*>(f));
  for (auto f : {d.iBRng, s.iBRng}) refusals.insert(reinterpret_cast<void*>(f));
  EXPECT_EQ(refusals.size(), 1u);
}

TEST(AbstractStreams, BadArguments) {
  const auto integers = [](auto... of) { return answer_of(__ostiNewAbstractStream, of...).what; };
  const auto reals = [](auto... of) { return answer_of(__ostdNewAbstractStream, of...).what; };
  EXPECT_EQ(integers(0, words, feed<uint32_t>), "-3 alone");
  EXPECT_EQ(integers(2, nullptr, feed<uint32_t>), "-3 alone");
  EXPECT_EQ(integers(2, words, nullptr), "-3 alone");
  EXPECT_EQ(reals(0, doubles, 0.0, 1.0, feed<double>), "-3 alone");
  EXPECT_EQ(reals(2, nullptr, 0.0, 1.0, feed<double>), "-3 alone");
  EXPECT_EQ(reals(2, doubles, 1.0, 1.0, feed<double>), "-3 alone");
  EXPECT_EQ(reals(2, doubles, 2.0, 1.0, feed<double>), "-3 alone");
  EXPECT_EQ(reals(2, doubles, std::nan(""), 1.0, feed<double>), "0 made");
  EXPECT_EQ(reals(2, doubles, 0.0, 1.0, nullptr), "-3 alone");
  const FailingAllocations failing(0);
  EXPECT_EQ(integers(2, words, feed<uint32_t>), "-4 null");
}

TEST(AbstractStreams, CopiesAndImagesShareTheRing) {
  const Stream stream = ring_of(8);
  draw(stream, 2);
  const Stream copy = copy_of(stream);
  Bytes image = image_of(stream);
  const Stream loaded = load_memory(image).stream;
  for (const Stream* each : {&stream, &copy, &loaded}) EXPECT_EQ(draw(*each, 3), (Words{2, 3, 4}));
  // A ring that was lost: the pointer comes behind the header, three words and the padding.
  std::memset(image.data() + 24 + (sizeof(void*) == 8 ? 16 : 12), 0, sizeof(void*));
  draw(load_memory(image).stream, 1, -5);
}

}  // namespace
