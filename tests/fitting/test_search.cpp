// Cell search: every method against the definition of a cell, and the rules of single methods.

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "tests/fitting/api.h"

namespace qor::test {
namespace {

// The cell by its definition.
template <class Real>
int32_t defined_cell(const std::vector<Real>& x, Real s) {
  if (s == x.back()) return static_cast<int32_t>(x.size()) - 1;
  return static_cast<int32_t>(
      std::count_if(x.begin(), x.end(), [s](Real breakpoint) { return breakpoint <= s; }));
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
class CellSearch : public BothPrecisions<Real> {
 protected:
  using SearchCallback = typename Api<Real>::Search;
  static std::vector<int32_t> search(DFTask* task, const std::vector<Real>& site, int64_t sitehint,
                                     const Real* datahint = nullptr,
                                     SearchCallback callback = nullptr, int expected = 0,
                                     void* params = nullptr) {
    std::vector<int32_t> cell(site.size() + 1, -7);
    EXPECT_EQ(Api<Real>::search(task, 0, static_cast<int64_t>(site.size()), site.data(), sitehint,
                                datahint, cell.data(), callback, params, nullptr),
              expected);
    EXPECT_EQ(cell.back(), -7);
    cell.pop_back();
    return cell;
  }
};
TYPED_TEST_SUITE(CellSearch, Precisions);

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

TYPED_TEST(CellSearch, EveryMethodFindsTheDefinedCell) {
  using Real = TypeParam;
  const Real none[5] = {0, 0, 0, 0, 0}, peak[5] = {0, 1, 0, 0, 1};
  for (const size_t n : {2u, 3u, 17u, 41u, 42u, 100u, 101u, 102u, 200u, 1000u}) {
    const auto x = breakpoints<Real>(n);
    auto site = sites_around(x);
    std::shuffle(site.begin(), site.end(), std::mt19937(3));
    auto sorted = site;
    std::sort(sorted.begin(), sorted.end());
    const auto nx = static_cast<int64_t>(n);
    for (const int64_t xhint : {0, 1, 2}) {
      Task<Real> task(nx, x.data(), xhint);
      std::vector<int32_t> expected(site.size());
      const auto defined = [&](Real s) { return defined_cell(x, s); };
      std::transform(site.begin(), site.end(), expected.begin(), defined);
      EXPECT_EQ(this->search(task, site, 0), expected) << n;
      EXPECT_EQ(this->search(task, site, 0, none), expected) << n;
      EXPECT_EQ(this->search(task, site, 0, peak), expected) << n;
      EXPECT_EQ(this->search(task, site, 0, nullptr, guess_badly<Real>), expected) << n;
      std::transform(sorted.begin(), sorted.end(), expected.begin(), defined);
      EXPECT_EQ(this->search(task, sorted, QOR_DF_SORTED), expected) << n;
    }
  }
}

TYPED_TEST(CellSearch, UniformPartition) {
  using Real = TypeParam;
  // From 0 in steps of a power of two, where distances and quotients are exact.
  for (const int64_t nx : {2, 5, 129}) {
    std::vector<Real> x;
    for (int64_t i = 0; i < nx; ++i) x.push_back(Real(0.25) * static_cast<Real>(i));
    const Real ends[2] = {x.front(), x.back()};
    const auto site = sites_around(x);
    std::vector<int32_t> expected;
    for (const Real s : site) expected.push_back(defined_cell(x, s));
    Task<Real> task(nx, ends, QOR_DF_UNIFORM_PARTITION);
    EXPECT_EQ(this->search(task, site, 0), expected);
    EXPECT_EQ(this->search(task, site, QOR_DF_SORTED), expected);
    EXPECT_EQ(this->search(task, site, 0, nullptr, guess_badly<Real>), expected);
  }
}

TYPED_TEST(CellSearch, UniformSites) {
  using Real = TypeParam;
  const auto x = breakpoints<Real>(150);
  Task<Real> task(150, x.data(), 0), quasi(150, x.data(), 2);
  for (const auto& ends : {std::vector<Real>{-5, 160}, std::vector<Real>{160, -5}}) {
    for (const int64_t nsite : {1, 2, 4096, 4097, 9000}) {
      std::vector<Real> site;
      const Real step = nsite < 2 ? 0 : (ends[1] - ends[0]) / static_cast<Real>(nsite - 1);
      for (int64_t i = 0; i < nsite; ++i) site.push_back(static_cast<Real>(i) * step + ends[0]);
      for (DFTask* t : {static_cast<DFTask*>(task), static_cast<DFTask*>(quasi)}) {
        std::vector<int32_t> cell(site.size());
        ASSERT_EQ(Api<Real>::search(t, 0, nsite, ends.data(), QOR_DF_UNIFORM_SITES, nullptr,
                                    cell.data(), nullptr, nullptr, nullptr),
                  0);
        for (size_t i = 0; i < site.size(); ++i) ASSERT_EQ(cell[i], defined_cell(x, site[i]));
      }
    }
  }
}

TYPED_TEST(CellSearch, DataHints) {
  using Real = TypeParam;
  const auto x = breakpoints<Real>(50);
  Task<Real> task(50, x.data(), 0);
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  struct Case {
    Real selector, peak;
    int status;
  };
  for (const Case& c :
       {Case{0, -1, 0}, Case{1, 0, 0}, Case{1, 50, 0}, Case{1, -1, -1026}, Case{1, 51, -1026},
        Case{2, 3, -1026}, Case{nan, 3, -1026}, Case{1, nan, -1026}}) {
    const Real hint[5] = {9, c.selector, 9, 9, c.peak};
    this->search(task, {1, 2}, 0, hint, nullptr, c.status);
    this->search(task, {1, 2}, QOR_DF_SORTED, hint);  // not looked at
  }
}

// NaN sites get a number of a cell; their neighbours are not disturbed.
TYPED_TEST(CellSearch, NanSites) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN(), peak[5] = {0, 1, 0, 0, 0};
  for (const size_t n : {4u, 60u, 500u}) {
    const auto x = breakpoints<Real>(n);
    const auto nx = static_cast<int64_t>(n);
    const std::vector<Real> site = {nan, Real(0.5), nan, Real(2.5), x.back() + 1, nan};
    const auto check = [&](const std::vector<int32_t>& cell) {
      for (const int32_t c : cell) EXPECT_TRUE(c >= 0 && c <= nx) << c;
      EXPECT_EQ(cell[1], 1);
      EXPECT_EQ(cell[3], 3);
      EXPECT_EQ(cell[4], nx);
    };
    Task<Real> task(nx, x.data(), 0), quasi(nx, x.data(), 2);
    check(this->search(task, site, 0));
    check(this->search(task, site, QOR_DF_SORTED));
    check(this->search(task, site, 0, peak));
    check(this->search(task, site, 0, nullptr, guess_badly<Real>));
    check(this->search(quasi, site, 0));
    const Real ends[2] = {0, static_cast<Real>(n - 1)};
    Task<Real> uniform(nx, ends, 4);
    check(this->search(uniform, site, 0));
  }
  // Bisection to a window takes a NaN to the window's left end.
  const auto x = breakpoints<Real>(500);
  Task<Real> task(500, x.data(), 0);
  EXPECT_EQ(this->search(task, {nan}, 0)[0], 437);
  EXPECT_EQ(this->search(task, {nan}, 0, peak)[0], 467);
}

// Sites that break the promise of order follow their predecessor.
TYPED_TEST(CellSearch, SortedDoesNotLookBack) {
  using Real = TypeParam;
  const auto x = breakpoints<Real>(20);
  Task<Real> task(20, x.data(), 0);
  const std::vector<Real> site = {5.5, 3, -1, 4.5, x.back(), 4.5, 30, 7, 7};
  EXPECT_EQ(this->search(task, site, QOR_DF_SORTED),
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
  const std::vector<Real> site = {5, 9, 11, 30};
  const auto callback = search_with_flags<Real>;
  for (const int64_t xhint : {0, 4}) {
    Task<Real> task(20, xhint == 4 ? ends : x.data(), xhint);
    const auto run = [&](int given, int returned) {
      return this->search(task, site, 0, nullptr, callback, returned, &given);
    };
    EXPECT_EQ(run(0, 0), (std::vector<int32_t>{2, 2, 12, 20}));
    EXPECT_EQ(run(5, 5), (std::vector<int32_t>{2, 2, 12, 20}));
    EXPECT_EQ(run(1000, 0), (std::vector<int32_t>{2, 2, 2, 2}));
    EXPECT_EQ(run(-3, -3), (std::vector<int32_t>{-7, -7, -7, -7}));
    int final = 1000;
    EXPECT_EQ(this->search(task, {}, 0, nullptr, callback, 0, &final), std::vector<int32_t>{});
  }
}

TYPED_TEST(CellSearch, SingleMethods) {
  using Real = TypeParam;
  using A = Api<Real>;
  const std::vector<Real> x = {0, 1, 2, 3, 4};
  const Real ends[2] = {0, 4};
  const std::vector<Real> site = {-1, 0, Real(2.5), 3, 4, 5};
  const std::vector<int32_t> expected = {0, 1, 3, 4, 4, 5};
  std::vector<int32_t> cell(6);
  const auto check = [&](int status) {
    EXPECT_EQ(status, 0);
    EXPECT_EQ(cell, expected);
    std::fill(cell.begin(), cell.end(), -1);
  };
  for (const auto method : {A::uniform_search, A::uniform_search32}) {
    check(method(5, ends, 6, site.data(), 1, cell.data()));
  }
  for (const auto method : {A::quasi_search, A::quasi_search32}) {
    check(method(5, x.data(), 6, site.data(), Real(1.25), cell.data()));
  }
  for (const auto method :
       {A::hybrid_search, A::hybrid_search32, A::peak_search, A::peak_search32}) {
    check(method(5, x.data(), 6, site.data(), cell.data()));
  }
  for (const auto method : {A::sorted_search, A::sorted_search32}) {
    int32_t last = 0;
    EXPECT_EQ(method(5, x.data(), 3, site.data(), &last, cell.data()), 0);
    EXPECT_EQ(last, 3);
    check(method(5, x.data(), 3, site.data() + 3, &last, cell.data() + 3));
    EXPECT_EQ(last, 5);
  }
  for (const auto method : {A::user_search, A::user_search32}) {
    check(method(5, x.data(), 6, site.data(), guess_badly<Real>, nullptr, cell.data()));
  }
  for (const auto method : {A::uniform_user_search, A::uniform_user_search32}) {
    check(method(5, ends, 6, site.data(), 1, guess_badly<Real>, nullptr, cell.data()));
  }
}

}  // namespace
}  // namespace qor::test
