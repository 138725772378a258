// Few observations, variables left out, weights of zero, state that is missing, memory that ends.

#include <cmath>
#include <limits>
#include <memory>

#include "tests/statistics/estimates.h"

namespace qor::test {
namespace {

template <class Real>
class Edges : public ::testing::Test {};
TYPED_TEST_SUITE(Edges, Precisions);

TYPED_TEST(Edges, OneObservation) {
  using Real = TypeParam;
  for (const uint64_t method : {kOnePass, kFast}) {
    auto results = compute<Real>({1, 2, {3, -5}}, {.method = method});
    EXPECT_EQ(results.of(QOR_SS_MEAN), (std::vector<Real>{3, -5}));
    EXPECT_EQ(results.of(QOR_SS_SUM), (std::vector<Real>{3, -5}));
    EXPECT_EQ(results.of(QOR_SS_CENTRAL_SUM_2), (std::vector<Real>{0, 0}));
    EXPECT_FALSE(std::isfinite(results.of(QOR_SS_CENTRAL_2)[0]));
    EXPECT_FALSE(std::isfinite(results.of(QOR_SS_COV)[0]));
    EXPECT_EQ(results.weights, (std::vector<Real>{1, 1}));
  }
}

// Only what was asked for, and what that needs, is written.
TYPED_TEST(Edges, OthersStayUntouched) {
  const uint64_t mask = QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_COVARIANCE;
  for (const uint64_t method : {kOnePass, kFast}) {
    const auto results =
        compute(small_sample<TypeParam>(20, 3, false), {.method = method, .mask = mask});
    for (size_t e = 0; e < estimate_count; ++e) {
      if ((estimates[e].bit & mask) != 0) continue;
      EXPECT_EQ(results.arrays[e], Results<TypeParam>(3).arrays[e]) << estimates[e].name;
    }
  }
}

// Variables left out keep their outputs, matrices their rows and columns, over blocks too; what is
// in their data does not matter.
TYPED_TEST(Edges, Indices) {
  using Real = TypeParam;
  const auto sample = small_sample<Real>(40, 3, true);
  auto spoiled = sample;
  for (size_t i = 1; i < 3 * 40; i += 3) spoiled.rows[i] = std::nanf("");
  const int32_t narrow[3] = {1, 0, -1};
  const int64_t wide[3] = {1, 0, int64_t{1} << 40};
  for (const auto& c : combinations(kBools, kStorages, kMethods)) {
    const auto& [is_wide, storage, method] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    Asked asked{.method = method, .storage = storage, .cuts = {10}, .wide = is_wide};
    const auto wanted = compute(sample, asked);
    asked.indices = is_wide ? static_cast<const void*>(wide) : narrow;
    const auto results = compute(spoiled, asked);
    for (size_t e = 0; e < estimate_count; ++e) {
      const bool matrix = estimates[e].is_matrix();
      const bool given = method == kGiven && estimates[e].code == QOR_SS_MEAN;
      const Real untouched = given ? given_means<Real>(3)[1] : Results<Real>::untouched;
      for (int64_t i = 0; i < (matrix ? 9 : 3); ++i) {
        const int64_t j = matrix ? i / 3 : i, k = matrix ? i % 3 : 0;
        const size_t at = estimates[e].place(storage, 3, j, k);
        EXPECT_EQ(results.arrays[e][at], j == 1 || k == 1 ? untouched : wanted.arrays[e][at])
            << estimates[e].name << " " << i;
      }
    }
  }
}

// Observations of weight zero before all others are passed over, whatever they hold; later ones
// take part, and a NaN is not zero.
TYPED_TEST(Edges, ZeroWeights) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  struct Case {
    std::vector<Real> weights;
    Real weight_before, mean, weight_after;
  };
  const Case cases[] = {{{0, 1, 1, 0}, 0, 3, 2},
                        {{0, 0, 0, 0}, 0, 0, 0},
                        {{0, 0, 0, 0}, 5, -1, 5},
                        {{nan, 0, 1, 1}, 0, nan, nan}};
  for (const uint64_t method : {kOnePass, kFast}) {
    for (const auto& [weights, before, mean, after] : cases) {
      Results<Real> start(1);
      start.of(QOR_SS_MEAN) = {-1};
      start.weights = {before, before};
      auto results = go_on<Real>({4, 1, {nan, 2, 4, 9}, weights},
                                 {.method = method, .mask = QOR_SS_ESTIMATE_MEAN}, start);
      EXPECT_PRED2(same_value<Real>, results.of(QOR_SS_MEAN)[0], mean);
      EXPECT_PRED2(same_value<Real>, results.weights[0], after);
    }
    // A tile that begins with zero weights, behind one that does not.
    Sample<Real> s{200, 1, std::vector<Real>(200, 3), std::vector<Real>(200, 1)};
    std::fill_n(s.rows.begin(), 60, Real{1});
    std::fill_n(s.weights.begin() + 60, 80, Real{0});
    const Asked asked{.method = method, .mask = QOR_SS_ESTIMATE_CENTRAL_2};
    expect_near(compute(s, asked), exact_values(s, method), asked, 40);
  }
}

// Central sums of higher order go on from those of lower order: without them, and without the raw
// moments to make them of, a later block is refused.
TYPED_TEST(Edges, StateThatIsMissing) {
  using Real = TypeParam;
  const auto s = small_sample<Real>(40, 2, false);
  Results<Real> results(2);
  Task<Real> task(2, 20, QOR_SS_BY_OBSERVATION, s.rows.data());
  task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights.data());
  const auto attach = [&](int64_t code) { task.set(code, results.of(code).data()); };
  const auto run = [&](uint64_t mask) { return Api<Real>::basic(task, mask, kOnePass, nullptr); };
  for (const int64_t code : {QOR_SS_MEAN, QOR_SS_CENTRAL_SUM_4}) attach(code);
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_SUM_4), QOR_SS_OK);
  const Results<Real> before = results;
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_SUM_4), QOR_SS_NULL_CENTRAL_SUM_2);
  attach(QOR_SS_CENTRAL_SUM_2);
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_SUM_4), QOR_SS_NULL_CENTRAL_SUM_3);
  EXPECT_EQ(results, before);
  // Raw moments stand in for both.
  task.record().central_sum_2 = nullptr;
  for (const int64_t code : {QOR_SS_RAW_2, QOR_SS_RAW_3, QOR_SS_RAW_4, QOR_SS_CENTRAL_4}) {
    attach(code);
  }
  results.weights[0] = results.weights[1] = 0;
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_4), QOR_SS_OK);
  task.set(QOR_SS_X, s.rows.data() + 2 * 20);
  EXPECT_EQ(run(QOR_SS_ESTIMATE_CENTRAL_4), QOR_SS_OK);
  expect_near(results, exact_values(s, kOnePass), {.mask = QOR_SS_ESTIMATE_CENTRAL_4}, 100);
}

// Given means of one block are remembered by the task for the matrix of the next.
TYPED_TEST(Edges, SavedMeans) {
  using Real = TypeParam;
  const auto s = small_sample<Real>(30, 2, false);
  Results<Real> results(2);
  Task<Real> task(2, 10, QOR_SS_BY_OBSERVATION, s.rows.data());
  results.attach(task, QOR_SS_MATRIX_FULL);
  Real* means = results.of(QOR_SS_MEAN).data();
  for (int block = 0; block < 3; ++block) {
    const Real shift = static_cast<Real>(2 - block);
    for (int j = 0; j < 2; ++j) means[j] = shift + static_cast<Real>(2 + j) / 4;
    task.set(QOR_SS_X, s.rows.data() + 2 * 10 * block);
    ASSERT_EQ(Api<Real>::basic(task, QOR_SS_ESTIMATE_CP, kGiven, nullptr), QOR_SS_OK);
  }
  expect_near(results, exact_values(s, kGiven), {.mask = QOR_SS_ESTIMATE_CP}, 100);
}

// What the task keeps for one precision is nothing to the other, which begins with its own means.
TYPED_TEST(Edges, SavedMeansOfEitherPrecision) {
  using Real = TypeParam;
  constexpr int64_t p = 50, n = 10;
  const auto s = small_sample<Real>(2 * n, p, false);
  const auto other = small_sample<OtherPrecision<Real>>(n, p, false);
  Task<Real> task(p, n, QOR_SS_BY_OBSERVATION, s.rows.data());
  task.set_number(QOR_SS_CP_STORAGE, QOR_SS_MATRIX_FULL);
  const auto run = [&task]<class T>(const T* x, Results<T>& results) {
    const std::pair<int64_t, const T*> arrays[] = {
        {QOR_SS_X, x},
        {QOR_SS_MEAN, results.of(QOR_SS_MEAN).data()},
        {QOR_SS_CP, results.of(QOR_SS_CP).data()},
        {QOR_SS_ACCUMULATED_WEIGHTS, results.weights.data()}};
    for (const auto& [code, array] : arrays) ASSERT_EQ(Api<T>::edit(task, code, array), QOR_SS_OK);
    ASSERT_EQ(Api<T>::basic(task, QOR_SS_ESTIMATE_CP, kGiven, nullptr), QOR_SS_OK);
  };
  Results<Real> results(p);
  Results<OtherPrecision<Real>> others(p);
  results.of(QOR_SS_MEAN) = given_means<Real>(p);
  others.of(QOR_SS_MEAN) = given_means<OtherPrecision<Real>>(p);
  run(other.rows.data(), others);
  run(s.rows.data(), results);
  run(other.rows.data(), others);
  run(s.rows.data() + n * p, results);
  expect_near(results, exact_values(s, kGiven), {.mask = QOR_SS_ESTIMATE_CP}, 100);
}

// Each allocation fails in turn: the status comes, nothing is written and nothing is lost.
TYPED_TEST(Edges, MemoryEnds) {
  using Real = TypeParam;
  constexpr int64_t p = 600;  // the stack has room for the first pieces of work memory alone
  const auto s = small_sample<Real>(130, p, true);
  const ThreadHook team = team_hook(3, run_members<run_in_order>);
  std::vector<int32_t> indices(p, 1);
  indices.back() = 0;
  for (const uint64_t method : {kOnePass, kFast, kGiven, kSums}) {
    const uint64_t mask =
        method == kSums ? QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_CORRELATION : kAll;
    const long failures = failures_survived(QOR_SS_NO_MEMORY, [&] {
      auto results = std::make_shared<Results<Real>>(p);
      auto task = std::make_shared<Task<Real>>(p, s.n, QOR_SS_BY_OBSERVATION, s.rows.data(),
                                               s.weights.data());
      results->attach(*task, QOR_SS_MATRIX_UPPER);
      results->weights[0] = method == kSums ? 130 : 0;
      task->record().indices = indices.data();
      return [=, &team, before = *results] {
        const int status = Api<Real>::basic(*task, mask, method, &team);
        EXPECT_TRUE(status == QOR_SS_OK || *results == before);
        return status;
      };
    });
    EXPECT_EQ(failures, method == kSums ? 1 : method == kGiven ? 4 : 3);
  }
}

}  // namespace
}  // namespace qor::test
