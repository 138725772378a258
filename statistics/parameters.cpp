#include "statistics/parameters.h"

#include <algorithm>
#include <iterator>

namespace qor::statistics {
namespace {

constexpr IntegerParameter kIntegers[] = {
    {QOR_SS_P, &SsTask::p, QOR_SS_BAD_P},
    {QOR_SS_N, &SsTask::n, QOR_SS_BAD_N},
    {QOR_SS_X_STORAGE, &SsTask::x_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_INDICES, &SsTask::indices, QOR_SS_BAD_INDICES},
    {QOR_SS_COV_STORAGE, &SsTask::cov_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_COR_STORAGE, &SsTask::cor_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_QUANTILE_COUNT, &SsTask::quantile_count, QOR_SS_BAD_QUANTILE_COUNT},
    {QOR_SS_GROUP_INDICES, &SsTask::group_indices, QOR_SS_BAD_GROUPS},
    {QOR_SS_POOLED_COVARIANCE_STORAGE, &SsTask::pooled_covariance_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_GROUP_SELECTION, &SsTask::group_selection, QOR_SS_BAD_GROUPS},
    {QOR_SS_GROUP_COVARIANCE_STORAGE, &SsTask::group_covariance_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_ROBUST_COVARIANCE_STORAGE, &SsTask::robust_covariance_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_ROBUST_PARAMETER_COUNT, &SsTask::robust_parameter_count,
     QOR_SS_NULL_ROBUST_PARAMETER_COUNT},
    {QOR_SS_OUTLIER_PARAMETER_COUNT, &SsTask::outlier_parameter_count,
     QOR_SS_NULL_OUTLIER_PARAMETER_COUNT},
    {QOR_SS_ORDER_STATISTICS_STORAGE, &SsTask::order_statistics_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_PARTIAL_INDEX, &SsTask::partial_index, QOR_SS_NULL_PARTIAL_INDEX},
    {QOR_SS_PARTIAL_COVARIANCE_STORAGE, &SsTask::partial_covariance_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_PARTIAL_CORRELATION_STORAGE, &SsTask::partial_correlation_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_MISSING_PARAMETER_COUNT, &SsTask::missing_parameter_count,
     QOR_SS_NULL_MISSING_PARAMETER_COUNT},
    {QOR_SS_INITIAL_ESTIMATE_COUNT, &SsTask::initial_estimate_count,
     QOR_SS_NULL_INITIAL_ESTIMATE_COUNT},
    {QOR_SS_SIMULATED_ESTIMATE_COUNT, &SsTask::simulated_estimate_count,
     QOR_SS_NULL_SIMULATED_ESTIMATE_COUNT},
    {QOR_SS_SIMULATED_CORRELATION_COUNT, &SsTask::simulated_correlation_count,
     QOR_SS_NULL_SIMULATED_CORRELATION_COUNT},
    {QOR_SS_PATTERN_COUNT, &SsTask::pattern_count, QOR_SS_NULL_PATTERN_COUNT},
    {QOR_SS_PARAMETRIZED_CORRELATION_STORAGE, &SsTask::parametrized_correlation_storage,
     QOR_SS_NULL_STORAGE},
    {QOR_SS_STREAM_PARAMETER_COUNT, &SsTask::stream_parameter_count,
     QOR_SS_BAD_STREAM_PARAMETER_COUNT},
    {QOR_SS_STREAM_QUANTILE_COUNT, &SsTask::stream_quantile_count,
     QOR_SS_BAD_STREAM_QUANTILE_COUNT},
    {QOR_SS_CP_STORAGE, &SsTask::cp_storage, QOR_SS_NULL_STORAGE},
    {QOR_SS_SORTED_OUTPUT_STORAGE, &SsTask::sorted_output_storage, QOR_SS_NULL_STORAGE},
};

constexpr RealParameter kReals[] = {
    {QOR_SS_X, &SsTask::x, QOR_SS_NULL_X},
    {QOR_SS_WEIGHTS, &SsTask::weights, QOR_SS_NULL_WEIGHTS},
    {QOR_SS_MEAN, &SsTask::mean, QOR_SS_NULL_MEAN},
    {QOR_SS_RAW_2, &SsTask::raw_2, QOR_SS_NULL_RAW_2},
    {QOR_SS_RAW_3, &SsTask::raw_3, QOR_SS_NULL_RAW_3},
    {QOR_SS_RAW_4, &SsTask::raw_4, QOR_SS_NULL_RAW_4},
    {QOR_SS_CENTRAL_2, &SsTask::central_2, QOR_SS_NULL_CENTRAL_2},
    {QOR_SS_CENTRAL_3, &SsTask::central_3, QOR_SS_NULL_CENTRAL_3},
    {QOR_SS_CENTRAL_4, &SsTask::central_4, QOR_SS_NULL_CENTRAL_4},
    {QOR_SS_KURTOSIS, &SsTask::kurtosis, QOR_SS_NULL_KURTOSIS},
    {QOR_SS_SKEWNESS, &SsTask::skewness, QOR_SS_NULL_SKEWNESS},
    {QOR_SS_MIN, &SsTask::min, QOR_SS_NULL_MIN},
    {QOR_SS_MAX, &SsTask::max, QOR_SS_NULL_MAX},
    {QOR_SS_VARIATION, &SsTask::variation, QOR_SS_NULL_VARIATION},
    {QOR_SS_COV, &SsTask::cov, QOR_SS_NULL_COV},
    {QOR_SS_COR, &SsTask::cor, QOR_SS_NULL_COR},
    {QOR_SS_ACCUMULATED_WEIGHTS, &SsTask::accumulated_weights, QOR_SS_BAD_ACCUMULATED_WEIGHTS},
    {QOR_SS_QUANTILE_ORDERS, &SsTask::quantile_orders, QOR_SS_NULL_QUANTILE_ORDERS},
    {QOR_SS_QUANTILES, &SsTask::quantiles, QOR_SS_NULL_QUANTILES},
    {QOR_SS_ORDER_STATISTICS, &SsTask::order_statistics, QOR_SS_NULL_ORDER_STATISTICS},
    {QOR_SS_POOLED_MEAN, &SsTask::pooled_mean, QOR_SS_NULL_POOLED_MEAN},
    {QOR_SS_POOLED_COVARIANCE, &SsTask::pooled_covariance, QOR_SS_NULL_POOLED_COVARIANCE},
    {QOR_SS_GROUP_MEANS, &SsTask::group_means, QOR_SS_NULL_GROUP_MEANS},
    {QOR_SS_GROUP_COVARIANCES, &SsTask::group_covariances, QOR_SS_NULL_GROUP_COVARIANCES},
    {QOR_SS_ROBUST_PARAMETERS, &SsTask::robust_parameters, QOR_SS_NULL_ROBUST_PARAMETERS},
    {QOR_SS_ROBUST_MEAN, &SsTask::robust_mean, QOR_SS_NULL_ROBUST_MEAN},
    {QOR_SS_ROBUST_COVARIANCE, &SsTask::robust_covariance, QOR_SS_NULL_ROBUST_COVARIANCE},
    {QOR_SS_OUTLIER_PARAMETERS, &SsTask::outlier_parameters, QOR_SS_NULL_OUTLIER_PARAMETERS},
    {QOR_SS_OUTLIER_WEIGHTS, &SsTask::outlier_weights, QOR_SS_NULL_OUTLIER_WEIGHTS},
    {QOR_SS_PARTIAL_COVARIANCE, &SsTask::partial_covariance, QOR_SS_NULL_PARTIAL_COVARIANCE},
    {QOR_SS_PARTIAL_CORRELATION, &SsTask::partial_correlation, QOR_SS_NULL_PARTIAL_CORRELATION},
    {QOR_SS_MISSING_PARAMETERS, &SsTask::missing_parameters, QOR_SS_NULL_MISSING_PARAMETERS},
    {QOR_SS_INITIAL_ESTIMATES, &SsTask::initial_estimates, QOR_SS_NULL_INITIAL_ESTIMATES},
    {QOR_SS_SIMULATED_ESTIMATES, &SsTask::simulated_estimates, QOR_SS_NULL_SIMULATED_ESTIMATES},
    {QOR_SS_SIMULATED_CORRELATIONS, &SsTask::simulated_correlations,
     QOR_SS_NULL_SIMULATED_CORRELATIONS},
    {QOR_SS_PATTERNS, &SsTask::patterns, QOR_SS_NULL_PATTERNS},
    {QOR_SS_PARAMETRIZED_CORRELATION, &SsTask::parametrized_correlation,
     QOR_SS_NULL_PARAMETRIZED_CORRELATION},
    {QOR_SS_STREAM_PARAMETERS, &SsTask::stream_parameters, QOR_SS_NULL_STREAM_PARAMETERS},
    {QOR_SS_STREAM_QUANTILE_ORDERS, &SsTask::stream_quantile_orders,
     QOR_SS_NULL_STREAM_QUANTILE_ORDERS},
    {QOR_SS_STREAM_QUANTILES, &SsTask::stream_quantiles, QOR_SS_NULL_STREAM_QUANTILES},
    {QOR_SS_SUM, &SsTask::sum, QOR_SS_NULL_MEAN},
    {QOR_SS_RAW_SUM_2, &SsTask::raw_sum_2, QOR_SS_NULL_RAW_SUM_2},
    {QOR_SS_RAW_SUM_3, &SsTask::raw_sum_3, QOR_SS_NULL_RAW_SUM_3},
    {QOR_SS_RAW_SUM_4, &SsTask::raw_sum_4, QOR_SS_NULL_RAW_SUM_4},
    {QOR_SS_CENTRAL_SUM_2, &SsTask::central_sum_2, QOR_SS_NULL_CENTRAL_SUM_2},
    {QOR_SS_CENTRAL_SUM_3, &SsTask::central_sum_3, QOR_SS_NULL_CENTRAL_SUM_3},
    {QOR_SS_CENTRAL_SUM_4, &SsTask::central_sum_4, QOR_SS_NULL_CENTRAL_SUM_4},
    {QOR_SS_CP, &SsTask::cp, QOR_SS_NULL_CP},
    {QOR_SS_MEDIAN_ABSOLUTE_DEVIATION, &SsTask::median_absolute_deviation,
     QOR_SS_NULL_MEDIAN_ABSOLUTE_DEVIATION},
    {QOR_SS_MEAN_ABSOLUTE_DEVIATION, &SsTask::mean_absolute_deviation,
     QOR_SS_NULL_MEAN_ABSOLUTE_DEVIATION},
    {QOR_SS_SORTED_OUTPUT, &SsTask::sorted_output, QOR_SS_NULL_SORTED_OUTPUT},
};

template <class Row, size_t Count>
const Row* row_of(const Row (&rows)[Count], int64_t code) {
  const Row* found = std::find_if(std::begin(rows), std::end(rows),
                                  [code](const Row& r) { return r.code == code; });
  return found == std::end(rows) ? nullptr : found;
}

}  // namespace

const IntegerParameter* integer_parameter(int64_t code) { return row_of(kIntegers, code); }
const RealParameter* real_parameter(int64_t code) { return row_of(kReals, code); }

}  // namespace qor::statistics
