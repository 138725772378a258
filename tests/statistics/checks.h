// The order of the checks of a compute entry: with all of its faults present the first status
// comes, with that one mended the next, and so to the end.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "tests/statistics/api.h"

namespace qor::test {

// A record in which everything is there, and the values behind its fields.
template <class Real>
struct Whole {
  static constexpr int64_t p = 2, n = 10;
  Task<Real> task;
  Real x[p * n] = {}, array[100] = {}, means[p] = {}, other[p * p] = {};
  Real orders[2] = {0, 1}, epsilon[1] = {Real(0.1)};

  Whole() : task(p, n, QOR_SS_BY_VARIABLE, x) {
    SsTask& t = task.record();
    for (void* SsTask::*field : {&SsTask::raw_2,
                                 &SsTask::raw_3,
                                 &SsTask::raw_4,
                                 &SsTask::central_2,
                                 &SsTask::central_3,
                                 &SsTask::central_4,
                                 &SsTask::sum,
                                 &SsTask::raw_sum_2,
                                 &SsTask::raw_sum_3,
                                 &SsTask::raw_sum_4,
                                 &SsTask::central_sum_2,
                                 &SsTask::central_sum_3,
                                 &SsTask::central_sum_4,
                                 &SsTask::kurtosis,
                                 &SsTask::skewness,
                                 &SsTask::variation,
                                 &SsTask::min,
                                 &SsTask::max,
                                 &SsTask::cov,
                                 &SsTask::cor,
                                 &SsTask::cp,
                                 &SsTask::quantiles,
                                 &SsTask::order_statistics,
                                 &SsTask::stream_quantiles,
                                 &SsTask::median_absolute_deviation,
                                 &SsTask::mean_absolute_deviation,
                                 &SsTask::sorted_output,
                                 &SsTask::robust_mean,
                                 &SsTask::robust_covariance,
                                 &SsTask::outlier_weights,
                                 &SsTask::partial_covariance,
                                 &SsTask::partial_correlation,
                                 &SsTask::missing_parameters,
                                 &SsTask::simulated_estimates,
                                 &SsTask::simulated_correlations,
                                 &SsTask::pooled_mean,
                                 &SsTask::pooled_covariance,
                                 &SsTask::group_means,
                                 &SsTask::group_covariances}) {
      t.*field = array;
    }
    t.mean = means;
    t.parametrized_correlation = other;
    t.quantile_orders = t.stream_quantile_orders = orders;
    t.stream_parameters = epsilon;
    for (const void* SsTask::*field :
         {&SsTask::cov_storage, &SsTask::cor_storage, &SsTask::cp_storage,
          &SsTask::parametrized_correlation_storage, &SsTask::robust_covariance_storage,
          &SsTask::pooled_covariance_storage, &SsTask::group_covariance_storage,
          &SsTask::partial_covariance_storage, &SsTask::partial_correlation_storage}) {
      t.*field = task.number(0);
    }
    t.quantile_count = t.stream_quantile_count = task.number(2);
    t.stream_parameter_count = task.number(1);
    t.order_statistics_storage = t.sorted_output_storage = task.number(QOR_SS_BY_OBSERVATION);
    t.missing_parameter_count = task.number(5);
    t.simulated_estimate_count = t.simulated_correlation_count = task.number(1);
    static const int32_t groups[n] = {0, 1, 1, 0, 1, 0, 0, 0, 0, 1};
    t.group_indices = t.group_selection = t.partial_index = groups;
  }
};

template <class Real>
class Checks : public ::testing::Test {
 protected:
  using W = Whole<Real>;
  using Fault = std::pair<std::function<void(W&, SsTask&)>, int>;

  // A field that is missing, or an integer with a bad value.
  template <class Field>
  static Fault none(Field SsTask::*field, int status) {
    return {[field](W&, SsTask& t) { t.*field = nullptr; }, status};
  }
  static Fault bad(const void* SsTask::*field, int64_t value, int status) {
    return {[field, value](W& w, SsTask& t) { t.*field = w.task.number(value); }, status};
  }

  // `run` gets a record with the faults from each one on. Later faults come first: a missing field
  // then hides a bad value of its own. Without any it gives `last`.
  static void expect_order(const std::vector<Fault>& faults, const std::function<int(SsTask*)>& run,
                           int last = QOR_SS_NOT_BUILT) {
    for (size_t first = 0; first <= faults.size(); ++first) {
      W whole;
      for (size_t i = faults.size(); i-- > first;) faults[i].first(whole, whole.task.record());
      EXPECT_EQ(run(whole.task), first < faults.size() ? faults[first].second : last)
          << "with the faults from number " << first << " on";
    }
    EXPECT_EQ(run(nullptr), QOR_SS_NULL_TASK);
  }
};

inline constexpr uint64_t kAll = ~uint64_t{0};

}  // namespace qor::test
