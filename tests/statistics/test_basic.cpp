// Every estimate of Basic by every method, layout, weighting and storage, against exact arithmetic.

#include <cmath>
#include <limits>

#include "tests/statistics/estimates.h"

namespace qor::test {
namespace {

constexpr int64_t kLayouts[] = {QOR_SS_BY_VARIABLE, QOR_SS_BY_OBSERVATION};
constexpr int64_t kStorages[] = {QOR_SS_MATRIX_FULL, QOR_SS_MATRIX_LOWER, QOR_SS_MATRIX_UPPER};
constexpr double kUlps = 40;

// Sums that the estimates from sums are made of.
constexpr uint64_t kSumBits = QOR_SS_ESTIMATE_SUM | QOR_SS_ESTIMATE_RAW_SUM_2 |
                              QOR_SS_ESTIMATE_RAW_SUM_3 | QOR_SS_ESTIMATE_RAW_SUM_4 |
                              QOR_SS_ESTIMATE_CENTRAL_SUM_2 | QOR_SS_ESTIMATE_CENTRAL_SUM_3 |
                              QOR_SS_ESTIMATE_CENTRAL_SUM_4 | QOR_SS_ESTIMATE_CP;

template <class Real>
class Basic : public ::testing::Test {};
TYPED_TEST_SUITE(Basic, Precisions);

// Calls use(sample, layout, storage, wide) for all that there are: sizes around the registers',
// with and without weights.
template <class Real, class Use>
void for_all_forms(Use use) {
  int turn = 0;
  for (const int64_t p : {1, 2, 3, 5, 9, 17}) {
    for (const bool weighted : {false, true}) {
      for (const int64_t layout : kLayouts) {
        const auto sample = small_sample<Real>(p == 5 ? 301 : 23, p, weighted);
        const int64_t storage = kStorages[turn % 3];
        SCOPED_TRACE(::testing::Message() << "p " << p << " weighted " << weighted << " layout "
                                          << layout << " storage " << storage);
        use(sample, layout, storage, turn++ % 2 == 1);
      }
    }
  }
}

TYPED_TEST(Basic, AllTogether) {
  using Real = TypeParam;
  for_all_forms<Real>([](const Sample<Real>& s, int64_t layout, int64_t storage, bool wide) {
    const auto x = s.stored(layout);
    const Real* weights = s.weights.empty() ? nullptr : s.weights.data();
    const Values exact = exact_values(s);
    for (const uint64_t method : {kOnePass, kFast, kGiven}) {
      SCOPED_TRACE(::testing::Message() << "method " << method);
      Task<Real> task(s.p, s.n, layout, x.data(), weights, wide);
      Results<Real> results(s.p);
      results.attach(task, storage);
      task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights);
      Values wanted = exact;
      std::vector<Real> means;
      if (method == kGiven) {
        for (int64_t j = 0; j < s.p; ++j) {
          const double mean = exact.vectors[0][static_cast<size_t>(j)].exact;
          means.push_back(static_cast<Real>(mean - 0.25));
        }
        results.of(QOR_SS_MEAN) = means;
        wanted = exact_values(s, means.data());
      }
      ASSERT_EQ(Api<Real>::basic(task, all_estimates(), method, nullptr), QOR_SS_OK);
      expect_near(results, wanted, all_estimates(), s.p, storage, kUlps);
      if (method == kGiven) {
        EXPECT_EQ(results.of(QOR_SS_MEAN), means);
      }

      // What the sums give, in a task without data.
      Results<Real> again = results;
      for (const EstimateRow& row : vector_estimates) {
        if ((row.bit & kSumBits) == 0) {
          again.of(row.code).assign(static_cast<size_t>(s.p), Results<Real>::untouched);
        }
      }
      Task<Real> from_sums(s.p, s.n, layout, x.data(), weights, wide);
      again.attach(from_sums, storage);
      from_sums.set(QOR_SS_ACCUMULATED_WEIGHTS, again.weights);
      const uint64_t kept = all_estimates() & ~kSumBits;
      ASSERT_EQ(Api<Real>::basic(from_sums, kept, kSums, nullptr), QOR_SS_OK);
      expect_near(again, wanted, kept, s.p, storage, kUlps);
    }
  });
}

// Each estimate by itself has the right value too, whatever slots and orders it takes.
TYPED_TEST(Basic, OneByOne) {
  using Real = TypeParam;
  for (const bool weighted : {false, true}) {
    const auto s = small_sample<Real>(150, 5, weighted);
    const auto x = s.stored(QOR_SS_BY_OBSERVATION);
    const Real* weights = weighted ? s.weights.data() : nullptr;
    const Values exact = exact_values(s);
    std::vector<uint64_t> bits;
    for (const EstimateRow& row : vector_estimates) bits.push_back(row.bit);
    for (const MatrixRow& row : matrix_estimates) bits.push_back(row.bit);
    for (const uint64_t bit : bits) {
      for (const uint64_t method : {kOnePass, kFast, kGiven}) {
        SCOPED_TRACE(::testing::Message() << "estimate " << bit << " method " << method);
        Task<Real> task(s.p, s.n, QOR_SS_BY_OBSERVATION, x.data(), weights);
        Results<Real> results(s.p);
        results.attach(task, QOR_SS_MATRIX_LOWER);
        Values wanted = exact;
        if (method == kGiven) {
          const std::vector<Real> means = {1, 1.25, Real(0.5), Real(0.75), 1};
          results.of(QOR_SS_MEAN) = means;
          wanted = exact_values(s, means.data());
        }
        ASSERT_EQ(Api<Real>::basic(task, bit, method, nullptr), QOR_SS_OK);
        expect_near(results, wanted, bit, s.p, QOR_SS_MATRIX_LOWER, kUlps);
      }
    }
  }
}

// Many observations, where kernels run in blocks: all estimates in all layouts.
TYPED_TEST(Basic, LargeData) {
  using Real = TypeParam;
  for (const bool weighted : {false, true}) {
    const auto s = small_sample<Real>(30011, 6, weighted);
    const Real* weights = weighted ? s.weights.data() : nullptr;
    const std::vector<Real> means(static_cast<size_t>(s.p), Real(1.25));
    const Values own = plain_values(s), about_given = plain_values(s, means.data());
    for (const int64_t layout : kLayouts) {
      const auto x = s.stored(layout);
      for (const uint64_t method : {kOnePass, kFast, kGiven}) {
        SCOPED_TRACE(::testing::Message()
                     << "weighted " << weighted << " layout " << layout << " method " << method);
        Task<Real> task(s.p, s.n, layout, x.data(), weights);
        Results<Real> results(s.p);
        results.attach(task, QOR_SS_MATRIX_UPPER);
        results.of(QOR_SS_MEAN) = means;
        ASSERT_EQ(Api<Real>::basic(task, all_estimates(), method, nullptr), QOR_SS_OK);
        expect_near(results, method == kGiven ? about_given : own, all_estimates(), s.p,
                    QOR_SS_MATRIX_UPPER, kUlps);
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

  task.record().central_sum_2 = nullptr;
  task.record().sum = nullptr;
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
  const Real x[] = {1, infinite, huge, 1, 2, huge, 1, 3, huge};
  for (const uint64_t method : {kOnePass, kFast}) {
    Task<Real> task(3, 3, QOR_SS_BY_OBSERVATION, x);
    Results<Real> results(3);
    results.attach(task, QOR_SS_MATRIX_FULL);
    const uint64_t mask = QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_RAW_2 |
                          QOR_SS_ESTIMATE_COVARIANCE | QOR_SS_ESTIMATE_CORRELATION;
    ASSERT_EQ(Api<Real>::basic(task, mask, method, nullptr), QOR_SS_OK);
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
