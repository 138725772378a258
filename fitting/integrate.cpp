// Integration: the limits are searched block by block; each pair is put in order, cut at the ends
// of the partition where callbacks serve a part, and summed over the pieces between.

#include <algorithm>
#include <atomic>

#include "fitting/integrands.h"
#include "fitting/interpolant.h"
#include "fitting/scratch.h"
#include "fitting/search.h"
#include "fitting/team.h"

namespace qor::fitting {
namespace {

constexpr int64_t kBufferOnStack = 2048;

template <class Real>
using UserIntegrals = int (*)(const int64_t*, const Real*, const Real*, Real*, void*, void*);

template <class Real>
struct Callback {
  UserIntegrals<Real> routine;
  void* params;
};

template <class Real>
struct Callbacks {
  Callback<Real> left, right, inside;

  bool all() const {
    return left.routine != nullptr && right.routine != nullptr && inside.routine != nullptr;
  }
  bool any() const {
    return left.routine != nullptr || right.routine != nullptr || inside.routine != nullptr;
  }
};

// One array of limits.
template <class Real>
struct Limits {
  const Real* values;
  bool uniform;
  Search<Real> search;
};

// A pair of limits in ascending order, with their cells.
template <class Real>
struct Range {
  Real lower, upper;
  int32_t lower_cell, upper_cell;
};

template <class Real>
struct Integration;

// Integrals of one function over `count` ranges.
template <class Real>
using RangeRoutine = int (*)(const Integration<Real>& call, int64_t function, int64_t count,
                             const Range<Real>* range, Real* out);

template <class Real>
struct Integration {
  const DFTask& task;
  RangeRoutine<Real> routine;
  int64_t nlim;
  Limits<Real> left, right;
  Real* r;
  bool by_limit;  // layout of r
  Callbacks<Real> callbacks;

  std::atomic<int> status{QOR_DF_OK};
};

// The integral over a part: the user's, or else that of the spline.
template <class Real, class Spline>
int integrate_part(const Callback<Real>& callback, Real lower, Real upper, Spline spline,
                   Real* sum) {
  Real value = 0;
  int status = QOR_DF_OK;
  if (callback.routine != nullptr) {
    const int64_t one = 1;
    status = callback.routine(&one, &lower, &upper, &value, callback.params, nullptr);
  } else {
    value = spline(lower, upper);
  }
  *sum += value;
  return std::min(status, 0);
}

// The parts left of the partition, inside and right of it, in this order.
template <class Real, class Pieces, class Integrand>
int integrate_parts(const Integration<Real>& call, const Pieces& pieces, const Integrand& f,
                    Real first, Real last, const Range<Real>& range, Real* out) {
  const int64_t n = call.task.nx, end = pieces.count() - 1;
  const Callbacks<Real>& user = call.callbacks;
  Real sum = 0;
  int status = QOR_DF_OK;
  if (range.lower_cell < 1) {
    status = integrate_part(
        user.left, range.lower, std::min(range.upper, first),
        [&](Real l, Real u) { return integrate_pieces(pieces, f, l, 0, u, 0); }, &sum);
  }
  if (status == QOR_DF_OK && range.lower_cell < n && range.upper_cell > 0) {
    const bool from_first = range.lower_cell < 1, to_last = range.upper_cell >= n;
    const Real lower = from_first ? first : range.lower, upper = to_last ? last : range.upper;
    status = integrate_part(
        user.inside, lower, upper,
        [&](Real l, Real u) {
          const int64_t from = from_first ? 0 : pieces.find(l, range.lower_cell);
          const auto inner = static_cast<int32_t>(n - 1);
          const int64_t to = pieces.find(u, to_last ? inner : range.upper_cell);
          return integrate_pieces(pieces, f, l, from, u, to);
        },
        &sum);
  }
  if (status == QOR_DF_OK && range.upper_cell >= n) {
    status = integrate_part(
        user.right, std::max(range.lower, last), range.upper,
        [&](Real l, Real u) { return integrate_pieces(pieces, f, l, end, u, end); }, &sum);
  }
  *out = sum;
  return status;
}

template <class Real, class Pieces, class Integrand>
int integrate_ranges(const Integration<Real>& call, int64_t function, int64_t count,
                     const Range<Real>* range, Real* out) {
  const Pieces pieces(call.task);
  const Integrand f(call.task, function);
  const Real* x = partition_of<Real>(call.task);
  const Real first = x[0], last = is_uniform(call.task) ? x[1] : x[call.task.nx - 1];
  const bool cut = call.callbacks.any();
  for (int64_t i = 0; i < count; ++i) {
    const Range<Real>& g = range[i];
    if (cut) {
      const int status = integrate_parts(call, pieces, f, first, last, g, out + i);
      if (status < 0) return status;
    } else {
      out[i] = integrate_pieces(pieces, f, g.lower, pieces.find(g.lower, g.lower_cell), g.upper,
                                pieces.find(g.upper, g.upper_cell));
    }
  }
  return QOR_DF_OK;
}

// The user's functions have no pieces of their own: every part goes to a callback.
template <class Real>
struct NoIntegrand {
  NoIntegrand(const DFTask&, int64_t) {}
  Real primitive(int64_t, Real) const { return 0; }
};

template <class Real, class Partition>
RangeRoutine<Real> routine_on(const DFTask& task, Interpolant interpolant) {
  using Cells = CellPieces<Partition>;
  using Steps = StepPieces<Partition>;
  switch (interpolant) {
    case Interpolant::polynomial:
      if (task.s_order == 2) return integrate_ranges<Real, Cells, PolynomialIntegrand<Real, 2>>;
      if (task.s_order == 3) return integrate_ranges<Real, Cells, PolynomialIntegrand<Real, 3>>;
      if (task.s_order == 4) return integrate_ranges<Real, Cells, PolynomialIntegrand<Real, 4>>;
      return integrate_ranges<Real, Cells, AnyPolynomialIntegrand<Real>>;
    case Interpolant::polynomial_on_knots:
      return integrate_ranges<Real, KnotPieces<Real>, PolynomialIntegrand<Real, 3>>;
    case Interpolant::step_right_continuous:
      return integrate_ranges<Real, Steps, StepIntegrand<Real, false>>;
    case Interpolant::step_left_continuous:
      return integrate_ranges<Real, Steps, StepIntegrand<Real, true>>;
    case Interpolant::user:
      return integrate_ranges<Real, Cells, NoIntegrand<Real>>;
    default:
      return nullptr;
  }
}

template <class Real>
RangeRoutine<Real> routine_for(const DFTask& task) {
  const Interpolant interpolant = interpolant_of(task.s_order, task.s_type);
  return is_uniform(task) ? routine_on<Real, UniformPartition<Real>>(task, interpolant)
                          : routine_on<Real, Breakpoints<Real>>(task, interpolant);
}

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
    status = call.routine(call, f, count, range, out);
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
int integrate(const DFTask* task, const Arguments<Real>& a, const Callbacks<Real>& callbacks) {
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
  status = check_arrays(*task, kind);
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
