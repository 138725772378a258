// Minimum and maximum against a plain loop over the observations.

#include <gtest/gtest.h>

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
Real seed_of(size_t variable) {
  const Real seeds[] = {0, Real(0.5), 100, -100, std::numeric_limits<Real>::quiet_NaN()};
  return seeds[variable % std::size(seeds)];
}

TYPED_TEST(MinMax, IsThatOfAPlainLoop) {
  using Real = TypeParam;
  for (const size_t p : {1, 2, 3, 5, 8, 31, 32, 33, 64, 100}) {
    for (const size_t n : {1, 2, 7, 63, 64, 65, 300}) {
      std::vector<std::vector<Real>> variables;
      for (size_t j = 0; j < p; ++j) {
        variables.push_back(pattern_data<Real>(Pattern::random, static_cast<int64_t>(n), j));
        if (j % 3 != 0) add_specials(variables.back());
      }
      for (const bool some : {false, true}) {
        std::vector<int32_t> indices(p, 1);
        for (size_t j = 0; some && j < p; j += 2) indices[j] = 0;
        std::vector<Real> least(p), most(p);
        for (size_t j = 0; j < p; ++j) {
          least[j] = most[j] = seed_of<Real>(j);
          for (size_t i = 0; indices[j] != 0 && i < n; ++i) {
            least[j] = variables[j][i] < least[j] ? variables[j][i] : least[j];
            most[j] = variables[j][i] > most[j] ? variables[j][i] : most[j];
          }
        }
        for (const bool by_variable : {false, true}) {
          for (const uint64_t estimates : {kMin, kMax, kMin | kMax}) {
            SCOPED_TRACE(::testing::Message() << p << " by " << n << " " << some << by_variable
                                              << " estimates " << estimates);
            const auto x = laid_out(variables, by_variable);
            std::vector<Real> min(p), max(p);
            for (size_t j = 0; j < p; ++j) min[j] = max[j] = seed_of<Real>(j);
            const auto untouched = min;
            Task<Real> task(static_cast<int64_t>(p), static_cast<int64_t>(n),
                            by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION, x.data());
            if (some) {
              ASSERT_EQ(__ostiSSEditTask(task, QOR_SS_INDICES, indices.data()), QOR_SS_OK);
            }
            task.set(QOR_SS_MIN, min.data());
            task.set(QOR_SS_MAX, max.data());
            const uint64_t method = by_variable ? QOR_SS_METHOD_FAST : QOR_SS_METHOD_ONE_PASS;
            ASSERT_EQ(Api<Real>::min_max(task, estimates, method, nullptr), QOR_SS_OK);
            const auto& wanted_min = (estimates & kMin) != 0 ? least : untouched;
            const auto& wanted_max = (estimates & kMax) != 0 ? most : untouched;
            // Not the bits: which of two zeros stays is not told.
            for (size_t j = 0; j < p; ++j) {
              const auto agree = [](Real a, Real b) {
                return a == b || (std::isnan(a) && std::isnan(b));
              };
              ASSERT_TRUE(agree(min[j], wanted_min[j])) << j << ": " << min[j];
              ASSERT_TRUE(agree(max[j], wanted_max[j])) << j << ": " << max[j];
            }
          }
        }
      }
    }
  }
}

TYPED_TEST(MinMax, GoesOnFromBlockToBlock) {
  using Real = TypeParam;
  const auto data = pattern_data<Real>(Pattern::zigzag, 900);
  Real min = data[0], max = data[0];
  for (size_t first = 0; first < data.size(); first += 300) {
    Task<Real> task(3, 100, QOR_SS_BY_OBSERVATION, data.data() + first);
    Real least[3] = {min, min, min}, most[3] = {max, max, max};
    task.set(QOR_SS_MIN, least);
    task.set(QOR_SS_MAX, most);
    ASSERT_EQ(Api<Real>::min_max(task, kMin | kMax, QOR_SS_METHOD_FAST, nullptr), QOR_SS_OK);
    min = *std::min_element(least, least + 3);
    max = *std::max_element(most, most + 3);
  }
  EXPECT_EQ(min, *std::min_element(data.begin(), data.end()));
  EXPECT_EQ(max, *std::max_element(data.begin(), data.end()));
}

}  // namespace
}  // namespace qor::test
