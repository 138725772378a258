// Search over a task's partition: the choice of the method, and the search entry.

#include "fitting/search.h"

#include <cmath>

#include "fitting/scratch.h"

namespace qor::fitting {
namespace {

constexpr int64_t kSitesOnStack = 4096;

// Places in a data hint.
constexpr int kHintSelector = 1, kHintPeak = 4;

template <class Real>
int choose_by_data_hint(const DFTask& task, const Real* hint, SearchMethod* method) {
  *method = SearchMethod::hybrid;
  if (hint == nullptr || hint[kHintSelector] == 0) return QOR_DF_OK;
  const bool at_peak = hint[kHintSelector] == 1 && hint[kHintPeak] >= 0 &&
                       hint[kHintPeak] <= static_cast<Real>(task.nx);
  if (!at_peak) return QOR_DF_BAD_DATA_HINT;
  *method = SearchMethod::peak;
  return QOR_DF_OK;
}

// Uniform sites that go up are sorted, and the sorted method finds the same cells faster.
template <class Real>
bool ascend(const Real* ends) {
  return ends != nullptr && std::isfinite(ends[0]) && std::isfinite(ends[1]) &&
         std::isfinite(ends[1] - ends[0]) && ends[0] <= ends[1];
}

template <class Real>
int choose_method(const DFTask& task, const SiteForm<Real>& sites, bool user,
                  SearchMethod* method) {
  const bool uniform = task.xhint == QOR_DF_UNIFORM_PARTITION;
  if (user) {
    *method = uniform ? SearchMethod::uniform_user_defined : SearchMethod::user_defined;
  } else if (uniform) {
    *method = sites.hint == QOR_DF_SORTED || ascend(sites.uniform_ends)
                  ? SearchMethod::uniform_sorted
                  : SearchMethod::uniform;
  } else if (task.xhint == QOR_DF_QUASI_UNIFORM) {
    *method = SearchMethod::quasi_uniform;
  } else if (sites.hint == QOR_DF_SORTED) {
    *method = SearchMethod::sorted;
  } else {
    const int status = choose_by_data_hint(task, sites.data_hint, method);
    if (status != QOR_DF_OK) return status;
    if (ascend(sites.uniform_ends)) *method = SearchMethod::sorted;
  }
  return QOR_DF_OK;
}

// In blocks, so that what a block reads and writes stays in cache.
template <class Real>
int run_in_blocks(const Search<Real>& search, int64_t nsite, const Real* site, int32_t* cell) {
  int32_t last_cell = 0;
  int result = QOR_DF_OK;
  for (int64_t first = 0; first < nsite; first += search_block) {
    const int64_t count = std::min(search_block, nsite - first);
    const int status = search.run(count, site + first, &last_cell, cell + first);
    if (status < 0) return status;
    if (status > 0) result = status;
  }
  return result;
}

template <class Real>
int search_task(const DFTask* task, int64_t nsite, const Real* site, int64_t sitehint,
                const Real* datahint, int32_t* cell, UserSearch<Real> user, void* params) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  const bool uniform_sites = sitehint == QOR_DF_UNIFORM_SITES;
  const SiteForm<Real> form{sitehint, uniform_sites ? site : nullptr, datahint};
  Search<Real> search;
  const int status = choose_search(*task, form, user, params, &search);
  if (status != QOR_DF_OK) return status;
  if (!uniform_sites) return run_in_blocks(search, nsite, site, cell);
  const Scratch<Real, kSitesOnStack> expanded(nsite);
  if (expanded.data() == nullptr) return QOR_DF_NO_MEMORY;
  const UniformSites<Real> sites(site, nsite);
  for (int64_t first = 0; first < nsite; first += search_block) {
    sites.expand(first, std::min(search_block, nsite - first), expanded.data() + first);
  }
  return run_in_blocks<Real>(search, nsite, expanded.data(), cell);
}

}  // namespace

template <class Real>
int choose_search(const DFTask& task, const SiteForm<Real>& sites, UserSearch<Real> user,
                  void* params, Search<Real>* search) {
  search->nx = task.nx;
  search->x = partition_of<Real>(task);
  search->step = mean_step(search->x[0], search->x[is_uniform(task) ? 1 : task.nx - 1], task.nx);
  search->user = user;
  search->params = params;
  return choose_method(task, sites, user != nullptr, &search->method);
}

template <class Real>
int Search<Real>::run(int64_t nsite, const Real* site, int32_t* last_cell, int32_t* cell) const {
  switch (method) {
    case SearchMethod::uniform_user_defined:
      return search_uniform_user_defined(nx, x, nsite, site, step, user, params, cell);
    case SearchMethod::user_defined:
      return search_user_defined(nx, x, nsite, site, user, params, cell);
    case SearchMethod::uniform:
      search_uniform(nx, x, nsite, site, step, cell);
      break;
    case SearchMethod::uniform_sorted:
      search_uniform_sorted(nx, x, nsite, site, step, cell);
      break;
    case SearchMethod::quasi_uniform:
      search_quasi_uniform(nx, x, nsite, site, step, cell);
      break;
    case SearchMethod::sorted:
      search_sorted(nx, x, nsite, site, last_cell, cell);
      break;
    case SearchMethod::hybrid:
      search_hybrid(nx, x, nsite, site, cell);
      break;
    case SearchMethod::peak:
      search_peak(nx, x, nsite, site, cell);
      break;
  }
  return QOR_DF_OK;
}

template struct Search<double>;
template struct Search<float>;
template int choose_search<double>(const DFTask&, const SiteForm<double>&, UserSearch<double>,
                                   void*, Search<double>*);
template int choose_search<float>(const DFTask&, const SiteForm<float>&, UserSearch<float>, void*,
                                  Search<float>*);

}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dDFSearch1D(const DFTask* task, int64_t, int64_t nsite, const double* site,
                              int64_t sitehint, const double* datahint, int32_t* cell,
                              qor_df_dsearch search, void* params, const ThreadHook*) {
  return search_task(task, nsite, site, sitehint, datahint, cell, search, params);
}
int qor_df_kernel_sDFSearch1D(const DFTask* task, int64_t, int64_t nsite, const float* site,
                              int64_t sitehint, const float* datahint, int32_t* cell,
                              qor_df_ssearch search, void* params, const ThreadHook*) {
  return search_task(task, nsite, site, sitehint, datahint, cell, search, params);
}
