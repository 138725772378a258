// Integration: the limits are searched block by block; each pair is put in order, cut at the ends
// of the partition where callbacks serve a part, and summed over the pieces between.

#include <algorithm>
#include <atomic>

#include "fitting/integrals.h"
#include "fitting/scratch.h"
#include "fitting/search.h"
#include "fitting/team.h"

namespace qor::fitting {
namespace {

constexpr int64_t kBufferOnStack = 2048;

// One array of limits.
template <class Real>
struct Limits {
  const Real* values;
  bool uniform;
  Search<Real> search;
};

template <class Real>
struct Integration {
  const DFTask& task;
  RangeRoutine<Real> routine;
  int64_t nlim;
  Limits<Real> left, right;
  Real* r;
  bool by_limit;  // layout of r
  IntegralCallbacks<Real> callbacks;

  std::atomic<int> status{QOR_DF_OK};
};

// The values and cells of a block of limits; values points to `expanded` when they are uniform.
template <class Real>
int search_limits(const Limits<Real>& limits, int64_t nlim, int64_t first, int64_t count,
                  Real* expanded, const Real** values, int32_t* cell) {
  *values = expanded;
  if (limits.uniform) {
    UniformSites<Real>(limits.values, nlim).expand(first, count, expanded);
  } else {
    *values = limits.values + first;
  }
  int32_t last_cell = 0;
  return std::min(limits.search.run(count, *values, &last_cell, cell), 0);
}

template <class Real>
int run_block(const Integration<Real>& call, int64_t number, Real* buffer) {
  Real expanded_left[block_size], expanded_right[block_size], sign[block_size];
  int32_t left_cell[block_size], right_cell[block_size];
  Range<Real> range[block_size];
  const int64_t first = number * block_size, ny = call.task.ny;
  const int64_t count = std::min(block_size, call.nlim - first);
  const Real *left, *right;
  int status = search_limits(call.left, call.nlim, first, count, expanded_left, &left, left_cell);
  if (status < 0) return status;
  status = search_limits(call.right, call.nlim, first, count, expanded_right, &right, right_cell);
  if (status < 0) return status;
  for (int64_t i = 0; i < count; ++i) {
    const bool ascending = right[i] >= left[i];
    sign[i] = ascending ? Real(1) : Real(-1);
    range[i] = ascending ? Range<Real>{left[i], right[i], left_cell[i], right_cell[i]}
                         : Range<Real>{right[i], left[i], right_cell[i], left_cell[i]};
  }
  for (int64_t f = 0; f < ny; ++f) {
    Real* out = call.by_limit ? buffer + f * block_size : call.r + f * call.nlim + first;
    status = call.routine(call.task, call.callbacks, f, count, range, out);
    if (status < 0) return status;
    for (int64_t i = 0; i < count; ++i) out[i] *= sign[i];
    if (!call.by_limit) continue;
    for (int64_t i = 0; i < count; ++i) call.r[(first + i) * ny + f] = out[i];
  }
  return QOR_DF_OK;
}

template <class Real>
int run_blocks(Integration<Real>& call, const ThreadHook* hook) {
  const int64_t threads = threads_for(hook, call.nlim);
  const int64_t part =
      call.by_limit ? counted_product(std::max<int64_t>(call.task.ny, 0), block_size) : 0;
  const Scratch<Real, kBufferOnStack> buffer(counted_product(part, threads));
  if (buffer.data() == nullptr) return QOR_DF_NO_MEMORY;
  auto work = [&](int64_t first, int64_t end, int64_t slice) {
    for (int64_t b = first; b < end && call.status == QOR_DF_OK; ++b) {
      const int status = run_block(call, b, buffer.data() + slice * part);
      int none = QOR_DF_OK;
      if (status < 0) call.status.compare_exchange_strong(none, status);
    }
  };
  share_blocks(hook, threads, block_count(call.nlim), work);
  return call.status;
}

// An entry's arguments but for the task and the callbacks of the parts.
template <class Real>
struct Arguments {
  int64_t nlim;
  const Real* llim;
  int64_t llimhint;
  const Real* rlim;
  int64_t rlimhint;
  const Real *ldatahint, *rdatahint;
  Real* r;
  int64_t rhint;
  UserSearch<Real> search;
  void* search_params;
  const ThreadHook* hook;
};

template <class Real>
int choose_limits(const DFTask& task, const Real* values, int64_t hint, const Real* data_hint,
                  const Arguments<Real>& a, Limits<Real>* limits) {
  limits->values = values;
  limits->uniform = (hint & QOR_DF_UNIFORM_SITES) != 0;
  const SiteForm<Real> form{hint, limits->uniform ? values : nullptr, data_hint};
  return choose_search(task, form, a.search, a.search_params, &limits->search);
}

template <class Real>
int integrate(const DFTask* task, const Arguments<Real>& a,
              const IntegralCallbacks<Real>& callbacks) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  const Interpolant kind = interpolant_of(task->s_order, task->s_type);
  const auto routine = routine_for<Real>(*task);
  if (routine == nullptr || (kind == Interpolant::user && !callbacks.all())) {
    return QOR_DF_BAD_TYPE;
  }
  Limits<Real> left, right;
  int status = choose_limits(*task, a.llim, a.llimhint, a.ldatahint, a, &left);
  if (status != QOR_DF_OK) return status;
  status = choose_limits(*task, a.rlim, a.rlimhint, a.rdatahint, a, &right);
  if (status != QOR_DF_OK) return status;
  const bool by_limit = a.rhint == QOR_DF_INTERLEAVED;
  if (!by_limit && !is_storage_form(a.rhint)) return QOR_DF_BAD_INTEGRAL_R_HINT;
  status = check_arrays(*task, arrays_of(kind));
  if (status != QOR_DF_OK || a.nlim <= 0) return status;
  Integration<Real> call{*task, routine, a.nlim, left, right, a.r, by_limit, callbacks};
  return run_blocks(call, a.hook);
}

}  // namespace
}  // namespace qor::fitting

int qor_df_kernel_dDFIntegrate1D(const DFTask* task, int64_t, int64_t nlim, const double* llim,
                                 int64_t llimhint, const double* rlim, int64_t rlimhint,
                                 const double* ldatahint, const double* rdatahint, double* r,
                                 int64_t rhint, qor_df_dintegrals le_cb, void* le_params,
                                 qor_df_dintegrals re_cb, void* re_params, qor_df_dintegrals i_cb,
                                 void* i_params, qor_df_dsearch search_cb, void* search_params,
                                 const ThreadHook* hook) {
  using namespace qor::fitting;
  const Arguments<double> a{nlim,      llim, llimhint, rlim,      rlimhint,      ldatahint,
                            rdatahint, r,    rhint,    search_cb, search_params, hook};
  return integrate(task, a, {{le_cb, le_params}, {re_cb, re_params}, {i_cb, i_params}});
}

int qor_df_kernel_sDFIntegrate1D(const DFTask* task, int64_t, int64_t nlim, const float* llim,
                                 int64_t llimhint, const float* rlim, int64_t rlimhint,
                                 const float* ldatahint, const float* rdatahint, float* r,
                                 int64_t rhint, qor_df_sintegrals le_cb, void* le_params,
                                 qor_df_sintegrals re_cb, void* re_params, qor_df_sintegrals i_cb,
                                 void* i_params, qor_df_ssearch search_cb, void* search_params,
                                 const ThreadHook* hook) {
  using namespace qor::fitting;
  const Arguments<float> a{nlim,      llim, llimhint, rlim,      rlimhint,      ldatahint,
                           rdatahint, r,    rhint,    search_cb, search_params, hook};
  return integrate(task, a, {{le_cb, le_params}, {re_cb, re_params}, {i_cb, i_params}});
}
