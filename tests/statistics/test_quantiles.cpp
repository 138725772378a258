// Quantiles and order statistics against the sorted values: by selection and by sorting, with the
// same bits, in all layouts, on all teams.

#include <gtest/gtest.h>

#include "tests/fitting/teams.h"
#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {
namespace {

constexpr uint64_t kQuantiles = QOR_SS_ESTIMATE_QUANTILES;
constexpr uint64_t kOrderStatistics = QOR_SS_ESTIMATE_ORDER_STATISTICS;

template <class Real>
class Quantiles : public ::testing::Test {};
TYPED_TEST_SUITE(Quantiles, Precisions);

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
std::vector<Real> some_orders(int64_t count) {
  std::vector<Real> orders = {Real(0.5), 1, Real(0.05), 0, Real(0.95), Real(0.5), Real(0.25)};
  while (static_cast<int64_t>(orders.size()) < count) {
    orders.push_back(std::fmod(static_cast<Real>(orders.size()) * Real(0.37), Real(1)));
  }
  orders.resize(static_cast<size_t>(count));
  return orders;
}

template <class Real>
struct Asked {
  std::vector<Real> orders = {};
  bool by_variable = true;  // of the data
  int sorted = -1;          // order statistics: none, by observation, by variable
  const void* indices = nullptr;
  bool wide = false;
  const ThreadHook* hook = nullptr;
};

template <class Real>
struct Answer {
  int status;
  std::vector<Real> quantiles, order_statistics;
};

template <class Real>
Answer<Real> compute(const std::vector<std::vector<Real>>& variables, const Asked<Real>& asked) {
  const size_t p = variables.size(), n = variables[0].size();
  const auto x = laid_out(variables, asked.by_variable);
  Task<Real> task(static_cast<int64_t>(p), static_cast<int64_t>(n),
                  asked.by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION, x.data(), nullptr,
                  asked.wide);
  if (asked.indices != nullptr) __ostiSSEditTask(task, QOR_SS_INDICES, asked.indices);
  Answer<Real> answer{0, std::vector<Real>(p * asked.orders.size(), Real(-77)), {}};
  uint64_t estimates = 0;
  if (!asked.orders.empty()) {
    estimates |= kQuantiles;
    task.set_number(QOR_SS_QUANTILE_COUNT, static_cast<int64_t>(asked.orders.size()));
    task.set(QOR_SS_QUANTILE_ORDERS, asked.orders.data());
    task.set(QOR_SS_QUANTILES, answer.quantiles.data());
  }
  if (asked.sorted >= 0) {
    estimates |= kOrderStatistics;
    answer.order_statistics.assign(p * n, Real(-77));
    task.set(QOR_SS_ORDER_STATISTICS, answer.order_statistics.data());
    task.set_number(QOR_SS_ORDER_STATISTICS_STORAGE,
                    asked.sorted == 1 ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION);
  }
  answer.status = Api<Real>::quantiles(task, estimates, QOR_SS_METHOD_FAST, asked.hook);
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
      for (const int64_t count : {1, 5, 32, 33, 101}) {
        SCOPED_TRACE(::testing::Message() << name_of(pattern) << " " << n << " " << count);
        const auto orders = some_orders<Real>(count);
        const auto answer = compute<Real>({data}, {.orders = orders});
        ASSERT_EQ(answer.status, QOR_SS_OK);
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
    const auto selected = compute<Real>({data}, {.orders = orders});
    const auto sorted = compute<Real>({data}, {.orders = orders, .sorted = 1});
    EXPECT_TRUE(same_bits(selected.quantiles, sorted.quantiles));
    EXPECT_TRUE(same_bits(sorted.order_statistics, in_order(data)));
  }
  const Real inf = std::numeric_limits<Real>::infinity();
  const auto ends = compute<Real>({{inf, 1, -inf}}, {.orders = {0, Real(0.5), 1, Real(0.75)}});
  EXPECT_EQ(ends.quantiles, (std::vector<Real>{-inf, 1, inf, inf}));
}

TYPED_TEST(Quantiles, AllLayoutsOnAllTeams) {
  using Real = TypeParam;
  const auto orders = some_orders<Real>(6);
  const std::vector<ThreadHook> hooks = test_hooks();
  std::vector<const ThreadHook*> teams = {nullptr};
  for (const ThreadHook& hook : hooks) teams.push_back(&hook);
  for (const size_t p : {1, 6}) {
    std::vector<std::vector<Real>> variables, sorted;
    std::vector<Real> wanted;
    for (size_t j = 0; j < p; ++j) {
      variables.push_back(pattern_data<Real>(Pattern::random, 3000, j));
      sorted.push_back(in_order(variables.back()));
      for (const Real q : interpolated(sorted.back(), orders)) wanted.push_back(q);
    }
    for (const ThreadHook* team : teams) {
      for (const bool by_variable : {false, true}) {
        for (const int kind : {-1, 0, 1}) {
          const auto answer = compute<Real>(
              variables,
              {.orders = orders, .by_variable = by_variable, .sorted = kind, .hook = team});
          ASSERT_EQ(answer.status, QOR_SS_OK);
          ASSERT_TRUE(same_bits(answer.quantiles, wanted));
          if (kind >= 0) {
            ASSERT_TRUE(same_bits(answer.order_statistics, laid_out(sorted, kind == 1)));
            const auto alone = compute<Real>(
                variables, {.by_variable = by_variable, .sorted = kind, .hook = team});
            ASSERT_TRUE(same_bits(alone.order_statistics, answer.order_statistics));
          }
        }
      }
    }
  }
}

TYPED_TEST(Quantiles, SelectedVariablesTakeTheFirstPlaces) {
  using Real = TypeParam;
  std::vector<std::vector<Real>> variables;
  for (size_t j = 0; j < 3; ++j) variables.push_back(pattern_data<Real>(Pattern::random, 20, j));
  const std::vector<Real> orders = {Real(0.25), 1};
  const int32_t narrow[] = {0, 0, 1};
  const int64_t wide[] = {0, 0, int64_t{1} << 32};
  const auto wanted = interpolated(in_order(variables[2]), orders);
  for (const bool is_wide : {false, true}) {
    const auto answer =
        compute<Real>(variables, {.orders = orders,
                                  .sorted = 1,
                                  .indices = is_wide ? static_cast<const void*>(wide) : narrow,
                                  .wide = is_wide});
    EXPECT_EQ(answer.status, QOR_SS_OK);
    EXPECT_TRUE(same_bits(answer.quantiles,
                          {wanted[0], wanted[1], Real(-77), Real(-77), Real(-77), Real(-77)}));
    auto places = in_order(variables[2]);
    places.resize(60, Real(-77));
    EXPECT_TRUE(same_bits(answer.order_statistics, places));
  }
  const int32_t none[] = {0, 0, 0};
  const auto answer = compute<Real>(variables, {.orders = orders, .indices = none});
  EXPECT_EQ(answer.status, QOR_SS_OK);
  EXPECT_EQ(answer.quantiles, std::vector<Real>(6, Real(-77)));
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
    for (const int kind : {-1, 1}) {
      asked = 0;
      ASSERT_EQ(
          compute<Real>(variables, {.orders = {Real(0.5)}, .sorted = kind, .hook = &hook}).status,
          QOR_SS_OK);
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

}  // namespace
}  // namespace qor::test
