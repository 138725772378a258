// One thread or many, one layout or the other: the same numbers within a bound, and for the same
// cut the same bits.

#include "qor/vector_math.h"
#include "tests/statistics/estimates.h"
#include "tests/support/reports.h"

namespace qor::test {
namespace {

template <class Real>
class Blocks : public ::testing::Test {};
TYPED_TEST_SUITE(Blocks, Precisions);

// A variable that has not varied yet has correlations that are no numbers; the next block mends
// them.
TYPED_TEST(Blocks, CorrelationBeginsWithConstant) {
  const Sample<TypeParam> s{6, 2, {1, 1, 2, 1, 4, 1, 1, 2, 2, 4, 4, 1}};
  const Asked asked{
      .mask = QOR_SS_ESTIMATE_CORRELATION, .storage = QOR_SS_MATRIX_LOWER, .cuts = {3}};
  expect_near(compute(s, asked), exact_values(s, kOnePass), asked, 100);
}

TYPED_TEST(Blocks, Threads) {
  for (const auto& c : combinations(kBools, kMethods, std::vector<int64_t>{2, 3})) {
    const auto& [weighted, method, threads] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    const auto s = small_sample<TypeParam>(25000, 3, weighted);
    std::vector<Results<TypeParam>> results;
    for (const TeamRunner run :
         {run_team_and_tell_its_size, run_members<run_in_reverse>, run_members<run_on_threads>}) {
      const ThreadHook hook = team_hook(threads, run);
      results.push_back(compute(s, {.method = method, .hook = &hook}));
    }
    EXPECT_EQ(last_team_size, threads);
    expect_near(results[0], exact_values(s, method), {}, 40);
    EXPECT_EQ(results[0], results[1]);
    EXPECT_EQ(results[0], results[2]);
  }
}

// How many members the team has: one per 8192 elements, with a matrix per 8192 observations, and
// per 16 observations.
TYPED_TEST(Blocks, SizeOfTheTeam) {
  using Real = TypeParam;
  struct Case {
    int64_t n, p;
    uint64_t mask;
    int64_t members;
  };
  const uint64_t mean = QOR_SS_ESTIMATE_MEAN, cov = QOR_SS_ESTIMATE_COVARIANCE;
  const Case cases[] = {{16383, 1, mean, 0}, {16384, 1, mean, 2}, {8192, 2, mean, 2},
                        {1, 30000, mean, 0}, {47, 2000, mean, 2}, {48, 2000, mean, 3},
                        {8192, 3, mean, 3},  {8192, 2, cov, 0},   {24576, 2, cov, 3},
                        {99999, 1, mean, 5}};
  const ThreadHook hook = team_hook(5, run_team_and_tell_its_size);
  for (const auto& [n, p, mask, members] : cases) {
    const std::vector<Real> x(static_cast<size_t>(n * p), Real{1});
    std::vector<Real> means(static_cast<size_t>(p)), matrix(4);
    Task<Real> task(p, n, QOR_SS_BY_VARIABLE, x.data());
    task.set(QOR_SS_MEAN, means.data());
    task.set(QOR_SS_COV, matrix.data());
    task.set_number(QOR_SS_COV_STORAGE, 0);
    last_team_size = 0;
    ASSERT_EQ(Api<Real>::basic(task, mask, kFast, &hook), QOR_SS_OK);
    EXPECT_EQ(last_team_size, members) << "n " << n << " p " << p << " mask " << mask;
    EXPECT_EQ(means[0], 1);
  }
}

// One variable without weights fills registers with its observations: lengths around where that
// begins, and what is left over.
TYPED_TEST(Blocks, OneVariable) {
  const std::vector<int64_t> lengths = {255, 256, 263, 511, 512, 527};
  for (const auto& c : combinations(lengths, kBools, kMethods)) {
    const auto& [n, weighted, method] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    const auto s = small_sample<TypeParam>(n, 1, weighted);
    const Asked asked{.method = method, .mask = kVectors, .cuts = {7}};
    expect_near(compute(s, asked), exact_values(s, method), asked, 200);
  }
}

TYPED_TEST(Blocks, LayoutsHaveTheSameBits) {
  for (const auto& c : combinations(std::vector<int64_t>{1, 2, 7, 20}, kBools, kMethods)) {
    const auto& [p, weighted, method] = c;
    const auto s = small_sample<TypeParam>(400, p, weighted);
    // BLAS sums its blocks as it likes.
    Asked asked{.method = method, .mask = method == kOnePass ? kAll : kVectors};
    const auto by_observation = compute(s, asked);
    asked.layout = QOR_SS_BY_VARIABLE;
    EXPECT_EQ(compute(s, asked), by_observation) << ::testing::PrintToString(c);
  }
}

// The kernel inside does its work under a mode of its own and reports nothing.
TEST(BlocksOfDoubles, LeaveModeAndStatus) {
  const ModeScope flushing(QOR_MODE_FLUSH_DENORMALS);
  const uint32_t mode = _arkGetMode();
  _arkClearErrStatus();
  compute<double>({3, 2, {1, 5, 1, 6, 1, 7}}, {.mask = QOR_SS_ESTIMATE_CORRELATION});
  EXPECT_EQ(_arkGetMode(), mode);
  EXPECT_EQ(_arkGetErrStatus(), 0);
}

}  // namespace
}  // namespace qor::test
