// Uniform partitions: the breakpoints that the library computes, i * step + x[0], and their
// neighbours lie in their cells by the definition, in search, interpolation and integration alike.

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>
#include <random>

#include "tests/fitting/api.h"

namespace qor::test {
namespace {

template <class Real>
struct Uniform {
  static constexpr Real inf = std::numeric_limits<Real>::infinity();
  int64_t n;
  Real ends[2], step;
  std::vector<Real> x;  // but for the last

  Uniform(int64_t nx, Real first, Real last)
      : n(nx), ends{first, last}, step((last - first) / static_cast<Real>(nx - 1)) {
    for (int64_t i = 0; i + 1 < n; ++i) x.push_back(static_cast<Real>(i) * step + first);
  }

  // The definition. Breakpoints that are equal bound no cell.
  int32_t cell(Real s) const {
    if (s < ends[0]) return 0;
    if (s >= ends[1]) return static_cast<int32_t>(s == ends[1] ? n - 1 : n);
    return static_cast<int32_t>(std::upper_bound(x.begin(), x.end(), s) - x.begin());
  }
  std::vector<int32_t> cells(const std::vector<Real>& sites) const {
    std::vector<int32_t> all;
    for (const Real s : sites) all.push_back(cell(s));
    return all;
  }

  // Ascending.
  std::vector<Real> sites() const {
    std::vector<Real> all = {-inf, inf, ends[0] - step, ends[1] + step};
    const auto add = [&](Real s) {
      all.insert(all.end(), {std::nextafter(s, -inf), s, std::nextafter(s, inf)});
    };
    for (const Real s : x) add(s);
    add(ends[1]);
    std::sort(all.begin(), all.end());
    return all;
  }
};

// Of any place and width: steps that are far above the distance of numbers, near it and below it,
// and steps without all of their digits.
template <class Real, class Check>
void for_all_partitions(Check check) {
  using Limits = std::numeric_limits<Real>;
  std::mt19937 random(17);
  const auto below = [&](int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
  };
  const auto unit = [&] { return static_cast<Real>(below(1 << 20) + (1 << 20)) / (1 << 21); };
  constexpr int lowest = Limits::min_exponent - Limits::digits, highest = Limits::max_exponent - 3;
  for (int k = 0; k < 1500; ++k) {
    const int exponent = below(highest - lowest) + lowest;
    const Real first = k % 5 == 0 ? 0 : std::ldexp(k % 2 == 0 ? unit() : -unit(), exponent);
    const int away = below(k % 3 == 0 ? 8 : 2 * Limits::digits) - (k % 4 == 0 ? Limits::digits : 4);
    const Real width = std::ldexp(unit(), std::clamp(exponent + away, lowest, highest));
    const int64_t nx = k % 100 == 0 ? 20000 + below(9) : 2 + below(1 << (1 + below(8)));
    const Uniform<Real> u(nx, first, first + width);
    SCOPED_TRACE(testing::Message()
                 << std::hexfloat << u.ends[0] << " " << u.ends[1] << " n " << u.n);
    check(u);
    if (testing::Test::HasFailure()) return;
  }
}

// Guesses that are thrown away.
template <class Real>
int guess(const int64_t* n, const Real*, int64_t* cell, int64_t*, void*, void*) {
  std::fill_n(cell, *n, int64_t{3});
  return 0;
}

template <class Real>
class UniformPartitions : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(UniformPartitions, Precisions);

TYPED_TEST(UniformPartitions, EverySearchFindsTheDefinedCell) {
  using Real = TypeParam;
  using A = Api<Real>;
  for_all_partitions<Real>([](const Uniform<Real>& u) {
    const Task<Real> task(u.n, u.ends, QOR_DF_UNIFORM_PARTITION);
    auto site = u.sites();
    const auto n = static_cast<int64_t>(site.size());
    std::vector<int32_t> cell(site.size());
    auto expected = u.cells(site);
    const auto check = [&](int status) {
      EXPECT_EQ(status, 0);
      EXPECT_EQ(cell, expected);
      std::fill(cell.begin(), cell.end(), -1);
    };
    check(task.search(site, cell.data(), {.hint = QOR_DF_SORTED}));
    std::shuffle(site.begin(), site.end(), std::mt19937(3));
    expected = u.cells(site);
    check(task.search(site, cell.data()));
    check(task.search(site, cell.data(), {.search = {guess<Real>}}));
    for (const size_t name : {0u, 1u}) {
      check(A::uniform_search[name](u.n, u.ends, n, site.data(), u.step, cell.data()));
      check(A::uniform_user_search[name](u.n, u.ends, n, site.data(), u.step, guess<Real>, nullptr,
                                         cell.data()));
    }
    // Uniform sites that are the breakpoints.
    auto breakpoints = u.x;
    breakpoints.push_back(static_cast<Real>(u.n - 1) * u.step + u.ends[0]);
    cell.assign(breakpoints.size(), -1);
    expected = u.cells(breakpoints);
    check(task.search({u.ends[0], u.ends[1]}, cell.data(), {.hint = 4, .nsite = u.n}));
  });
}

// Breakpoints are what the caller's rounding makes of them, and so are the cells of a site alone
// and of one among many.
TYPED_TEST(UniformPartitions, CallsOfAnyLengthInEveryRoundingMode) {
  using Real = TypeParam;
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    for_all_partitions<Real>([](const Uniform<Real>& u) {
      auto site = u.sites();
      std::shuffle(site.begin(), site.end(), std::mt19937(3));
      const auto n = static_cast<int64_t>(site.size());
      std::vector<int32_t> all(site.size()), cell(site.size());
      const auto search = [&](int64_t first, int64_t count, std::vector<int32_t>& into) {
        Api<Real>::uniform_search[0](u.n, u.ends, count, site.data() + first, u.step,
                                     into.data() + first);
      };
      search(0, n, all);
      for (int64_t first = 0, count = 0; first < n; first += count) {
        count = std::min(count % 19 + 1, n - first);
        search(first, count, cell);
      }
      const auto expected = u.cells(site);
      EXPECT_EQ(all, expected);
      EXPECT_EQ(cell, expected);
    });
    std::fesetround(FE_TONEAREST);
  }
}

// Sites of one kind, as their callback sees them.
template <class Real>
struct Side {
  Real lowest, highest;
};
template <class Real>
int see_sites(const int64_t* n, const Real* site, const int32_t*, Real* result, void* params,
              void*) {
  const auto& side = *static_cast<const Side<Real>*>(params);
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_TRUE(side.lowest <= site[i] && site[i] <= side.highest);
    result[i] = -5;
  }
  return 0;
}
template <class Real>
int see_limits(const int64_t* n, const Real* l, const Real* u, Real* result, void* params, void*) {
  const auto& side = *static_cast<const Side<Real>*>(params);
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_TRUE(side.lowest <= l[i] && l[i] <= u[i] && u[i] <= side.highest);
    result[i] = 0;
  }
  return 0;
}

// Cell k has the polynomial (k - 1) + t: at a breakpoint t is 0 to the last bit. The step function
// tells the last breakpoint that is not above the site.
TYPED_TEST(UniformPartitions, InterpolationTakesTheDefinedCell) {
  using Real = TypeParam;
  for_all_partitions<Real>([](const Uniform<Real>& u) {
    const size_t cells = u.x.size();
    std::vector<Real> number, c;
    for (size_t i = 0; i <= cells; ++i) {
      number.push_back(static_cast<Real>(i));
      c.insert(c.end(), {static_cast<Real>(i), 1});
    }
    auto site = u.sites();
    site.erase(std::remove_if(site.begin(), site.end(), [](Real s) { return std::isinf(s); }),
               site.end());
    std::vector<Real> value(site.size()), expected;
    const Task<Real> task(u.n, u.ends, QOR_DF_UNIFORM_PARTITION, 1, number.data());
    for (const Real s : site) {
      const size_t k = std::clamp<size_t>(static_cast<size_t>(u.cell(s)), 1, cells) - 1;
      expected.push_back((s - u.x[k]) * 1 + static_cast<Real>(k));
    }
    ASSERT_EQ(task.spline(2, 0, c.data()), 0);
    for (const int64_t hint : {0, int{QOR_DF_SORTED}}) {
      ASSERT_EQ(task.interpolate(site, value.data(), {.hint = hint}), 0);
      EXPECT_EQ(value, expected);
    }
    // What lies between the ends and outside.
    Side<Real> left{-u.inf, std::nextafter(u.ends[0], -u.inf)};
    Side<Real> right{std::nextafter(u.ends[1], u.inf), u.inf}, inside{u.ends[0], u.ends[1]};
    const auto sites = see_sites<Real>;
    ASSERT_EQ(task.interpolate(
                  site, value.data(),
                  {.left = {sites, &left}, .right = {sites, &right}, .inside = {sites, &inside}}),
              0);
    EXPECT_EQ(value, std::vector<Real>(site.size(), -5));
    ASSERT_EQ(task.spline(0, 7, nullptr), 0);
    ASSERT_EQ(task.interpolate(u.x, value.data()), 0);
    for (size_t i = 0; i < cells; ++i)
      EXPECT_EQ(value[i], u.x[i] == u.ends[1] ? cells : u.cell(u.x[i]) - 1);
    // A lookup knows every breakpoint.
    ASSERT_EQ(task.spline(0, 6, nullptr), 0);
    EXPECT_EQ(task.interpolate(u.x, value.data(), {.derivatives = {1}}), 0);
  });
}

// Cells that are none of the sites', and final.
template <class Real>
int lie(const int64_t* n, const Real*, int64_t* cell, int64_t*, void* params, void*) {
  for (int64_t i = 0; i < *n; ++i) cell[i] = i % (*static_cast<int64_t*>(params) + 1);
  return QOR_DF_CELLS_FINAL;
}

// Parts have their limits in order, on their side of the ends, wherever the cells come from.
TYPED_TEST(UniformPartitions, LimitsNeverCross) {
  using Real = TypeParam;
  for_all_partitions<Real>([](const Uniform<Real>& u) {
    const Task<Real> task(u.n, u.ends, QOR_DF_UNIFORM_PARTITION, 1, u.ends, QOR_DF_INTERLEAVED);
    ASSERT_EQ(task.spline(0, 3, nullptr), 0);
    auto l = u.sites(), r = l;
    std::shuffle(r.begin(), r.end(), std::mt19937(3));
    std::vector<Real> result(l.size());
    Side<Real> left{-u.inf, u.ends[0]}, right{u.ends[1], u.inf}, inside{u.ends[0], u.ends[1]};
    const auto limits = see_limits<Real>;
    int64_t cells = u.n;
    for (const auto search : {static_cast<typename Api<Real>::Search>(nullptr), lie<Real>})
      EXPECT_EQ(task.integrate(l, r, result.data(),
                               {.left = {limits, &left},
                                .right = {limits, &right},
                                .inside = {limits, &inside},
                                .search = {search, &cells}}),
                0);
  });
}

}  // namespace
}  // namespace qor::test
