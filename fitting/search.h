// Search as the other entries use it: a method is chosen once, and then run block by block.
#pragma once

#include "fitting/search_methods.h"
#include "fitting/task.h"

namespace qor::fitting {

enum class SearchMethod {
  uniform_user_defined,
  user_defined,
  uniform,
  uniform_sorted,
  quasi_uniform,
  sorted,
  hybrid,
  peak
};

template <class Real>
struct Search {
  SearchMethod method;
  int64_t nx;
  const Real* x;
  Real step;  // of a uniform and a quasi-uniform partition
  UserSearch<Real> user;
  void* params;

  // The cells of a block; `last_cell` carries the state of the sorted method, 0 at first. Returns
  // the user's status.
  int run(int64_t nsite, const Real* site, int32_t* last_cell, int32_t* cell) const;

  // Where the sorted method may begin a block whose first site is s, given the cell where another
  // block ended: there if s is not left of it, so that no block depends on the ones before.
  int32_t begin_at(int32_t last_cell, Real s) const {
    return last_cell > 0 && last_cell < nx && s >= x[last_cell - 1] ? last_cell : 0;
  }
};

// What is known about sites: their hint, the two ends of uniform ones (else null) and the data
// hint.
template <class Real>
struct SiteForm {
  int64_t hint;
  const Real* uniform_ends;
  const Real* data_hint;
};

// Chooses the method; BAD_DATA_HINT.
template <class Real>
int choose_search(const DFTask& task, const SiteForm<Real>& sites, UserSearch<Real> user,
                  void* params, Search<Real>* search);

// Uniform sites: i * step + first, the step from the two ends.
template <class Real>
struct UniformSites {
  Real first, step;

  UniformSites(const Real* ends, int64_t count)
      : first(ends[0]), step(count < 2 ? 0 : (ends[1] - ends[0]) / static_cast<Real>(count - 1)) {}

  // Sites from .. from + count - 1. The index is exact as a double.
  void expand(int64_t from, int64_t count, Real* site) const {
    const auto begin = static_cast<double>(from);
    for (int32_t i = 0; i < static_cast<int32_t>(count); ++i) {
      site[i] = static_cast<Real>(begin + i) * step + first;
    }
  }
};

}  // namespace qor::fitting
