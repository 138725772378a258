// The sorting services: every order, every length round the cut-offs, strides, NaNs.

#include <gtest/gtest.h>

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"
#include "tests/support/guarded.h"

namespace qor::test {
namespace {

int sort(int64_t n, double* x) { return __ostdQSort(n, x); }
int sort(int64_t n, float* x) { return __ostsQSort(n, x); }
int sort_step(int64_t n, double* x, int64_t step) { return __ostdQSortStep(n, x, step); }
int sort_step(int64_t n, float* x, int64_t step) { return __ostsQSortStep(n, x, step); }
double select(int64_t n, double* x, int64_t k) { return __ostdQSortSelect(n, x, k); }
float select(int64_t n, float* x, int64_t k) { return __ostsQSortSelect(n, x, k); }

template <class Real>
class Quicksort : public ::testing::Test {};
TYPED_TEST_SUITE(Quicksort, Precisions);

TYPED_TEST(Quicksort, SortsEveryOrder) {
  using Real = TypeParam;
  std::vector<int64_t> lengths = {100, 1000, 100000};
  for (int64_t n = 0; n < 20; ++n) lengths.push_back(n);
  for (const Pattern pattern : all_patterns()) {
    for (const int64_t n : lengths) {
      SCOPED_TRACE(::testing::Message() << name_of(pattern) << " " << n);
      const auto data = pattern_data<Real>(pattern, n);
      auto sorted = data;
      std::sort(sorted.begin(), sorted.end());
      auto x = data;
      ASSERT_EQ(sort(n, x.data()), 0);
      ASSERT_EQ(x, sorted);
      // Elements in between stay.
      const auto stride = static_cast<int64_t>(3);
      std::vector<Real> spread(static_cast<size_t>(n * stride), Real(-5));
      for (int64_t i = 0; i < n; ++i)
        spread[static_cast<size_t>(i * stride)] = data[static_cast<size_t>(i)];
      ASSERT_EQ(sort_step(n, spread.data(), stride), 0);
      for (int64_t i = 0; i < n * stride; ++i) {
        ASSERT_EQ(spread[static_cast<size_t>(i)],
                  i % stride == 0 ? sorted[static_cast<size_t>(i / stride)] : Real(-5));
      }
    }
  }
}

TYPED_TEST(Quicksort, SelectsEveryPosition) {
  using Real = TypeParam;
  for (const Pattern pattern : all_patterns()) {
    for (const int64_t n : {1, 2, 3, 4, 9, 50, 3000}) {
      const auto data = pattern_data<Real>(pattern, n);
      auto sorted = data;
      std::sort(sorted.begin(), sorted.end());
      for (int64_t k = 0; k < n; k += n / 50 + 1) {
        SCOPED_TRACE(::testing::Message() << name_of(pattern) << " " << n << " at " << k);
        auto x = data;
        ASSERT_EQ(select(n, x.data(), k), sorted[static_cast<size_t>(k)]);
        ASSERT_EQ(x[static_cast<size_t>(k)], sorted[static_cast<size_t>(k)]);
        ASSERT_LE(*std::max_element(x.data(), x.data() + k + 1), x[static_cast<size_t>(k)]);
        ASSERT_GE(*std::min_element(x.data() + k, x.data() + n), x[static_cast<size_t>(k)]);
      }
    }
  }
  Real none = 3;
  EXPECT_TRUE(std::isnan(select(0, &none, 0)));
  EXPECT_TRUE(std::isnan(select(1, &none, 1)));
  EXPECT_TRUE(std::isnan(select(1, &none, -1)));
}

// Median-of-three killer (Musser, 1997): without a way out, a million elements take minutes.
TYPED_TEST(Quicksort, NoOrderTakesQuadraticTime) {
  using Real = TypeParam;
  constexpr int64_t n = 1 << 20;
  std::vector<Real> killer(n);
  for (int64_t i = 0; i < n / 2; ++i) {
    killer[static_cast<size_t>(i)] = static_cast<Real>(i % 2 == 0 ? i : i + n / 2);
    killer[static_cast<size_t>(n / 2 + i)] = static_cast<Real>(2 * i + 1);
  }
  for (const auto& data : {killer, pattern_data<Real>(Pattern::organ_pipe, n)}) {
    auto sorted = data;
    std::sort(sorted.begin(), sorted.end());
    auto x = data;
    sort(n, x.data());
    EXPECT_EQ(x, sorted);
    x = data;
    EXPECT_EQ(select(n, x.data(), n / 2), sorted[n / 2]);
    x = data;
    EXPECT_EQ(select(n, x.data(), n - 1), sorted[n - 1]);
  }
}

// NaNs compare false to everything: no scan may run off, and no element may be lost.
TYPED_TEST(Quicksort, KeepsEveryElementAmongNaNs) {
  using Real = TypeParam;
  constexpr size_t most = 300;
  Guarded<Real> memory(most);
  const auto by_bits = [](Real a, Real b) { return std::memcmp(&a, &b, sizeof a) < 0; };
  for (size_t n = 1; n <= most; ++n) {
    for (uint64_t seed = 0; seed < 8; ++seed) {
      auto data = pattern_data<Real>(Pattern::random, static_cast<int64_t>(n), seed);
      std::mt19937_64 bits(seed);
      for (Real& v : data) {
        if (bits() % (seed + 1) == 0) v = std::numeric_limits<Real>::quiet_NaN();
      }
      for (const bool at_end : {false, true}) {
        Real* x = at_end ? memory.last(n) : memory.first();
        for (const bool selecting : {false, true}) {
          std::copy(data.begin(), data.end(), x);
          if (selecting) {
            select(static_cast<int64_t>(n), x, static_cast<int64_t>(n / 3));
          } else {
            sort(static_cast<int64_t>(n), x);
          }
          std::vector<Real> after(x, x + n), before = data;
          std::sort(after.begin(), after.end(), by_bits);
          std::sort(before.begin(), before.end(), by_bits);
          ASSERT_TRUE(same_bits(after, before)) << n << " seed " << seed;
        }
      }
    }
  }
}

}  // namespace
}  // namespace qor::test
