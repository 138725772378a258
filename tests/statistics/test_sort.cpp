// Sorting of variables: the order of the bits, all layouts, in place, on teams.

#include <gtest/gtest.h>

#include "tests/fitting/teams.h"
#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {
namespace {

template <class Real>
class Sort : public ::testing::Test {};
TYPED_TEST_SUITE(Sort, Precisions);

int64_t storage_word(bool by_variable) {
  return by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION;
}

template <class Real>
void sort_one(std::vector<Real> x, std::vector<Real>& sorted) {
  sorted.assign(x.size(), 0);
  Task<Real> task(1, static_cast<int64_t>(x.size()), QOR_SS_BY_VARIABLE, x.data(), nullptr, true);
  task.set(QOR_SS_SORTED_OUTPUT, sorted.data());
  task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, QOR_SS_BY_VARIABLE);
  ASSERT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, nullptr), QOR_SS_OK);
}

// Lengths on both sides of the ways of sorting, up to data that are written past the caches.
TYPED_TEST(Sort, OrdersTheBits) {
  using Real = TypeParam;
  for (const Pattern pattern : all_patterns()) {
    for (const int64_t n : {1, 2, 7, 8, 599, 600, 601, 5000, 70000, 600001}) {
      if (n > 100000 && pattern != Pattern::random && pattern != Pattern::outlier) continue;
      for (const bool specials : {false, true}) {
        SCOPED_TRACE(::testing::Message() << name_of(pattern) << " " << n << " " << specials);
        auto x = pattern_data<Real>(pattern, n);
        if (specials) add_specials(x);
        std::vector<Real> sorted;
        sort_one(x, sorted);
        ASSERT_TRUE(same_bits(sorted, in_order(x)));
      }
    }
  }
}

// Keys that differ in a few bits only: passes fall away, in any number.
TYPED_TEST(Sort, SkipsWhatDoesNotVary) {
  using Real = TypeParam;
  using Bits = std::conditional_t<sizeof(Real) == 8, uint64_t, uint32_t>;
  constexpr int64_t n = 3000;
  for (const Bits mask :
       {Bits{1}, Bits{0x7FF}, Bits{0x800}, Bits{0x3FF801}, Bits{0x400001},
        static_cast<Bits>(0x000F000000000001ull), static_cast<Bits>(~Bits{0} >> 12),
        static_cast<Bits>(0x8000000100000100ull)}) {
    std::mt19937_64 bits(3);
    std::vector<Real> x(n), sorted;
    for (Real& v : x) {
      const Bits pattern = static_cast<Bits>(bits()) & mask;
      std::memcpy(&v, &pattern, sizeof v);
    }
    sort_one(x, sorted);
    ASSERT_TRUE(same_bits(sorted, in_order(x))) << std::hex << mask;
  }
}

TYPED_TEST(Sort, AllLayoutsOnAllTeams) {
  using Real = TypeParam;
  constexpr size_t p = 5, n = 700;
  std::vector<std::vector<Real>> variables, sorted;
  for (size_t j = 0; j < p; ++j) {
    variables.push_back(pattern_data<Real>(Pattern::random, n, j));
    add_specials(variables.back());
    sorted.push_back(in_order(variables.back()));
  }
  std::vector<ThreadHook> hooks = test_hooks();
  std::vector<const ThreadHook*> teams = {nullptr};
  for (const ThreadHook& hook : hooks) teams.push_back(&hook);
  for (const ThreadHook* team : teams) {
    for (const bool from : {false, true}) {
      for (const bool to : {false, true}) {
        const auto x = laid_out(variables, from);
        const auto untouched = x;
        std::vector<Real> output(p * n, Real(5));
        Task<Real> task(p, n, storage_word(from), x.data());
        task.set(QOR_SS_SORTED_OUTPUT, output.data());
        task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, storage_word(to));
        ASSERT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, team), QOR_SS_OK);
        ASSERT_TRUE(same_bits(output, laid_out(sorted, to)));
        ASSERT_TRUE(same_bits(x, untouched));
      }
      auto x = laid_out(variables, from);
      Task<Real> task(p, n, storage_word(from), x.data());
      task.set(QOR_SS_SORTED_OUTPUT, x.data());
      task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, storage_word(from));
      ASSERT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, team), QOR_SS_OK);
      ASSERT_TRUE(same_bits(x, laid_out(sorted, from)));
    }
  }
}

// Items are the variables taking part: their places come first, and what lies beyond stays.
TYPED_TEST(Sort, SelectedVariablesTakeTheFirstPlaces) {
  using Real = TypeParam;
  constexpr size_t p = 4, n = 50;
  std::vector<std::vector<Real>> variables;
  for (size_t j = 0; j < p; ++j) variables.push_back(pattern_data<Real>(Pattern::random, n, j));
  const int64_t wide[p] = {0, 3, 0, int64_t{1} << 40};
  const int32_t narrow[p] = {0, 3, 0, -1};
  for (const bool is_wide : {false, true}) {
    for (const bool to : {false, true}) {
      const auto x = laid_out(variables, true);
      std::vector<Real> output(p * n, Real(5));
      Task<Real> task(p, n, QOR_SS_BY_VARIABLE, x.data(), nullptr, is_wide);
      const void* indices = is_wide ? static_cast<const void*>(wide) : narrow;
      ASSERT_EQ(__ostiSSEditTask(task, QOR_SS_INDICES, indices), QOR_SS_OK);
      task.set(QOR_SS_SORTED_OUTPUT, output.data());
      task.set_number(QOR_SS_SORTED_OUTPUT_STORAGE, storage_word(to));
      ASSERT_EQ(Api<Real>::sort(task, 0, QOR_SS_METHOD_SORT, nullptr), QOR_SS_OK);
      const std::vector<Real> rest(n, Real(5));
      const std::vector<std::vector<Real>> wanted = {in_order(variables[1]), in_order(variables[3]),
                                                     rest, rest};
      EXPECT_TRUE(same_bits(output, laid_out(wanted, to)));
    }
  }
}

}  // namespace
}  // namespace qor::test
