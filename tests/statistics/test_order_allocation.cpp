// The estimators of order without memory: a status at each allocation, nothing lost, and what a
// stream has taken in before stays in it.

#include <gtest/gtest.h>

#include <functional>

#include "tests/fitting/teams.h"
#include "tests/statistics/stream.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

template <class Real>
class OrderAllocation : public ::testing::Test {};
TYPED_TEST_SUITE(OrderAllocation, Precisions);

// Runs with the first, the second ... allocation failing until none fails; how many there were.
long failures_survived(const std::function<int()>& run) {
  for (long failing = 0;; ++failing) {
    const long before = live_blocks();
    bool reached;
    int status;
    {
      const FailingAllocations guard(failing);
      status = run();
      reached = guard.asked() > failing;
    }
    EXPECT_EQ(live_blocks(), before);
    EXPECT_EQ(status, reached ? QOR_SS_NO_MEMORY : QOR_SS_OK);
    if (!reached || status == QOR_SS_OK) return failing;
  }
}

TYPED_TEST(OrderAllocation, OfEstimators) {
  using Real = TypeParam;
  const auto x = pattern_data<Real>(Pattern::random, 300);
  const Real orders[2] = {0, 1};
  Real quantiles[6], sorted[300], min[3] = {}, max[3] = {};
  const int32_t indices[3] = {1, 0, 1};
  Task<Real> task(3, 100, QOR_SS_BY_OBSERVATION, x.data());
  task.set_number(QOR_SS_QUANTILE_COUNT, 2);
  task.set(QOR_SS_QUANTILE_ORDERS, orders);
  task.set(QOR_SS_QUANTILES, quantiles);
  task.set(QOR_SS_ORDER_STATISTICS, sorted);
  task.set_number(QOR_SS_ORDER_STATISTICS_STORAGE, QOR_SS_BY_OBSERVATION);
  task.set(QOR_SS_SORTED_OUTPUT, sorted);
  task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, QOR_SS_BY_OBSERVATION);
  task.set(QOR_SS_MIN, min);
  task.set(QOR_SS_MAX, max);
  const auto extremes = [&] {
    return Api<Real>::min_max(task, QOR_SS_ESTIMATE_MIN | QOR_SS_ESTIMATE_MAX, QOR_SS_METHOD_FAST,
                              nullptr);
  };
  const auto quantiles_of = [&](uint64_t estimates) {
    return Api<Real>::quantiles(task, estimates, QOR_SS_METHOD_FAST, nullptr);
  };
  EXPECT_EQ(failures_survived(extremes), 0);
  ASSERT_EQ(__ostiSSEditTask(task, QOR_SS_INDICES, indices), QOR_SS_OK);
  EXPECT_EQ(failures_survived(extremes), 1);
  EXPECT_EQ(failures_survived([&] { return quantiles_of(QOR_SS_ESTIMATE_QUANTILES); }), 2);
  EXPECT_EQ(failures_survived([&] { return quantiles_of(QOR_SS_ESTIMATE_ORDER_STATISTICS); }), 2);
  EXPECT_EQ(
      failures_survived([&] { return Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, nullptr); }), 2);
}

// A stream of one block, of several stages, for two variables: each allocation fails once, and the
// next try with memory goes on where the stream stands.
TYPED_TEST(OrderAllocation, OfStreams) {
  using Real = TypeParam;
  const auto block = pattern_data<Real>(Pattern::random, 2 * 500);
  const ThreadHook hook = hook_of<3>(run_on_threads);
  const long before = live_blocks();
  long failing = 0;
  for (bool reached = true; reached; ++failing) {
    Stream<Real> stream(2, Real(0.05), {0, Real(0.5), 1});
    {
      const FailingAllocations guard(failing);
      const int status = stream.feed(block, false, QOR_SS_METHOD_STREAM_ANSWER, &hook);
      reached = guard.asked() > failing;
      ASSERT_EQ(status, reached ? QOR_SS_NO_MEMORY : QOR_SS_OK) << failing;
    }
    // Whatever was taken in, what follows counts.
    ASSERT_EQ(stream.feed({1000, 2000, -1000, -2000}), QOR_SS_OK);
    EXPECT_EQ(stream.quantiles()[0], Real(-1000));
    EXPECT_EQ(stream.quantiles()[2], Real(1000));
    EXPECT_EQ(stream.quantiles()[3], Real(-2000));
    EXPECT_EQ(stream.quantiles()[5], Real(2000));
  }
  // State, list of variables, for each variable four stages of two blocks each, and two answers.
  EXPECT_EQ(failing - 1, 2 + 2 * 4 * 2 + 2 * 2);
  EXPECT_EQ(live_blocks(), before);
}

}  // namespace
}  // namespace qor::test
