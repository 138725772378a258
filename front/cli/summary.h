// Summary statistics of observations that come block by block.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "front/cli/observations.h"
#include "qor/statistics.h"

namespace qor::cli {

// Per variable, as the arrays of statistics.h; NaN where the data do not determine a value.
struct SummaryFigures {
  int64_t observations = 0;
  double weight = 0;  // of all; the number of observations when they have none
  std::vector<double> mean, deviation, minimum, maximum, skewness, kurtosis, variation;
  std::vector<double> quantiles;   // all orders of a variable together
  std::vector<double> covariance;  // full, or empty
};

class Summary {
 public:
  // A quantile of order q is the value at place q(n - 1), rounded, among the sorted ones, counted
  // from 0; off by at most this share of n places, or by less than one.
  static constexpr double kQuantileError = 1e-4;

  struct Wanted {
    bool fast = false;                    // method: sums of powers instead of one pass
    std::vector<double> quantile_orders;  // which take no weights
    bool covariance = false;
    int64_t threads = 1;
  };

  Summary(size_t variables, Wanted wanted);
  Summary(const Summary&) = delete;
  Summary& operator=(const Summary&) = delete;

  void add(const Observations& block);
  SummaryFigures figures();

 private:
  struct DeleteTask {
    void operator()(SsTask* task) const { __ostSSDeleteTask(&task); }
  };

  void register_arrays();
  void take_quantiles(uint64_t method);
  void set_places();

  int64_t variables_, count_ = 0;  // of observations in the block
  Wanted wanted_;
  std::vector<double> orders_;  // as the library counts
  int64_t order_count_;
  SummaryFigures figures_;
  std::vector<double> raw_[3], central_[3];  // 2 to 4
  double weights_[2] = {0, 0};               // accumulated: of all, of their squares
  double quantile_error_ = kQuantileError;
  std::unique_ptr<SsTask, DeleteTask> task_;
};

}  // namespace qor::cli
