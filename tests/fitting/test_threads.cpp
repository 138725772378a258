// Interpolation and integration on teams: the same bits with every team, statuses from any member.

#include <atomic>
#include <cmath>

#include "tests/fitting/api.h"
#include "tests/fitting/teams.h"

namespace qor::test {
namespace {

constexpr int64_t kSites = 10007;

template <class Real>
struct Curves {
  std::vector<Real> x, y, c, site, other;

  Curves() : c(3 * 4 * 199) {
    for (int i = 0; i < 200; ++i)
      x.push_back(static_cast<Real>(i) + Real(0.125) * static_cast<Real>(i % 5));
    for (int k = 0; k < 600; ++k) y.push_back(std::sin(static_cast<Real>(k)));
    for (int64_t i = 0; i < kSites; ++i) {
      site.push_back(static_cast<Real>((i * 7919) % kSites) / 47 - 3);
      other.push_back(static_cast<Real>((i * 104729) % kSites) / 47 - 3);
    }
  }
};

template <class Real>
class Teams : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Teams, Precisions);

TYPED_TEST(Teams, GiveTheSameBits) {
  using Real = TypeParam;
  Curves<Real> v;
  Task<Real> task(200, v.x.data(), 0, 3, v.y.data());
  ASSERT_EQ(task.spline(4, 4, v.c.data(), 0), 0);
  ASSERT_EQ(Api<Real>::akima(task, 0, 0, nullptr), 0);
  const size_t results = 6 * static_cast<size_t>(kSites);
  for (const int64_t nsite : {int64_t{4096}, int64_t{4097}, kSites}) {
    for (const int64_t layout : {16, 32, 256, 512}) {
      std::vector<Real> alone(results), shared(results);
      std::vector<int32_t> alone_cell(v.site.size()), cell(v.site.size());
      ASSERT_EQ(
          task.interpolate(
              nsite, v.site.data(), alone.data(),
              {.type = 2, .derivatives = {1, 1}, .layout = layout, .cell = alone_cell.data()}),
          0);
      for (const ThreadHook& hook : test_hooks()) {
        std::fill(shared.begin(), shared.end(), Real(0));
        ASSERT_EQ(task.interpolate(nsite, v.site.data(), shared.data(),
                                   {.type = 2,
                                    .derivatives = {1, 1},
                                    .layout = layout,
                                    .cell = cell.data(),
                                    .hook = &hook}),
                  0);
        ASSERT_EQ(shared, alone);
        ASSERT_EQ(cell, alone_cell);
      }
    }
    for (const int64_t layout : {16, 32}) {
      std::vector<Real> alone(results), shared(results);
      ASSERT_EQ(
          task.integrate(nsite, v.site.data(), v.other.data(), alone.data(), {.layout = layout}),
          0);
      for (const ThreadHook& hook : test_hooks()) {
        ASSERT_EQ(task.integrate(nsite, v.site.data(), v.other.data(), shared.data(),
                                 {.layout = layout, .hook = &hook}),
                  0);
        ASSERT_EQ(shared, alone);
      }
    }
  }
}

TYPED_TEST(Teams, FewSitesStayOnTheCallingThread) {
  using Real = TypeParam;
  Curves<Real> v;
  Task<Real> task(200, v.x.data(), 0, 1, v.y.data());
  ASSERT_EQ(task.spline(2, 0, v.c.data()), 0);
  ASSERT_EQ(Api<Real>::linear(task, 0, 0, nullptr), 0);
  std::vector<Real> r(v.site.size());
  static int runs;
  runs = 0;
  const ThreadHook hook =
      hook_of<4>([](int64_t items, int64_t threads, void* context, qor_item_routine routine) {
        ++runs;
        EXPECT_EQ(items, threads);
        run_in_order(items, threads, context, routine);
      });
  ASSERT_EQ(task.interpolate(4096, v.site.data(), r.data(), {.hook = &hook}), 0);
  EXPECT_EQ(runs, 0);
  ASSERT_EQ(task.interpolate(4097, v.site.data(), r.data(), {.hook = &hook}), 0);
  EXPECT_EQ(runs, 1);
}

// Negative from the first call that sees a site beyond the threshold.
template <class Real>
int fail_beyond(const int64_t* n, const Real* site, const int32_t*, Real* result, void* params,
                void*) {
  for (int64_t i = 0; i < *n; ++i) {
    if (site[i] > *static_cast<Real*>(params)) return -31;
    result[i] = site[i];
  }
  return 0;
}

TYPED_TEST(Teams, ReportFailuresOfMembers) {
  using Real = TypeParam;
  Curves<Real> v;
  std::vector<Real> ascending;
  for (int64_t i = 0; i < kSites; ++i) ascending.push_back(static_cast<Real>(i) / 52);
  Task<Real> task(200, v.x.data(), 0, 1, v.y.data());
  ASSERT_EQ(task.spline(0, 0, nullptr), 0);
  const auto callback = fail_beyond<Real>;
  for (const ThreadHook& hook : test_hooks()) {
    for (const Real limit : {Real(-1), Real(100), Real(1000)}) {
      std::vector<Real> r(ascending.size());
      Real threshold = limit;
      EXPECT_EQ(task.interpolate(kSites, ascending.data(), r.data(),
                                 {.left = callback,
                                  .right = callback,
                                  .inside = callback,
                                  .params = &threshold,
                                  .hook = &hook}),
                limit > 500 ? 0 : -31);
    }
  }
}

}  // namespace
}  // namespace qor::test
