// The part of a call of Basic that goes over the data: what it works on, and its threads.
#pragma once

#include "statistics/kernels.h"
#include "statistics/request.h"
#include "statistics/units.h"
#include "statistics/work_memory.h"

namespace qor::statistics {

// What one thread gathers, away from the cache lines of the others.
template <class Real>
struct alignas(128) Member {
  Accumulator<Real> gathered;
};

// One call over data.
template <class Real>
struct Run {
  SsTask& task;
  const Request& request;
  Observations<Real> data;
  Order order;
  bool matrix;
  Weight before;  // of the state in the caller's arrays
  int64_t threads;
  Kernel<Real> kernel;
  Kernel<Real> folded_kernel;       // for data by observation
  int64_t first_row = 0;            // the first observation with a weight; n when there is none
  Units units = {};                 // of all that is gathered
  const Real* start_means = {};     // what the cross-product is central about at the start
  Member<Real>* members = nullptr;  // one per thread; the first gathers all
  Real* inverse_roots = nullptr;    // work for correlations

  bool is_fresh() const { return before.sum == 0; }
  const Accumulator<Real>& gathered() const { return members[0].gathered; }
};

// Units that the first observations and weights ask for; none when these are of a usual size.
template <class Real>
void choose_units(Run<Real>& run, WorkMemory& memory);

// Looks at what a run in the units chosen gave. True when other units are called for, which the run
// then has: some result left the range of the reals on the way, or lost digits at its lower end.
template <class Real>
bool change_units(Run<Real>& run, WorkMemory& memory);

// Takes the data into the members, a share each, and all into the first.
template <class Real>
void run_members(const Run<Real>& run, const ThreadHook* hook);

}  // namespace qor::statistics
