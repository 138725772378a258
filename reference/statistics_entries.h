// The statistics entries of both precisions under one name.
#pragma once

#include "qor/statistics.h"

namespace qor::reference {

template <class Real>
struct Api;

// Of the precision with this letter.
#define QOR_STATISTICS_ENTRIES(Real, p)                                      \
  template <>                                                                \
  struct Api<Real> {                                                         \
    static constexpr auto new_task = __ost##p##SSNewTask;                    \
    static constexpr auto edit = __ost##p##SSEditTask;                       \
    static constexpr auto edit_quantiles = __ost##p##SSEditQuantiles;        \
    static constexpr auto edit_stream = __ost##p##SSEditStreamQuantiles;     \
    static constexpr auto basic = _ost##p##SSBasic;                          \
    static constexpr auto min_max = _ost##p##SSMinmax;                       \
    static constexpr auto quantiles = _ost##p##SSQuantiles;                  \
    static constexpr auto stream_quantiles = _ost##p##SSStreamQuantiles;     \
    static constexpr auto sort = _ost##p##SSSort;                            \
    static constexpr auto absolute_deviations = _ost##p##SSMAD;              \
    static constexpr auto missing_values = _ost##p##SSMissingValues;         \
    static constexpr auto outliers = _ost##p##SSOutliersDetection;           \
    static constexpr auto partial_covariance = _ost##p##SSPartialCovariance; \
    static constexpr auto pooled_covariance = _ost##p##SSPooledCovariance;   \
    static constexpr auto robust_covariance = _ost##p##SSRobustCovariance;   \
    static constexpr auto parametrization = _ost##p##SSCorParametrization;   \
    static constexpr auto weighted_median = _ost##p##SSWMedian;              \
    static constexpr auto distances = _ost##p##SSMahDistance;                \
  };

QOR_STATISTICS_ENTRIES(double, d)
QOR_STATISTICS_ENTRIES(float, s)
#undef QOR_STATISTICS_ENTRIES

}  // namespace qor::reference
