// The checks of the compute entries: each returns 0 or the status of the first that fails, in the
// order that the entry promises. Arrays that an entry needs beyond its listed checks come last.
#pragma once

#include "statistics/view.h"

namespace qor::statistics {

int check_min_max(const SsTask& task, uint64_t estimates, uint64_t method);
template <class Real>
int check_quantiles(const SsTask& task, uint64_t estimates, uint64_t method);
template <class Real>
int check_stream_quantiles(const SsTask& task, uint64_t method);
int check_sort(const SsTask& task, uint64_t method);

int check_absolute_deviations(const SsTask& task, uint64_t estimates, uint64_t method);
int check_missing_values(const SsTask& task, uint64_t method);
int check_outliers(const SsTask& task, uint64_t method);
int check_robust_covariance(const SsTask& task, uint64_t method);
int check_partial_covariance(const SsTask& task, uint64_t estimates, uint64_t method);
int check_pooled_covariance(const SsTask& task, uint64_t estimates, uint64_t method);
int check_parametrization(const SsTask& task, uint64_t method);
int check_weighted_median(const SsTask& task);
int check_distances(const SsTask& task);

// ---- What several entries check --------------------------------------------------------------

// Only the low word of a method word is looked at.
inline bool has_method(uint64_t method, uint64_t bits) { return (method & bits & 0xFFFFFFFF) != 0; }

inline bool has_variables(const SsTask& task) { return integer(task, task.p) > 0; }
inline bool has_observations(const SsTask& task) {
  return task.n != nullptr && integer(task, task.n) > 0;
}

// p, n and x.
inline int check_data(const SsTask& task) {
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (!has_observations(task)) return QOR_SS_BAD_N;
  return task.x == nullptr ? QOR_SS_NULL_X : QOR_SS_OK;
}

// The storage word of a data block, of the input or of an output, by its bits.
inline int check_data_storage(const SsTask& task, const void* storage) {
  if (storage == nullptr) return QOR_SS_NULL_STORAGE;
  return is_data_storage(integer(task, storage)) ? QOR_SS_OK : QOR_SS_BAD_STORAGE;
}

// All orders lie from 0 to 1; a NaN does not.
template <class Real>
bool are_orders(const Real* orders, int64_t count) {
  for (int64_t i = 0; i < count; ++i) {
    if (!(orders[i] >= 0 && orders[i] <= 1)) return false;
  }
  return true;
}

}  // namespace qor::statistics
