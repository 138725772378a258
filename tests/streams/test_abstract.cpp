// Abstract streams: rings of the test's numbers 0, 1, 2, ... and what their callback is asked.

#include <limits>

#include "tests/streams/stream_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

// What the callback does and saw; the entries give it no context.
struct Feeder {
  double next = 0;       // the number to give
  double scale = 1;      // numbers are multiples of it
  int32_t at_most = 99;  // of what it is offered room for
  int32_t answer = 0;    // given instead of a count, where not 0
  bool empty = false;    // gives nothing
  std::vector<int32_t> wanted, positions;
};
Feeder feeder;

template <class Element>
int32_t feed(StreamState*, int32_t* n, Element* buffer, int32_t* wanted, int32_t* room,
             int32_t* position) {
  feeder.wanted.push_back(*wanted);
  feeder.positions.push_back(*position);
  if (feeder.empty) return 0;
  if (feeder.answer != 0) return feeder.answer;
  const int32_t count = std::min(*room, feeder.at_most);
  for (int32_t k = 0; k < count; ++k, ++feeder.next)
    buffer[(*position + k) % *n] = static_cast<Element>(feeder.next * feeder.scale);
  return count;
}

Stream ring_of(std::vector<uint32_t>& buffer) {
  feeder = {};
  StreamState* stream = nullptr;
  EXPECT_EQ(__ostiNewAbstractStream(&stream, static_cast<int32_t>(buffer.size()), buffer.data(),
                                    feed<uint32_t>),
            0);
  return Stream(stream);
}

std::vector<uint32_t> draw(const Stream& stream, int32_t m, int32_t status = 0) {
  std::vector<uint32_t> r(static_cast<size_t>(m), 777);
  EXPECT_EQ(__ostiBRngiAbstract(stream.get(), m, r.data()), status);
  return r;
}

TEST(AbstractStreams, DeliverTheRingInOrder) {
  for (size_t n : {1u, 2u, 5u, 8u, 64u}) {
    for (int32_t at_most : {1, 2, 3, 7, 99}) {
      std::vector<uint32_t> buffer(n);
      const Stream stream = ring_of(buffer);
      feeder.at_most = at_most;
      uint32_t expected = 0;
      for (int32_t m : {0, 1, 3, 2, 7, 0, 1, 30, 5, 100, 4}) {
        for (uint32_t got : draw(stream, m)) ASSERT_EQ(got, expected++) << n << " " << at_most;
      }
    }
  }
}

TEST(AbstractStreams, AskForWhatTheCallLacks) {
  std::vector<uint32_t> buffer(4);
  const Stream stream = ring_of(buffer);
  draw(stream, 0);
  EXPECT_TRUE(feeder.wanted.empty());
  draw(stream, 3);  // four come, one stays
  draw(stream, 7);  // six more
  EXPECT_EQ(feeder.wanted, (std::vector{3, 4, 2}));
  EXPECT_EQ(feeder.positions, (std::vector{0, 0, 0}));
  draw(stream, 2);
  feeder.at_most = 1;
  draw(stream, 2);
  EXPECT_EQ(feeder.wanted, (std::vector{3, 4, 2, 2, 1}));
  EXPECT_EQ(feeder.positions, (std::vector{0, 0, 0, 0, 1}));
  std::vector<uint32_t> one(1);
  const Stream single = ring_of(one);
  draw(single, 3);
  EXPECT_EQ(feeder.wanted.size(), 3u);
}

TEST(AbstractStreams, FailuresLeaveTheState) {
  std::vector<uint32_t> buffer(4);
  const Stream stream = ring_of(buffer);
  draw(stream, 1);
  const auto before = state_of(stream);
  feeder.answer = -1;
  EXPECT_EQ(draw(stream, 5, -1120)[2], 3u);  // what was there has gone out
  feeder.answer = 5;
  draw(stream, 5, -1120);
  feeder.empty = true;
  draw(stream, 5, -1121);
  EXPECT_EQ(state_of(stream), before);
}

TEST(AbstractStreams, MapTheInterval) {
  std::vector<double> d(6);
  feeder = {};
  feeder.scale = 0.5;
  StreamState* raw = nullptr;
  ASSERT_EQ(__ostdNewAbstractStream(&raw, 6, d.data(), -1, 3, feed<double>), 0);
  const Stream doubles(raw);
  double r[9];
  ASSERT_EQ(__ostdBRngdAbstract(raw, 9, r, 10, 12), 0);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(r[k], (0.5 * k + 1) * 0.5 + 10);
  std::vector<float> f(6);
  feeder = {};
  ASSERT_EQ(__ostsNewAbstractStream(&raw, 6, f.data(), 0, 3, feed<float>), 0);
  const Stream singles(raw);
  float s[9];
  ASSERT_EQ(__ostsBRngsAbstract(raw, 9, s, 0, 1), 0);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(s[k], static_cast<float>(k) * (1.0f / 3.0f) + 0.0f);
}

TEST(AbstractStreams, OtherTypesAreRefused) {
  std::vector<uint32_t> buffer(4);
  const Stream stream = ring_of(buffer);
  const BrngProperties row = row_of(stream);
  double d = 1;
  float f = 1;
  EXPECT_EQ(row.dBRng(stream.get(), 1, &d, 0, 1), -1122);
  EXPECT_EQ(row.sBRng(stream.get(), 1, &f, 0, 1), -1122);
  EXPECT_EQ(__ostiBRngdAbstract(nullptr, 1, nullptr), -1122);
  EXPECT_EQ(__ostsBRngdAbstract(nullptr, 1, nullptr, 0, 1), -1122);
  EXPECT_EQ(__ostiBRngsAbstract(nullptr, 1, nullptr), -1122);
  EXPECT_EQ(__ostdBRngsAbstract(nullptr, 1, nullptr, 0, 1), -1122);
  EXPECT_TRUE(feeder.wanted.empty());
  EXPECT_EQ(__ostLeapfrogStream(stream.get(), 0, 2), -1002);
  EXPECT_EQ(__ostSkipAheadStream(stream.get(), 1), -1003);
  EXPECT_EQ(__ostSkipAheadStreamEx(stream.get(), 0, nullptr), -1004);
  EXPECT_EQ(row.initStream(9, stream.get(), 0, nullptr), -2);
}

TEST(AbstractStreams, BadArguments) {
  double d[2];
  uint32_t w[2];
  float f[2];
  StreamState sentinel{}, *s = &sentinel;
  EXPECT_EQ(__ostiNewAbstractStream(&s, 0, w, feed<uint32_t>), -3);
  EXPECT_EQ(__ostiNewAbstractStream(&s, 2, nullptr, feed<uint32_t>), -3);
  EXPECT_EQ(__ostiNewAbstractStream(&s, 2, w, nullptr), -3);
  EXPECT_EQ(__ostdNewAbstractStream(&s, 2, d, 1, 1, feed<double>), -3);
  EXPECT_EQ(__ostdNewAbstractStream(&s, 2, d, 2, 1, feed<double>), -3);
  EXPECT_EQ(__ostsNewAbstractStream(&s, 2, f, 1, 1, feed<float>), -3);
  EXPECT_EQ(__ostsNewAbstractStream(&s, 2, f, 0, 1, nullptr), -3);
  EXPECT_EQ(s, &sentinel);
  ASSERT_EQ(
      __ostdNewAbstractStream(&s, 2, d, std::numeric_limits<double>::quiet_NaN(), 1, feed<double>),
      0);
  __ostDeleteStream(&s);
  const FailingAllocations failing(0);
  EXPECT_EQ(__ostiNewAbstractStream(&s, 2, w, feed<uint32_t>), -4);
  EXPECT_EQ(s, nullptr);
}

TEST(AbstractStreams, CopiesAndImagesShareTheRing) {
  std::vector<uint32_t> buffer(8);
  const Stream stream = ring_of(buffer);
  draw(stream, 2);
  const Stream copy = copy_of(stream);
  std::vector<unsigned char> image(static_cast<size_t>(__ostGetStreamSize(stream.get())));
  ASSERT_EQ(__ostSaveStreamM(stream.get(), image.data()), 0);
  StreamState* loaded = nullptr;
  ASSERT_EQ(__ostLoadStreamM(&loaded, image.data()), 0);
  const Stream owner(loaded);
  EXPECT_EQ(draw(stream, 3), (std::vector<uint32_t>{2, 3, 4}));
  EXPECT_EQ(draw(copy, 3), (std::vector<uint32_t>{2, 3, 4}));
  EXPECT_EQ(draw(owner, 3), (std::vector<uint32_t>{2, 3, 4}));
  // A ring that was lost: the pointer is the first thing behind three words and the padding.
  const size_t buffer_at = sizeof(StreamState) + (sizeof(void*) == 8 ? 16 : 12);
  std::memset(reinterpret_cast<char*>(loaded) + buffer_at, 0, sizeof(void*));
  draw(owner, 1, -5);
}

}  // namespace
