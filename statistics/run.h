// The part of a call of Basic that goes over the data: what it works on, and its threads.
#pragma once

#include "statistics/kernels.h"
#include "statistics/request.h"

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
  int64_t threads;
  Kernel<Real> kernel;
  Kernel<Real> folded_kernel;  // for data by observation
  const Real* start_means;     // what the cross-product is central about at the start
  Member<Real>* members;       // one per thread; the first gathers in the caller's arrays
};

// Takes the data into the members, a share each, and all into the first.
template <class Real>
void run_members(const Run<Real>& run, const ThreadHook* hook);

}  // namespace qor::statistics
