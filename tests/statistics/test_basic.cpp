// Every estimate of Basic by every method, layout, weighting and storage, against its definition,
// and the certified data sets.

#include <cmath>
#include <limits>

#include "reference/certified.h"
#include "tests/statistics/estimates.h"

namespace qor::test {
namespace {

constexpr double kUlps = 40;

template <class Real>
class Basic : public ::testing::Test {};
TYPED_TEST_SUITE(Basic, Precisions);

// Sizes around the registers', with and without weights; then what the sums of each give.
TYPED_TEST(Basic, AllTogether) {
  using Real = TypeParam;
  size_t turn = 0;
  for (const auto& c : combinations(std::vector<int64_t>{1, 2, 3, 5, 9, 17}, kBools, kLayouts)) {
    const auto& [p, weighted, layout] = c;
    const auto s = small_sample<Real>(p == 5 ? 301 : 23, p, weighted);
    ++turn;
    for (const uint64_t method : kMethods) {
      SCOPED_TRACE(::testing::PrintToString(c) + " method " + std::to_string(method));
      const Values wanted = exact_values(s, method);
      Asked asked{.method = method, .layout = layout, .storage = kStorages[turn % 3]};
      asked.wide = turn % 2 == 0;
      Results<Real> results = compute(s, asked);
      expect_near(results, wanted, asked, kUlps);
      if (method == kGiven) {
        EXPECT_EQ(results.of(QOR_SS_MEAN), given_means<Real>(p));
      }
      for (size_t e = 0; e < estimate_count; ++e) {
        if ((estimates[e].bit & kSumBits) == 0) results.arrays[e] = Results<Real>(p).arrays[e];
      }
      asked.method = kSums;
      asked.mask = kAll & ~kSumBits;
      expect_near(go_on(s, asked, results), wanted, asked, kUlps);
    }
  }
}

// Each estimate by itself, whatever slots and orders it takes, and all together; in one block, and
// in several with nothing but its own needs to go on from.
TYPED_TEST(Basic, OneByOne) {
  std::vector<uint64_t> masks = {kAll};
  for (const Estimate& estimate : estimates) masks.push_back(estimate.bit);
  for (const auto& c : combinations(kBools, kMethods, kBools)) {
    const auto& [weighted, method, cut] = c;
    const auto s = small_sample<TypeParam>(150, 5, weighted);
    const Values wanted = exact_values(s, method);
    TypeParam weight = 0;
    for (int64_t i = 0; i < s.n; ++i) weight += s.weight(i);
    for (const auto& [storage, mask] : combinations(kStorages, masks)) {
      SCOPED_TRACE(::testing::PrintToString(c) + " mask " + std::to_string(mask));
      Asked asked{.method = method, .mask = mask, .storage = storage};
      // One observation alone has a central moment 2 that is no number, but no central sums; about
      // given means it has, and with their scale they are lost.
      if (cut) asked.cuts = {method == kGiven ? 2 : 1, 3, 70, 71};
      const auto results = compute(s, asked);
      expect_near(results, wanted, asked, cut ? 200 : kUlps);
      EXPECT_EQ(results.weights[0], weight);
    }
  }
}

// Many observations, where kernels run in blocks: all estimates in all layouts.
TYPED_TEST(Basic, LargeData) {
  for (const auto& c : combinations(kBools, kMethods, kLayouts)) {
    const auto& [weighted, method, layout] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    const auto s = small_sample<TypeParam>(30011, 6, weighted);
    const Asked asked{.method = method, .layout = layout, .storage = QOR_SS_MATRIX_UPPER};
    expect_near(compute(s, asked), exact_values(s, method), asked, kUlps);
  }
}

// Without accumulated weights the number of observations counts; moments whose sum is not there are
// taken as they stand.
TYPED_TEST(Basic, FromSumsOfAlone) {
  using Real = TypeParam;
  Task<Real> task(2, 4, QOR_SS_BY_OBSERVATION, std::vector<Real>(8).data());
  Results<Real> results(2);
  results.attach(task, QOR_SS_MATRIX_FULL);
  task.record().accumulated_weights = nullptr;
  results.of(QOR_SS_SUM) = {8, 4};
  results.of(QOR_SS_CENTRAL_SUM_2) = {12, 3};
  results.of(QOR_SS_CP) = {12, 3, 3, 3};
  const uint64_t mask = QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_CENTRAL_2 |
                        QOR_SS_ESTIMATE_VARIATION | QOR_SS_ESTIMATE_CORRELATION;
  ASSERT_EQ(Api<Real>::basic(task, mask, QOR_SS_METHOD_FROM_SUMS_2, nullptr), QOR_SS_OK);
  EXPECT_EQ(results.of(QOR_SS_MEAN), (std::vector<Real>{2, 1}));
  EXPECT_EQ(results.of(QOR_SS_CENTRAL_2)[0], 4);
  EXPECT_EQ(results.of(QOR_SS_VARIATION)[0], 1);
  EXPECT_EQ(results.of(QOR_SS_COR)[0], 4);
  EXPECT_FLOAT_EQ(static_cast<float>(results.of(QOR_SS_COR)[1]), 0.5f);

  task.record().central_sum_2 = task.record().sum = nullptr;
  results.of(QOR_SS_MEAN) = {4, 8};
  results.of(QOR_SS_CENTRAL_2) = {4, 4};
  ASSERT_EQ(Api<Real>::basic(task, QOR_SS_ESTIMATE_VARIATION, kSums, nullptr), QOR_SS_OK);
  EXPECT_EQ(results.of(QOR_SS_VARIATION), (std::vector<Real>{Real(0.5), Real(0.25)}));
}

// Zero variance, opposed infinities, values that overflow when raised: what comes is what the
// formulas give, and nothing of it is reported.
TYPED_TEST(Basic, WithoutNumbers) {
  using Real = TypeParam;
  const Real infinite = std::numeric_limits<Real>::infinity(),
             huge = std::numeric_limits<Real>::max() / 2;
  const Sample<Real> s{3, 3, {1, infinite, huge, 1, 2, huge, 1, 3, huge}};
  for (const uint64_t method : {kOnePass, kFast}) {
    auto results = compute(s, {.method = method,
                               .mask = QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_RAW_2 |
                                       QOR_SS_ESTIMATE_COVARIANCE | QOR_SS_ESTIMATE_CORRELATION});
    EXPECT_EQ(results.of(QOR_SS_MEAN)[0], 1);
    EXPECT_EQ(results.of(QOR_SS_MEAN)[1], infinite);
    EXPECT_EQ(results.of(QOR_SS_RAW_2)[1], infinite);
    EXPECT_EQ(results.of(QOR_SS_RAW_2)[2], infinite);
    EXPECT_EQ(results.of(QOR_SS_COV)[0], 0);
    EXPECT_TRUE(std::isnan(results.of(QOR_SS_COR)[1]));
  }
}

// Means and standard deviations to as many digits as their conditioning lets a double have: the
// mean over the deviation eats the rest, as the data of the last two are not the certified decimals
// but the doubles next to them.
TEST(Certified, OnePass) {
  const double deviation_digits[] = {14.5, 13.2, 15, 14.5, 9.44, 8.2};
  const auto sets = reference::certified_sets(QOR_EXAMPLE_DATA "/strd");
  ASSERT_EQ(sets.size(), std::size(deviation_digits));
  for (size_t i = 0; i < sets.size(); ++i) {
    const auto& [name, y, mean, deviation] = sets[i];
    auto results = compute<double>({static_cast<int64_t>(y.size()), 1, y},
                                   {.mask = QOR_SS_ESTIMATE_CENTRAL_2});
    EXPECT_GE(reference::matching_digits(results.of(QOR_SS_MEAN)[0], mean), 14.5) << name;
    EXPECT_GE(reference::matching_digits(std::sqrt(results.of(QOR_SS_CENTRAL_2)[0]), deviation),
              deviation_digits[i])
        << name;
  }
}

}  // namespace
}  // namespace qor::test
