// Editors: the fields of a task, one by one or a family at once.

#include <initializer_list>

#include "statistics/parameters.h"

namespace qor::statistics {
namespace {

int edit_integer(SsTask* task, int64_t code, const void* value) {
  if (task == nullptr) return QOR_SS_NULL_TASK;
  const IntegerParameter* parameter = integer_parameter(code);
  if (parameter == nullptr) return QOR_SS_BAD_CODE;
  if (value == nullptr) return parameter->null_status;
  task->*parameter->field = value;
  return QOR_SS_OK;
}

int edit_real(SsTask* task, int64_t code, const void* value) {
  if (task == nullptr) return QOR_SS_NULL_TASK;
  const RealParameter* parameter = real_parameter(code);
  if (parameter == nullptr) return QOR_SS_BAD_CODE;
  if (value == nullptr) return parameter->null_status;
  task->*parameter->field = const_cast<void*>(value);
  return QOR_SS_OK;
}

// A field and what it is to hold.
struct Edit {
  int64_t code;
  const void* value;
};

int edit_family(SsTask* task, std::initializer_list<Edit> edits) {
  if (task == nullptr) return QOR_SS_NULL_TASK;
  for (const Edit& edit : edits) {
    if (edit.value == nullptr) continue;
    const bool is_integer = integer_parameter(edit.code) != nullptr;
    is_integer ? edit_integer(task, edit.code, edit.value) : edit_real(task, edit.code, edit.value);
  }
  return QOR_SS_OK;
}

}  // namespace
}  // namespace qor::statistics

using namespace qor::statistics;

int32_t __ostiSSEditTask(SsTask* task, int64_t code, const void* value) {
  return edit_integer(task, code, value);
}
int32_t __ostdSSEditTask(SsTask* task, int64_t code, const double* value) {
  return edit_real(task, code, value);
}
int32_t __ostsSSEditTask(SsTask* task, int64_t code, const float* value) {
  return edit_real(task, code, value);
}

int32_t __ostdSSEditMoments(SsTask* task, double* mean, double* raw_2, double* raw_3, double* raw_4,
                            double* central_2, double* central_3, double* central_4) {
  return edit_family(task, {{QOR_SS_MEAN, mean},
                            {QOR_SS_RAW_2, raw_2},
                            {QOR_SS_RAW_3, raw_3},
                            {QOR_SS_RAW_4, raw_4},
                            {QOR_SS_CENTRAL_2, central_2},
                            {QOR_SS_CENTRAL_3, central_3},
                            {QOR_SS_CENTRAL_4, central_4}});
}
int32_t __ostdSSEditSums(SsTask* task, double* sum, double* raw_sum_2, double* raw_sum_3,
                         double* raw_sum_4, double* central_sum_2, double* central_sum_3,
                         double* central_sum_4) {
  return edit_family(task, {{QOR_SS_SUM, sum},
                            {QOR_SS_RAW_SUM_2, raw_sum_2},
                            {QOR_SS_RAW_SUM_3, raw_sum_3},
                            {QOR_SS_RAW_SUM_4, raw_sum_4},
                            {QOR_SS_CENTRAL_SUM_2, central_sum_2},
                            {QOR_SS_CENTRAL_SUM_3, central_sum_3},
                            {QOR_SS_CENTRAL_SUM_4, central_sum_4}});
}
int32_t __ostdSSEditCovCor(SsTask* task, double* mean, double* cov, const void* cov_storage,
                           double* cor, const void* cor_storage) {
  return edit_family(task, {{QOR_SS_MEAN, mean},
                            {QOR_SS_COV, cov},
                            {QOR_SS_COV_STORAGE, cov_storage},
                            {QOR_SS_COR, cor},
                            {QOR_SS_COR_STORAGE, cor_storage}});
}
int32_t __ostdSSEditCP(SsTask* task, double* mean, double* sum, double* cp,
                       const void* cp_storage) {
  return edit_family(
      task,
      {{QOR_SS_MEAN, mean}, {QOR_SS_SUM, sum}, {QOR_SS_CP, cp}, {QOR_SS_CP_STORAGE, cp_storage}});
}
int32_t __ostdSSEditPartialCovCor(SsTask* task, const void* partial_index, double* cov,
                                  const void* cov_storage, double* cor, const void* cor_storage,
                                  double* partial_cov, const void* partial_cov_storage,
                                  double* partial_cor, const void* partial_cor_storage) {
  return edit_family(task, {{QOR_SS_PARTIAL_INDEX, partial_index},
                            {QOR_SS_COV, cov},
                            {QOR_SS_COV_STORAGE, cov_storage},
                            {QOR_SS_COR, cor},
                            {QOR_SS_COR_STORAGE, cor_storage},
                            {QOR_SS_PARTIAL_COVARIANCE, partial_cov},
                            {QOR_SS_PARTIAL_COVARIANCE_STORAGE, partial_cov_storage},
                            {QOR_SS_PARTIAL_CORRELATION, partial_cor},
                            {QOR_SS_PARTIAL_CORRELATION_STORAGE, partial_cor_storage}});
}
int32_t __ostdSSEditQuantiles(SsTask* task, const void* count, double* orders, double* quantiles,
                              double* order_statistics, const void* order_statistics_storage) {
  return edit_family(task, {{QOR_SS_QUANTILE_COUNT, count},
                            {QOR_SS_QUANTILE_ORDERS, orders},
                            {QOR_SS_QUANTILES, quantiles},
                            {QOR_SS_ORDER_STATISTICS, order_statistics},
                            {QOR_SS_ORDER_STATISTICS_STORAGE, order_statistics_storage}});
}
int32_t __ostdSSEditStreamQuantiles(SsTask* task, const void* count, double* orders,
                                    double* quantiles, const void* parameter_count,
                                    double* parameters) {
  return edit_family(task, {{QOR_SS_STREAM_QUANTILE_COUNT, count},
                            {QOR_SS_STREAM_QUANTILE_ORDERS, orders},
                            {QOR_SS_STREAM_QUANTILES, quantiles},
                            {QOR_SS_STREAM_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_STREAM_PARAMETERS, parameters}});
}
int32_t __ostdSSEditPooledCovariance(SsTask* task, const void* group_indices, double* pooled_mean,
                                     double* pooled_cov, const void* group_selection,
                                     double* group_means, double* group_covs) {
  return edit_family(task, {{QOR_SS_GROUP_INDICES, group_indices},
                            {QOR_SS_POOLED_MEAN, pooled_mean},
                            {QOR_SS_POOLED_COVARIANCE, pooled_cov},
                            {QOR_SS_GROUP_SELECTION, group_selection},
                            {QOR_SS_GROUP_MEANS, group_means},
                            {QOR_SS_GROUP_COVARIANCES, group_covs}});
}
int32_t __ostdSSEditRCov(SsTask* task, const void* robust_storage, const void* parameter_count,
                         double* parameters, double* mean, double* cov) {
  return edit_family(task, {{QOR_SS_ROBUST_COVARIANCE_STORAGE, robust_storage},
                            {QOR_SS_ROBUST_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_ROBUST_PARAMETERS, parameters},
                            {QOR_SS_ROBUST_MEAN, mean},
                            {QOR_SS_ROBUST_COVARIANCE, cov}});
}
int32_t __ostdSSEditOutDetect(SsTask* task, const void* parameter_count, double* parameters,
                              double* outlier_weights) {
  return edit_family(task, {{QOR_SS_OUTLIER_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_OUTLIER_PARAMETERS, parameters},
                            {QOR_SS_OUTLIER_WEIGHTS, outlier_weights}});
}
int32_t __ostdSSEditMissingVals(SsTask* task, const void* parameter_count, double* parameters,
                                const void* initial_estimate_count, double* initial_estimates,
                                const void* pattern_count, double* patterns,
                                const void* simulated_estimate_count, double* simulated_estimates,
                                const void* simulated_correlation_count,
                                double* simulated_correlations) {
  return edit_family(task, {{QOR_SS_MISSING_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_MISSING_PARAMETERS, parameters},
                            {QOR_SS_INITIAL_ESTIMATE_COUNT, initial_estimate_count},
                            {QOR_SS_INITIAL_ESTIMATES, initial_estimates},
                            {QOR_SS_PATTERN_COUNT, pattern_count},
                            {QOR_SS_PATTERNS, patterns},
                            {QOR_SS_SIMULATED_ESTIMATE_COUNT, simulated_estimate_count},
                            {QOR_SS_SIMULATED_ESTIMATES, simulated_estimates},
                            {QOR_SS_SIMULATED_CORRELATION_COUNT, simulated_correlation_count},
                            {QOR_SS_SIMULATED_CORRELATIONS, simulated_correlations}});
}
int32_t __ostdSSEditMtxParametrz(SsTask* task, double* cor, const void* cor_storage,
                                 double* parametrized_cor, const void* parametrized_cor_storage) {
  return edit_family(task, {{QOR_SS_COR, cor},
                            {QOR_SS_COR_STORAGE, cor_storage},
                            {QOR_SS_PARAMETRIZED_CORRELATION, parametrized_cor},
                            {QOR_SS_PARAMETRIZED_CORRELATION_STORAGE, parametrized_cor_storage}});
}
int32_t __ostsSSEditMoments(SsTask* task, float* mean, float* raw_2, float* raw_3, float* raw_4,
                            float* central_2, float* central_3, float* central_4) {
  return edit_family(task, {{QOR_SS_MEAN, mean},
                            {QOR_SS_RAW_2, raw_2},
                            {QOR_SS_RAW_3, raw_3},
                            {QOR_SS_RAW_4, raw_4},
                            {QOR_SS_CENTRAL_2, central_2},
                            {QOR_SS_CENTRAL_3, central_3},
                            {QOR_SS_CENTRAL_4, central_4}});
}
int32_t __ostsSSEditSums(SsTask* task, float* sum, float* raw_sum_2, float* raw_sum_3,
                         float* raw_sum_4, float* central_sum_2, float* central_sum_3,
                         float* central_sum_4) {
  return edit_family(task, {{QOR_SS_SUM, sum},
                            {QOR_SS_RAW_SUM_2, raw_sum_2},
                            {QOR_SS_RAW_SUM_3, raw_sum_3},
                            {QOR_SS_RAW_SUM_4, raw_sum_4},
                            {QOR_SS_CENTRAL_SUM_2, central_sum_2},
                            {QOR_SS_CENTRAL_SUM_3, central_sum_3},
                            {QOR_SS_CENTRAL_SUM_4, central_sum_4}});
}
int32_t __ostsSSEditCovCor(SsTask* task, float* mean, float* cov, const void* cov_storage,
                           float* cor, const void* cor_storage) {
  return edit_family(task, {{QOR_SS_MEAN, mean},
                            {QOR_SS_COV, cov},
                            {QOR_SS_COV_STORAGE, cov_storage},
                            {QOR_SS_COR, cor},
                            {QOR_SS_COR_STORAGE, cor_storage}});
}
int32_t __ostsSSEditCP(SsTask* task, float* mean, float* sum, float* cp, const void* cp_storage) {
  return edit_family(
      task,
      {{QOR_SS_MEAN, mean}, {QOR_SS_SUM, sum}, {QOR_SS_CP, cp}, {QOR_SS_CP_STORAGE, cp_storage}});
}
int32_t __ostsSSEditPartialCovCor(SsTask* task, const void* partial_index, float* cov,
                                  const void* cov_storage, float* cor, const void* cor_storage,
                                  float* partial_cov, const void* partial_cov_storage,
                                  float* partial_cor, const void* partial_cor_storage) {
  return edit_family(task, {{QOR_SS_PARTIAL_INDEX, partial_index},
                            {QOR_SS_COV, cov},
                            {QOR_SS_COV_STORAGE, cov_storage},
                            {QOR_SS_COR, cor},
                            {QOR_SS_COR_STORAGE, cor_storage},
                            {QOR_SS_PARTIAL_COVARIANCE, partial_cov},
                            {QOR_SS_PARTIAL_COVARIANCE_STORAGE, partial_cov_storage},
                            {QOR_SS_PARTIAL_CORRELATION, partial_cor},
                            {QOR_SS_PARTIAL_CORRELATION_STORAGE, partial_cor_storage}});
}
int32_t __ostsSSEditQuantiles(SsTask* task, const void* count, float* orders, float* quantiles,
                              float* order_statistics, const void* order_statistics_storage) {
  return edit_family(task, {{QOR_SS_QUANTILE_COUNT, count},
                            {QOR_SS_QUANTILE_ORDERS, orders},
                            {QOR_SS_QUANTILES, quantiles},
                            {QOR_SS_ORDER_STATISTICS, order_statistics},
                            {QOR_SS_ORDER_STATISTICS_STORAGE, order_statistics_storage}});
}
int32_t __ostsSSEditStreamQuantiles(SsTask* task, const void* count, float* orders,
                                    float* quantiles, const void* parameter_count,
                                    float* parameters) {
  return edit_family(task, {{QOR_SS_STREAM_QUANTILE_COUNT, count},
                            {QOR_SS_STREAM_QUANTILE_ORDERS, orders},
                            {QOR_SS_STREAM_QUANTILES, quantiles},
                            {QOR_SS_STREAM_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_STREAM_PARAMETERS, parameters}});
}
int32_t __ostsSSEditPooledCovariance(SsTask* task, const void* group_indices, float* pooled_mean,
                                     float* pooled_cov, const void* group_selection,
                                     float* group_means, float* group_covs) {
  return edit_family(task, {{QOR_SS_GROUP_INDICES, group_indices},
                            {QOR_SS_POOLED_MEAN, pooled_mean},
                            {QOR_SS_POOLED_COVARIANCE, pooled_cov},
                            {QOR_SS_GROUP_SELECTION, group_selection},
                            {QOR_SS_GROUP_MEANS, group_means},
                            {QOR_SS_GROUP_COVARIANCES, group_covs}});
}
int32_t __ostsSSEditRCov(SsTask* task, const void* robust_storage, const void* parameter_count,
                         float* parameters, float* mean, float* cov) {
  return edit_family(task, {{QOR_SS_ROBUST_COVARIANCE_STORAGE, robust_storage},
                            {QOR_SS_ROBUST_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_ROBUST_PARAMETERS, parameters},
                            {QOR_SS_ROBUST_MEAN, mean},
                            {QOR_SS_ROBUST_COVARIANCE, cov}});
}
int32_t __ostsSSEditOutDetect(SsTask* task, const void* parameter_count, float* parameters,
                              float* outlier_weights) {
  return edit_family(task, {{QOR_SS_OUTLIER_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_OUTLIER_PARAMETERS, parameters},
                            {QOR_SS_OUTLIER_WEIGHTS, outlier_weights}});
}
int32_t __ostsSSEditMissingVals(SsTask* task, const void* parameter_count, float* parameters,
                                const void* initial_estimate_count, float* initial_estimates,
                                const void* pattern_count, float* patterns,
                                const void* simulated_estimate_count, float* simulated_estimates,
                                const void* simulated_correlation_count,
                                float* simulated_correlations) {
  return edit_family(task, {{QOR_SS_MISSING_PARAMETER_COUNT, parameter_count},
                            {QOR_SS_MISSING_PARAMETERS, parameters},
                            {QOR_SS_INITIAL_ESTIMATE_COUNT, initial_estimate_count},
                            {QOR_SS_INITIAL_ESTIMATES, initial_estimates},
                            {QOR_SS_PATTERN_COUNT, pattern_count},
                            {QOR_SS_PATTERNS, patterns},
                            {QOR_SS_SIMULATED_ESTIMATE_COUNT, simulated_estimate_count},
                            {QOR_SS_SIMULATED_ESTIMATES, simulated_estimates},
                            {QOR_SS_SIMULATED_CORRELATION_COUNT, simulated_correlation_count},
                            {QOR_SS_SIMULATED_CORRELATIONS, simulated_correlations}});
}
int32_t __ostsSSEditMtxParametrz(SsTask* task, float* cor, const void* cor_storage,
                                 float* parametrized_cor, const void* parametrized_cor_storage) {
  return edit_family(task, {{QOR_SS_COR, cor},
                            {QOR_SS_COR_STORAGE, cor_storage},
                            {QOR_SS_PARAMETRIZED_CORRELATION, parametrized_cor},
                            {QOR_SS_PARAMETRIZED_CORRELATION_STORAGE, parametrized_cor_storage}});
}
