// Every estimate of Basic by every method, layout, weighting and storage, against its definition.

#include <cmath>
#include <limits>

#include "tests/statistics/estimates.h"

namespace qor::test {
namespace {

constexpr double kUlps = 40;

// Sums that the estimates from sums are made of.
constexpr uint64_t kSumBits = QOR_SS_ESTIMATE_SUM | QOR_SS_ESTIMATE_RAW_SUM_2 |
                              QOR_SS_ESTIMATE_RAW_SUM_3 | QOR_SS_ESTIMATE_RAW_SUM_4 |
                              QOR_SS_ESTIMATE_CENTRAL_SUM_2 | QOR_SS_ESTIMATE_CENTRAL_SUM_3 |
                              QOR_SS_ESTIMATE_CENTRAL_SUM_4 | QOR_SS_ESTIMATE_CP;

template <class Real>
class Basic : public ::testing::Test {};
TYPED_TEST_SUITE(Basic, Precisions);

// By all methods over data, and what their sums then give.
template <class Real>
void expect_all_methods(const Sample<Real>& s, Asked asked) {
  for (const uint64_t method : kDataMethods) {
    SCOPED_TRACE(::testing::Message() << "method " << method);
    const Values wanted = reference(s, method);
    asked.method = method;
    asked.mask = kAll;
    Results<Real> results = compute(s, asked);
    expect_near(results, wanted, asked, kUlps);
    if (method == kGiven) {
      EXPECT_EQ(results.of(QOR_SS_MEAN), given_means<Real>(s.p));
    }
    for (size_t e = 0; e < estimate_count; ++e) {
      if ((estimates[e].bit & kSumBits) == 0) results.arrays[e] = Results<Real>(s.p).arrays[e];
    }
    asked.method = kSums;
    asked.mask = kAll & ~kSumBits;
    expect_near(go_on(s, asked, results), wanted, asked, kUlps);
  }
}

// Sizes around the registers', with and without weights.
TYPED_TEST(Basic, AllTogether) {
  int turn = 0;
  for (const int64_t p : {1, 2, 3, 5, 9, 17}) {
    for (const bool weighted : {false, true}) {
      const auto sample = small_sample<TypeParam>(p == 5 ? 301 : 23, p, weighted);
      for (const int64_t layout : kLayouts) {
        const int64_t storage = kStorages[turn % 3];
        SCOPED_TRACE(::testing::Message() << "p " << p << " weighted " << weighted << " layout "
                                          << layout << " storage " << storage);
        const bool wide = turn++ % 2 == 1;
        expect_all_methods(sample, {.layout = layout, .storage = storage, .wide = wide});
      }
    }
  }
}

// Each estimate by itself, whatever slots and orders it takes, and all together; in one block, and
// in several with nothing but its own needs to go on from.
TYPED_TEST(Basic, OneByOne) {
  std::vector<uint64_t> masks = {kAll};
  for (const Estimate& estimate : estimates) masks.push_back(estimate.bit);
  for (const bool weighted : {false, true}) {
    const auto s = small_sample<TypeParam>(150, 5, weighted);
    TypeParam weight = 0;
    for (int64_t i = 0; i < s.n; ++i) weight += static_cast<TypeParam>(s.weight(i));
    for (const uint64_t method : kDataMethods) {
      const Values wanted = reference(s, method);
      // One observation alone has a central moment 2 that is no number, but no central sums; about
      // given means it has, and with their scale they are lost.
      const int64_t first = method == kGiven ? 2 : 1;
      for (const auto& cuts : {std::vector<int64_t>{}, {first, first + 1, 70, 71}}) {
        for (const int64_t storage : kStorages) {
          for (const uint64_t mask : masks) {
            SCOPED_TRACE(::testing::Message() << "weighted " << weighted << " storage " << storage
                                              << " method " << method << " mask " << mask);
            const Asked asked{.method = method, .mask = mask, .storage = storage, .cuts = cuts};
            const auto results = compute(s, asked);
            expect_near(results, wanted, asked, cuts.empty() ? kUlps : 200);
            EXPECT_EQ(results.weights[0], weight);
          }
        }
      }
    }
  }
}

// Many observations, where kernels run in blocks: all estimates in all layouts.
TYPED_TEST(Basic, LargeData) {
  for (const bool weighted : {false, true}) {
    const auto s = small_sample<TypeParam>(30011, 6, weighted);
    for (const uint64_t method : kDataMethods) {
      const Values wanted = reference(s, method);
      for (const int64_t layout : kLayouts) {
        SCOPED_TRACE(::testing::Message()
                     << "weighted " << weighted << " layout " << layout << " method " << method);
        const Asked asked{.method = method, .layout = layout, .storage = QOR_SS_MATRIX_UPPER};
        expect_near(compute(s, asked), wanted, asked, kUlps);
      }
    }
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

}  // namespace
}  // namespace qor::test
