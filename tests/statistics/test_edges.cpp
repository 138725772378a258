// Few observations, variables left out, weights of zero, state that is missing, memory that ends.

#include <cmath>
#include <functional>
#include <limits>

#include "tests/statistics/estimates.h"
#include "tests/statistics/teams.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

template <class Real>
class Edges : public ::testing::Test {};
TYPED_TEST_SUITE(Edges, Precisions);

template <class Real>
constexpr Real nan_of = std::numeric_limits<Real>::quiet_NaN();

TYPED_TEST(Edges, OneObservation) {
  using Real = TypeParam;
  const Real x[2] = {3, -5};
  for (const uint64_t method : {kOnePass, kFast}) {
    Task<Real> task(2, 1, QOR_SS_BY_OBSERVATION, x);
    Results<Real> results(2);
    results.attach(task, QOR_SS_MATRIX_FULL);
    task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights);
    ASSERT_EQ(Api<Real>::basic(task, all_estimates(), method, nullptr), QOR_SS_OK);
    EXPECT_EQ(results.of(QOR_SS_MEAN), (std::vector<Real>{3, -5}));
    EXPECT_EQ(results.of(QOR_SS_SUM), (std::vector<Real>{3, -5}));
    EXPECT_EQ(results.of(QOR_SS_CENTRAL_SUM_2), (std::vector<Real>{0, 0}));
    EXPECT_FALSE(std::isfinite(results.of(QOR_SS_CENTRAL_2)[0]));
    EXPECT_FALSE(std::isfinite(results.of(QOR_SS_COV)[0]));
    EXPECT_EQ(results.weights[0], 1);
    EXPECT_EQ(results.weights[1], 1);
  }
}

// Only what was asked for, and what that needs, is written.
TYPED_TEST(Edges, OthersStayUntouched) {
  using Real = TypeParam;
  const auto s = small_sample<Real>(20, 3, false);
  const auto x = s.stored(QOR_SS_BY_OBSERVATION);
  for (const uint64_t method : {kOnePass, kFast}) {
    Task<Real> task(s.p, s.n, QOR_SS_BY_OBSERVATION, x.data());
    Results<Real> results(s.p);
    results.attach(task, QOR_SS_MATRIX_FULL);
    ASSERT_EQ(
        Api<Real>::basic(task, QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_COVARIANCE, method, nullptr),
        QOR_SS_OK);
    const std::vector<Real> vector(3, Results<Real>::untouched), matrix(9, vector[0]);
    for (const EstimateRow& row : vector_estimates) {
      if (row.code == QOR_SS_MEAN) continue;
      EXPECT_EQ(results.of(row.code), vector) << row.name;
    }
    EXPECT_EQ(results.of(QOR_SS_COR), matrix);
    EXPECT_EQ(results.of(QOR_SS_CP), matrix);
  }
}

// Variables left out keep their outputs, matrices their rows and columns, over blocks too; what is
// in their data does not matter.
TYPED_TEST(Edges, Indices) {
  using Real = TypeParam;
  for (const bool wide : {false, true}) {
    for (const int64_t storage : {QOR_SS_MATRIX_FULL, QOR_SS_MATRIX_LOWER, QOR_SS_MATRIX_UPPER}) {
      for (const uint64_t method : {kOnePass, kFast, kGiven}) {
        auto s = small_sample<Real>(40, 3, true);
        Results<Real> wanted(3), results(3);
        const std::vector<Real> means = {1, 1, 1};
        for (Results<Real>* r : {&wanted, &results}) {
          if (method == kGiven) r->of(QOR_SS_MEAN) = means;
          const int32_t narrow_indices[3] = {1, 0, -1};
          const int64_t wide_indices[3] = {1, 0, int64_t{1} << 40};
          for (const int64_t first : {0, 10}) {
            const auto part = s.part(first, first == 0 ? 10 : 40);
            auto x = part.stored(QOR_SS_BY_OBSERVATION);
            Task<Real> task(3, part.n, QOR_SS_BY_OBSERVATION, x.data(), part.weights.data(), wide);
            r->attach(task, storage);
            task.set(QOR_SS_ACCUMULATED_WEIGHTS, r->weights);
            if (r == &results) {
              for (int64_t i = 0; i < part.n; ++i) x[static_cast<size_t>(3 * i + 1)] = nan_of<Real>;
              task.record().indices =
                  wide ? static_cast<const void*>(wide_indices) : narrow_indices;
            }
            ASSERT_EQ(Api<Real>::basic(task, all_estimates(), method, nullptr), QOR_SS_OK);
          }
        }
        for (int e = 0; e < vector_count; ++e) {
          const auto at = static_cast<size_t>(e);
          const bool given = method == kGiven && vector_estimates[e].code == QOR_SS_MEAN;
          EXPECT_EQ(results.vectors[at][0], wanted.vectors[at][0]);
          EXPECT_EQ(results.vectors[at][1], given ? Real{1} : Results<Real>::untouched);
          EXPECT_EQ(results.vectors[at][2], wanted.vectors[at][2]);
        }
        for (size_t e = 0; e < matrix_count; ++e) {
          for (int64_t j = 0; j < 3; ++j) {
            for (int64_t k = 0; k < 3; ++k) {
              const auto at = static_cast<size_t>(place(storage, 3, j, k));
              const Real expected =
                  j == 1 || k == 1 ? Results<Real>::untouched : wanted.matrices[e][at];
              if (std::isnan(expected)) continue;
              EXPECT_EQ(results.matrices[e][at], expected);
            }
          }
        }
      }
    }
  }
}

// Observations of weight zero before all others are passed over, whatever they hold; later ones
// take part, and a NaN is not zero.
TYPED_TEST(Edges, ZeroWeights) {
  using Real = TypeParam;
  const Real x[] = {nan_of<Real>, 2, 4, 9};
  const auto mean_of = [&](std::vector<Real> weights, uint64_t method, Real* sums) {
    Real mean[1] = {-1};
    Task<Real> task(1, 4, QOR_SS_BY_VARIABLE, x, weights.data());
    task.set(QOR_SS_MEAN, mean);
    task.set(QOR_SS_ACCUMULATED_WEIGHTS, sums);
    EXPECT_EQ(Api<Real>::basic(task, QOR_SS_ESTIMATE_MEAN, method, nullptr), QOR_SS_OK);
    return mean[0];
  };
  for (const uint64_t method : {kOnePass, kFast}) {
    Real sums[2] = {0, 0};
    EXPECT_EQ(mean_of({0, 1, 1, 0}, method, sums), 3);
    EXPECT_EQ(sums[0], 2);
    Real none[2] = {0, 0};
    EXPECT_EQ(mean_of({0, 0, 0, 0}, method, none), 0);
    EXPECT_EQ(none[0], 0);
    Real going_on[2] = {5, 5};
    EXPECT_EQ(mean_of({0, 0, 0, 0}, method, going_on), -1);
    Real poisoned[2] = {0, 0};
    EXPECT_TRUE(std::isnan(mean_of({nan_of<Real>, 0, 1, 1}, method, poisoned)));
    EXPECT_TRUE(std::isnan(poisoned[0]));
  }
  // A tile that begins with zero weights, behind one that does not.
  std::vector<Real> values, weights;
  for (int i = 0; i < 200; ++i) {
    values.push_back(static_cast<Real>(i < 60 ? 1 : 3));
    weights.push_back(static_cast<Real>(i < 60 || i >= 140 ? 1 : 0));
  }
  for (const uint64_t method : {kOnePass, kFast}) {
    Real mean[1], r2[1], c2[1];
    Task<Real> task(1, 200, QOR_SS_BY_VARIABLE, values.data(), weights.data());
    task.set(QOR_SS_MEAN, mean);
    task.set(QOR_SS_RAW_2, r2);
    task.set(QOR_SS_CENTRAL_2, c2);
    ASSERT_EQ(Api<Real>::basic(task, QOR_SS_ESTIMATE_CENTRAL_2, method, nullptr), QOR_SS_OK);
    EXPECT_FLOAT_EQ(static_cast<float>(mean[0]), 2);
    EXPECT_FLOAT_EQ(static_cast<float>(c2[0]), 120.0f / 119);
  }
}

// Central sums of higher order go on from those of lower order: without them, and without the raw
// moments to make them of, a later block is refused.
TYPED_TEST(Edges, StateThatIsMissing) {
  using Real = TypeParam;
  const auto s = small_sample<Real>(20, 2, false);
  const auto x = s.stored(QOR_SS_BY_OBSERVATION);
  Results<Real> results(2);
  Task<Real> task(2, 20, QOR_SS_BY_OBSERVATION, x.data());
  task.set(QOR_SS_MEAN, results.of(QOR_SS_MEAN).data());
  task.set(QOR_SS_CENTRAL_SUM_4, results.of(QOR_SS_CENTRAL_SUM_4).data());
  task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights);
  const auto run = [&](uint64_t mask) { return Api<Real>::basic(task, mask, kOnePass, nullptr); };
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_SUM_4), QOR_SS_OK);
  const std::vector<Real> before = results.of(QOR_SS_CENTRAL_SUM_4);
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_SUM_4), QOR_SS_NULL_CENTRAL_SUM_2);
  EXPECT_EQ(results.of(QOR_SS_CENTRAL_SUM_4), before);
  task.set(QOR_SS_CENTRAL_SUM_2, results.of(QOR_SS_CENTRAL_SUM_2).data());
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_SUM_4), QOR_SS_NULL_CENTRAL_SUM_3);
  // Raw moments stand in for both.
  task.record().central_sum_2 = nullptr;
  for (const int64_t code : {QOR_SS_RAW_2, QOR_SS_RAW_3, QOR_SS_RAW_4, QOR_SS_CENTRAL_4}) {
    task.set(code, results.of(code).data());
  }
  results.weights[0] = results.weights[1] = 0;
  Sample<Real> twice = s;
  twice.n = 40;
  twice.rows.insert(twice.rows.end(), s.rows.begin(), s.rows.end());
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_4), QOR_SS_OK);
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_4), QOR_SS_OK);
  expect_near(results, exact_values(twice), QOR_SS_ESTIMATE_CENTRAL_4, 2, 0, 100);
}

// Given means of one block are remembered by the task for the matrix of the next.
TYPED_TEST(Edges, SavedMeans) {
  using Real = TypeParam;
  const auto s = small_sample<Real>(30, 2, false);
  Results<Real> results(2);
  Task<Real> task(2, 10, QOR_SS_BY_OBSERVATION, s.rows.data());
  results.attach(task, QOR_SS_MATRIX_FULL);
  task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights);
  results.of(QOR_SS_MEAN) = {Real(0.5), 1};
  ASSERT_EQ(Api<Real>::basic(task, QOR_SS_ESTIMATE_CP, kGiven, nullptr), QOR_SS_OK);
  const std::vector<Real> means = {1, Real(0.25)};
  results.of(QOR_SS_MEAN) = means;
  task.set(QOR_SS_X, s.rows.data() + 20);
  task.set_number(QOR_SS_N, 20);
  ASSERT_EQ(Api<Real>::basic(task, QOR_SS_ESTIMATE_CP, kGiven, nullptr), QOR_SS_OK);
  expect_near(results, exact_values(s, means.data()), QOR_SS_ESTIMATE_CP, 2, 0, 100);
}

// Each allocation fails in turn: the status comes, nothing is written and nothing is lost.
TYPED_TEST(Edges, MemoryEnds) {
  using Real = TypeParam;
  const auto s = small_sample<Real>(25000, 3, true);
  const auto x = s.stored(QOR_SS_BY_OBSERVATION);
  const ThreadHook team = team_hook(3, run_team_in_order);
  const int32_t indices[3] = {1, 1, 0};
  for (const uint64_t method : {kOnePass, kFast, kGiven, uint64_t{QOR_SS_METHOD_FROM_SUMS}}) {
    const bool from_sums = method == QOR_SS_METHOD_FROM_SUMS;
    const uint64_t mask =
        from_sums ? QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_CORRELATION : all_estimates();
    for (long failing = 0;; ++failing) {
      Task<Real> task(3, s.n, QOR_SS_BY_OBSERVATION, x.data(), s.weights.data());
      Results<Real> results(3);
      results.attach(task, QOR_SS_MATRIX_UPPER);
      results.weights[0] = from_sums ? 25000 : 0;
      task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights);
      task.record().indices = indices;
      const Results<Real> before = results;
      const long blocks = live_blocks();
      int status;
      bool reached;
      {
        const FailingAllocations guard(failing);
        status = Api<Real>::basic(task, mask, method, &team);
        reached = guard.asked() > failing;
      }
      if (!reached) {
        EXPECT_EQ(status, QOR_SS_OK);
        EXPECT_EQ(failing, from_sums ? 2 : method == kGiven ? 7 : 6);
        break;
      }
      EXPECT_EQ(status, QOR_SS_NO_MEMORY);
      EXPECT_EQ(live_blocks(), blocks);
      EXPECT_EQ(results.vectors, before.vectors);
      EXPECT_EQ(results.matrices, before.matrices);
      if (status != QOR_SS_NO_MEMORY) break;
    }
  }
}

}  // namespace
}  // namespace qor::test
