// Quantiles, order statistics and sorting against the sorted values: by selection and by sorting,
// with the same bits, in all layouts, on all teams.

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"
#include "tests/support/teams.h"

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

constexpr int kNotSorted = -1;
const std::vector<int> kKinds = {kNotSorted, 0, 1};

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
// sorting, into an output and in place, with the same bits.
template <class Real>
Answer<Real> compute(const std::vector<std::vector<Real>>& variables, const Asked<Real>& asked) {
  const size_t p = variables.size(), n = variables[0].size();
  auto x = laid_out(variables, asked.by_variable);
  const auto untouched = x;
  Answer<Real> answer{std::vector<Real>(p * asked.orders.size(), Real(-77)),
                      std::vector<Real>(p * n, Real(-77))};
  Task<Real> task(static_cast<int64_t>(p), static_cast<int64_t>(n), storage_word(asked.by_variable),
                  x.data(), nullptr, asked.wide);
  task.record().indices = asked.indices;
  task.set_number(QOR_SS_QUANTILE_COUNT, static_cast<int64_t>(asked.orders.size()));
  task.record().quantiles = answer.quantiles.data();
  task.set(QOR_SS_ORDER_STATISTICS, answer.sorted.data());
  task.set_number(QOR_SS_ORDER_STATISTICS_STORAGE, storage_word(asked.sorted == 1));
  task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, storage_word(asked.sorted == 1));
  task.record().quantile_orders = const_cast<Real*>(asked.orders.data());
  const uint64_t quantiles = asked.orders.empty() ? 0 : QOR_SS_ESTIMATE_QUANTILES,
                 sorted = asked.sorted == kNotSorted ? 0 : QOR_SS_ESTIMATE_ORDER_STATISTICS;
  EXPECT_EQ(Api<Real>::quantiles(task, quantiles | sorted, QOR_SS_METHOD_FAST, asked.hook),
            QOR_SS_OK);
  EXPECT_TRUE(same_bits(x, untouched));
  if (asked.sorted == kNotSorted) return answer;
  const auto expect_sorting = [&](std::vector<Real>& output) {
    task.set(QOR_SS_SORTED_OUTPUT, output.data());
    EXPECT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, asked.hook), QOR_SS_OK);
    EXPECT_TRUE(same_bits(output, answer.sorted));
  };
  std::vector<Real> output(p * n, Real(-77));
  expect_sorting(output);
  EXPECT_TRUE(same_bits(x, untouched));
  if (asked.indices == nullptr && asked.by_variable == (asked.sorted == 1)) expect_sorting(x);
  return answer;
}

// Few orders are selected, many read from sorted values; lengths on both sides of sampling.
TYPED_TEST(Quantiles, OfEveryPattern) {
  using Real = TypeParam;
  for (const auto& c : combinations(
           all_patterns(), std::vector<int64_t>{1, 2, 3, 10, 2047, 2048, 40000, 1000000})) {
    const auto& [pattern, n] = c;
    if (n == 1000000 && pattern != Pattern::random && pattern != Pattern::few_values) continue;
    const auto data = pattern_data<Real>(pattern, n), sorted = in_order(data);
    for (const size_t count : {1, 5, 32, 33, 101}) {
      const auto orders = some_orders<Real>(count);
      const auto quantiles = compute<Real>({data}, {.orders = orders}).quantiles;
      ASSERT_TRUE(same_bits(quantiles, interpolated(sorted, orders)))
          << ::testing::PrintToString(c) << " " << count;
    }
  }
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
  for (const size_t p : {1, 6}) {
    std::vector<std::vector<Real>> variables, sorted;
    std::vector<Real> wanted;
    for (size_t j = 0; j < p; ++j) {
      variables.push_back(pattern_data<Real>(Pattern::random, 3000, j));
      sorted.push_back(in_order(variables.back()));
      for (const Real q : interpolated(sorted.back(), orders)) wanted.push_back(q);
    }
    for (const auto& [team, by_variable, kind] : combinations(test_hooks(), kBools, kKinds)) {
      Asked<Real> asked{orders, by_variable, kind, nullptr, false, &team};
      ASSERT_TRUE(same_bits(compute(variables, asked).quantiles, wanted));
      asked.orders.clear();
      if (kind == kNotSorted) continue;
      ASSERT_TRUE(same_bits(compute(variables, asked).sorted, laid_out(sorted, kind == 1)));
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
  for (const auto& [is_wide, kind] : combinations(kBools, kKinds)) {
    Asked<Real> asked{.orders = orders, .sorted = kind, .indices = narrow, .wide = is_wide};
    if (is_wide) asked.indices = wide;
    const auto answer = compute(variables, asked);
    EXPECT_EQ(answer.quantiles, (std::vector<Real>{of_first[0], of_first[1], of_second[0],
                                                   of_second[1], -77, -77, -77, -77}));
    if (kind == kNotSorted) continue;
    EXPECT_TRUE(same_bits(answer.sorted, laid_out<Real>({first, second, rest, rest}, kind == 1)));
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
  for (const auto& [p, kind] : combinations(std::vector<size_t>{1, 3, 4, 9}, kKinds)) {
    const std::vector<std::vector<Real>> variables(p, pattern_data<Real>(Pattern::random, 10));
    asked = 0;
    compute<Real>(variables, {.orders = {Real(0.5)}, .sorted = kind, .hook = &hook});
    EXPECT_EQ(asked, std::min<int64_t>(4, static_cast<int64_t>(p)));
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
  const std::vector<int64_t> lengths = {1, 2, 7, 8, 599, 600, 601, 5000, 70000, 600001};
  for (const auto& c : combinations(all_patterns(), lengths, kBools)) {
    const auto& [pattern, n, specials] = c;
    if (n > 100000 && pattern != Pattern::random && pattern != Pattern::outlier) continue;
    auto x = pattern_data<Real>(pattern, n);
    if (specials) add_specials(x);
    ASSERT_TRUE(same_bits(compute<Real>({x}, {.sorted = 1}).sorted, in_order(x)))
        << ::testing::PrintToString(c);
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
        QOR_SS_NO_MEMORY, [&] { return [&] { return entry(task, estimates, method, nullptr); }; });
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
