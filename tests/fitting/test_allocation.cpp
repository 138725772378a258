// Allocation failure: a status at each allocation, nothing written, nothing lost. Sizes that do not
// fit into memory, or into a number, fail in the same way.

#include <functional>

#include "tests/fitting/spline_case.h"
#include "tests/fitting/teams.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

// Runs with the first, the second ... allocation failing until none fails; how many there were.
long failures_survived(const std::function<int()>& run) {
  const long before = live_blocks();
  for (long failing = 0;; ++failing) {
    int status;
    bool reached;
    {
      const FailingAllocations guard(failing);
      status = run();
      reached = guard.asked() > failing;
    }
    EXPECT_EQ(live_blocks(), before);
    EXPECT_EQ(status, reached ? QOR_DF_NO_MEMORY : QOR_DF_OK);
    if (!reached || status != QOR_DF_NO_MEMORY) return failing;
  }
}

template <class Real>
class Allocation : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Allocation, Precisions);

TYPED_TEST(Allocation, OfTasks) {
  using Real = TypeParam;
  using A = Api<Real>;
  Real x[20], y[40] = {}, c[400];
  for (int i = 0; i < 20; ++i) x[i] = static_cast<Real>(i);
  EXPECT_EQ(failures_survived([&] {
              DFTask* task = nullptr;
              const int status = A::new_task(&task, 20, x, 1, 2, y, 0, 1);
              EXPECT_EQ(task == nullptr, status != 0);
              if (task != nullptr) qor_df_kernel_DeleteTask(&task);
              return status;
            }),
            3);
  Task<Real> task(20, x, 1, 2, y);
  void* read = nullptr;
  ASSERT_EQ(task.spline(4, 5, c), 0);
  const auto replaces = [&](const std::function<int()>& edit) {
    EXPECT_EQ(failures_survived(edit), 1);
    EXPECT_EQ(A::query_entry(task, QOR_DF_Y, 1, &read), 0);
    EXPECT_EQ(read, y + 20);
    EXPECT_EQ(A::query_entry(task, QOR_DF_SCOEFF, 0, &read), 0);
    EXPECT_EQ(read, c);
  };
  replaces([&] { return A::edit_pointer(task, QOR_DF_Y, y); });
  replaces([&] { return A::edit_pointer(task, QOR_DF_SCOEFF, c); });
  replaces([&] { return task.spline(4, 5, c); });
  replaces([&] { return qor_df_kernel_iEditVal(task, QOR_DF_X_HINT, 1); });
}

TYPED_TEST(Allocation, OfKernels) {
  using Real = TypeParam;
  constexpr int64_t n = 4200;
  std::vector<Real> x, y, knots = {0}, given(n, 0);
  for (int64_t i = 0; i < n; ++i) {
    x.push_back(static_cast<Real>(i));
    y.push_back(static_cast<Real>(i % 5));
    if (i > 0) knots.push_back(static_cast<Real>(i) - Real(0.5));
  }
  knots.push_back(x.back());
  for (const SplineShape& shape : spline_shapes()) {
    SCOPED_TRACE(shape.name);
    std::vector<Real> c(static_cast<size_t>(4 * n));
    Task<Real> task(n, x.data(), 1, 1, y.data());
    const bool on_knots = shape.kind == SplineKind::knot_quadratic;
    const bool none = shape.kind == SplineKind::midpoint_quadratic;
    ASSERT_EQ(task.spline(shape.order, shape.s_type, c.data(), shape.boundaries[0], given.data(),
                          none ? 0 : 1,
                          none       ? nullptr
                          : on_knots ? knots.data()
                                     : given.data()),
              0);
    const bool linear = shape.kind == SplineKind::linear;
    EXPECT_EQ(failures_survived([&] {
                std::fill(c.begin(), c.end(), Real(77));
                const int status = kernel_of<Real>(shape.kind)(task, 0, 0, nullptr);
                EXPECT_EQ(c[0] == 77, status != 0);
                return status;
              }),
              linear ? 0 : 1);
  }
}

TYPED_TEST(Allocation, OfSearchAndResults) {
  using Real = TypeParam;
  const Real x[4] = {0, 1, 2, 3}, ends[2] = {0, 3};
  std::vector<Real> y(4 * 9), c(9 * 12, 1), site(5000, 1), r(5000 * 18);
  std::vector<int32_t> cell(5000);
  Task<Real> task(4, x, 1, 9, y.data());
  ASSERT_EQ(task.spline(4, 5, c.data()), 0);
  const auto search = [&](int64_t nsite) {
    return Api<Real>::search(task, 0, nsite, ends, 4, nullptr, cell.data(), nullptr, nullptr,
                             nullptr);
  };
  EXPECT_EQ(failures_survived([&] { return search(4096); }), 0);
  EXPECT_EQ(failures_survived([&] { return search(4097); }), 1);
  const ThreadHook hook = hook_of<3>(run_in_order);
  for (const int64_t layout : {16, 32, 256}) {
    const long allocations = layout == 16 ? 0 : 1;
    EXPECT_EQ(failures_survived([&] {
                return task.interpolate(site, r.data(),
                                        {.derivatives = {1, 1}, .layout = layout, .hook = &hook});
              }),
              allocations);
    if (layout == 256) continue;
    EXPECT_EQ(failures_survived([&] {
                return task.integrate(5000, site.data(), site.data(), r.data(), {.layout = layout});
              }),
              allocations);
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
    DFTask* task = nullptr;
    EXPECT_EQ(A::new_task(&task, 2, ends, 4, many, y, 0, 1), QOR_DF_NO_MEMORY);
    ASSERT_EQ(A::new_task(&task, many, ends, 4, 1, y, 32, 1), QOR_DF_OK);
    EXPECT_EQ(A::edit_spline(task, 4, 5, 2, nullptr, 0, nullptr, c, 128), QOR_DF_OK);
    EXPECT_EQ(A::search(task, 0, many, ends, 4, nullptr, cell, nullptr, nullptr, nullptr),
              QOR_DF_NO_MEMORY);
    EXPECT_EQ(A::natural(task, 0, 0, nullptr), QOR_DF_NO_MEMORY);
    A::edit_pointer(task, QOR_DF_IC, c);
    EXPECT_EQ(A::by_second(task, 0, 0, nullptr), QOR_DF_NO_MEMORY);
    EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_BC_TYPE, 128), 0);
    A::edit_pointer(task, QOR_DF_BC, c);
    EXPECT_EQ(A::quadratic(task, 0, 0, nullptr), QOR_DF_NO_MEMORY);
    EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_NY, many), 0);
    EXPECT_EQ(A::edit_entry(task, QOR_DF_SCOEFF, many - 1, c), QOR_DF_NO_MEMORY);
    EXPECT_EQ(A::edit_pointer(task, QOR_DF_SCOEFF, c), QOR_DF_NO_MEMORY);
    EXPECT_EQ(
        A::interpolate(task, 0, 0, 1, ends, 0, 0, nullptr, nullptr, y, 32, nullptr, nullptr,
                       nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
        QOR_DF_NO_MEMORY);
    EXPECT_EQ(A::integrate(task, 0, 1, ends, 0, ends, 0, nullptr, nullptr, y, 32, nullptr, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              QOR_DF_NO_MEMORY);
    qor_df_kernel_DeleteTask(&task);
  }
  EXPECT_EQ(live_blocks(), before);
}

}  // namespace
}  // namespace qor::test
