// The fitting entries of both precisions under one name, and a task for the length of a scope.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "qor/fitting.h"
#include "qor/services.h"

namespace qor::test {

template <class Real>
struct Api;

// An entry and its second name.
#define QOR_BOTH_NAMES(entry) \
  std::array { entry, entry##32 }

// Of the precision with this letter.
#define QOR_FITTING_ENTRIES(Real, p)                                                             \
  template <>                                                                                    \
  struct Api<Real> {                                                                             \
    using Search = qor_df_##p##search;                                                           \
    using Values = qor_df_##p##values;                                                           \
    using Integrals = qor_df_##p##integrals;                                                     \
    static constexpr auto new_task = qor_df_kernel_##p##NewTask1D;                               \
    static constexpr auto edit_spline = qor_df_kernel_##p##EditPPSpline1D;                       \
    static constexpr auto edit_pointer = qor_df_kernel_##p##EditPtr;                             \
    static constexpr auto edit_entry = qor_df_kernel_##p##EditIdxPtr;                            \
    static constexpr auto query_pointer = qor_df_kernel_##p##QueryPtr;                           \
    static constexpr auto query_entry = qor_df_kernel_##p##QueryIdxPtr;                          \
    static constexpr auto linear = qor_df_kernel_##p##DFLinearSpline1D;                          \
    static constexpr auto quadratic = qor_df_kernel_##p##DFQuadraticSpline1D;                    \
    static constexpr auto natural = qor_df_kernel_##p##DFNaturalCubicSpline1D;                   \
    static constexpr auto by_second = qor_df_kernel_##p##DFDefaultCubicSpline1D;                 \
    static constexpr auto hermite = qor_df_kernel_##p##DFHermiteCubicSpline1D;                   \
    static constexpr auto bessel = qor_df_kernel_##p##DFBesselCubicSpline1D;                     \
    static constexpr auto akima = qor_df_kernel_##p##DFAkimaCubicSpline1D;                       \
    static constexpr auto hyman = qor_df_kernel_##p##DFHymanCubicSpline1D;                       \
    static constexpr auto search = qor_df_kernel_##p##DFSearch1D;                                \
    static constexpr auto uniform_search = QOR_BOTH_NAMES(qor_df_kernel_##p##DFUniformSearch1D); \
    static constexpr auto quasi_search =                                                         \
        QOR_BOTH_NAMES(qor_df_kernel_##p##DFQuasiUniformSearch1D);                               \
    static constexpr auto sorted_search = QOR_BOTH_NAMES(qor_df_kernel_##p##DFSortedSearch1D);   \
    static constexpr auto hybrid_search = QOR_BOTH_NAMES(qor_df_kernel_##p##DFHybridSearch1D);   \
    static constexpr auto peak_search = QOR_BOTH_NAMES(qor_df_kernel_##p##DFPeakSearch1D);       \
    static constexpr auto user_search = QOR_BOTH_NAMES(qor_df_kernel_##p##DFUserDefSearch1D);    \
    static constexpr auto uniform_user_search =                                                  \
        QOR_BOTH_NAMES(qor_df_kernel_##p##DFUniUserDefSearch1D);                                 \
    static constexpr auto interpolate = qor_df_kernel_##p##DFInterpolate1D;                      \
    static constexpr auto integrate = qor_df_kernel_##p##DFIntegrate1D;                          \
    static constexpr auto factor = p##dttrfb_4dfl;                                               \
    static constexpr auto solve = p##dttrsb_4dfl;                                                \
    static constexpr auto factor_and_solve = p##dtsvb_4dfl;                                      \
  };

QOR_FITTING_ENTRIES(double, d)
QOR_FITTING_ENTRIES(float, s)
#undef QOR_FITTING_ENTRIES
#undef QOR_BOTH_NAMES

// What stands in a table of a task.
inline const void* entry_of(DFTask* task, int64_t code, int64_t index) {
  void* read = &read;
  EXPECT_EQ(qor_df_kernel_dQueryIdxPtr(task, code, index, &read), QOR_DF_OK);
  return read;
}

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
  // An owner of no task, for the calls that are to say so.
  Task() = default;

  int spline(int64_t order, int64_t type, Real* c, int64_t bc_type = 0, const Real* bc = nullptr,
             int64_t ic_type = 0, const Real* ic = nullptr, int64_t hint = 0) const {
    return Api<Real>::edit_spline(task_, order, type, bc_type, bc, ic_type, ic, c, hint);
  }

  template <class Routine>
  struct Callback {
    Routine routine = nullptr;
    void* params = nullptr;
  };
  // What a call asks for beside sites or limits and results. A number is given where the sites are
  // but the ends of uniform ones.
  struct Sites {
    int64_t type = 0, hint = 0;
    std::vector<int64_t> derivatives = {};
    const Real* data_hint = nullptr;
    int64_t layout = 0;
    int32_t* cell = nullptr;
    Callback<typename Api<Real>::Values> left = {}, right = {}, inside = {};
    Callback<typename Api<Real>::Search> search = {};
    const ThreadHook* hook = nullptr;
    int64_t nsite = -1;
  };
  int search(const std::vector<Real>& site, int32_t* cell, const Sites& s = {}) const {
    return Api<Real>::search(task_, 0, number(s.nsite, site), site.data(), s.hint, s.data_hint,
                             cell, s.search.routine, s.search.params, nullptr);
  }
  int interpolate(const std::vector<Real>& site, Real* r, const Sites& s = {}) const {
    return Api<Real>::interpolate(task_, s.type, 0, number(s.nsite, site), site.data(), s.hint,
                                  number(-1, s.derivatives), s.derivatives.data(), s.data_hint, r,
                                  s.layout, s.cell, s.left.routine, s.left.params, s.right.routine,
                                  s.right.params, s.inside.routine, s.inside.params,
                                  s.search.routine, s.search.params, s.hook);
  }

  struct Limits {
    int64_t left_hint = 0, right_hint = 0;
    const Real *left_data_hint = nullptr, *right_data_hint = nullptr;
    int64_t layout = 0;
    Callback<typename Api<Real>::Integrals> left = {}, right = {}, inside = {};
    Callback<typename Api<Real>::Search> search = {};
    const ThreadHook* hook = nullptr;
    int64_t nlim = -1;
  };
  int integrate(const std::vector<Real>& l, const std::vector<Real>& u, Real* r,
                const Limits& s = {}) const {
    return Api<Real>::integrate(task_, 0, number(s.nlim, l), l.data(), s.left_hint, u.data(),
                                s.right_hint, s.left_data_hint, s.right_data_hint, r, s.layout,
                                s.left.routine, s.left.params, s.right.routine, s.right.params,
                                s.inside.routine, s.inside.params, s.search.routine,
                                s.search.params, s.hook);
  }

 private:
  template <class T>
  static int64_t number(int64_t given, const std::vector<T>& values) {
    return given < 0 ? static_cast<int64_t>(values.size()) : given;
  }
  DFTask* task_ = nullptr;
};

template <class Real>
class BothPrecisions : public testing::Test {};
using Precisions = testing::Types<double, float>;

}  // namespace qor::test
