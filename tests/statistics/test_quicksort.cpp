// The sorting services: every order, every length round the cut-offs, strides, NaNs.

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"
#include "tests/support/guarded.h"

namespace qor::test {
namespace {

int sort(int64_t n, double* x, int64_t step) { return __ostdQSortStep(n, x, step); }
int sort(int64_t n, float* x, int64_t step) { return __ostsQSortStep(n, x, step); }
int sort(int64_t n, double* x) { return __ostdQSort(n, x); }
int sort(int64_t n, float* x) { return __ostsQSort(n, x); }
double select(int64_t n, double* x, int64_t k) { return __ostdQSortSelect(n, x, k); }
float select(int64_t n, float* x, int64_t k) { return __ostsQSortSelect(n, x, k); }

template <class Real>
class Quicksort : public ::testing::Test {};
TYPED_TEST_SUITE(Quicksort, Precisions);

// Every third value of x.
template <class Real>
std::vector<Real> thirds(std::vector<Real> x) {
  std::vector<Real> spread(3 * x.size(), Real(-5));
  for (size_t i = 0; i < x.size(); ++i) spread[3 * i] = x[i];
  return spread;
}

TYPED_TEST(Quicksort, SortsEveryOrder) {
  using Real = TypeParam;
  std::vector<int64_t> lengths = {100, 1000, 100000};
  for (int64_t n = 0; n < 20; ++n) lengths.push_back(n);
  for (const auto& c : combinations(all_patterns(), lengths)) {
    const auto& [pattern, n] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    auto x = pattern_data<Real>(pattern, n), spread = thirds(x), sorted = in_order(x);
    ASSERT_EQ(sort(n, x.data()), 0);
    ASSERT_EQ(x, sorted);
    ASSERT_EQ(sort(n, spread.data(), 3), 0);
    ASSERT_EQ(spread, thirds(sorted)) << "elements in between stay";
  }
}

TYPED_TEST(Quicksort, SelectsEveryPosition) {
  using Real = TypeParam;
  const std::vector<int64_t> lengths = {1, 2, 3, 4, 9, 50, 3000};
  for (const auto& [pattern, n] : combinations(all_patterns(), lengths)) {
    const auto data = pattern_data<Real>(pattern, n), sorted = in_order(data);
    for (int64_t k = 0; k < n; k += n / 50 + 1) {
      SCOPED_TRACE(::testing::Message() << pattern << " " << n << " at " << k);
      auto x = data;
      Real* const wanted = x.data() + k;
      ASSERT_EQ(select(n, x.data(), k), sorted[static_cast<size_t>(k)]);
      ASSERT_EQ(*wanted, sorted[static_cast<size_t>(k)]);
      ASSERT_LE(*std::max_element(x.data(), wanted + 1), *wanted);
      ASSERT_GE(*std::min_element(wanted, x.data() + n), *wanted);
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
    const auto sorted = in_order(data);
    auto x = data;
    sort(n, x.data());
    EXPECT_EQ(x, sorted);
    for (const int64_t k : {n / 2, n - 1}) {
      x = data;
      EXPECT_EQ(select(n, x.data(), k), sorted[static_cast<size_t>(k)]);
    }
  }
}

// NaNs compare false to everything: no scan may run off, and no element may be lost.
TYPED_TEST(Quicksort, KeepsEveryElementAmongNaNs) {
  using Real = TypeParam;
  constexpr int64_t most = 300;
  Guarded<Real> memory(most);
  for (int64_t n = 1; n <= most; ++n) {
    for (uint64_t seed = 0; seed < 8; ++seed) {
      auto data = pattern_data<Real>(Pattern::random, n, seed);
      std::mt19937_64 bits(seed);
      for (Real& v : data) {
        if (bits() % (seed + 1) == 0) v = std::numeric_limits<Real>::quiet_NaN();
      }
      const auto elements = in_order(data);
      for (Real* const x : {memory.first(), memory.last(data.size())}) {
        std::copy(data.begin(), data.end(), x);
        select(n, x, n / 3);
        ASSERT_TRUE(same_bits(in_order(std::vector<Real>(x, x + n)), elements)) << n;
        std::copy(data.begin(), data.end(), x);
        sort(n, x);
        ASSERT_TRUE(same_bits(in_order(std::vector<Real>(x, x + n)), elements)) << n;
      }
    }
  }
}

}  // namespace
}  // namespace qor::test
