// The estimators behind the compute entries. Each is called with arguments that the checks of its
// entry have found good, and returns a status of its own, most often 0 or NO_MEMORY.
#pragma once

#include "statistics/request.h"
#include "statistics/task.h"

namespace qor::statistics {

// Stands in for estimators that this version does not have: the one place where their entries end.
inline int not_built() { return QOR_SS_NOT_BUILT; }

template <class Real>
int compute_basic(SsTask& task, const Request& request, const ThreadHook* hook);

// Order statistics. `estimates` and `method` as given to the entry.
template <class Real>
int compute_min_max(SsTask& task, uint64_t estimates);
template <class Real>
int compute_quantiles(SsTask& task, uint64_t estimates, const ThreadHook* hook);
template <class Real>
int compute_stream_quantiles(SsTask& task, uint64_t method, const ThreadHook* hook);
template <class Real>
int compute_sort(SsTask& task, const ThreadHook* hook);

}  // namespace qor::statistics
