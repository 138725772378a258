// Cell search: every method against the definition of a cell, and the rules of single methods.

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "tests/fitting/api.h"

namespace qor::test {
namespace {

// The cells by their definition.
template <class Real>
std::vector<int32_t> defined_cells(const std::vector<Real>& x, const std::vector<Real>& site) {
  std::vector<int32_t> cell;
  for (const Real s : site) {
    const auto below = std::upper_bound(x.begin(), x.end(), s) - x.begin();
    cell.push_back(static_cast<int32_t>(s == x.back() ? below - 1 : below));
  }
  return cell;
}

template <class Real>
std::vector<Real> breakpoints(size_t n) {
  std::vector<Real> x;
  for (size_t i = 0; i < n; ++i) {
    x.push_back(static_cast<Real>(i) + (i % 3 == 1 ? Real(0.375) : Real(0)));
  }
  return x;
}

// Breakpoints, their neighbours, places between and places outside.
template <class Real>
std::vector<Real> sites_around(const std::vector<Real>& x) {
  constexpr Real inf = std::numeric_limits<Real>::infinity();
  std::vector<Real> sites = {x.front() - 1, x.back() + 1, -inf, inf};
  for (const Real b : x) {
    for (const Real s : {b, std::nextafter(b, -inf), std::nextafter(b, inf), b + Real(0.125)}) {
      sites.push_back(s);
    }
  }
  return sites;
}

template <class Real>
using Told = typename Task<Real>::Sites;

// The cells; the search is to have the status.
template <class Real>
std::vector<int32_t> search(const Task<Real>& task, const std::vector<Real>& site,
                            const Told<Real>& told = {}, int status = QOR_DF_OK) {
  const size_t n = told.nsite < 0 ? site.size() : static_cast<size_t>(told.nsite);
  std::vector<int32_t> cell(n + 1, -7);
  EXPECT_EQ(task.search(site, cell.data(), told), status);
  EXPECT_EQ(cell.back(), -7);
  cell.pop_back();
  return cell;
}

// Guesses that are wrong in every way.
template <class Real>
int guess_badly(const int64_t* n, const Real*, int64_t* cell, int64_t* flag, void*, void* zero) {
  EXPECT_EQ(zero, nullptr);
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_EQ(flag[i], 0);
    cell[i] = i % 3 == 0 ? -5 : i % 3 == 1 ? 1000000 : i % 7;
  }
  return 0;
}

template <class Real>
class CellSearch : public BothPrecisions<Real> {
 protected:
  static constexpr Real kNone[5] = {}, kPeak[5] = {0, 1, 0, 0, 1};

  // Every method that the task has for these sites finds the defined cells.
  static void check_methods(const Task<Real>& task, const std::vector<Real>& x) {
    auto site = sites_around(x);
    std::shuffle(site.begin(), site.end(), std::mt19937(3));
    const auto expected = defined_cells(x, site);
    for (const Real* hint : {static_cast<const Real*>(nullptr), kNone, kPeak}) {
      EXPECT_EQ(search<Real>(task, site, {.data_hint = hint}), expected) << x.size();
    }
    EXPECT_EQ(search<Real>(task, site, {.search = {guess_badly<Real>}}), expected) << x.size();
    std::sort(site.begin(), site.end());
    EXPECT_EQ(search<Real>(task, site, {.hint = QOR_DF_SORTED}), defined_cells(x, site));
    const Real left = x.front() - 5, right = x.back() + 5;
    for (const std::vector<Real>& ends : {std::vector{left, right}, {right, left}}) {
      for (const int64_t nsite : {1, 2, 4097}) {
        const Real step = nsite < 2 ? 0 : (ends[1] - ends[0]) / static_cast<Real>(nsite - 1);
        site.clear();
        for (int64_t i = 0; i < nsite; ++i) site.push_back(static_cast<Real>(i) * step + ends[0]);
        EXPECT_EQ(search<Real>(task, ends, {.hint = QOR_DF_UNIFORM_SITES, .nsite = nsite}),
                  defined_cells(x, site));
      }
    }
  }
};
TYPED_TEST_SUITE(CellSearch, Precisions);

TYPED_TEST(CellSearch, EveryMethodFindsTheDefinedCell) {
  using Real = TypeParam;
  for (const int64_t nx : {2, 3, 17, 41, 42, 100, 101, 102, 200, 1000}) {
    const auto x = breakpoints<Real>(static_cast<size_t>(nx));
    for (const int64_t xhint : {0, 1, 2}) this->check_methods(Task<Real>(nx, x.data(), xhint), x);
  }
  // From 0 in steps of a power of two, where distances and quotients are exact.
  for (const int64_t nx : {2, 5, 129}) {
    std::vector<Real> x;
    for (int64_t i = 0; i < nx; ++i) x.push_back(static_cast<Real>(i) / 4);
    const Real ends[2] = {x.front(), x.back()};
    this->check_methods(Task<Real>(nx, ends, QOR_DF_UNIFORM_PARTITION), x);
  }
}

TYPED_TEST(CellSearch, DataHints) {
  using Real = TypeParam;
  const auto x = breakpoints<Real>(50);
  const Task<Real> task(50, x.data(), 0);
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  const auto check = [&](Real selector, Real peak, int status) {
    const Real hint[5] = {9, selector, 9, 9, peak};
    search<Real>(task, {1, 2}, {.data_hint = hint}, status);
    search<Real>(task, {1, 2}, {.hint = QOR_DF_SORTED, .data_hint = hint});  // not looked at
  };
  check(0, -1, QOR_DF_OK);
  for (const Real peak : {Real(0), Real(50)}) check(1, peak, QOR_DF_OK);
  for (const Real peak : {Real(-1), Real(51), nan}) check(1, peak, QOR_DF_BAD_DATA_HINT);
  for (const Real selector : {Real(2), nan}) check(selector, 3, QOR_DF_BAD_DATA_HINT);
}

// NaN sites get a number of a cell; their neighbours are not disturbed.
TYPED_TEST(CellSearch, NanSites) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  for (const int64_t nx : {4, 60, 500}) {
    const auto x = breakpoints<Real>(static_cast<size_t>(nx));
    const std::vector<Real> site = {nan, Real(0.5), nan, Real(2.5), x.back() + 1, nan};
    const Real ends[2] = {0, static_cast<Real>(nx - 1)};
    const Task<Real> task(nx, x.data(), 0), quasi(nx, x.data(), 2), uniform(nx, ends, 4);
    for (const auto& cell :
         {search(task, site), search<Real>(task, site, {.hint = QOR_DF_SORTED}),
          search<Real>(task, site, {.data_hint = this->kPeak}),
          search<Real>(task, site, {.search = {guess_badly<Real>}}), search(quasi, site),
          search(uniform, site), search<Real>(uniform, site, {.hint = QOR_DF_SORTED})}) {
      for (const int32_t c : cell) EXPECT_TRUE(c >= 0 && c <= nx) << c;
      EXPECT_EQ(cell[1], 1);
      EXPECT_EQ(cell[3], 3);
      EXPECT_EQ(cell[4], nx);
    }
    if (nx != 500) continue;
    // Bisection to a window takes a NaN to the window's left end.
    EXPECT_EQ(search<Real>(task, {nan})[0], 437);
    EXPECT_EQ(search<Real>(task, {nan}, {.data_hint = this->kPeak})[0], 467);
  }
}

// Sites that break the promise of order follow their predecessor.
TYPED_TEST(CellSearch, SortedDoesNotLookBack) {
  const auto x = breakpoints<TypeParam>(20);
  const Task<TypeParam> task(20, x.data(), 0);
  const std::vector<TypeParam> site = {5.5, 3, -1, 4.5, x.back(), 4.5, 30, 7, 7};
  EXPECT_EQ(search<TypeParam>(task, site, {.hint = QOR_DF_SORTED}),
            (std::vector<int32_t>{6, 6, 0, 5, 19, 5, 20, 20, 20}));
}

template <class Real>
int search_with_flags(const int64_t* n, const Real* site, int64_t* cell, int64_t* flag,
                      void* params, void*) {
  for (int64_t i = 0; i < *n; ++i) {
    cell[i] = 2;
    flag[i] = site[i] < 10 ? 1 : 0;
  }
  return *static_cast<int*>(params);
}

TYPED_TEST(CellSearch, CallbackStatusesAndFlags) {
  using Real = TypeParam;
  const auto x = breakpoints<Real>(20);
  const Real ends[2] = {0, 19};
  for (const int64_t xhint : {0, 4}) {
    const Task<Real> task(20, xhint == 4 ? ends : x.data(), xhint);
    const auto run = [&](int given, int returned, const std::vector<Real>& site) {
      return search<Real>(task, site, {.search = {search_with_flags<Real>, &given}}, returned);
    };
    const std::vector<Real> site = {5, 9, 11, 30};
    EXPECT_EQ(run(0, 0, site), (std::vector<int32_t>{2, 2, 12, 20}));
    EXPECT_EQ(run(5, 5, site), (std::vector<int32_t>{2, 2, 12, 20}));
    EXPECT_EQ(run(1000, 0, site), (std::vector<int32_t>{2, 2, 2, 2}));
    EXPECT_EQ(run(-3, -3, site), (std::vector<int32_t>{-7, -7, -7, -7}));
    EXPECT_EQ(run(1000, 0, {}), std::vector<int32_t>{});
  }
}

TYPED_TEST(CellSearch, SingleMethods) {
  using Real = TypeParam;
  using A = Api<Real>;
  const Real x[5] = {0, 1, 2, 3, 4}, ends[2] = {0, 4}, site[6] = {-1, 0, 2.5, 3, 4, 5};
  const std::vector<int32_t> expected = {0, 1, 3, 4, 4, 5};
  std::vector<int32_t> cell(6);
  const auto guess = guess_badly<Real>;
  const auto check = [&](int status) {
    EXPECT_EQ(status, 0);
    EXPECT_EQ(cell, expected);
    std::fill(cell.begin(), cell.end(), -1);
  };
  for (const size_t name : {0u, 1u}) {
    int32_t last = 0, *c = cell.data();
    check(A::uniform_search[name](5, ends, 6, site, 1, c));
    check(A::quasi_search[name](5, x, 6, site, Real(1.25), c));
    check(A::hybrid_search[name](5, x, 6, site, c));
    check(A::peak_search[name](5, x, 6, site, c));
    check(A::user_search[name](5, x, 6, site, guess, nullptr, c));
    check(A::uniform_user_search[name](5, ends, 6, site, 1, guess, nullptr, c));
    EXPECT_EQ(A::sorted_search[name](5, x, 3, site, &last, c), 0);
    EXPECT_EQ(last, 3);
    check(A::sorted_search[name](5, x, 3, site + 3, &last, c + 3));
    EXPECT_EQ(last, 5);
  }
}

}  // namespace
}  // namespace qor::test
