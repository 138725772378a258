// Minimum and maximum against a plain loop over the observations, from what stands there on.

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {
namespace {

template <class Real>
class MinMax : public ::testing::Test {};
TYPED_TEST_SUITE(MinMax, Precisions);

TYPED_TEST(MinMax, IsThatOfAPlainLoop) {
  using Real = TypeParam;
  constexpr uint64_t kMin = QOR_SS_ESTIMATE_MIN, kMax = QOR_SS_ESTIMATE_MAX;
  // Values that the data pass by, or not, and a NaN, which stays.
  const Real before[] = {0, Real(0.5), 100, -100, std::numeric_limits<Real>::quiet_NaN()};
  const std::vector<size_t> ps = {1, 2, 3, 5, 8, 31, 32, 33, 64, 100};
  const std::vector<int64_t> ns = {1, 2, 7, 63, 64, 65, 300};
  const std::vector<uint64_t> estimates = {kMin, kMax, kMin | kMax};
  for (const auto& c : combinations(ps, ns, kBools, kBools, estimates)) {
    const auto& [p, n, by_variable, some, asked] = c;
    std::vector<std::vector<Real>> variables;
    std::vector<Real> min, wanted_min, wanted_max;
    std::vector<int32_t> indices;
    for (size_t j = 0; j < p; ++j) {
      variables.push_back(pattern_data<Real>(Pattern::random, n, j));
      if (j % 3 != 0) add_specials(variables[j]);
      indices.push_back(some && j % 2 == 0 ? 0 : 1);
      Real least = before[j % std::size(before)], most = least;
      min.push_back(least);
      for (const Real v : variables[j]) {
        if (indices[j] != 0 && (asked & kMin) != 0 && v < least) least = v;
        if (indices[j] != 0 && (asked & kMax) != 0 && v > most) most = v;
      }
      wanted_min.push_back(least);
      wanted_max.push_back(most);
    }
    std::vector<Real> max = min;
    const auto x = laid_out(variables, by_variable);
    Task<Real> task(static_cast<int64_t>(p), n, storage_word(by_variable), x.data());
    if (some) task.record().indices = indices.data();
    task.set(QOR_SS_MIN, min.data());
    task.set(QOR_SS_MAX, max.data());
    const uint64_t method = by_variable ? QOR_SS_METHOD_FAST : QOR_SS_METHOD_ONE_PASS;
    ASSERT_EQ(Api<Real>::min_max(task, asked, method, nullptr), QOR_SS_OK);
    // Not the bits: which of two zeros stays is not told.
    ASSERT_TRUE(std::equal(min.begin(), min.end(), wanted_min.begin(), same_value<Real>) &&
                std::equal(max.begin(), max.end(), wanted_max.begin(), same_value<Real>))
        << ::testing::PrintToString(c);
  }
}

}  // namespace
}  // namespace qor::test
