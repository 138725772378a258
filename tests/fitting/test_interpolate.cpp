// Interpolation: layouts, derivatives, cells, what is known about sites, and the checks of an
// entry, which are those of integration too.

#include <cmath>
#include <limits>

#include "tests/fitting/pieces.h"

namespace qor::test {
namespace {

template <class Real>
class Interpolation : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Interpolation, Precisions);

TYPED_TEST(Interpolation, PolynomialsInAllLayouts) {
  using Real = TypeParam;
  const std::vector<int64_t> wanted[] = {
      {}, {1}, {0}, {0, 1}, {1, 0, 1}, {1, 1, 1, 1}, {0, 0, 0, 1, 0, 1, 1}};
  for_all_pieces<Real>([&](const Pieces<Real>& p) {
    auto site = p.ascending_sites(600);
    site.insert(site.end(), p.x.begin(), p.x.end());
    site.insert(site.end(), p.knots.begin(), p.knots.end());
    const auto nsite = static_cast<int64_t>(site.size());
    for (const auto& flags : wanted) {
      std::vector<int> orders;
      for (size_t k = 0; k < flags.size(); ++k) {
        if (flags[k] != 0) orders.push_back(static_cast<int>(k));
      }
      if (orders.empty()) orders = {0};
      const auto nd = static_cast<int64_t>(orders.size());
      for (const int64_t layout : {0, 16, 32, 128, 256, 512}) {
        std::vector<Real> r(static_cast<size_t>(nsite * p.functions * nd) + 1, 99);
        ASSERT_EQ(p.task.interpolate(site, r.data(), {.derivatives = flags, .layout = layout}), 0);
        for (int64_t k = 0; k < nsite * p.functions * nd; ++k) {
          const int64_t i = k / p.functions / nd, f = k / nd % p.functions, d = k % nd;
          const Real s = site[static_cast<size_t>(i)];
          const Wide expected = p.at(f, orders[static_cast<size_t>(d)], s);
          const auto tolerance =
              300 * (std::fabs(expected) + 20) * std::numeric_limits<Real>::epsilon();
          ASSERT_NEAR(static_cast<double>(r[place(layout, i, f, d, nsite, p.functions, nd)]),
                      static_cast<double>(expected), static_cast<double>(tolerance))
              << "layout " << layout << " site " << s;
        }
        EXPECT_EQ(r.back(), 99);
      }
    }
  });
}

// Values at breakpoints are the data, and results do not depend on what is known about the sites or
// on where the cells come from.
TYPED_TEST(Interpolation, SameBitsForAllSiteForms) {
  using Real = TypeParam;
  constexpr int64_t n = 777;
  const Pieces<Real> p(300, 1, 4);
  const std::vector<Real> ends = {-3, 150};
  const Real step = (ends[1] - ends[0]) / (n - 1);
  std::vector<Real> site, expected(n), r(n), values(300);
  for (int i = 0; i < n; ++i) site.push_back(static_cast<Real>(i) * step + ends[0]);
  std::vector<int32_t> cell(n), other(n, -1);
  ASSERT_EQ(p.task.interpolate(site, expected.data(), {.type = 2, .cell = cell.data()}), 0);
  ASSERT_EQ(p.task.search(site, other.data()), 0);
  EXPECT_EQ(cell, other);
  const Real bad_hint[5] = {0, 7, 0, 0, 0};
  const auto same = [&](const typename Task<Real>::Sites& s, const std::vector<Real>& from) {
    std::fill(r.begin(), r.end(), Real(0));
    ASSERT_EQ(p.task.interpolate(from, r.data(), s), 0);
    EXPECT_EQ(r, expected);
  };
  same({.hint = QOR_DF_SORTED}, site);
  same({.hint = QOR_DF_UNIFORM_SITES, .nsite = n}, ends);
  same({.type = 4, .data_hint = bad_hint, .cell = cell.data()}, site);
  ASSERT_EQ(p.task.interpolate(p.x, values.data()), 0);
  for (size_t i = 0; i < 299; ++i) EXPECT_EQ(values[i], p.c[4 * i]);
}

// Many sites in one cell are evaluated together: the bits are those of sites one by one, which is
// how values come that are asked for with a derivative.
TYPED_TEST(Interpolation, SitesTogetherGiveTheBitsOfSitesOneByOne) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  const auto same = [](Real a, Real b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  for_all_pieces<Real>([&](const Pieces<Real>& p) {
    for (const int64_t count : {1, 7, 8, 15, 16, 17, 100, 255, 256, 257, 300, 2000}) {
      auto site = p.ascending_sites(count);
      for (const bool broken : {false, true}) {
        // A promise of order that is not kept, where the method does not rest on it.
        if (broken) site[site.size() / 2] = site.size() % 2 == 0 && p.order > 0 ? nan : Real(0.25);
        const typename Task<Real>::Sites known{.hint = !broken || p.uniform ? QOR_DF_SORTED : 0};
        const size_t results = site.size() * static_cast<size_t>(p.functions);
        std::vector<Real> together(results + 1, 99), one_by_one(2 * results);
        ASSERT_EQ(p.task.interpolate(site, together.data(), known), 0);
        ASSERT_EQ(p.task.interpolate(site, one_by_one.data(), {.derivatives = {1, 1}}), 0);
        for (size_t k = 0; k < results; ++k) {
          ASSERT_TRUE(same(together[k], one_by_one[2 * k])) << count << " site " << k;
        }
        EXPECT_EQ(together.back(), 99);
      }
    }
  });
}

// Flags of 32 bits, three of them in the bytes of two of 64 bits.
TYPED_TEST(Interpolation, Flags32BitsWide) {
  const Pieces<TypeParam> p(4, 1, 4, 5, 1, 0);
  TypeParam r[2] = {99, 99};
  ASSERT_EQ(p.task.interpolate({p.x[1]}, r, {.derivatives = {int64_t{1} << 32, 0, 0}}), 0);
  EXPECT_EQ(r[0], p.c[5]);
  EXPECT_EQ(r[1], 99);
}

// The checks of interpolation and of integration, in their order: a call fails the check that is
// named and all behind it.
TYPED_TEST(Interpolation, Statuses) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2}, bad[5] = {0, 7, 0, 0, 0};
  Real c[6] = {}, r[1] = {99};
  const Task<Real> none(3, x, 0), task(3, x, 0);
  qor_df_kernel_iEditVal(task, QOR_DF_NY, 1);
  const auto check = [&](std::pair<int64_t, int64_t> kind, bool bad_hint, int64_t layout,
                         int interpolation, int integration) {
    SCOPED_TRACE(testing::Message() << kind.first << " " << kind.second << " " << layout);
    ASSERT_EQ(task.spline(kind.first, kind.second, nullptr), 0);
    const Real* hint = bad_hint ? bad : nullptr;
    EXPECT_EQ(task.interpolate({0}, r, {.data_hint = hint, .layout = layout}), interpolation);
    EXPECT_EQ(task.integrate({0}, {0}, r, {.left_data_hint = hint, .layout = layout}), integration);
    EXPECT_EQ(task.integrate({0}, {0}, r, {.right_data_hint = hint, .layout = layout}),
              integration);
  };
  for (const auto& [order, type] : {std::pair{1, 0}, {3, 2}, {4, 1}, {4, 6}, {4, 10}, {0, 0}}) {
    check({order, type}, true, 5, QOR_DF_BAD_TYPE, QOR_DF_BAD_TYPE);
  }
  check({0, 6}, true, 5, QOR_DF_BAD_DATA_HINT, QOR_DF_BAD_TYPE);  // a lookup has no integral
  check({3, 1}, true, 5, QOR_DF_BAD_DATA_HINT, QOR_DF_BAD_DATA_HINT);
  check({3, 1}, false, 5, QOR_DF_BAD_R_HINT, QOR_DF_BAD_INTEGRAL_R_HINT);
  check({3, 1}, false, 256, QOR_DF_BAD_IC, QOR_DF_BAD_INTEGRAL_R_HINT);
  check({3, 1}, false, 512, QOR_DF_BAD_IC, QOR_DF_BAD_INTEGRAL_R_HINT);
  check({3, 1}, false, 128, QOR_DF_BAD_IC, QOR_DF_BAD_IC);  // knots that the task lacks
  for (const auto& [order, type] : {std::pair{4, 5}, {2, 77}, {3, 0}, {4, 9}, {6, 13}}) {
    check({order, type}, false, 0, QOR_DF_NULL_SCOEFF, QOR_DF_NULL_SCOEFF);
  }
  check({0, 7}, false, 0, QOR_DF_NULL_Y, QOR_DF_NULL_Y);
  // No function, nothing to read; no site, nothing to do; a search that fails.
  ASSERT_EQ(none.spline(4, 5, nullptr), 0);
  EXPECT_EQ(none.interpolate({0}, r), QOR_DF_OK);
  EXPECT_EQ(none.integrate({0}, {0}, r), QOR_DF_OK);
  ASSERT_EQ(task.spline(2, 0, c), 0);
  EXPECT_EQ(task.interpolate({}, r), QOR_DF_OK);
  EXPECT_EQ(task.integrate({}, {}, r), QOR_DF_OK);
  EXPECT_EQ(task.interpolate({0}, r, {.search = {fail_search<Real>}}), -55);
  EXPECT_EQ(task.integrate({0}, {0}, r, {.search = {fail_search<Real>}}), -55);
  EXPECT_EQ(r[0], 99);
  EXPECT_EQ(Task<Real>().interpolate({0}, r), QOR_DF_NULL_TASK);
  EXPECT_EQ(Task<Real>().integrate({0}, {0}, r), QOR_DF_NULL_TASK);
}

// A NaN site gives NaN, and cells of the caller's that are no cells stay within the arrays.
TYPED_TEST(Interpolation, BadSitesAndCells) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  for_all_pieces<Real>([&](const Pieces<Real>& p) {
    Real r[9];
    ASSERT_EQ(p.task.interpolate({nan, 0, nan}, r), 0);
    const bool expected = std::isnan(r[0]) && std::isfinite(r[1]) && std::isnan(r[2]);
    EXPECT_TRUE(expected || p.order == 0);
    int32_t wild[3] = {INT32_MIN, INT32_MAX, 41};
    ASSERT_EQ(p.task.interpolate({0, 0, 0}, r, {.type = 4, .cell = wild}), 0);
  });
}

TYPED_TEST(Interpolation, OfLookups) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 4}, ends[2] = {0, 3}, y[8] = {5, 6, 7, 8, 1, 2, 3, 4};
  Real r[8];
  for (const bool uniform : {false, true}) {
    Task<Real> task(4, uniform ? ends : x, uniform ? 4 : 0, 2, y, 0);
    ASSERT_EQ(task.spline(0, 6, nullptr), 0);
    const typename Task<Real>::Sites value{.derivatives = {1}}, both{.derivatives = {1, 1}};
    ASSERT_EQ(task.interpolate({0, 2, uniform ? ends[1] : x[3], 1}, r, value), 0);
    const Real expected[8] = {5, 7, 8, 6, 1, 3, 4, 2};
    for (int k = 0; k < 8; ++k) EXPECT_EQ(r[k], expected[k]);
    for (const Real off : {Real(0.5), Real(-1), Real(9), std::numeric_limits<Real>::quiet_NaN()}) {
      EXPECT_EQ(task.interpolate({1, off}, r, value), QOR_DF_NOT_A_BREAKPOINT);
      EXPECT_EQ(task.interpolate({1, off}, r, both), QOR_DF_NOT_A_BREAKPOINT);
    }
    EXPECT_EQ(task.interpolate({1}, r, both), QOR_DF_LOOKUP_DERIVATIVES);
    EXPECT_EQ(task.interpolate({1}, r), QOR_DF_LOOKUP_DERIVATIVES);
    EXPECT_EQ(task.interpolate({1}, r, {.derivatives = {0}}), QOR_DF_LOOKUP_WITHOUT_VALUE);
    if (uniform) {
      const Real near = Real(1) - Real(0x1p-41);  // for float the breakpoint itself
      EXPECT_EQ(task.interpolate({near}, r, value), 0);
      EXPECT_EQ(r[0], 6);
    }
  }
}

// What a user's function saw, and what it is to return.
struct Seen {
  int64_t sites = 0;
  int status = 0;
};

// Marks results by the cell of the site, values and derivatives.
template <class Real>
int mark_cells(const int64_t* n, const Real* site, const int32_t* cell, Real* result, void* params,
               void* zero) {
  Seen& seen = *static_cast<Seen*>(params);
  EXPECT_EQ(zero, nullptr);
  seen.sites += *n;
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_EQ(cell[i] == 0, site[i] < 0) << site[i];
    result[2 * i] = static_cast<Real>(cell[i]) + 1000;
    result[2 * i + 1] = -result[2 * i];
  }
  return seen.status;
}

// Every subset of callbacks, and what the spline has elsewhere. A user's function needs all three.
TYPED_TEST(Interpolation, CallbacksServeTheirSites) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2};
  Real c[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  const std::vector<Real> site = {-2, -1, Real(0.5), 3, -1, Real(1.5), 2, 2.5};
  const int32_t cell[8] = {0, 0, 1, 3, 0, 2, 2, 3};
  const Task<Real> task(3, x, 0, 2, x, 32);
  for (int k = 0; k < 32; ++k) {
    const int mask = k % 8;
    const int64_t layout = k < 16 ? 16 : 32, order = k / 8 % 2 == 0 ? 2 : 0;
    Seen seen;
    const auto with = [&](int bit) {
      return typename Task<Real>::template Callback<typename Api<Real>::Values>{
          (mask & bit) != 0 ? mark_cells<Real> : nullptr, &seen};
    };
    const typename Task<Real>::Sites plain{.derivatives = {1, 1}, .layout = layout};
    auto s = plain;
    s.left = with(1), s.right = with(2), s.inside = with(4);
    Real r[32], expected[32] = {};
    ASSERT_EQ(task.spline(2, 0, c), 0);
    ASSERT_EQ(task.interpolate(site, expected, plain), 0);
    int64_t sites = 0;
    for (int64_t i = 0; i < 8; ++i) {
      const int bit = cell[i] == 0 ? 1 : cell[i] == 3 ? 2 : 4;
      if ((mask & bit) == 0) continue;
      for (int64_t f = 0; f < 2; ++f, ++sites) {
        const Real mark = static_cast<Real>(cell[i]) + 1000;
        expected[place(layout, i, f, 0, 8, 2, 2)] = mark;
        expected[place(layout, i, f, 1, 8, 2, 2)] = -mark;
      }
    }
    ASSERT_EQ(task.spline(order, 0, c), 0);
    const bool known = order != 0 || mask == 7;
    ASSERT_EQ(task.interpolate(site, r, s), known ? QOR_DF_OK : QOR_DF_BAD_TYPE);
    if (!known) continue;
    EXPECT_TRUE(std::equal(r, r + 32, expected)) << mask << " " << layout;
    EXPECT_EQ(seen.sites, sites);
    seen.status = -77;
    EXPECT_EQ(task.interpolate(site, r, s), mask == 0 ? 0 : -77);
  }
}

}  // namespace
}  // namespace qor::test
