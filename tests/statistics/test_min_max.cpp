// Minimum and maximum against a plain loop over the observations, from what stands there on.

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {
namespace {

template <class Real>
class MinMax : public ::testing::Test {};
TYPED_TEST_SUITE(MinMax, Precisions);

constexpr uint64_t kMin = QOR_SS_ESTIMATE_MIN, kMax = QOR_SS_ESTIMATE_MAX;

// Seeds that the data pass by, or not, and a NaN, which stays.
template <class Real>
std::vector<Real> seeds(size_t variables) {
  const Real all[] = {0, Real(0.5), 100, -100, std::numeric_limits<Real>::quiet_NaN()};
  std::vector<Real> result;
  for (size_t j = 0; j < variables; ++j) result.push_back(all[j % std::size(all)]);
  return result;
}

// Not the bits: which of two zeros stays is not told.
template <class Real>
void expect_values(const std::vector<Real>& values, const std::vector<Real>& wanted) {
  for (size_t j = 0; j < values.size(); ++j) {
    ASSERT_TRUE(values[j] == wanted[j] || (std::isnan(values[j]) && std::isnan(wanted[j])))
        << j << ": " << values[j];
  }
}

// With some of the variables left out or not.
template <class Real>
void expect_extremes(const std::vector<std::vector<Real>>& variables, bool by_variable, bool some,
                     uint64_t asked) {
  const size_t p = variables.size(), n = variables[0].size();
  const auto x = laid_out(variables, by_variable);
  auto min = seeds<Real>(p), max = min, wanted_min = min, wanted_max = min;
  std::vector<int32_t> indices;
  for (size_t j = 0; j < p; ++j) {
    indices.push_back(some && j % 2 == 0 ? 0 : 1);
    if (indices[j] == 0) continue;
    for (const Real v : variables[j]) {
      if ((asked & kMin) != 0 && v < wanted_min[j]) wanted_min[j] = v;
      if ((asked & kMax) != 0 && v > wanted_max[j]) wanted_max[j] = v;
    }
  }
  Task<Real> task(static_cast<int64_t>(p), static_cast<int64_t>(n),
                  by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION, x.data());
  if (some) task.record().indices = indices.data();
  task.set(QOR_SS_MIN, min.data());
  task.set(QOR_SS_MAX, max.data());
  const uint64_t method = by_variable ? QOR_SS_METHOD_FAST : QOR_SS_METHOD_ONE_PASS;
  ASSERT_EQ(Api<Real>::min_max(task, asked, method, nullptr), QOR_SS_OK);
  expect_values(min, wanted_min);
  expect_values(max, wanted_max);
}

TYPED_TEST(MinMax, IsThatOfAPlainLoop) {
  using Real = TypeParam;
  const std::vector<size_t> ps = {1, 2, 3, 5, 8, 31, 32, 33, 64, 100};
  const std::vector<int64_t> ns = {1, 2, 7, 63, 64, 65, 300};
  for (const auto& [p, n] : combinations(ps, ns)) {
    std::vector<std::vector<Real>> variables;
    for (size_t j = 0; j < p; ++j) {
      variables.push_back(pattern_data<Real>(Pattern::random, n, j));
      if (j % 3 != 0) add_specials(variables.back());
    }
    const std::vector<uint64_t> estimates = {kMin, kMax, kMin | kMax};
    for (const auto& c : combinations(kBools, kBools, estimates)) {
      SCOPED_TRACE(::testing::Message() << p << " by " << n << " " << ::testing::PrintToString(c));
      const auto& [by_variable, some, asked] = c;
      expect_extremes(variables, by_variable, some, asked);
    }
  }
}

}  // namespace
}  // namespace qor::test
