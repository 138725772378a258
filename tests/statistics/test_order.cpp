// Quantiles, order statistics and sorting against the sorted values: by selection and by sorting,
// with the same bits, in all layouts, on all teams.

#include "tests/fitting/teams.h"
#include "tests/statistics/allocation.h"
#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {
namespace {

template <class Real>
class Quantiles : public ::testing::Test {};
template <class Real>
class Sort : public ::testing::Test {};
TYPED_TEST_SUITE(Quantiles, Precisions);
TYPED_TEST_SUITE(Sort, Precisions);
TYPED_TEST_SUITE(OrderAllocation, Precisions);

// In the arithmetic of the precision, as lengths here are below 2^24.
template <class Real>
std::vector<Real> interpolated(const std::vector<Real>& sorted, const std::vector<Real>& orders) {
  std::vector<Real> quantiles;
  for (const Real q : orders) {
    const Real place = q * static_cast<Real>(sorted.size() - 1);
    const auto low = static_cast<size_t>(place);
    const Real part = place - static_cast<Real>(low);
    const Real next = sorted[std::min(low + 1, sorted.size() - 1)];
    quantiles.push_back(part == 0 ? sorted[low] : (1 - part) * sorted[low] + part * next);
  }
  return quantiles;
}

// Not sorted, with repeats and both ends.
template <class Real>
std::vector<Real> some_orders(size_t count) {
  std::vector<Real> orders = {Real(0.5), 1, Real(0.05), 0, Real(0.95), Real(0.5), Real(0.25)};
  while (orders.size() < count) {
    orders.push_back(std::fmod(static_cast<Real>(orders.size()) * Real(0.37), Real(1)));
  }
  orders.resize(count);
  return orders;
}

int64_t storage_word(bool by_variable) {
  return by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION;
}

constexpr int kNotSorted = -1;

template <class Real>
struct Asked {
  std::vector<Real> orders = {};
  bool by_variable = true;  // of the data
  int sorted = kNotSorted;  // the sorted values: none, by observation, by variable
  const void* indices = nullptr;
  bool wide = false;
  const ThreadHook* hook = nullptr;
};

template <class Real>
struct Answer {
  std::vector<Real> quantiles, sorted;
};

// What is asked of variables. Sorted values come from the entry for quantiles and from that for
// sorting, with the same bits.
template <class Real>
Answer<Real> compute(const std::vector<std::vector<Real>>& variables, const Asked<Real>& asked) {
  const size_t p = variables.size(), n = variables[0].size();
  const auto x = laid_out(variables, asked.by_variable), untouched = x;
  Task<Real> task(static_cast<int64_t>(p), static_cast<int64_t>(n), storage_word(asked.by_variable),
                  x.data(), nullptr, asked.wide);
  task.record().indices = asked.indices;
  Answer<Real> answer{std::vector<Real>(p * asked.orders.size(), Real(-77)), {}};
  uint64_t estimates = 0;
  if (!asked.orders.empty()) {
    estimates |= QOR_SS_ESTIMATE_QUANTILES;
    task.set_number(QOR_SS_QUANTILE_COUNT, static_cast<int64_t>(asked.orders.size()));
    task.set(QOR_SS_QUANTILE_ORDERS, asked.orders.data());
    task.set(QOR_SS_QUANTILES, answer.quantiles.data());
  }
  if (asked.sorted != kNotSorted) {
    estimates |= QOR_SS_ESTIMATE_ORDER_STATISTICS;
    answer.sorted.assign(p * n, Real(-77));
    auto output = answer.sorted;
    task.set(QOR_SS_ORDER_STATISTICS, answer.sorted.data());
    task.set_number(QOR_SS_ORDER_STATISTICS_STORAGE, storage_word(asked.sorted == 1));
    task.set(QOR_SS_SORTED_OUTPUT, output.data());
    task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, storage_word(asked.sorted == 1));
    EXPECT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, asked.hook), QOR_SS_OK);
    EXPECT_EQ(Api<Real>::quantiles(task, estimates, QOR_SS_METHOD_FAST, asked.hook), QOR_SS_OK);
    EXPECT_TRUE(same_bits(answer.sorted, output));
  } else {
    EXPECT_EQ(Api<Real>::quantiles(task, estimates, QOR_SS_METHOD_FAST, asked.hook), QOR_SS_OK);
  }
  EXPECT_TRUE(same_bits(x, untouched));
  return answer;
}

// Few orders are selected, many read from sorted values; lengths on both sides of sampling.
TYPED_TEST(Quantiles, OfEveryPattern) {
  using Real = TypeParam;
  for (const Pattern pattern : all_patterns()) {
    for (const int64_t n : {1, 2, 3, 10, 2047, 2048, 40000, 1000000}) {
      if (n == 1000000 && pattern != Pattern::random && pattern != Pattern::few_values) continue;
      const auto data = pattern_data<Real>(pattern, n);
      const auto sorted = in_order(data);
      for (const size_t count : {1, 5, 32, 33, 101}) {
        SCOPED_TRACE(::testing::Message() << pattern << " " << n << " " << count);
        const auto orders = some_orders<Real>(count);
        const auto answer = compute<Real>({data}, {.orders = orders});
        ASSERT_TRUE(same_bits(answer.quantiles, interpolated(sorted, orders)));
      }
    }
  }
}

// A sample that misleads: what stands at the places looked at says nothing about the rest.
TYPED_TEST(Quantiles, OfASampleThatMisleads) {
  using Real = TypeParam;
  constexpr int64_t n = 50000;
  auto data = pattern_data<Real>(Pattern::random, n);
  for (int64_t i = 0; i < n / 16; ++i) {
    const auto jitter = static_cast<int64_t>((static_cast<uint32_t>(i) * 0x9E3779B9u) >> 28);
    data[static_cast<size_t>(16 * i + jitter)] = i % 2 == 0 ? Real(1000) : Real(1001);
  }
  const auto orders = some_orders<Real>(7);
  EXPECT_TRUE(same_bits(compute<Real>({data}, {.orders = orders}).quantiles,
                        interpolated(in_order(data), orders)));
}

// NaNs count as the values at the ends that sorting makes of them; both ways agree to the bit.
TYPED_TEST(Quantiles, OfSpecialValues) {
  using Real = TypeParam;
  for (const int64_t n : {30, 5000}) {
    auto data = pattern_data<Real>(Pattern::random, n);
    add_specials(data);
    const auto orders = some_orders<Real>(9);
    EXPECT_TRUE(same_bits(compute<Real>({data}, {.orders = orders}).quantiles,
                          compute<Real>({data}, {.orders = orders, .sorted = 1}).quantiles));
  }
  const Real inf = std::numeric_limits<Real>::infinity();
  const auto ends = compute<Real>({{inf, 1, -inf}}, {.orders = {0, Real(0.5), 1, Real(0.75)}});
  EXPECT_EQ(ends.quantiles, (std::vector<Real>{-inf, 1, inf, inf}));
}

TYPED_TEST(Quantiles, AllLayoutsOnAllTeams) {
  using Real = TypeParam;
  const auto orders = some_orders<Real>(6);
  for (const ThreadHook& team : test_hooks()) {
    for (const size_t p : {1, 6}) {
      std::vector<std::vector<Real>> variables, sorted;
      std::vector<Real> wanted;
      for (size_t j = 0; j < p; ++j) {
        variables.push_back(pattern_data<Real>(Pattern::random, 3000, j));
        sorted.push_back(in_order(variables.back()));
        for (const Real q : interpolated(sorted.back(), orders)) wanted.push_back(q);
      }
      for (const bool by_variable : {false, true}) {
        for (const int kind : {kNotSorted, 0, 1}) {
          Asked<Real> asked{
              .orders = orders, .by_variable = by_variable, .sorted = kind, .hook = &team};
          ASSERT_TRUE(same_bits(compute(variables, asked).quantiles, wanted));
          if (kind == kNotSorted) continue;
          asked.orders = {};
          ASSERT_TRUE(same_bits(compute(variables, asked).sorted, laid_out(sorted, kind == 1)));
        }
      }
    }
  }
}

// Items are the variables taking part: their places come first, and what lies beyond stays.
TYPED_TEST(Quantiles, SelectedVariablesTakeTheFirstPlaces) {
  using Real = TypeParam;
  std::vector<std::vector<Real>> variables;
  for (size_t j = 0; j < 4; ++j) variables.push_back(pattern_data<Real>(Pattern::random, 20, j));
  const std::vector<Real> orders = {Real(0.25), 1};
  const std::vector<Real> first = in_order(variables[1]), second = in_order(variables[3]),
                          rest(20, Real(-77));
  const auto of_first = interpolated(first, orders), of_second = interpolated(second, orders);
  const int32_t narrow[] = {0, 3, 0, -1}, none[] = {0, 0, 0, 0};
  const int64_t wide[] = {0, 3, 0, int64_t{1} << 32};
  for (const bool is_wide : {false, true}) {
    for (const int kind : {kNotSorted, 0, 1}) {
      Asked<Real> asked{.orders = orders, .sorted = kind, .indices = narrow, .wide = is_wide};
      if (is_wide) asked.indices = wide;
      const auto answer = compute(variables, asked);
      EXPECT_EQ(answer.quantiles, (std::vector<Real>{of_first[0], of_first[1], of_second[0],
                                                     of_second[1], -77, -77, -77, -77}));
      if (kind == kNotSorted) continue;
      EXPECT_TRUE(same_bits(answer.sorted, laid_out<Real>({first, second, rest, rest}, kind == 1)));
    }
  }
  const auto answer = compute(variables, {.orders = orders, .sorted = 1, .indices = none});
  EXPECT_EQ(answer.quantiles, std::vector<Real>(8, Real(-77)));
}

TYPED_TEST(Quantiles, AskForAsManyThreadsAsThereIsWork) {
  using Real = TypeParam;
  static int64_t asked;
  const ThreadHook hook =
      hook_of<4>([](int64_t items, int64_t threads, void* context, qor_item_routine routine) {
        asked = threads;
        run_in_reverse(items, threads, context, routine);
      });
  for (const size_t p : {1, 3, 4, 9}) {
    const std::vector<std::vector<Real>> variables(p, pattern_data<Real>(Pattern::random, 10));
    for (const int kind : {kNotSorted, 1}) {
      asked = 0;
      compute<Real>(variables, {.orders = {Real(0.5)}, .sorted = kind, .hook = &hook});
      EXPECT_EQ(asked, std::min<int64_t>(4, static_cast<int64_t>(p)));
    }
  }
}

// A place beyond what single precision counts: the ends are still the ends.
TEST(QuantilesOfFloats, ReachTheEndsOfLongData) {
  std::vector<float> x((size_t{1} << 24) + 3);
  for (size_t i = 0; i < x.size(); ++i) x[i] = i % 2 == 0 ? 1.0f : 2.0f;
  x[5] = -3;
  x[x.size() - 2] = 9;
  const auto answer = compute<float>({x}, {.orders = {0, 1, 0.5f}});
  EXPECT_EQ(answer.quantiles, (std::vector<float>{-3, 9, 1}));
}

// Lengths on both sides of the ways of sorting, up to data that are written past the caches.
TYPED_TEST(Sort, OrdersTheBits) {
  using Real = TypeParam;
  for (const Pattern pattern : all_patterns()) {
    for (const int64_t n : {1, 2, 7, 8, 599, 600, 601, 5000, 70000, 600001}) {
      if (n > 100000 && pattern != Pattern::random && pattern != Pattern::outlier) continue;
      for (const bool specials : {false, true}) {
        SCOPED_TRACE(::testing::Message() << pattern << " " << n << " " << specials);
        auto x = pattern_data<Real>(pattern, n);
        if (specials) add_specials(x);
        ASSERT_TRUE(same_bits(compute<Real>({x}, {.sorted = 1}).sorted, in_order(x)));
      }
    }
  }
}

// Keys that differ in a few bits only: passes fall away, in any number.
TYPED_TEST(Sort, SkipsWhatDoesNotVary) {
  using Real = TypeParam;
  using Bits = std::conditional_t<sizeof(Real) == 8, uint64_t, uint32_t>;
  for (const Bits mask :
       {Bits{1}, Bits{0x7FF}, Bits{0x800}, Bits{0x3FF801}, Bits{0x400001},
        static_cast<Bits>(0x000F000000000001ull), static_cast<Bits>(~Bits{0} >> 12),
        static_cast<Bits>(0x8000000100000100ull)}) {
    std::mt19937_64 bits(3);
    std::vector<Real> x(3000);
    for (Real& v : x) v = std::bit_cast<Real>(static_cast<Bits>(bits() & mask));
    ASSERT_TRUE(same_bits(compute<Real>({x}, {.sorted = 1}).sorted, in_order(x))) << mask;
  }
}

TYPED_TEST(Sort, InPlaceOnAllTeams) {
  using Real = TypeParam;
  constexpr size_t p = 5, n = 700;
  std::vector<std::vector<Real>> variables, sorted;
  for (size_t j = 0; j < p; ++j) {
    variables.push_back(pattern_data<Real>(Pattern::random, n, j));
    add_specials(variables.back());
    sorted.push_back(in_order(variables.back()));
  }
  for (const ThreadHook& team : test_hooks()) {
    for (const bool by_variable : {false, true}) {
      auto x = laid_out(variables, by_variable);
      Task<Real> task(p, n, storage_word(by_variable), x.data());
      task.set(QOR_SS_SORTED_OUTPUT, x.data());
      task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, storage_word(by_variable));
      ASSERT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, &team), QOR_SS_OK);
      ASSERT_TRUE(same_bits(x, laid_out(sorted, by_variable)));
    }
  }
}

TYPED_TEST(OrderAllocation, OfEstimators) {
  using Real = TypeParam;
  using A = Api<Real>;
  const auto x = pattern_data<Real>(Pattern::random, 300);
  const Real orders[2] = {0, 1};
  Real results[300] = {};
  const int32_t indices[3] = {1, 0, 1};
  Task<Real> task(3, 100, QOR_SS_BY_OBSERVATION, x.data());
  task.set_number(QOR_SS_QUANTILE_COUNT, 2);
  task.set(QOR_SS_QUANTILE_ORDERS, orders);
  for (const int64_t code :
       {QOR_SS_QUANTILES, QOR_SS_ORDER_STATISTICS, QOR_SS_SORTED_OUTPUT, QOR_SS_MIN, QOR_SS_MAX}) {
    task.set(code, results);
  }
  task.set_number(QOR_SS_ORDER_STATISTICS_STORAGE, QOR_SS_BY_OBSERVATION);
  task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, QOR_SS_BY_OBSERVATION);
  const auto failures = [&](auto entry, uint64_t estimates, uint64_t method) {
    return failures_survived(
        [&] { return [&] { return entry(task, estimates, method, nullptr); }; });
  };
  const uint64_t extremes = QOR_SS_ESTIMATE_MIN | QOR_SS_ESTIMATE_MAX;
  EXPECT_EQ(failures(A::min_max, extremes, QOR_SS_METHOD_FAST), 0);
  task.record().indices = indices;
  EXPECT_EQ(failures(A::min_max, extremes, QOR_SS_METHOD_FAST), 1);
  EXPECT_EQ(failures(A::quantiles, QOR_SS_ESTIMATE_QUANTILES, QOR_SS_METHOD_FAST), 2);
  EXPECT_EQ(failures(A::quantiles, QOR_SS_ESTIMATE_ORDER_STATISTICS, QOR_SS_METHOD_FAST), 2);
  EXPECT_EQ(failures(A::sort, 0, QOR_SS_METHOD_SORT), 2);
}

}  // namespace
}  // namespace qor::test
