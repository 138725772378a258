// Interpolation: polynomials, layouts, derivatives, cells, callbacks.

#include <cmath>
#include <limits>
#include <random>

#include "tests/fitting/api.h"
#include "tests/fitting/reference.h"

namespace qor::test {
namespace {

// A task of functions with coefficients that are not those of any construction: interpolation reads
// coefficients alone.
template <class Real>
struct Pieces {
  int64_t nx, functions, order;
  std::vector<Real> x, ends, y, c;

  Pieces(int64_t n, int64_t ny, int64_t s_order) : nx(n), functions(ny), order(s_order) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> digit(-8, 8);
    for (int64_t i = 0; i < nx; ++i) x.push_back(Real(0.5) * static_cast<Real>(i) - 2);
    ends = {x.front(), x.back()};
    y.resize(static_cast<size_t>(nx * ny));
    for (int64_t k = 0; k < ny * order * (nx - 1); ++k) {
      c.push_back(static_cast<Real>(digit(random)) / 4);
    }
  }
  // A derivative of a function at s, by the rule of which piece serves it.
  Wide at(int64_t function, int derivative, Real s) const {
    int64_t piece = 0;
    while (piece < nx - 2 && s >= x[static_cast<size_t>(piece + 1)]) ++piece;
    const Real* first = c.data() + (function * (nx - 1) + piece) * order;
    return polynomial_at({first, first + order}, derivative,
                         static_cast<Wide>(s) - x[static_cast<size_t>(piece)]);
  }
};

template <class Real>
std::vector<Real> ascending_sites(const Pieces<Real>& p, int64_t count) {
  std::vector<Real> site;
  const Real first = p.x.front() - 1, last = p.x.back() + 1;
  for (int64_t i = 0; i < count; ++i) {
    site.push_back(first + (last - first) * static_cast<Real>(i) / static_cast<Real>(count));
  }
  return site;
}

size_t place(int64_t layout, int64_t i, int64_t f, int64_t d, int64_t nsite, int64_t ny,
             int64_t nd) {
  const int64_t at = layout == 32    ? (f * nd + d) * nsite + i
                     : layout == 256 ? (i * ny + f) * nd + d
                     : layout == 512 ? (i * nd + d) * ny + f
                                     : (f * nsite + i) * nd + d;
  return static_cast<size_t>(at);
}

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

// What a callback saw, and what it is to return.
struct Seen {
  int64_t calls = 0, sites = 0;
  int status = 0;
};

// Marks results by the class of the site: the cell, or minus the cell for the second derivative.
template <class Real>
int mark_cells(const int64_t* n, const Real* site, const int32_t* cell, Real* result, void* params,
               void* zero) {
  Seen& seen = *static_cast<Seen*>(params);
  EXPECT_EQ(zero, nullptr);
  ++seen.calls;
  seen.sites += *n;
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_EQ(cell[i] == 0, site[i] < 0) << site[i];
    result[2 * i] = static_cast<Real>(cell[i]) + 1000;
    result[2 * i + 1] = -result[2 * i];
  }
  return seen.status;
}

TYPED_TEST(Interpolation, Callbacks) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2}, y[6] = {};
  Real c[16];
  for (int k = 0; k < 16; ++k) c[k] = static_cast<Real>(k);
  const std::vector<Real> site = {-2, -1, Real(0.5), 3, -1, Real(1.5), 2, 2.5};
  const int32_t cell[8] = {0, 0, 1, 3, 0, 2, 2, 3};
  Task<Real> task(3, x, 0, 2, y);
  for (const int64_t layout : {16, 32}) {
    for (int mask = 0; mask < 8; ++mask) {
      for (const int64_t order : {4, 0}) {
        ASSERT_EQ(task.spline(order, 0, c), 0);
        Seen seen;
        const auto callback = mark_cells<Real>;
        const typename Task<Real>::Sites s{.derivatives = {1, 1},
                                           .layout = layout,
                                           .left = (mask & 1) != 0 ? callback : nullptr,
                                           .right = (mask & 2) != 0 ? callback : nullptr,
                                           .inside = (mask & 4) != 0 ? callback : nullptr,
                                           .params = &seen};
        std::vector<Real> r(32), plain(32);
        const int status = task.interpolate(site, r.data(), s);
        if (order == 0 && mask != 7) {
          EXPECT_EQ(status, QOR_DF_BAD_TYPE);
          continue;
        }
        ASSERT_EQ(status, 0);
        if (order != 0) {
          ASSERT_EQ(task.interpolate(site, plain.data(), {.derivatives = {1, 1}, .layout = layout}),
                    0);
        }
        for (int64_t i = 0; i < 8; ++i) {
          const int bit = cell[i] == 0 ? 1 : cell[i] == 3 ? 2 : 4;
          for (int64_t f = 0; f < 2; ++f) {
            const Real mark = static_cast<Real>(cell[i]) + 1000;
            const size_t value = place(layout, i, f, 0, 8, 2, 2);
            const size_t slope = place(layout, i, f, 1, 8, 2, 2);
            EXPECT_EQ(r[value], (mask & bit) != 0 ? mark : plain[value]) << mask << " " << i;
            EXPECT_EQ(r[slope], (mask & bit) != 0 ? -mark : plain[slope]);
          }
        }
        const int64_t sites = (mask & 1) * 3 + (mask & 2) / 2 * 2 + (mask & 4) / 4 * 3;
        EXPECT_EQ(seen.sites, 2 * sites);
        seen.status = -77;
        EXPECT_EQ(task.interpolate(site, r.data(), s), mask == 0 ? 0 : -77);
      }
    }
  }
}

template <class Real>
int fail_search(const int64_t*, const Real*, int64_t*, int64_t*, void*, void*) {
  return -55;
}

TYPED_TEST(Interpolation, UsersSearch) {
  using Real = TypeParam;
  const Pieces<Real> p(4, 1, 4);
  Task<Real> task(p.nx, p.x.data(), 1, 1, p.y.data());
  ASSERT_EQ(task.spline(4, 5, const_cast<Real*>(p.c.data())), 0);
  Real r[1] = {99};
  EXPECT_EQ(task.interpolate({0}, r, {.search = fail_search<Real>}), -55);
  EXPECT_EQ(r[0], 99);
}

TYPED_TEST(Interpolation, Lookup) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 4}, ends[2] = {0, 3}, y[8] = {5, 6, 7, 8, 1, 2, 3, 4};
  Real r[8];
  for (const bool uniform : {false, true}) {
    Task<Real> task(4, uniform ? ends : x, uniform ? 4 : 0, 2, y, 0);
    ASSERT_EQ(task.spline(0, 6, nullptr), 0);
    const Real last = uniform ? ends[1] : x[3];
    const typename Task<Real>::Sites value{.derivatives = {1}};
    ASSERT_EQ(task.interpolate({0, 2, last, 1}, r, value), 0);
    const Real expected[8] = {5, 7, 8, 6, 1, 3, 4, 2};
    for (int k = 0; k < 8; ++k) EXPECT_EQ(r[k], expected[k]);
    for (const Real off : {Real(0.5), Real(-1), Real(9), std::numeric_limits<Real>::quiet_NaN()}) {
      EXPECT_EQ(task.interpolate({1, off}, r, value), QOR_DF_NOT_A_BREAKPOINT);
      EXPECT_EQ(task.interpolate({1, off}, r, {.derivatives = {1, 1}}), QOR_DF_NOT_A_BREAKPOINT);
    }
    EXPECT_EQ(task.interpolate({1}, r, {.derivatives = {1, 1}}), QOR_DF_LOOKUP_DERIVATIVES);
    EXPECT_EQ(task.interpolate({1}, r), QOR_DF_LOOKUP_DERIVATIVES);
    EXPECT_EQ(task.interpolate({1}, r, {.derivatives = {0}}), QOR_DF_LOOKUP_WITHOUT_VALUE);
    if (uniform) {
      const Real near = Real(1) - Real(0x1p-41);  // for float the breakpoint itself
      EXPECT_EQ(task.interpolate({near}, r, value), 0);
      EXPECT_EQ(r[0], 6);
    }
  }
}

TYPED_TEST(Interpolation, Steps) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 3}, ends[2] = {0, 3}, y[4] = {5, 6, 7, 8};
  const std::vector<Real> site = {-1, 0, 0.5, 1, 1.5, 2, 2.75, 3, 4};
  const Real from_right[9] = {5, 5, 5, 6, 6, 7, 7, 8, 8};
  const Real from_left[9] = {6, 5, 6, 6, 7, 7, 8, 8, 8};
  Real r[18];
  for (const bool uniform : {false, true}) {
    for (const int64_t yhint : {0, 32}) {
      Task<Real> task(4, uniform ? ends : x, uniform ? 4 : 0, 1, y, yhint);
      for (const int64_t type : {7, 8}) {
        ASSERT_EQ(task.spline(0, type, nullptr), 0);
        ASSERT_EQ(task.interpolate(site, r, {.derivatives = {1, 1}}), 0);
        for (int i = 0; i < 9; ++i) {
          EXPECT_EQ(r[2 * i], type == 7 ? from_right[i] : from_left[i]) << type << " " << i;
          EXPECT_EQ(r[2 * i + 1], 0);
        }
      }
    }
  }
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
