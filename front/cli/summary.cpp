#include "front/cli/summary.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>

#include "front/cli/threads_given.h"

namespace qor::cli {
namespace {

constexpr int64_t kByObservation = QOR_SS_BY_OBSERVATION, kFull = QOR_SS_MATRIX_FULL, kOne = 1;
constexpr int32_t kWideIntegers = 1;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr uint64_t kMoments = QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_CENTRAL_2 |
                              QOR_SS_ESTIMATE_CENTRAL_3 | QOR_SS_ESTIMATE_CENTRAL_4 |
                              QOR_SS_ESTIMATE_SKEWNESS | QOR_SS_ESTIMATE_KURTOSIS |
                              QOR_SS_ESTIMATE_VARIATION;

void check(int32_t status) {
  if (status == QOR_SS_NO_MEMORY) throw std::bad_alloc();
  if (status != QOR_SS_OK) {
    throw std::runtime_error("summary statistics failed with status " + std::to_string(status));
  }
}

}  // namespace

Summary::Summary(size_t variables, Wanted wanted)
    : variables_(static_cast<int64_t>(variables)),
      wanted_(std::move(wanted)),
      orders_(wanted_.quantile_orders),
      order_count_(static_cast<int64_t>(orders_.size())) {
  SummaryFigures& f = figures_;
  for (std::vector<double>* array :
       {&f.mean, &f.skewness, &f.kurtosis, &f.variation, &raw_[0], &raw_[1], &raw_[2], &central_[0],
        &central_[1], &central_[2]}) {
    array->resize(variables);
  }
  f.minimum.assign(variables, kInfinity);
  f.maximum.assign(variables, -kInfinity);
  f.quantiles.resize(variables * orders_.size());
  if (wanted_.covariance) f.covariance.resize(variables * variables);
  SsTask* task = nullptr;
  check(__ostdSSNewTask(&task, &variables_, nullptr, &kByObservation, nullptr, nullptr, nullptr,
                        kWideIntegers));
  task_.reset(task);
  register_arrays();
}

void Summary::register_arrays() {
  SsTask* task = task_.get();
  const auto set = [&](int64_t code, std::vector<double>& array) {
    check(__ostdSSEditTask(task, code, array.data()));
  };
  check(__ostiSSEditTask(task, QOR_SS_N, &count_));
  check(__ostiSSEditTask(task, QOR_SS_X_STORAGE, &kByObservation));
  check(__ostdSSEditTask(task, QOR_SS_ACCUMULATED_WEIGHTS, weights_));
  check(__ostdSSEditMoments(task, figures_.mean.data(), raw_[0].data(), raw_[1].data(),
                            raw_[2].data(), central_[0].data(), central_[1].data(),
                            central_[2].data()));
  set(QOR_SS_SKEWNESS, figures_.skewness);
  set(QOR_SS_KURTOSIS, figures_.kurtosis);
  set(QOR_SS_VARIATION, figures_.variation);
  set(QOR_SS_MIN, figures_.minimum);
  set(QOR_SS_MAX, figures_.maximum);
  if (wanted_.covariance) {
    set(QOR_SS_COV, figures_.covariance);
    check(__ostiSSEditTask(task, QOR_SS_COV_STORAGE, &kFull));
  }
  if (order_count_ > 0) {
    check(__ostdSSEditStreamQuantiles(task, &order_count_, orders_.data(),
                                      figures_.quantiles.data(), &kOne, &quantile_error_));
  }
}

void Summary::add(const Observations& block) {
  count_ = block.count;
  if (count_ == 0) return;
  figures_.observations += count_;
  check(__ostdSSEditTask(task_.get(), QOR_SS_X, block.x.data()));
  if (!block.weights.empty()) {
    check(__ostdSSEditTask(task_.get(), QOR_SS_WEIGHTS, block.weights.data()));
  }
  const ThreadHook* threads = lent_threads(wanted_.threads);
  const uint64_t estimates = kMoments | (wanted_.covariance ? QOR_SS_ESTIMATE_COVARIANCE : 0);
  check(_ostdSSBasic(task_.get(), estimates,
                     wanted_.fast ? QOR_SS_METHOD_FAST : QOR_SS_METHOD_ONE_PASS, threads));
  check(_ostdSSMinmax(task_.get(), QOR_SS_ESTIMATE_MIN | QOR_SS_ESTIMATE_MAX, QOR_SS_METHOD_FAST,
                      threads));
  take_quantiles(QOR_SS_METHOD_STREAM_UPDATE);
}

void Summary::take_quantiles(uint64_t method) {
  if (order_count_ == 0) return;
  check(_ostdSSStreamQuantiles(task_.get(), QOR_SS_ESTIMATE_QUANTILES, method,
                               lent_threads(wanted_.threads)));
}

// The library answers order q by the value of rank q n, rounded down, counted from 1.
void Summary::set_places() {
  const auto n = static_cast<double>(figures_.observations);
  std::ranges::transform(wanted_.quantile_orders, orders_.begin(), [n](double order) {
    constexpr double kClearOfRounding = 0.25;
    return std::min(1.0, (std::round(order * (n - 1)) + 1 + kClearOfRounding) / n);
  });
}

SummaryFigures Summary::figures() {
  if (figures_.observations > 0) set_places();
  count_ = 0;
  take_quantiles(QOR_SS_METHOD_STREAM_ANSWER);
  figures_.weight = weights_[0];
  figures_.deviation.resize(central_[0].size());
  std::ranges::transform(central_[0], figures_.deviation.begin(),
                         [](double variance) { return std::sqrt(variance); });
  return figures_;
}

}  // namespace qor::cli
