// Interpolation and integration on teams: the same bits with every team, statuses from any member.

#include "tests/fitting/pieces.h"
#include "tests/support/teams.h"

#ifdef QOR_HAS_TEAM
#include <atomic>

#include "front/team/team.h"
#endif

namespace qor::test {
namespace {

constexpr int64_t kSites = 10007;

// All that a team may disturb: values, derivatives and cells, and integrals where they have the
// layout, at sites in no order.
template <class Real>
std::vector<Real> results(const Pieces<Real>& p, int64_t nsite, int64_t layout,
                          const ThreadHook* hook) {
  const auto n = static_cast<size_t>(nsite);
  std::vector<Real> site, other, r(9 * n);
  for (int64_t i = 0; i < nsite; ++i) {
    site.push_back(static_cast<Real>((i * 7919) % kSites) / 95 - 4);
    other.push_back(static_cast<Real>((i * 104729) % kSites) / 95 - 4);
  }
  std::vector<int32_t> cell(n);
  typename Task<Real>::Sites s{.type = 2, .derivatives = {1, 1}, .layout = layout, .hook = hook};
  s.cell = cell.data();
  EXPECT_EQ(p.task.interpolate(site, r.data(), s), 0);
  if (layout <= 32) {
    EXPECT_EQ(p.task.integrate(site, other, &r[6 * n], {.layout = layout, .hook = hook}), 0);
  }
  r.insert(r.end(), cell.begin(), cell.end());
  return r;
}

template <class Real>
class Teams : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Teams, Precisions);

TYPED_TEST(Teams, GiveTheSameBits) {
  const Pieces<TypeParam> p(200, 3, 4);
  for (const int64_t nsite : {int64_t{4097}, kSites}) {
    for (const int64_t layout : {16, 32, 256, 512}) {
      const auto alone = results<TypeParam>(p, nsite, layout, nullptr);
      for (const ThreadHook& hook : test_hooks()) {
        ASSERT_EQ(results(p, nsite, layout, &hook), alone);
      }
    }
  }
}

TYPED_TEST(Teams, FewSitesStayOnTheCallingThread) {
  static int runs;
  runs = 0;
  const ThreadHook hook = hook_of<4>([](int64_t items, int64_t threads, void*, qor_item_routine) {
    ++runs;
    EXPECT_EQ(items, threads);
  });
  const Pieces<TypeParam> p(200, 1, 2);
  std::vector<TypeParam> r(4097);
  p.task.interpolate(p.ascending_sites(4096), r.data(), {.hook = &hook});
  EXPECT_EQ(runs, 0);
  p.task.interpolate(p.ascending_sites(4097), r.data(), {.hook = &hook});
  EXPECT_EQ(runs, 1);
}

template <class Real>
int fail_values(const int64_t*, const Real*, const int32_t*, Real*, void*, void*) {
  return -31;
}
template <class Real>
int fail_integrals(const int64_t*, const Real*, const Real*, Real*, void*, void*) {
  return -32;
}

// From the first member, from the last, and from all.
TYPED_TEST(Teams, ReportFailuresOfMembers) {
  using Real = TypeParam;
  const Pieces<Real> p(200, 1, 2);
  const auto site = p.ascending_sites(kSites);
  std::vector<Real> r(site.size());
  const auto values = fail_values<Real>;
  const auto integrals = fail_integrals<Real>;
  for (const ThreadHook& hook : test_hooks()) {
    EXPECT_EQ(p.task.interpolate(site, r.data(), {.left = {values}, .hook = &hook}), -31);
    EXPECT_EQ(p.task.interpolate(site, r.data(), {.right = {values}, .hook = &hook}), -31);
    EXPECT_EQ(p.task.interpolate(site, r.data(), {.inside = {values}, .hook = &hook}), -31);
    EXPECT_EQ(p.task.integrate(site, site, r.data(), {.right = {integrals}, .hook = &hook}), -32);
  }
}

#ifdef QOR_HAS_TEAM

// The default team: all items and members are called once.
TEST(OpenMpTeam, CallsEveryItemAndMemberOnce) {
  const ThreadHook& team = *qor_team_openmp();
  EXPECT_GE(team.thread_count(), 1);
  using Calls = std::array<std::atomic<int>, 101>;
  const auto count = [](int64_t item, int64_t, int64_t, void* context) {
    ++(*static_cast<Calls*>(context))[static_cast<size_t>(item)];
  };
  for (const int64_t threads : {1, 2, 7}) {
    for (const int64_t items : {0, 1, 5, 100}) {
      Calls calls{}, members{};
      team.run_items(items, threads, &calls, count);
      team.run_team(threads, &members, count);
      for (int64_t i = 0; i < 101; ++i) {
        EXPECT_EQ(calls[static_cast<size_t>(i)], i < items ? 1 : 0);
        EXPECT_EQ(members[static_cast<size_t>(i)], i < threads ? 1 : 0);
      }
    }
  }
}

TEST(OpenMpTeam, GivesTheBitsOfOneThread) {
  const Pieces<double> p(200, 3, 4);
  EXPECT_EQ(results(p, kSites, 32, qor_team_openmp()), results(p, kSites, 32, nullptr));
}

#endif

}  // namespace
}  // namespace qor::test
