// The default team: all items and members are called once, and interpolation has the bits of one
// thread.

#include <gtest/gtest.h>

#ifdef QOR_HAS_TEAM

#include <atomic>
#include <vector>

#include "front/team/team.h"
#include "tests/fitting/api.h"

namespace qor::test {
namespace {

TEST(OpenMpTeam, CallsEveryItemAndMemberOnce) {
  const ThreadHook& team = *qor_team_openmp();
  EXPECT_GE(team.thread_count(), 1);
  for (const int64_t threads : {1, 2, 7}) {
    for (const int64_t items : {0, 1, 5, 100}) {
      std::vector<std::atomic<int>> calls(100);
      team.run_items(items, threads, &calls, [](int64_t item, int64_t, int64_t, void* context) {
        ++(*static_cast<std::vector<std::atomic<int>>*>(context))[static_cast<size_t>(item)];
      });
      for (size_t i = 0; i < 100; ++i) EXPECT_EQ(calls[i], i < static_cast<size_t>(items) ? 1 : 0);
    }
    std::vector<std::atomic<int>> members(7);
    team.run_team(threads, &members, [](int64_t member, int64_t, int64_t, void* context) {
      ++(*static_cast<std::vector<std::atomic<int>>*>(context))[static_cast<size_t>(member)];
    });
    for (size_t i = 0; i < 7; ++i) EXPECT_EQ(members[i], i < static_cast<size_t>(threads) ? 1 : 0);
  }
}

TEST(OpenMpTeam, GivesTheBitsOfOneThread) {
  std::vector<double> x, y, c(4 * 99), site, alone(20000), shared(20000);
  for (int i = 0; i < 100; ++i) {
    x.push_back(i);
    y.push_back((i * i) % 13);
  }
  for (int i = 0; i < 20000; ++i) site.push_back((i * 7919 % 20000) / 200.0);
  Task<double> task(100, x.data(), 1, 1, y.data());
  ASSERT_EQ(task.spline(4, 5, c.data(), 2), 0);
  ASSERT_EQ(qor_df_kernel_dDFNaturalCubicSpline1D(task, 0, 0, nullptr), 0);
  ASSERT_EQ(task.interpolate(site, alone.data()), 0);
  ASSERT_EQ(task.interpolate(site, shared.data(), {.hook = qor_team_openmp()}), 0);
  EXPECT_EQ(shared, alone);
}

}  // namespace
}  // namespace qor::test

#endif
