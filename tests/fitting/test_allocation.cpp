// Allocation failure: a status at each allocation, nothing written, nothing lost. Sizes that do not
// fit into memory, or into a number, fail in the same way.

#include <functional>

#include "tests/fitting/spline_case.h"
#include "tests/support/services_interposer.h"
#include "tests/support/teams.h"

namespace qor::test {
namespace {

// How many allocations of the call failed and were told, one after the other.
long survived(const std::function<int()>& call) {
  return failures_survived(QOR_DF_NO_MEMORY, [&] { return call; });
}

template <class Real>
class Allocation : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Allocation, Precisions);

TYPED_TEST(Allocation, OfTasks) {
  using Real = TypeParam;
  using A = Api<Real>;
  Real x[20], y[40] = {}, c[400];
  for (int i = 0; i < 20; ++i) x[i] = static_cast<Real>(i);
  const auto make_and_delete = [&] {
    DFTask* task = nullptr;
    const int status = A::new_task(&task, 20, x, 1, 2, y, 0, 1);
    EXPECT_EQ(task == nullptr, status != 0);
    qor_df_kernel_DeleteTask(&task);
    return status;
  };
  EXPECT_EQ(survived(make_and_delete), 3);
  const Task<Real> task(20, x, 1, 2, y);
  ASSERT_EQ(task.spline(4, 5, c), 0);
  const std::function<int()> replacements[] = {
      [&] { return A::edit_pointer(task, QOR_DF_Y, y); },
      [&] { return A::edit_pointer(task, QOR_DF_SCOEFF, c); }, [&] { return task.spline(4, 5, c); },
      [&] { return qor_df_kernel_iEditVal(task, QOR_DF_X_HINT, 1); }};
  for (const auto& edit : replacements) {
    EXPECT_EQ(survived(edit), 1);
    EXPECT_EQ(entry_of(task, QOR_DF_Y, 1), y + 20);
    EXPECT_EQ(entry_of(task, QOR_DF_SCOEFF, 0), c);
  }
}

TYPED_TEST(Allocation, OfKernels) {
  using Real = TypeParam;
  constexpr int64_t n = 4200;
  std::vector<Real> x, y, knots, given(n, 0), c(4 * n);
  for (int64_t i = 0; i < n; ++i) {
    x.push_back(static_cast<Real>(i));
    y.push_back(static_cast<Real>(i % 5));
    knots.push_back(i > 0 ? static_cast<Real>(i) - Real(0.5) : 0);
  }
  knots.push_back(x.back());
  for (const SplineShape& shape : spline_shapes()) {
    SCOPED_TRACE(shape.name);
    const Task<Real> task(n, x.data(), 1, 1, y.data());
    ASSERT_EQ(set_spline(task, shape, shape.boundaries[0], given.data(), given, knots, c.data()),
              0);
    const auto construct = [&] {
      std::fill(c.begin(), c.end(), Real(77));
      const int status = kernel_of<Real>(shape.kind)(task, 0, 0, nullptr);
      EXPECT_EQ(c[0] == 77, status != 0);
      return status;
    };
    EXPECT_EQ(survived(construct), shape.is(Kind::linear) ? 0 : 1);
  }
}

TYPED_TEST(Allocation, OfSearchAndResults) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 3};
  std::vector<Real> y(4 * 9), c(9 * 12, 1), site(5000, 1), r(5000 * 18);
  std::vector<int32_t> cell(5000);
  const Task<Real> task(4, x, 1, 9, y.data());
  ASSERT_EQ(task.spline(4, 5, c.data()), 0);
  for (const int64_t nsite : {4096, 4097}) {
    const auto search = [&] {
      return task.search({0, 3}, cell.data(), {.hint = 4, .nsite = nsite});
    };
    EXPECT_EQ(survived(search), nsite - 4096);
  }
  const ThreadHook hook = hook_of<3>(run_in_order);
  for (const int64_t layout : {16, 32, 256}) {
    const auto interpolate = [&] {
      return task.interpolate(site, r.data(), {.layout = layout, .hook = &hook});
    };
    const auto integrate = [&] {
      return task.integrate(site, site, r.data(), {.layout = layout, .hook = &hook});
    };
    EXPECT_EQ(survived(interpolate), layout == 16 ? 0 : 1);
    if (layout == 256) continue;
    EXPECT_EQ(survived(integrate), layout == 16 ? 0 : 1);
  }
}

// No size wraps: what cannot be had is not had.
TYPED_TEST(Allocation, OfSizesBeyondMemory) {
  using Real = TypeParam;
  using A = Api<Real>;
  Real ends[2] = {0, 1}, y[2] = {}, c[2] = {};
  int32_t cell[1];
  const long before = live_blocks();
  for (const int64_t many : {INT64_MAX, INT64_MAX / 2, INT64_MAX / 8 + 2, int64_t{1} << 60}) {
    DFTask* none = nullptr;
    EXPECT_EQ(A::new_task(&none, 2, ends, 4, many, y, 0, 1), QOR_DF_NO_MEMORY);
    const Task<Real> task(many, ends, 4, 1, y, 32);
    EXPECT_EQ(task.spline(4, 5, c, 2, nullptr, 1, c, 128), QOR_DF_OK);
    EXPECT_EQ(task.search({0, 1}, cell, {.hint = 4, .nsite = many}), QOR_DF_NO_MEMORY);
    EXPECT_EQ(A::natural(task, 0, 0, nullptr), QOR_DF_NO_MEMORY);
    EXPECT_EQ(A::by_second(task, 0, 0, nullptr), QOR_DF_NO_MEMORY);
    EXPECT_EQ(task.spline(3, 0, c, 128, c, 0, nullptr, 128), QOR_DF_OK);
    EXPECT_EQ(A::quadratic(task, 0, 0, nullptr), QOR_DF_NO_MEMORY);
    EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_NY, many), 0);
    EXPECT_EQ(A::edit_entry(task, QOR_DF_SCOEFF, many - 1, c), QOR_DF_NO_MEMORY);
    EXPECT_EQ(A::edit_pointer(task, QOR_DF_SCOEFF, c), QOR_DF_NO_MEMORY);
    EXPECT_EQ(task.spline(0, 7, nullptr), QOR_DF_OK);  // of values in one array
    EXPECT_EQ(task.interpolate({0}, y, {.layout = 32}), QOR_DF_NO_MEMORY);
    EXPECT_EQ(task.integrate({0}, {1}, y, {.layout = 32}), QOR_DF_NO_MEMORY);
  }
  EXPECT_EQ(live_blocks(), before);
}

}  // namespace
}  // namespace qor::test
