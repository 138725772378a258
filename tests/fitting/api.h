// The fitting entries of both precisions under one name, and a task for the length of a scope.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "qor/fitting.h"

namespace qor::test {

template <class Real>
struct Api;

template <>
struct Api<double> {
  using Search = qor_df_dsearch;
  using Values = qor_df_dvalues;
  using Integrals = qor_df_dintegrals;
  static constexpr auto new_task = qor_df_kernel_dNewTask1D;
  static constexpr auto edit_spline = qor_df_kernel_dEditPPSpline1D;
  static constexpr auto edit_pointer = qor_df_kernel_dEditPtr;
  static constexpr auto edit_entry = qor_df_kernel_dEditIdxPtr;
  static constexpr auto query_pointer = qor_df_kernel_dQueryPtr;
  static constexpr auto query_entry = qor_df_kernel_dQueryIdxPtr;
  static constexpr auto linear = qor_df_kernel_dDFLinearSpline1D;
  static constexpr auto quadratic = qor_df_kernel_dDFQuadraticSpline1D;
  static constexpr auto natural = qor_df_kernel_dDFNaturalCubicSpline1D;
  static constexpr auto by_second = qor_df_kernel_dDFDefaultCubicSpline1D;
  static constexpr auto hermite = qor_df_kernel_dDFHermiteCubicSpline1D;
  static constexpr auto bessel = qor_df_kernel_dDFBesselCubicSpline1D;
  static constexpr auto akima = qor_df_kernel_dDFAkimaCubicSpline1D;
  static constexpr auto hyman = qor_df_kernel_dDFHymanCubicSpline1D;
  static constexpr auto search = qor_df_kernel_dDFSearch1D;
  static constexpr auto uniform_search = qor_df_kernel_dDFUniformSearch1D;
  static constexpr auto uniform_search32 = qor_df_kernel_dDFUniformSearch1D32;
  static constexpr auto quasi_search = qor_df_kernel_dDFQuasiUniformSearch1D;
  static constexpr auto quasi_search32 = qor_df_kernel_dDFQuasiUniformSearch1D32;
  static constexpr auto sorted_search = qor_df_kernel_dDFSortedSearch1D;
  static constexpr auto sorted_search32 = qor_df_kernel_dDFSortedSearch1D32;
  static constexpr auto hybrid_search = qor_df_kernel_dDFHybridSearch1D;
  static constexpr auto hybrid_search32 = qor_df_kernel_dDFHybridSearch1D32;
  static constexpr auto peak_search = qor_df_kernel_dDFPeakSearch1D;
  static constexpr auto peak_search32 = qor_df_kernel_dDFPeakSearch1D32;
  static constexpr auto user_search = qor_df_kernel_dDFUserDefSearch1D;
  static constexpr auto user_search32 = qor_df_kernel_dDFUserDefSearch1D32;
  static constexpr auto uniform_user_search = qor_df_kernel_dDFUniUserDefSearch1D;
  static constexpr auto uniform_user_search32 = qor_df_kernel_dDFUniUserDefSearch1D32;
  static constexpr auto interpolate = qor_df_kernel_dDFInterpolate1D;
  static constexpr auto integrate = qor_df_kernel_dDFIntegrate1D;
};

template <>
struct Api<float> {
  using Search = qor_df_ssearch;
  using Values = qor_df_svalues;
  using Integrals = qor_df_sintegrals;
  static constexpr auto new_task = qor_df_kernel_sNewTask1D;
  static constexpr auto edit_spline = qor_df_kernel_sEditPPSpline1D;
  static constexpr auto edit_pointer = qor_df_kernel_sEditPtr;
  static constexpr auto edit_entry = qor_df_kernel_sEditIdxPtr;
  static constexpr auto query_pointer = qor_df_kernel_sQueryPtr;
  static constexpr auto query_entry = qor_df_kernel_sQueryIdxPtr;
  static constexpr auto linear = qor_df_kernel_sDFLinearSpline1D;
  static constexpr auto quadratic = qor_df_kernel_sDFQuadraticSpline1D;
  static constexpr auto natural = qor_df_kernel_sDFNaturalCubicSpline1D;
  static constexpr auto by_second = qor_df_kernel_sDFDefaultCubicSpline1D;
  static constexpr auto hermite = qor_df_kernel_sDFHermiteCubicSpline1D;
  static constexpr auto bessel = qor_df_kernel_sDFBesselCubicSpline1D;
  static constexpr auto akima = qor_df_kernel_sDFAkimaCubicSpline1D;
  static constexpr auto hyman = qor_df_kernel_sDFHymanCubicSpline1D;
  static constexpr auto search = qor_df_kernel_sDFSearch1D;
  static constexpr auto uniform_search = qor_df_kernel_sDFUniformSearch1D;
  static constexpr auto uniform_search32 = qor_df_kernel_sDFUniformSearch1D32;
  static constexpr auto quasi_search = qor_df_kernel_sDFQuasiUniformSearch1D;
  static constexpr auto quasi_search32 = qor_df_kernel_sDFQuasiUniformSearch1D32;
  static constexpr auto sorted_search = qor_df_kernel_sDFSortedSearch1D;
  static constexpr auto sorted_search32 = qor_df_kernel_sDFSortedSearch1D32;
  static constexpr auto hybrid_search = qor_df_kernel_sDFHybridSearch1D;
  static constexpr auto hybrid_search32 = qor_df_kernel_sDFHybridSearch1D32;
  static constexpr auto peak_search = qor_df_kernel_sDFPeakSearch1D;
  static constexpr auto peak_search32 = qor_df_kernel_sDFPeakSearch1D32;
  static constexpr auto user_search = qor_df_kernel_sDFUserDefSearch1D;
  static constexpr auto user_search32 = qor_df_kernel_sDFUserDefSearch1D32;
  static constexpr auto uniform_user_search = qor_df_kernel_sDFUniUserDefSearch1D;
  static constexpr auto uniform_user_search32 = qor_df_kernel_sDFUniUserDefSearch1D32;
  static constexpr auto interpolate = qor_df_kernel_sDFInterpolate1D;
  static constexpr auto integrate = qor_df_kernel_sDFIntegrate1D;
};

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
