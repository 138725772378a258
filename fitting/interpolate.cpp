// Interpolation: blocks of sites are searched, located once for all functions, evaluated function
// by function, and spread into the layout asked for.

#include "fitting/interpolate.h"

#include <algorithm>
#include <atomic>

#include "fitting/scratch.h"
#include "fitting/search.h"

namespace qor::fitting {

WantedDerivatives::WantedDerivatives(const DFTask& task, int64_t ndorder, const void* dorder)
    : wide_(task.int_width != 0),
      asked_(ndorder),
      flags_(ndorder > 0 ? dorder : nullptr),
      results_(0) {
  if (flags_ != nullptr) {
    for (int64_t order = 0; order < asked_; ++order) results_ += is_set(order) ? 1 : 0;
  }
  if (results_ == 0) {
    flags_ = nullptr;
    results_ = 1;
  }
}

namespace {

constexpr int64_t kBufferOnStack = 2048;

template <class Real>
using UserValues = int (*)(const int64_t*, const Real*, const int32_t*, Real*, void*, void*);

template <class Real>
struct Callback {
  UserValues<Real> routine;
  void* params;
};

// Callbacks left of the partition, right of it and inside.
template <class Real>
struct Callbacks {
  Callback<Real> left, right, inside;

  bool all() const {
    return left.routine != nullptr && right.routine != nullptr && inside.routine != nullptr;
  }
  bool any() const {
    return left.routine != nullptr || right.routine != nullptr || inside.routine != nullptr;
  }
  const Callback<Real>& of_cell(int32_t cell, int64_t nx) const {
    return cell < 1 ? left : cell >= nx ? right : inside;
  }
};

// What a call asks for.
template <class Real>
struct Interpolation {
  const DFTask& task;
  Interpolant interpolant;
  Search<Real> search;
  bool search_cells, keep_cells;
  int64_t nsite;
  const Real* site;
  bool uniform_sites;
  WantedDerivatives wanted;
  Real* r;
  int64_t rhint;
  int32_t* cell;
  Callbacks<Real> callbacks;

  std::atomic<int> status{QOR_DF_OK};

  int64_t buffer_part() const {
    return counted_product(counted_product(std::max<int64_t>(task.ny, 0), block_size),
                           wanted.results());
  }
};

// Parts of a block that one callback, or the interpolant, serves.
template <class Real>
int evaluate_parts(const Interpolation<Real>& call, const Block<Real>& block, int64_t function,
                   Real* out) {
  const int64_t nx = call.task.nx, nd = call.wanted.results();
  for (int64_t from = 0, to; from < block.count; from = to) {
    const Callback<Real>& callback = call.callbacks.of_cell(block.cell[from], nx);
    for (to = from + 1; to < block.count; ++to) {
      if (&call.callbacks.of_cell(block.cell[to], nx) != &callback) break;
    }
    const int64_t count = to - from;
    const int status = callback.routine != nullptr
                           ? callback.routine(&count, block.site + from, block.cell + from,
                                              out + from * nd, callback.params, nullptr)
                           : evaluate(call.task, call.interpolant, call.wanted,
                                      block.part(from, count), function, out + from * nd);
    if (status < 0) return status;
  }
  return QOR_DF_OK;
}

// Block results, site by result of each function, to their places in r.
template <class Real>
void spread(const Interpolation<Real>& call, int64_t first, int64_t count, const Real* buffer) {
  const int64_t ny = call.task.ny, nd = call.wanted.results();
  struct {
    int64_t site, function, result;
  } stride;
  switch (call.rhint) {
    case QOR_DF_INTERLEAVED:
      stride = {1, nd * call.nsite, call.nsite};
      break;
    case QOR_DF_BY_SITE:
      stride = {ny * nd, nd, 1};
      break;
    default:
      stride = {nd * ny, 1, ny};
      break;
  }
  Real* const r = call.r + first * stride.site;
  for (int64_t f = 0; f < ny; ++f) {
    const Real* from = buffer + f * block_size * nd;
    for (int64_t d = 0; d < nd; ++d) {
      Real* to = r + f * stride.function + d * stride.result;
      for (int64_t i = 0; i < count; ++i) to[i * stride.site] = from[i * nd + d];
    }
  }
}

template <class Real>
int evaluate_functions(const Interpolation<Real>& call, const Block<Real>& block, int64_t first,
                       Real* buffer) {
  const int64_t nd = call.wanted.results();
  for (int64_t f = 0; f < call.task.ny; ++f) {
    Real* out =
        buffer != nullptr ? buffer + f * block_size * nd : call.r + (f * call.nsite + first) * nd;
    int status;
    if (call.callbacks.any()) {
      if (buffer != nullptr) std::fill_n(out, block.count * nd, Real(0));
      status = evaluate_parts(call, block, f, out);
    } else {
      status = evaluate(call.task, call.interpolant, call.wanted, block, f, out);
    }
    if (status < 0) return status;
  }
  if (buffer != nullptr) spread(call, first, block.count, buffer);
  return QOR_DF_OK;
}

template <class Real>
int run_block(const Interpolation<Real>& call, int64_t number, Real* buffer, int32_t* last_cell) {
  Real expanded[block_size], distance[block_size];
  int32_t found[block_size], piece[block_size];
  const int64_t first = number * block_size;
  const int64_t count = std::min(block_size, call.nsite - first);
  const Real* site = expanded;
  if (call.uniform_sites) {
    UniformSites<Real>(call.site, call.nsite).expand(first, count, expanded);
  } else {
    site = call.site + first;
  }
  const bool callers_cells = !call.search_cells || call.keep_cells;
  int32_t* cell = callers_cells ? call.cell + first : found;
  if (call.search_cells) {
    *last_cell = call.search.begin_at(*last_cell, site[0]);
    const int status = call.search.run(count, site, last_cell, cell);
    if (status < 0) return status;
  }
  Block<Real> block{count, site, cell, piece, distance, nullptr};
  Stretches<Real> stretches;
  if (call.task.ny > 0 && is_polynomial(call.interpolant)) {
    const bool values = call.wanted.value_alone() && !call.callbacks.any();
    if (values && locate_stretches(call.task, call.interpolant, block, &stretches)) {
      block.stretches = &stretches;
    } else {
      locate(call.task, call.interpolant, block);
    }
  }
  return evaluate_functions(call, block, first, buffer);
}

template <class Real>
int run_blocks(Interpolation<Real>& call, const ThreadHook* hook) {
  const int64_t threads = threads_for(hook, call.nsite);
  const bool direct = call.rhint == QOR_DF_NO_HINT || call.rhint == QOR_DF_BY_FUNCTION ||
                      call.rhint == QOR_DF_FIRST_POINTER;
  const int64_t part = direct ? 0 : call.buffer_part();
  const Scratch<Real, kBufferOnStack> buffer(counted_product(part, threads));
  if (buffer.data() == nullptr) return QOR_DF_NO_MEMORY;
  auto work = [&](int64_t first, int64_t end, int64_t slice) {
    Real* own = direct ? nullptr : buffer.data() + slice * part;
    int32_t last_cell = 0;
    for (int64_t b = first; b < end && call.status == QOR_DF_OK; ++b) {
      const int status = run_block(call, b, own, &last_cell);
      int none = QOR_DF_OK;
      if (status < 0) call.status.compare_exchange_strong(none, status);
    }
  };
  share_blocks(hook, threads, block_count(call.nsite), work);
  return call.status;
}

bool is_result_layout(int64_t rhint) {
  return rhint == QOR_DF_NO_HINT || rhint == QOR_DF_BY_FUNCTION || rhint == QOR_DF_INTERLEAVED ||
         rhint == QOR_DF_FIRST_POINTER || rhint == QOR_DF_BY_SITE ||
         rhint == QOR_DF_BY_SITE_AND_ORDER;
}

// An entry's arguments but for the task and the callbacks at the sites.
template <class Real>
struct Arguments {
  int64_t type, nsite;
  const Real* site;
  int64_t sitehint, ndorder;
  const void* dorder;
  const Real* datahint;
  Real* r;
  int64_t rhint;
  int32_t* cell;
  UserSearch<Real> search;
  void* search_params;
  const ThreadHook* hook;
};

template <class Real>
int interpolate(const DFTask* task, const Arguments<Real>& a, const Callbacks<Real>& callbacks) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  const Interpolant kind = interpolant_of(task->s_order, task->s_type);
  if (kind == Interpolant::unknown || (kind == Interpolant::user && !callbacks.all())) {
    return QOR_DF_BAD_TYPE;
  }
  const bool uniform_sites = (a.sitehint & QOR_DF_UNIFORM_SITES) != 0;
  const bool cells_in = a.type == QOR_DF_CELLS_IN;
  Search<Real> search{};
  if (!cells_in) {
    const SiteForm<Real> form{a.sitehint, uniform_sites ? a.site : nullptr, a.datahint};
    const int status = choose_search(*task, form, a.search, a.search_params, &search);
    if (status != QOR_DF_OK) return status;
  }
  if (!is_result_layout(a.rhint)) return QOR_DF_BAD_R_HINT;
  const int status = check_arrays(*task, arrays_of(kind));
  if (status != QOR_DF_OK || a.nsite <= 0) return status;
  const bool keep_cells = (a.type & QOR_DF_CELLS_OUT) != 0 && a.cell != nullptr;
  Interpolation<Real> call{*task,     kind,          search,
                           !cells_in, keep_cells,    a.nsite,
                           a.site,    uniform_sites, WantedDerivatives(*task, a.ndorder, a.dorder),
                           a.r,       a.rhint,       a.cell,
                           callbacks};
  return run_blocks(call, a.hook);
}

}  // namespace
}  // namespace qor::fitting

int qor_df_kernel_dDFInterpolate1D(const DFTask* task, int64_t type, int64_t, int64_t nsite,
                                   const double* site, int64_t sitehint, int64_t ndorder,
                                   const void* dorder, const double* datahint, double* r,
                                   int64_t rhint, int32_t* cell, qor_df_dvalues le_cb,
                                   void* le_params, qor_df_dvalues re_cb, void* re_params,
                                   qor_df_dvalues i_cb, void* i_params, qor_df_dsearch search_cb,
                                   void* search_params, const ThreadHook* hook) {
  using namespace qor::fitting;
  const Arguments<double> a{type, nsite, site, sitehint,  ndorder,       dorder, datahint,
                            r,    rhint, cell, search_cb, search_params, hook};
  return interpolate(task, a, {{le_cb, le_params}, {re_cb, re_params}, {i_cb, i_params}});
}

int qor_df_kernel_sDFInterpolate1D(const DFTask* task, int64_t type, int64_t, int64_t nsite,
                                   const float* site, int64_t sitehint, int64_t ndorder,
                                   const void* dorder, const float* datahint, float* r,
                                   int64_t rhint, int32_t* cell, qor_df_svalues le_cb,
                                   void* le_params, qor_df_svalues re_cb, void* re_params,
                                   qor_df_svalues i_cb, void* i_params, qor_df_ssearch search_cb,
                                   void* search_params, const ThreadHook* hook) {
  using namespace qor::fitting;
  const Arguments<float> a{type, nsite, site, sitehint,  ndorder,       dorder, datahint,
                           r,    rhint, cell, search_cb, search_params, hook};
  return interpolate(task, a, {{le_cb, le_params}, {re_cb, re_params}, {i_cb, i_params}});
}
