// The fitting entries of both precisions under one name, and a task for the length of a scope.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "qor/fitting.h"

namespace qor::test {

template <class Real>
struct Api;

// Of the precision with this letter.
#define QOR_FITTING_ENTRIES(Real, p)                                                         \
  template <>                                                                                \
  struct Api<Real> {                                                                         \
    using Search = qor_df_##p##search;                                                       \
    using Values = qor_df_##p##values;                                                       \
    using Integrals = qor_df_##p##integrals;                                                 \
    static constexpr auto new_task = qor_df_kernel_##p##NewTask1D;                           \
    static constexpr auto edit_spline = qor_df_kernel_##p##EditPPSpline1D;                   \
    static constexpr auto edit_pointer = qor_df_kernel_##p##EditPtr;                         \
    static constexpr auto edit_entry = qor_df_kernel_##p##EditIdxPtr;                        \
    static constexpr auto query_pointer = qor_df_kernel_##p##QueryPtr;                       \
    static constexpr auto query_entry = qor_df_kernel_##p##QueryIdxPtr;                      \
    static constexpr auto linear = qor_df_kernel_##p##DFLinearSpline1D;                      \
    static constexpr auto quadratic = qor_df_kernel_##p##DFQuadraticSpline1D;                \
    static constexpr auto natural = qor_df_kernel_##p##DFNaturalCubicSpline1D;               \
    static constexpr auto by_second = qor_df_kernel_##p##DFDefaultCubicSpline1D;             \
    static constexpr auto hermite = qor_df_kernel_##p##DFHermiteCubicSpline1D;               \
    static constexpr auto bessel = qor_df_kernel_##p##DFBesselCubicSpline1D;                 \
    static constexpr auto akima = qor_df_kernel_##p##DFAkimaCubicSpline1D;                   \
    static constexpr auto hyman = qor_df_kernel_##p##DFHymanCubicSpline1D;                   \
    static constexpr auto search = qor_df_kernel_##p##DFSearch1D;                            \
    static constexpr auto uniform_search = qor_df_kernel_##p##DFUniformSearch1D;             \
    static constexpr auto uniform_search32 = qor_df_kernel_##p##DFUniformSearch1D32;         \
    static constexpr auto quasi_search = qor_df_kernel_##p##DFQuasiUniformSearch1D;          \
    static constexpr auto quasi_search32 = qor_df_kernel_##p##DFQuasiUniformSearch1D32;      \
    static constexpr auto sorted_search = qor_df_kernel_##p##DFSortedSearch1D;               \
    static constexpr auto sorted_search32 = qor_df_kernel_##p##DFSortedSearch1D32;           \
    static constexpr auto hybrid_search = qor_df_kernel_##p##DFHybridSearch1D;               \
    static constexpr auto hybrid_search32 = qor_df_kernel_##p##DFHybridSearch1D32;           \
    static constexpr auto peak_search = qor_df_kernel_##p##DFPeakSearch1D;                   \
    static constexpr auto peak_search32 = qor_df_kernel_##p##DFPeakSearch1D32;               \
    static constexpr auto user_search = qor_df_kernel_##p##DFUserDefSearch1D;                \
    static constexpr auto user_search32 = qor_df_kernel_##p##DFUserDefSearch1D32;            \
    static constexpr auto uniform_user_search = qor_df_kernel_##p##DFUniUserDefSearch1D;     \
    static constexpr auto uniform_user_search32 = qor_df_kernel_##p##DFUniUserDefSearch1D32; \
    static constexpr auto interpolate = qor_df_kernel_##p##DFInterpolate1D;                  \
    static constexpr auto integrate = qor_df_kernel_##p##DFIntegrate1D;                      \
  };

QOR_FITTING_ENTRIES(double, d)
QOR_FITTING_ENTRIES(float, s)
#undef QOR_FITTING_ENTRIES

using Kernel = int (*)(DFTask*, int64_t, int64_t, const ThreadHook*);

template <class Real>
class Task {
 public:
  Task(int64_t nx, const Real* x, int64_t xhint, int64_t ny = 0, const Real* y = nullptr,
       int64_t yhint = 0, int32_t int_width = 1) {
    EXPECT_EQ(Api<Real>::new_task(&task_, nx, x, xhint, ny, y, yhint, int_width), QOR_DF_OK);
  }
  ~Task() { qor_df_kernel_DeleteTask(&task_); }
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;
  operator DFTask*() const { return task_; }

  int spline(int64_t order, int64_t type, Real* c, int64_t bc_type = 0, const Real* bc = nullptr,
             int64_t ic_type = 0, const Real* ic = nullptr) {
    return Api<Real>::edit_spline(task_, order, type, bc_type, bc, ic_type, ic, c, 0);
  }

  struct Sites {
    int64_t type = 0, hint = 0;
    std::vector<int64_t> derivatives = {};
    const Real* data_hint = nullptr;
    int64_t layout = 0;
    int32_t* cell = nullptr;
    typename Api<Real>::Values left = nullptr, right = nullptr, inside = nullptr;
    void* params = nullptr;
    typename Api<Real>::Search search = nullptr;
    const ThreadHook* hook = nullptr;
  };
  int interpolate(int64_t nsite, const Real* site, Real* r, const Sites& s) const {
    return Api<Real>::interpolate(
        task_, s.type, 0, nsite, site, s.hint, static_cast<int64_t>(s.derivatives.size()),
        s.derivatives.empty() ? nullptr : s.derivatives.data(), s.data_hint, r, s.layout, s.cell,
        s.left, s.params, s.right, s.params, s.inside, s.params, s.search, s.params, s.hook);
  }
  int interpolate(const std::vector<Real>& site, Real* r, const Sites& s = {}) const {
    return interpolate(static_cast<int64_t>(site.size()), site.data(), r, s);
  }

  struct Limits {
    int64_t left_hint = 0, right_hint = 0;
    const Real *left_data_hint = nullptr, *right_data_hint = nullptr;
    int64_t layout = 0;
    typename Api<Real>::Integrals left = nullptr, right = nullptr, inside = nullptr;
    void* params = nullptr;
    typename Api<Real>::Search search = nullptr;
    const ThreadHook* hook = nullptr;
  };
  int integrate(int64_t nlim, const Real* llim, const Real* rlim, Real* r,
                const Limits& s = {}) const {
    return Api<Real>::integrate(task_, 0, nlim, llim, s.left_hint, rlim, s.right_hint,
                                s.left_data_hint, s.right_data_hint, r, s.layout, s.left, s.params,
                                s.right, s.params, s.inside, s.params, s.search, s.params, s.hook);
  }

 private:
  DFTask* task_ = nullptr;
};

template <class Real>
class BothPrecisions : public testing::Test {};
using Precisions = testing::Types<double, float>;

}  // namespace qor::test
