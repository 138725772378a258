// The statistics entries of both precisions under one name.
#pragma once

#include "qor/statistics.h"

namespace qor::test {

template <class Real>
struct Api;

template <>
struct Api<double> {
  static constexpr auto new_task = __ostdSSNewTask;
  static constexpr auto edit = __ostdSSEditTask;
  static constexpr auto edit_quantiles = __ostdSSEditQuantiles;
  static constexpr auto edit_stream = __ostdSSEditStreamQuantiles;
  static constexpr auto basic = _ostdSSBasic;
  static constexpr auto min_max = _ostdSSMinmax;
  static constexpr auto quantiles = _ostdSSQuantiles;
  static constexpr auto stream_quantiles = _ostdSSStreamQuantiles;
  static constexpr auto sort = _ostdSSSort;
  static constexpr auto absolute_deviations = _ostdSSMAD;
  static constexpr auto missing_values = _ostdSSMissingValues;
  static constexpr auto outliers = _ostdSSOutliersDetection;
  static constexpr auto partial_covariance = _ostdSSPartialCovariance;
  static constexpr auto pooled_covariance = _ostdSSPooledCovariance;
  static constexpr auto robust_covariance = _ostdSSRobustCovariance;
  static constexpr auto parametrization = _ostdSSCorParametrization;
  static constexpr auto weighted_median = _ostdSSWMedian;
  static constexpr auto distances = _ostdSSMahDistance;
};

template <>
struct Api<float> {
  static constexpr auto new_task = __ostsSSNewTask;
  static constexpr auto edit = __ostsSSEditTask;
  static constexpr auto edit_quantiles = __ostsSSEditQuantiles;
  static constexpr auto edit_stream = __ostsSSEditStreamQuantiles;
  static constexpr auto basic = _ostsSSBasic;
  static constexpr auto min_max = _ostsSSMinmax;
  static constexpr auto quantiles = _ostsSSQuantiles;
  static constexpr auto stream_quantiles = _ostsSSStreamQuantiles;
  static constexpr auto sort = _ostsSSSort;
  static constexpr auto absolute_deviations = _ostsSSMAD;
  static constexpr auto missing_values = _ostsSSMissingValues;
  static constexpr auto outliers = _ostsSSOutliersDetection;
  static constexpr auto partial_covariance = _ostsSSPartialCovariance;
  static constexpr auto pooled_covariance = _ostsSSPooledCovariance;
  static constexpr auto robust_covariance = _ostsSSRobustCovariance;
  static constexpr auto parametrization = _ostsSSCorParametrization;
  static constexpr auto weighted_median = _ostsSSWMedian;
  static constexpr auto distances = _ostsSSMahDistance;
};

}  // namespace qor::test
