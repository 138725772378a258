// Streaming quantiles: the rank error, the independence of blocks and teams, the state's life.

#include <gtest/gtest.h>

#include "statistics/task.h"
#include "tests/fitting/teams.h"
#include "tests/statistics/stream.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

template <class Real>
class StreamQuantiles : public ::testing::Test {};
TYPED_TEST_SUITE(StreamQuantiles, Precisions);

std::vector<int64_t> growing_lengths(int64_t most) {
  std::vector<int64_t> lengths;
  for (double n = 1; n <= static_cast<double>(most); n = std::max(n + 1, n * 1.21)) {
    lengths.push_back(static_cast<int64_t>(n));
  }
  lengths.push_back(most);
  return lengths;
}

// A rank is a whole number: an answer may be the whole part of its place, at least 1.
TYPED_TEST(StreamQuantiles, KeepTheRankErrorAtEveryLength) {
  using Real = TypeParam;
  for (const double epsilon : {1.0, 0.9, 0.6, 0.3, 0.1, 0.03, 0.01, 0.003}) {
    for (const Pattern pattern : all_patterns()) {
      const auto data = pattern_data<Real>(pattern, 20000);
      const double worst = worst_rank_error(data, epsilon, growing_lengths(20000));
      EXPECT_LE(worst, 1) << name_of(pattern) << " epsilon " << epsilon;
    }
  }
}

TYPED_TEST(StreamQuantiles, KeepTheRankErrorOfAMillion) {
  using Real = TypeParam;
  for (const double epsilon : {0.05, 0.001, 0.0001}) {
    for (const Pattern pattern : {Pattern::random, Pattern::sorted, Pattern::reversed,
                                  Pattern::organ_pipe, Pattern::few_values, Pattern::zigzag}) {
      const auto data = pattern_data<Real>(pattern, 1000000);
      const double worst = worst_rank_error(data, epsilon, {123456, 1000000});
      EXPECT_LE(worst, 1) << name_of(pattern) << " epsilon " << epsilon;
    }
  }
}

// Takes a minute or so: run with --gtest_also_run_disabled_tests.
TYPED_TEST(StreamQuantiles, DISABLED_KeepTheRankErrorOfTenMillions) {
  using Real = TypeParam;
  for (const double epsilon : {0.01, 0.001, 0.00001}) {
    for (const Pattern pattern : all_patterns()) {
      const auto data = pattern_data<Real>(pattern, 10000000);
      const double worst = worst_rank_error(data, epsilon, {7654321, 10000000});
      EXPECT_LE(worst, 1) << name_of(pattern) << " epsilon " << epsilon;
    }
  }
}

TYPED_TEST(StreamQuantiles, AreExactWhileTheFirstBufferHoldsAll) {
  using Real = TypeParam;
  const auto data = pattern_data<Real>(Pattern::random, 150);
  const auto sorted = in_order(data);
  const std::vector<Real> orders = {0, Real(0.25), Real(0.5), Real(0.995), 1};
  Stream<Real> stream(1, Real(0.01), orders);
  ASSERT_EQ(stream.feed(data), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(),
            (std::vector<Real>{sorted[0], sorted[36], sorted[74], sorted[148], sorted[149]}));
}

// However a stream is cut, fed or laid out, and whoever runs it: the same answers to the bit.
TYPED_TEST(StreamQuantiles, DoNotDependOnCutsLayoutsAndTeams) {
  using Real = TypeParam;
  constexpr size_t p = 3, n = 7000;
  std::vector<std::vector<Real>> variables;
  for (size_t j = 0; j < p; ++j) {
    variables.push_back(pattern_data<Real>(Pattern::random, n, j));
    if (j == 1) add_specials(variables.back());
  }
  const std::vector<Real> orders = {0, Real(0.1), Real(0.5), Real(0.9), 1};
  Stream<Real> whole(p, Real(0.01), orders);
  ASSERT_EQ(whole.feed(laid_out(variables, false)), QOR_SS_OK);
  std::vector<ThreadHook> hooks = test_hooks();
  std::vector<const ThreadHook*> teams = {nullptr};
  for (const ThreadHook& hook : hooks) teams.push_back(&hook);
  for (const ThreadHook* team : teams) {
    for (const bool by_variable : {false, true}) {
      Stream<Real> cut(p, Real(0.01), orders);
      for (size_t first = 0, length = 1; first < n;
           first += length, length = length % 997 * 2 + 1) {
        std::vector<std::vector<Real>> block;
        for (const auto& v : variables) {
          block.emplace_back(v.begin() + static_cast<int64_t>(first),
                             v.begin() + static_cast<int64_t>(std::min(first + length, n)));
        }
        // Answers in between change nothing.
        const uint64_t method =
            length % 3 == 0 ? QOR_SS_METHOD_STREAM_ANSWER : QOR_SS_METHOD_STREAM_UPDATE;
        ASSERT_EQ(cut.feed(laid_out(block, by_variable), by_variable, method, team), QOR_SS_OK);
      }
      ASSERT_EQ(cut.feed({}), QOR_SS_OK);
      ASSERT_TRUE(same_bits(cut.quantiles(), whole.quantiles()));
    }
  }
}

TYPED_TEST(StreamQuantiles, UpdateWithoutAnsweringWritesNothing) {
  using Real = TypeParam;
  Stream<Real> stream(2, Real(0.1), {Real(0.5)});
  EXPECT_EQ(stream.feed({}), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{-77, -77}));
  EXPECT_EQ(stream.feed({1, 2, 3, 4}, false, QOR_SS_METHOD_STREAM_UPDATE), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{-77, -77}));
  EXPECT_EQ(stream.feed({}), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{1, 2}));
}

// The first call tells which variables there are; later ones may name some of them.
TYPED_TEST(StreamQuantiles, FollowTheIndices) {
  using Real = TypeParam;
  const int32_t none[] = {0, 0, 0}, outer[] = {1, 0, 2}, last[] = {0, 0, 1}, middle[] = {0, 1, 0};
  Stream<Real> stream(3, Real(0.1), {1});
  stream.select(none);
  EXPECT_EQ(stream.feed({1, 2, 3}), QOR_SS_BAD_INDICES);
  EXPECT_EQ(stream.record().stream_state, nullptr);
  stream.select(outer);
  EXPECT_EQ(stream.feed({1, 2, 3, 4, 5, 6}), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{4, 6, -77}));
  stream.select(middle);
  EXPECT_EQ(stream.feed({7, 7, 7}), QOR_SS_BAD_INDICES);
  stream.select(none);
  EXPECT_EQ(stream.feed({7, 7, 7}), QOR_SS_BAD_INDICES);
  stream.select(last);
  EXPECT_EQ(stream.feed({9, 9, 9}), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{9, 6, -77}));
  stream.record().indices = nullptr;
  EXPECT_EQ(stream.feed({}), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{4, 9, -77}));
  // Stages of variables that have seen more than others end at different times.
  stream.select(last);
  ASSERT_EQ(stream.feed(std::vector<Real>(3 * 107, 10)), QOR_SS_OK);
  stream.record().indices = nullptr;
  ASSERT_EQ(stream.feed(std::vector<Real>(3 * 211, 11)), QOR_SS_OK);
  EXPECT_EQ(stream.quantiles(), (std::vector<Real>{11, 11, -77}));
  const int64_t other_p = 2;
  stream.record().p = &other_p;
  EXPECT_EQ(stream.feed({}), QOR_SS_BAD_P);
}

TYPED_TEST(StreamQuantiles, EndWithTheTaskOrBefore) {
  using Real = TypeParam;
  const long before = live_blocks();
  {
    Stream<Real> stream(2, Real(0.01), {1});
    const long of_task = live_blocks();
    EXPECT_EQ(__ostSQuantilesFreeBuffers(&stream.record()), QOR_SS_OK);
    for (int round = 0; round < 2; ++round) {
      ASSERT_EQ(stream.feed(std::vector<Real>(2000, static_cast<Real>(5 - round))), QOR_SS_OK);
      EXPECT_EQ(stream.quantiles()[0], static_cast<Real>(5 - round));
      EXPECT_GT(live_blocks(), of_task);
      EXPECT_EQ(__ostSQuantilesFreeBuffers(&stream.record()), QOR_SS_OK);
      EXPECT_EQ(live_blocks(), of_task);
    }
    ASSERT_EQ(stream.feed(std::vector<Real>(2000, 1)), QOR_SS_OK);
    EXPECT_EQ(stream.record().cleanup_count, 1);
  }
  EXPECT_EQ(live_blocks(), before);
  EXPECT_EQ(__ostSQuantilesFreeBuffers(nullptr), QOR_SS_NULL_TASK);
}

// No epsilon is too small to be counted; it may be too small for the memory.
TYPED_TEST(StreamQuantiles, OfImpossiblySmallEpsilon) {
  using Real = TypeParam;
  Stream<Real> stream(1, std::numeric_limits<Real>::min(), {1});
  EXPECT_EQ(stream.feed({1, 2, 3}), QOR_SS_NO_MEMORY);
}

}  // namespace
}  // namespace qor::test
