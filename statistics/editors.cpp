// Editors: the fields of a task, one by one or a family at once.

#include <cstddef>

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

// The fields of a family, in the order of its editors' arguments.
constexpr int64_t kMoments[] = {QOR_SS_MEAN,      QOR_SS_RAW_2,     QOR_SS_RAW_3,    QOR_SS_RAW_4,
                                QOR_SS_CENTRAL_2, QOR_SS_CENTRAL_3, QOR_SS_CENTRAL_4};
constexpr int64_t kSums[] = {QOR_SS_SUM,          QOR_SS_RAW_SUM_2,     QOR_SS_RAW_SUM_3,
                             QOR_SS_RAW_SUM_4,    QOR_SS_CENTRAL_SUM_2, QOR_SS_CENTRAL_SUM_3,
                             QOR_SS_CENTRAL_SUM_4};
constexpr int64_t kCovCor[] = {QOR_SS_MEAN, QOR_SS_COV, QOR_SS_COV_STORAGE, QOR_SS_COR,
                               QOR_SS_COR_STORAGE};
constexpr int64_t kCP[] = {QOR_SS_MEAN, QOR_SS_SUM, QOR_SS_CP, QOR_SS_CP_STORAGE};
constexpr int64_t kPartialCovCor[] = {QOR_SS_PARTIAL_INDEX,
                                      QOR_SS_COV,
                                      QOR_SS_COV_STORAGE,
                                      QOR_SS_COR,
                                      QOR_SS_COR_STORAGE,
                                      QOR_SS_PARTIAL_COVARIANCE,
                                      QOR_SS_PARTIAL_COVARIANCE_STORAGE,
                                      QOR_SS_PARTIAL_CORRELATION,
                                      QOR_SS_PARTIAL_CORRELATION_STORAGE};
constexpr int64_t kQuantiles[] = {QOR_SS_QUANTILE_COUNT, QOR_SS_QUANTILE_ORDERS, QOR_SS_QUANTILES,
                                  QOR_SS_ORDER_STATISTICS, QOR_SS_ORDER_STATISTICS_STORAGE};
constexpr int64_t kStreamQuantiles[] = {QOR_SS_STREAM_QUANTILE_COUNT, QOR_SS_STREAM_QUANTILE_ORDERS,
                                        QOR_SS_STREAM_QUANTILES, QOR_SS_STREAM_PARAMETER_COUNT,
                                        QOR_SS_STREAM_PARAMETERS};
constexpr int64_t kPooledCovariance[] = {QOR_SS_GROUP_INDICES,     QOR_SS_POOLED_MEAN,
                                         QOR_SS_POOLED_COVARIANCE, QOR_SS_GROUP_SELECTION,
                                         QOR_SS_GROUP_MEANS,       QOR_SS_GROUP_COVARIANCES};
constexpr int64_t kRCov[] = {QOR_SS_ROBUST_COVARIANCE_STORAGE, QOR_SS_ROBUST_PARAMETER_COUNT,
                             QOR_SS_ROBUST_PARAMETERS, QOR_SS_ROBUST_MEAN,
                             QOR_SS_ROBUST_COVARIANCE};
constexpr int64_t kOutDetect[] = {QOR_SS_OUTLIER_PARAMETER_COUNT, QOR_SS_OUTLIER_PARAMETERS,
                                  QOR_SS_OUTLIER_WEIGHTS};
constexpr int64_t kMissingVals[] = {
    QOR_SS_MISSING_PARAMETER_COUNT,  QOR_SS_MISSING_PARAMETERS,  QOR_SS_INITIAL_ESTIMATE_COUNT,
    QOR_SS_INITIAL_ESTIMATES,        QOR_SS_PATTERN_COUNT,       QOR_SS_PATTERNS,
    QOR_SS_SIMULATED_ESTIMATE_COUNT, QOR_SS_SIMULATED_ESTIMATES, QOR_SS_SIMULATED_CORRELATION_COUNT,
    QOR_SS_SIMULATED_CORRELATIONS};
constexpr int64_t kMtxParametrz[] = {QOR_SS_COR, QOR_SS_COR_STORAGE,
                                     QOR_SS_PARAMETRIZED_CORRELATION,
                                     QOR_SS_PARAMETRIZED_CORRELATION_STORAGE};

// Sets the fields whose values are given; null leaves a field as it is.
template <size_t count, class... Values>
int edit_family(SsTask* task, const int64_t (&codes)[count], const Values*... given) {
  static_assert(sizeof...(given) == count);
  if (task == nullptr) return QOR_SS_NULL_TASK;
  const void* const values[] = {given...};
  for (size_t i = 0; i < count; ++i) {
    if (values[i] == nullptr) continue;
    const bool is_integer = integer_parameter(codes[i]) != nullptr;
    is_integer ? edit_integer(task, codes[i], values[i]) : edit_real(task, codes[i], values[i]);
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
  return edit_family(task, kMoments, mean, raw_2, raw_3, raw_4, central_2, central_3, central_4);
}
int32_t __ostdSSEditSums(SsTask* task, double* sum, double* raw_sum_2, double* raw_sum_3,
                         double* raw_sum_4, double* central_sum_2, double* central_sum_3,
                         double* central_sum_4) {
  return edit_family(task, kSums, sum, raw_sum_2, raw_sum_3, raw_sum_4, central_sum_2,
                     central_sum_3, central_sum_4);
}
int32_t __ostdSSEditCovCor(SsTask* task, double* mean, double* cov, const void* cov_storage,
                           double* cor, const void* cor_storage) {
  return edit_family(task, kCovCor, mean, cov, cov_storage, cor, cor_storage);
}
int32_t __ostdSSEditCP(SsTask* task, double* mean, double* sum, double* cp,
                       const void* cp_storage) {
  return edit_family(task, kCP, mean, sum, cp, cp_storage);
}
int32_t __ostdSSEditPartialCovCor(SsTask* task, const void* partial_index, double* cov,
                                  const void* cov_storage, double* cor, const void* cor_storage,
                                  double* partial_cov, const void* partial_cov_storage,
                                  double* partial_cor, const void* partial_cor_storage) {
  return edit_family(task, kPartialCovCor, partial_index, cov, cov_storage, cor, cor_storage,
                     partial_cov, partial_cov_storage, partial_cor, partial_cor_storage);
}
int32_t __ostdSSEditQuantiles(SsTask* task, const void* count, double* orders, double* quantiles,
                              double* order_statistics, const void* order_statistics_storage) {
  return edit_family(task, kQuantiles, count, orders, quantiles, order_statistics,
                     order_statistics_storage);
}
int32_t __ostdSSEditStreamQuantiles(SsTask* task, const void* count, double* orders,
                                    double* quantiles, const void* parameter_count,
                                    double* parameters) {
  return edit_family(task, kStreamQuantiles, count, orders, quantiles, parameter_count, parameters);
}
int32_t __ostdSSEditPooledCovariance(SsTask* task, const void* group_indices, double* pooled_mean,
                                     double* pooled_cov, const void* group_selection,
                                     double* group_means, double* group_covs) {
  return edit_family(task, kPooledCovariance, group_indices, pooled_mean, pooled_cov,
                     group_selection, group_means, group_covs);
}
int32_t __ostdSSEditRCov(SsTask* task, const void* robust_storage, const void* parameter_count,
                         double* parameters, double* mean, double* cov) {
  return edit_family(task, kRCov, robust_storage, parameter_count, parameters, mean, cov);
}
int32_t __ostdSSEditOutDetect(SsTask* task, const void* parameter_count, double* parameters,
                              double* outlier_weights) {
  return edit_family(task, kOutDetect, parameter_count, parameters, outlier_weights);
}
int32_t __ostdSSEditMissingVals(SsTask* task, const void* parameter_count, double* parameters,
                                const void* initial_estimate_count, double* initial_estimates,
                                const void* pattern_count, double* patterns,
                                const void* simulated_estimate_count, double* simulated_estimates,
                                const void* simulated_correlation_count,
                                double* simulated_correlations) {
  return edit_family(task, kMissingVals, parameter_count, parameters, initial_estimate_count,
                     initial_estimates, pattern_count, patterns, simulated_estimate_count,
                     simulated_estimates, simulated_correlation_count, simulated_correlations);
}
int32_t __ostdSSEditMtxParametrz(SsTask* task, double* cor, const void* cor_storage,
                                 double* parametrized_cor, const void* parametrized_cor_storage) {
  return edit_family(task, kMtxParametrz, cor, cor_storage, parametrized_cor,
                     parametrized_cor_storage);
}
int32_t __ostsSSEditMoments(SsTask* task, float* mean, float* raw_2, float* raw_3, float* raw_4,
                            float* central_2, float* central_3, float* central_4) {
  return edit_family(task, kMoments, mean, raw_2, raw_3, raw_4, central_2, central_3, central_4);
}
int32_t __ostsSSEditSums(SsTask* task, float* sum, float* raw_sum_2, float* raw_sum_3,
                         float* raw_sum_4, float* central_sum_2, float* central_sum_3,
                         float* central_sum_4) {
  return edit_family(task, kSums, sum, raw_sum_2, raw_sum_3, raw_sum_4, central_sum_2,
                     central_sum_3, central_sum_4);
}
int32_t __ostsSSEditCovCor(SsTask* task, float* mean, float* cov, const void* cov_storage,
                           float* cor, const void* cor_storage) {
  return edit_family(task, kCovCor, mean, cov, cov_storage, cor, cor_storage);
}
int32_t __ostsSSEditCP(SsTask* task, float* mean, float* sum, float* cp, const void* cp_storage) {
  return edit_family(task, kCP, mean, sum, cp, cp_storage);
}
int32_t __ostsSSEditPartialCovCor(SsTask* task, const void* partial_index, float* cov,
                                  const void* cov_storage, float* cor, const void* cor_storage,
                                  float* partial_cov, const void* partial_cov_storage,
                                  float* partial_cor, const void* partial_cor_storage) {
  return edit_family(task, kPartialCovCor, partial_index, cov, cov_storage, cor, cor_storage,
                     partial_cov, partial_cov_storage, partial_cor, partial_cor_storage);
}
int32_t __ostsSSEditQuantiles(SsTask* task, const void* count, float* orders, float* quantiles,
                              float* order_statistics, const void* order_statistics_storage) {
  return edit_family(task, kQuantiles, count, orders, quantiles, order_statistics,
                     order_statistics_storage);
}
int32_t __ostsSSEditStreamQuantiles(SsTask* task, const void* count, float* orders,
                                    float* quantiles, const void* parameter_count,
                                    float* parameters) {
  return edit_family(task, kStreamQuantiles, count, orders, quantiles, parameter_count, parameters);
}
int32_t __ostsSSEditPooledCovariance(SsTask* task, const void* group_indices, float* pooled_mean,
                                     float* pooled_cov, const void* group_selection,
                                     float* group_means, float* group_covs) {
  return edit_family(task, kPooledCovariance, group_indices, pooled_mean, pooled_cov,
                     group_selection, group_means, group_covs);
}
int32_t __ostsSSEditRCov(SsTask* task, const void* robust_storage, const void* parameter_count,
                         float* parameters, float* mean, float* cov) {
  return edit_family(task, kRCov, robust_storage, parameter_count, parameters, mean, cov);
}
int32_t __ostsSSEditOutDetect(SsTask* task, const void* parameter_count, float* parameters,
                              float* outlier_weights) {
  return edit_family(task, kOutDetect, parameter_count, parameters, outlier_weights);
}
int32_t __ostsSSEditMissingVals(SsTask* task, const void* parameter_count, float* parameters,
                                const void* initial_estimate_count, float* initial_estimates,
                                const void* pattern_count, float* patterns,
                                const void* simulated_estimate_count, float* simulated_estimates,
                                const void* simulated_correlation_count,
                                float* simulated_correlations) {
  return edit_family(task, kMissingVals, parameter_count, parameters, initial_estimate_count,
                     initial_estimates, pattern_count, patterns, simulated_estimate_count,
                     simulated_estimates, simulated_correlation_count, simulated_correlations);
}
int32_t __ostsSSEditMtxParametrz(SsTask* task, float* cor, const void* cor_storage,
                                 float* parametrized_cor, const void* parametrized_cor_storage) {
  return edit_family(task, kMtxParametrz, cor, cor_storage, parametrized_cor,
                     parametrized_cor_storage);
}
