// Interpolation of polynomials: layouts, derivatives, cells, what is known about sites.

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
  const std::vector<std::vector<int64_t>> wanted = {
      {}, {1}, {0}, {0, 1}, {1, 0, 1}, {1, 1, 1, 1}, {0, 0, 0, 1, 0, 1, 1}};
  for (const int64_t order : {2, 3, 4, 5, 7}) {
    for (const int64_t functions : {1, 3}) {
      const Pieces<Real> p(14, functions, order);
      const auto site = ascending_sites(p, 600);
      for (const bool uniform : {false, true}) {
        Task<Real> task(p.nx, uniform ? p.ends.data() : p.x.data(), uniform ? 4 : 1, functions,
                        p.y.data());
        ASSERT_EQ(task.spline(order, 0, const_cast<Real*>(p.c.data())), 0);
        for (const auto& flags : wanted) {
          std::vector<int> orders;
          for (size_t k = 0; k < flags.size(); ++k) {
            if (flags[k] != 0) orders.push_back(static_cast<int>(k));
          }
          if (orders.empty()) orders = {0};
          const auto nd = static_cast<int64_t>(orders.size());
          for (const int64_t layout : {0, 16, 32, 128, 256, 512}) {
            std::vector<Real> r(site.size() * static_cast<size_t>(functions * nd) + 1, 99);
            ASSERT_EQ(task.interpolate(site, r.data(), {.derivatives = flags, .layout = layout}),
                      0);
            for (int64_t i = 0; i < 600; ++i) {
              for (int64_t f = 0; f < functions; ++f) {
                for (int64_t d = 0; d < nd; ++d) {
                  const Real s = site[static_cast<size_t>(i)];
                  const Wide expected = p.at(f, orders[static_cast<size_t>(d)], s);
                  const auto tolerance =
                      300 * (std::fabs(expected) + 20) * std::numeric_limits<Real>::epsilon();
                  ASSERT_NEAR(static_cast<double>(r[place(layout, i, f, d, 600, functions, nd)]),
                              static_cast<double>(expected), static_cast<double>(tolerance))
                      << "order " << order << " layout " << layout << " site " << s;
                }
              }
            }
            EXPECT_EQ(r.back(), 99);
          }
        }
      }
    }
  }
}

// Values at breakpoints are the data, and results do not depend on what is known about the sites or
// on where the cells come from.
TYPED_TEST(Interpolation, SameBitsForAllSiteForms) {
  using Real = TypeParam;
  const Pieces<Real> p(300, 1, 4);
  Task<Real> task(p.nx, p.x.data(), 1, 1, p.y.data());
  ASSERT_EQ(task.spline(4, 5, const_cast<Real*>(p.c.data())), 0);
  const Real ends[2] = {-3, 150};
  std::vector<Real> site, expected(777), r(777);
  const Real step = (ends[1] - ends[0]) / 776;
  for (int i = 0; i < 777; ++i) site.push_back(static_cast<Real>(i) * step + ends[0]);
  std::vector<int32_t> cell(777), other(777, -1);
  ASSERT_EQ(task.interpolate(site, expected.data(), {.type = 2, .cell = cell.data()}), 0);
  ASSERT_EQ(Api<Real>::search(task, 0, 777, site.data(), 0, nullptr, other.data(), nullptr, nullptr,
                              nullptr),
            0);
  EXPECT_EQ(cell, other);
  const Real bad_hint[5] = {0, 7, 0, 0, 0};
  const auto same = [&](const typename Task<Real>::Sites& s, const Real* from) {
    std::fill(r.begin(), r.end(), Real(0));
    ASSERT_EQ(task.interpolate(777, from, r.data(), s), 0);
    EXPECT_EQ(r, expected);
  };
  same({.hint = QOR_DF_SORTED}, site.data());
  same({.hint = QOR_DF_UNIFORM_SITES}, ends);
  same({.type = 4, .data_hint = bad_hint, .cell = cell.data()}, site.data());
  std::vector<Real> values(300);
  ASSERT_EQ(task.interpolate(p.x, values.data()), 0);
  for (size_t i = 0; i < 299; ++i) EXPECT_EQ(values[i], p.c[4 * i]);
}

// Many sites in one cell are evaluated together: the bits are those of sites one by one, which is
// how values come that are asked for with a derivative.
TYPED_TEST(Interpolation, SitesTogetherGiveTheBitsOfSitesOneByOne) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  for (const int64_t order : {2, 3, 4}) {
    const Pieces<Real> p(14, 2, order);
    for (const bool uniform : {false, true}) {
      Task<Real> task(p.nx, uniform ? p.ends.data() : p.x.data(), uniform ? 4 : 1, 2, p.y.data());
      ASSERT_EQ(task.spline(order, 0, const_cast<Real*>(p.c.data())), 0);
      for (const int64_t count : {1, 7, 8, 15, 16, 17, 100, 255, 256, 257, 300, 2000}) {
        auto site = ascending_sites(p, count);
        for (const bool broken : {false, true}) {
          // A promise of order that is not kept, where the method does not rest on it.
          if (broken) site[site.size() / 2] = site.size() % 2 == 0 ? nan : Real(0.25);
          const typename Task<Real>::Sites known{.hint = !broken || uniform ? int64_t{QOR_DF_SORTED}
                                                                            : 0};
          std::vector<Real> together(2 * site.size() + 1, 99), one_by_one(4 * site.size());
          ASSERT_EQ(task.interpolate(site, together.data(), known), 0);
          ASSERT_EQ(task.interpolate(site, one_by_one.data(), {.derivatives = {1, 1}}), 0);
          for (size_t k = 0; k < 2 * site.size(); ++k) {
            ASSERT_EQ(std::isnan(together[k]), std::isnan(one_by_one[2 * k]));
            if (!std::isnan(together[k])) {
              ASSERT_EQ(together[k], one_by_one[2 * k])
                  << "order " << order << " of " << count << " site " << k;
            }
          }
          EXPECT_EQ(together.back(), 99);
        }
      }
    }
  }
}

TYPED_TEST(Interpolation, QuadraticOnKnots) {
  using Real = TypeParam;
  const std::vector<Real> x = {0, 1, 2, 4}, knots = {0, Real(0.5), Real(1.25), 3, 4};
  const std::vector<Real> y = {1, -1, 2, 5};
  for (const bool uniform : {false, true}) {
    const std::vector<Real> ux = {0, Real(4) / 3, Real(8) / 3, 4};
    const std::vector<Real> ends = {0, 4}, uk = {0, 1, Real(1.5), 3, 4};
    const auto& k = uniform ? uk : knots;
    std::vector<Real> c(12), r(3);
    Task<Real> task(4, uniform ? ends.data() : x.data(), uniform ? 4 : 0, 1, y.data());
    ASSERT_EQ(task.spline(3, 1, c.data(), 2, nullptr, 1, k.data()), 0);
    ASSERT_EQ(Api<Real>::quadratic(task, 0, 0, nullptr), 0);
    // The value and the slope agree from both sides of a knot, and the data are met.
    for (size_t j = 1; j < 4; ++j) {
      const Real delta = std::numeric_limits<Real>::epsilon() * 8;
      std::vector<Real> both(4);
      ASSERT_EQ(task.interpolate({k[j] - delta, k[j]}, both.data(), {.derivatives = {1, 1}}), 0);
      EXPECT_NEAR(both[0], both[2], 200 * delta);
      EXPECT_NEAR(both[1], both[3], 200 * delta);
      EXPECT_EQ(both[2], c[3 * j]);
    }
    const auto& points = uniform ? ux : x;
    std::vector<Real> values(4);
    ASSERT_EQ(task.interpolate(points, values.data()), 0);
    for (size_t i = 0; i < 4; ++i) {
      EXPECT_NEAR(values[i], y[i], 200 * std::numeric_limits<Real>::epsilon());
    }
    // Outside, the end polynomials go on.
    ASSERT_EQ(task.interpolate({-1, 5}, r.data()), 0);
    EXPECT_EQ(r[0], (c[2] * -1 + c[1]) * -1 + c[0]);
    const Real t = 5 - k[3];
    EXPECT_EQ(r[1], (c[11] * t + c[10]) * t + c[9]);
  }
}

TYPED_TEST(Interpolation, Flags32BitsWide) {
  using Real = TypeParam;
  const Pieces<Real> p(4, 1, 4);
  Task<Real> task(p.nx, p.x.data(), 1, 1, p.y.data(), 0, 0);
  ASSERT_EQ(task.spline(4, 5, const_cast<Real*>(p.c.data())), 0);
  const int32_t flags[3] = {0, 1, 0};
  const Real site = p.x[1];
  Real r[2] = {99, 99};
  ASSERT_EQ(Api<Real>::interpolate(task, 0, 0, 1, &site, 0, 3, flags, nullptr, r, 0, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                   nullptr, nullptr),
            0);
  EXPECT_EQ(r[0], p.c[5]);
  EXPECT_EQ(r[1], 99);
}

TYPED_TEST(Interpolation, Statuses) {
  using Real = TypeParam;
  const Pieces<Real> p(4, 1, 6);  // coefficients enough for every order
  const Real bad_hint[5] = {0, 7, 0, 0, 0};
  Real r[4];
  const auto run = [&](int64_t order, int64_t type, const typename Task<Real>::Sites& s = {}) {
    Task<Real> task(p.nx, p.x.data(), 1, 1, p.y.data());
    EXPECT_EQ(task.spline(order, type, const_cast<Real*>(p.c.data())), 0);
    return task.interpolate({0}, r, s);
  };
  for (const auto& [order, type] : {std::pair{1, 0}, {3, 2}, {4, 1}, {4, 6}, {4, 10}, {0, 0}}) {
    EXPECT_EQ(run(order, type, {.data_hint = bad_hint, .layout = 5}), QOR_DF_BAD_TYPE);
  }
  for (const auto& [order, type] : {std::pair{2, 77}, {3, 0}, {4, 9}, {6, 13}}) {
    EXPECT_EQ(run(order, type), QOR_DF_OK) << order;
  }
  EXPECT_EQ(run(4, 5, {.data_hint = bad_hint, .layout = 5}), QOR_DF_BAD_DATA_HINT);
  EXPECT_EQ(run(4, 5, {.layout = 5}), QOR_DF_BAD_R_HINT);
  EXPECT_EQ(run(3, 1), QOR_DF_BAD_IC);  // knots that the task lacks
  Task<Real> empty(p.nx, p.x.data(), 1);
  EXPECT_EQ(empty.interpolate({0}, r), QOR_DF_BAD_TYPE);
  qor_df_kernel_iEditVal(empty, QOR_DF_ORDER, 4);
  EXPECT_EQ(empty.interpolate({0}, r), QOR_DF_OK);
  qor_df_kernel_iEditVal(empty, QOR_DF_NY, 1);
  EXPECT_EQ(empty.interpolate({0}, r), QOR_DF_NULL_SCOEFF);
}

// A NaN site gives NaN, and cells of the caller's that are no cells stay within the arrays.
TYPED_TEST(Interpolation, BadSitesAndCells) {
  using Real = TypeParam;
  const Pieces<Real> p(40, 1, 4);
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  Real r[3];
  const int32_t wild[3] = {INT32_MIN, INT32_MAX, 41};
  for (const auto& [order, type] : {std::pair{4, 5}, {2, 0}, {0, 7}, {0, 8}}) {
    for (const int64_t xhint : {0, 2}) {
      Task<Real> task(p.nx, p.x.data(), xhint, 1, p.y.data());
      ASSERT_EQ(task.spline(order, type, const_cast<Real*>(p.c.data())), 0);
      ASSERT_EQ(task.interpolate({nan, 0, nan}, r), 0);
      if (order != 0) {
        EXPECT_TRUE(std::isnan(r[0]) && std::isfinite(r[1]) && std::isnan(r[2]));
      }
      auto cells = wild;
      ASSERT_EQ(task.interpolate({0, 0, 0}, r, {.type = 4, .cell = const_cast<int32_t*>(cells)}),
                0);
    }
  }
}

}  // namespace
}  // namespace qor::test
