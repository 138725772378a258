// One block or many, one thread or many, one layout or the other: the same numbers within a bound,
// and for the same cut the same bits.

#include <functional>
#include <limits>

#include "qor/vector_math.h"
#include "tests/statistics/estimates.h"
#include "tests/statistics/teams.h"

namespace qor::test {
namespace {

template <class Real>
class Blocks : public ::testing::Test {};
TYPED_TEST_SUITE(Blocks, Precisions);

template <class Real>
void run_blocks(const Sample<Real>& s, const std::vector<int64_t>& cuts, uint64_t mask,
                uint64_t method, int64_t storage, Results<Real>& results) {
  Task<Real> task(s.p, 1, QOR_SS_BY_VARIABLE, s.rows.data());
  results.attach(task, storage);
  task.set(QOR_SS_ACCUMULATED_WEIGHTS, results.weights);
  int64_t first = 0;
  for (const int64_t end : cuts) {
    const auto part = s.part(first, end);
    const auto x = part.stored(QOR_SS_BY_VARIABLE);
    task.set(QOR_SS_X, x.data());
    task.set_number(QOR_SS_N, end - first);
    if (!part.weights.empty()) task.set(QOR_SS_WEIGHTS, part.weights.data());
    ASSERT_EQ(Api<Real>::basic(task, mask, method, nullptr), QOR_SS_OK);
    first = end;
  }
}

TYPED_TEST(Blocks, Accumulate) {
  using Real = TypeParam;
  for (const bool weighted : {false, true}) {
    for (const int64_t storage : {QOR_SS_MATRIX_FULL, QOR_SS_MATRIX_UPPER}) {
      const auto s = small_sample<Real>(200, 4, weighted);
      const std::vector<Real> means = {1, 1.25, Real(0.5), Real(0.75)};
      const Values exact = exact_values(s), about_means = exact_values(s, means.data());
      for (const uint64_t method : {kOnePass, kFast, kGiven}) {
        // Everything together, and each estimate with nothing but its own needs.
        std::vector<uint64_t> masks = {all_estimates()};
        for (const EstimateRow& row : vector_estimates) masks.push_back(row.bit);
        for (const MatrixRow& row : matrix_estimates) masks.push_back(row.bit);
        for (const uint64_t mask : masks) {
          SCOPED_TRACE(::testing::Message() << "weighted " << weighted << " storage " << storage
                                            << " method " << method << " mask " << mask);
          Results<Real> results(s.p);
          // One observation alone has a central moment 2 that is no number, but no central sums;
          // about given means it has, and with their scale they are lost.
          std::vector<int64_t> cuts = {1, 2, 70, 71, 200};
          if (method == kGiven) {
            results.of(QOR_SS_MEAN) = means;
            cuts[0] = 2, cuts[1] = 3;
          }
          run_blocks(s, cuts, mask, method, storage, results);
          expect_near(results, method == kGiven ? about_means : exact, mask, s.p, storage, 200);
          double weight = 0;
          for (int64_t i = 0; i < s.n; ++i) weight += s.weight(i);
          EXPECT_EQ(double{results.weights[0]}, weight);
        }
      }
    }
  }
}

// A variable that has not varied yet has correlations that are no numbers; the next block mends
// them.
TYPED_TEST(Blocks, CorrelationBeginsWithConstant) {
  using Real = TypeParam;
  Sample<Real> s{6, 2, {1, 1, 2, 1, 4, 1, 1, 2, 2, 4, 4, 1}, {}};
  Results<Real> results(2);
  run_blocks(s, {3, 6}, QOR_SS_ESTIMATE_CORRELATION, kOnePass, QOR_SS_MATRIX_LOWER, results);
  expect_near(results, exact_values(s), QOR_SS_ESTIMATE_CORRELATION, 2, QOR_SS_MATRIX_LOWER, 100);
}

// All estimates of a large sample through a hook.
template <class Real>
Results<Real> through(const Sample<Real>& s, int64_t layout, uint64_t mask, uint64_t method,
                      const ThreadHook* hook) {
  const auto x = s.stored(layout);
  Task<Real> task(s.p, s.n, layout, x.data(), s.weights.empty() ? nullptr : s.weights.data());
  Results<Real> results(s.p);
  results.attach(task, QOR_SS_MATRIX_FULL);
  if (method == kGiven) results.of(QOR_SS_MEAN).assign(static_cast<size_t>(s.p), Real(1.25));
  EXPECT_EQ(Api<Real>::basic(task, mask, method, hook), QOR_SS_OK);
  return results;
}

template <class Real>
void expect_same_bits(const Results<Real>& a, const Results<Real>& b) {
  EXPECT_EQ(a.vectors, b.vectors);
  EXPECT_EQ(a.matrices, b.matrices);
}

// Large data through a team come near to what one thread gives: by the size of the terms, which lie
// around one, and of the sums.
template <class Real>
void expect_near_alone(const Results<Real>& results, const Results<Real>& alone, int64_t n) {
  const double unit = 300 * std::numeric_limits<Real>::epsilon();
  for (size_t e = 0; e < vector_count; ++e) {
    const bool is_sum = e >= 7 && e < 14;
    for (size_t j = 0; j < alone.vectors[e].size(); ++j) {
      EXPECT_NEAR(results.vectors[e][j], alone.vectors[e][j],
                  unit * 20 * static_cast<double>(is_sum ? n : 1))
          << vector_estimates[e].name;
    }
  }
  for (size_t e = 0; e < matrix_count; ++e) {
    for (size_t i = 0; i < alone.matrices[e].size(); ++i) {
      EXPECT_NEAR(results.matrices[e][i], alone.matrices[e][i],
                  unit * 20 * static_cast<double>(e == 2 ? n : 1))
          << matrix_estimates[e].name;
    }
  }
}

TYPED_TEST(Blocks, Threads) {
  using Real = TypeParam;
  for (const bool weighted : {false, true}) {
    const auto s = small_sample<Real>(25000, 3, weighted);
    for (const uint64_t method : {kOnePass, kFast, kGiven}) {
      const auto run = [&](const ThreadHook* hook) {
        return through(s, QOR_SS_BY_OBSERVATION, all_estimates(), method, hook);
      };
      const auto alone = run(nullptr);
      for (const int threads : {2, 3}) {
        SCOPED_TRACE(::testing::Message()
                     << "weighted " << weighted << " method " << method << " threads " << threads);
        const ThreadHook in_order = team_hook(threads, run_team_in_order),
                         reversed = team_hook(threads, run_team_in_reverse),
                         on_threads = team_hook(threads, run_team_on_threads);
        const auto wanted = run(&in_order);
        EXPECT_EQ(last_team_size, threads);
        expect_near_alone(wanted, alone, s.n);
        expect_same_bits(wanted, run(&reversed));
        expect_same_bits(wanted, run(&on_threads));
      }
    }
  }
}

// How many members the team has: one per 8192 elements, with a matrix per 8192 observations, and
// per 16 observations.
TYPED_TEST(Blocks, SizeOfTheTeam) {
  using Real = TypeParam;
  struct Case {
    int64_t n, p;
    uint64_t mask;
    int64_t members;  // 0: the hook's team is not called
  };
  const uint64_t mean = QOR_SS_ESTIMATE_MEAN, cov = QOR_SS_ESTIMATE_COVARIANCE;
  const Case cases[] = {{16383, 1, mean, 0}, {16384, 1, mean, 2}, {8192, 2, mean, 2},
                        {1, 30000, mean, 0}, {47, 2000, mean, 2}, {48, 2000, mean, 3},
                        {8192, 3, mean, 3},  {8192, 2, cov, 0},   {24576, 2, cov, 3},
                        {99999, 1, mean, 5}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "n " << c.n << " p " << c.p << " mask " << c.mask);
    const std::vector<Real> x(static_cast<size_t>(c.n * c.p), Real{1});
    std::vector<Real> means(static_cast<size_t>(c.p)), matrix(4);
    Task<Real> task(c.p, c.n, QOR_SS_BY_VARIABLE, x.data());
    task.set(QOR_SS_MEAN, means.data());
    task.set(QOR_SS_COV, matrix.data());
    task.set_number(QOR_SS_COV_STORAGE, 0);
    last_team_size = 0;
    const ThreadHook hook = team_hook(5, run_team_in_order);
    ASSERT_EQ(Api<Real>::basic(task, c.mask, kFast, &hook), QOR_SS_OK);
    EXPECT_EQ(last_team_size, c.members);
    EXPECT_EQ(means[0], 1);
  }
}

// One variable without weights fills registers with its observations: lengths around where that
// begins, and what is left over.
TYPED_TEST(Blocks, OneVariable) {
  using Real = TypeParam;
  for (const int64_t n : {255, 256, 263, 511, 512, 527}) {
    const auto s = small_sample<Real>(n, 1, false);
    const std::vector<Real> means = {Real(1.25)};
    for (const uint64_t method : {kOnePass, kFast, kGiven}) {
      SCOPED_TRACE(::testing::Message() << "n " << n << " method " << method);
      uint64_t mask = 0;
      for (const EstimateRow& row : vector_estimates) mask |= row.bit;
      Results<Real> results(1);
      results.of(QOR_SS_MEAN) = means;
      run_blocks(s, {7, n}, mask, method, QOR_SS_MATRIX_FULL, results);
      expect_near(results, exact_values(s, method == kGiven ? means.data() : nullptr), mask, 1,
                  QOR_SS_MATRIX_FULL, 200);
    }
  }
}

TYPED_TEST(Blocks, LayoutsHaveTheSameBits) {
  using Real = TypeParam;
  uint64_t vectors = 0;
  for (const EstimateRow& row : vector_estimates) vectors |= row.bit;
  for (const int64_t p : {1, 2, 7, 20}) {
    for (const bool weighted : {false, true}) {
      const auto s = small_sample<Real>(400, p, weighted);
      for (const uint64_t method : {kOnePass, kFast, kGiven}) {
        // BLAS sums its blocks as it likes.
        const uint64_t mask = method == kOnePass ? all_estimates() : vectors;
        expect_same_bits(through(s, QOR_SS_BY_OBSERVATION, mask, method, nullptr),
                         through(s, QOR_SS_BY_VARIABLE, mask, method, nullptr));
      }
    }
  }
}

// The kernel inside does its work under a mode of its own and reports nothing.
TEST(BlocksOfDoubles, LeaveModeAndStatus) {
  const double x[] = {1, 5, 1, 6, 1, 7};
  Task<double> task(2, 3, QOR_SS_BY_OBSERVATION, x);
  Results<double> results(2);
  results.attach(task, QOR_SS_MATRIX_FULL);
  const uint32_t mode = _arkGetMode();
  _arkClearErrStatus();
  ASSERT_EQ(_ostdSSBasic(task, QOR_SS_ESTIMATE_CORRELATION, kOnePass, nullptr), QOR_SS_OK);
  EXPECT_EQ(_arkGetMode(), mode);
  EXPECT_EQ(_arkGetErrStatus(), 0);
}

}  // namespace
}  // namespace qor::test
