// The task record: what all of statistics reads, and only constructors and editors write.
#pragma once

#include <cstdint>

#include "qor/statistics.h"

namespace qor::statistics {

// The precision of a task is that of its constructor; an entry reads arrays in its own.
template <class Real>
inline constexpr int32_t precision_of = sizeof(Real) == sizeof(double) ? 1 : 0;

inline constexpr int32_t task_kind = 2;

using CleanupRoutine = int32_t (*)(SsTask*);

}  // namespace qor::statistics

// Real arrays are void*, integers of the task's width const void*; null when not registered.
struct SsTask {
  int32_t index_width;  // 0: integers have 32 bits, else 64
  int32_t kind;
  int32_t precision;
  const void* p;
  const void* n;
  const void* indices;
  void* x;
  void* weights;
  void* accumulated_weights;
  const void* x_storage;
  void* parametrized_correlation;
  const void* parametrized_correlation_storage;
  void* mean;
  void* raw_2;
  void* raw_3;
  void* raw_4;
  void* central_2;
  void* central_3;
  void* central_4;
  void* sum;
  void* raw_sum_2;
  void* raw_sum_3;
  void* raw_sum_4;
  void* central_sum_2;
  void* central_sum_3;
  void* central_sum_4;
  void* kurtosis;
  void* skewness;
  void* variation;
  void* min;
  void* max;
  const void* cov_storage;
  void* cov;
  const void* cor_storage;
  void* cor;
  const void* cp_storage;
  void* cp;
  const void* group_indices;
  const void* group_selection;
  void* group_means;
  void* group_covariances;
  const void* group_covariance_storage;
  void* pooled_mean;
  void* pooled_covariance;
  const void* pooled_covariance_storage;
  const void* quantile_count;
  void* quantile_orders;
  void* quantiles;
  void* order_statistics;
  const void* order_statistics_storage;
  const void* stream_quantile_count;
  void* stream_quantile_orders;
  void* stream_quantiles;
  void* stream_state;  // owned by the streaming quantiles, freed by their cleanup routine
  const void* stream_parameter_count;
  void* stream_parameters;
  void* mean_absolute_deviation;
  void* median_absolute_deviation;
  const void* robust_parameter_count;
  void* robust_parameters;
  void* robust_mean;
  void* robust_covariance;
  const void* robust_covariance_storage;
  const void* outlier_parameter_count;
  void* outlier_parameters;
  void* outlier_weights;
  const void* partial_index;
  void* partial_covariance;
  const void* partial_covariance_storage;
  void* partial_correlation;
  const void* partial_correlation_storage;
  const void* missing_parameter_count;
  void* missing_parameters;
  const void* initial_estimate_count;
  void* initial_estimates;
  const void* pattern_count;
  void* patterns;
  const void* simulated_estimate_count;
  void* simulated_estimates;
  const void* simulated_correlation_count;
  void* simulated_correlations;
  // Scratch block of the distance routine, filled by its callers.
  int64_t distance_first, distance_end;
  void* distance_mean;
  void* distance_factor;
  void* distance_result;
  void* distance_work;
  int64_t distance_work_size;
  // The one routine that an estimator may leave for the end of the task.
  int32_t cleanup_count;
  qor::statistics::CleanupRoutine cleanup[1];
  void* sorted_output;
  const void* sorted_output_storage;
  void* saved_means;  // owned: the means of the last call about given means
  int64_t saved_mean_count;
  int32_t saved_mean_precision;
};
