// Checks of the robust, derived and missing value entries.

#include <algorithm>

#include "services/scratch.h"
#include "statistics/checks.h"

namespace qor::statistics {
namespace {

constexpr int64_t kMissingParameters = 5;

// A data block whose word must be one of the two, with a status of its own for none.
int check_exact_storage(const SsTask& task, const void* storage, int null_status) {
  if (storage == nullptr) return null_status;
  return is_exact_data_storage(integer(task, storage)) ? QOR_SS_OK : QOR_SS_BAD_STORAGE;
}

// A matrix whose word must be one of the three.
int check_matrix(const SsTask& task, const void* matrix, int null_status, const void* storage) {
  if (matrix == nullptr) return null_status;
  if (storage == nullptr) return QOR_SS_NULL_STORAGE;
  return is_exact_matrix_storage(integer(task, storage)) ? QOR_SS_OK : QOR_SS_BAD_STORAGE;
}

// Whether there are more than `times` observations for each variable, or as many with `or_equal`.
bool has_observations_for(const SsTask& task, int64_t times, bool or_equal) {
  if (task.n == nullptr) return false;
  const int64_t least = services::counted_product(times, integer(task, task.p));
  const int64_t n = integer(task, task.n);
  return n > least || (or_equal && n == least);
}

// Group numbers are not negative; selection entries, one per group, are 0 or 1.
int check_groups(const SsTask& task, bool selected) {
  const Integers groups = integers(task, task.group_indices);
  int64_t largest = -1;
  for (int64_t i = 0, n = integer(task, task.n); i < n; ++i) {
    if (groups[i] < 0) return QOR_SS_BAD_GROUPS;
    largest = std::max(largest, groups[i]);
  }
  const Integers selection = integers(task, task.group_selection);
  for (int64_t g = 0; selected && g <= largest; ++g) {
    if (selection[g] != 0 && selection[g] != 1) return QOR_SS_BAD_GROUPS;
  }
  return QOR_SS_OK;
}

}  // namespace

int check_absolute_deviations(const SsTask& task, uint64_t estimates, uint64_t method) {
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (!has_observations(task)) return QOR_SS_BAD_N;
  if (const int status = check_exact_storage(task, task.x_storage, QOR_SS_NULL_STORAGE)) {
    return status;
  }
  if ((estimates & QOR_SS_ESTIMATE_MEDIAN_ABSOLUTE_DEVIATION) != 0) {
    if (task.median_absolute_deviation == nullptr) return QOR_SS_NULL_MEDIAN_ABSOLUTE_DEVIATION;
    if (!has_method(method, QOR_SS_METHOD_FAST)) return QOR_SS_BAD_METHOD;
  }
  if ((estimates & QOR_SS_ESTIMATE_MEAN_ABSOLUTE_DEVIATION) != 0) {
    if (task.mean_absolute_deviation == nullptr) return QOR_SS_NULL_MEAN_ABSOLUTE_DEVIATION;
    if (!has_method(method, QOR_SS_METHOD_FAST | QOR_SS_METHOD_GIVEN_MEANS)) {
      return QOR_SS_BAD_METHOD;
    }
    if (has_method(method, QOR_SS_METHOD_GIVEN_MEANS) && task.mean == nullptr) {
      return QOR_SS_NULL_MEAN;
    }
  }
  return check_data(task);
}

int check_missing_values(const SsTask& task, uint64_t method) {
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (const int status = check_exact_storage(task, task.x_storage, QOR_SS_BAD_STORAGE)) {
    return status;
  }
  if (task.missing_parameters == nullptr) return QOR_SS_NULL_MISSING_PARAMETERS;
  if (task.missing_parameter_count == nullptr) return QOR_SS_NULL_MISSING_PARAMETER_COUNT;
  if (integer(task, task.missing_parameter_count) != kMissingParameters) {
    return QOR_SS_BAD_MISSING_PARAMETER_COUNT;
  }
  const bool estimates = task.simulated_estimates != nullptr;
  const bool estimate_count = task.simulated_estimate_count != nullptr;
  if (estimates && !estimate_count) return QOR_SS_NULL_SIMULATED_ESTIMATE_COUNT;
  if (!estimates && estimate_count) return QOR_SS_NULL_SIMULATED_ESTIMATES;
  const bool correlations =
      task.simulated_correlations != nullptr && task.simulated_correlation_count != nullptr;
  const bool has_estimates = estimates && integer(task, task.simulated_estimate_count) != 0;
  if (!has_estimates && !correlations) return QOR_SS_NO_SIMULATED_OUTPUT;
  if (!has_method(method, QOR_SS_METHOD_SIMULATION)) return QOR_SS_BAD_METHOD;
  return check_data(task);
}

int check_outliers(const SsTask& task, uint64_t method) {
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (!has_observations_for(task, 5, true)) return QOR_SS_BAD_N;
  if (const int status = check_exact_storage(task, task.x_storage, QOR_SS_BAD_STORAGE)) {
    return status;
  }
  if (task.outlier_weights == nullptr) return QOR_SS_NULL_OUTLIER_WEIGHTS;
  if (!has_method(method, QOR_SS_METHOD_OUTLIERS)) return QOR_SS_BAD_METHOD;
  return check_data(task);
}

int check_robust_covariance(const SsTask& task, uint64_t method) {
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (!has_observations_for(task, 2, false)) return QOR_SS_BAD_N;
  if (const int status = check_exact_storage(task, task.x_storage, QOR_SS_NULL_STORAGE)) {
    return status;
  }
  if (task.robust_mean == nullptr) return QOR_SS_NULL_ROBUST_MEAN;
  if (const int status = check_matrix(task, task.robust_covariance, QOR_SS_NULL_ROBUST_COVARIANCE,
                                      task.robust_covariance_storage)) {
    return status;
  }
  if (!has_method(method, QOR_SS_METHOD_ROBUST)) return QOR_SS_BAD_METHOD;
  return check_data(task);
}

int check_partial_covariance(const SsTask& task, uint64_t estimates, uint64_t method) {
  if (task.cov == nullptr && task.cor == nullptr) return QOR_SS_NULL_COV;
  const void* storage = task.cov != nullptr ? task.cov_storage : task.cor_storage;
  if (storage == nullptr) return QOR_SS_NULL_STORAGE;
  if (task.partial_index == nullptr) return QOR_SS_NULL_PARTIAL_INDEX;
  if ((estimates & QOR_SS_ESTIMATE_PARTIAL_COVARIANCE) != 0) {
    if (task.partial_covariance == nullptr) return QOR_SS_NULL_PARTIAL_COVARIANCE;
    if (task.partial_covariance_storage == nullptr) return QOR_SS_NULL_STORAGE;
  }
  if ((estimates & QOR_SS_ESTIMATE_PARTIAL_CORRELATION) != 0) {
    if (task.partial_correlation == nullptr) return QOR_SS_NULL_PARTIAL_CORRELATION;
    if (task.partial_correlation_storage == nullptr) return QOR_SS_NULL_STORAGE;
  }
  if (!has_method(method, QOR_SS_METHOD_FAST)) return QOR_SS_BAD_METHOD;
  return has_variables(task) ? QOR_SS_OK : QOR_SS_BAD_P;
}

int check_pooled_covariance(const SsTask& task, uint64_t estimates, uint64_t method) {
  const auto asks = [estimates](uint64_t bits) { return (estimates & bits) != 0; };
  if (const int status = check_data_storage(task, task.x_storage)) return status;
  if (task.group_indices == nullptr) return QOR_SS_NULL_GROUP_INDICES;
  if (asks(QOR_SS_ESTIMATE_POOLED_MEAN | QOR_SS_ESTIMATE_POOLED_COVARIANCE) &&
      task.pooled_mean == nullptr) {
    return QOR_SS_NULL_POOLED_MEAN;
  }
  if (asks(QOR_SS_ESTIMATE_POOLED_COVARIANCE)) {
    if (task.pooled_covariance_storage == nullptr) return QOR_SS_NULL_STORAGE;
    if (task.pooled_covariance == nullptr) return QOR_SS_NULL_POOLED_COVARIANCE;
  }
  const bool groups = asks(QOR_SS_ESTIMATE_GROUP_MEANS | QOR_SS_ESTIMATE_GROUP_COVARIANCES);
  if (groups) {
    if (task.group_selection == nullptr) return QOR_SS_NULL_GROUP_INDICES;
    if (task.group_means == nullptr) return QOR_SS_NULL_GROUP_MEANS;
  }
  if (asks(QOR_SS_ESTIMATE_GROUP_COVARIANCES)) {
    if (task.group_covariance_storage == nullptr) return QOR_SS_NULL_STORAGE;
    if (task.group_covariances == nullptr) return QOR_SS_NULL_GROUP_COVARIANCES;
  }
  if (!has_method(method, QOR_SS_METHOD_ONE_PASS)) return QOR_SS_BAD_METHOD;
  if (const int status = check_data(task)) return status;
  return check_groups(task, groups);
}

int check_parametrization(const SsTask& task, uint64_t method) {
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (const int status = check_matrix(task, task.cor, QOR_SS_NULL_COR, task.cor_storage)) {
    return status;
  }
  if (const int status =
          check_matrix(task, task.parametrized_correlation, QOR_SS_NULL_PARAMETRIZED_CORRELATION,
                       task.parametrized_correlation_storage)) {
    return status;
  }
  if (task.cor == task.parametrized_correlation &&
      integer(task, task.cor_storage) != QOR_SS_MATRIX_FULL) {
    return QOR_SS_BAD_STORAGE;
  }
  return has_method(method, QOR_SS_METHOD_SPECTRAL) ? QOR_SS_OK : QOR_SS_BAD_METHOD;
}

int check_weighted_median(const SsTask& task) {
  if (const int status = check_data(task)) return status;
  if (const int status = check_data_storage(task, task.x_storage)) return status;
  if (task.weights == nullptr) return QOR_SS_NULL_WEIGHTS;
  if (task.quantile_orders == nullptr) return QOR_SS_NULL_QUANTILE_ORDERS;
  return task.quantiles == nullptr ? QOR_SS_NULL_QUANTILES : QOR_SS_OK;
}

int check_distances(const SsTask& task) {
  if (const int status = check_data(task)) return status;
  return check_data_storage(task, task.x_storage);
}

}  // namespace qor::statistics
