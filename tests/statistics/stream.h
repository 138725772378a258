// A task for a stream of observations.
#pragma once

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {

template <class Real>
class Stream {
 public:
  Stream(int64_t p, double epsilon, const std::vector<Real>& orders)
      : p_(p),
        epsilon_(static_cast<Real>(epsilon)),
        orders_(orders),
        quantiles_(orders_.size() * static_cast<size_t>(p), Real(-77)),
        task_(p, 1, QOR_SS_BY_VARIABLE, &epsilon_, nullptr, true) {
    task_.record().n = &n_;
    task_.record().x_storage = &storage_;
    task_.set_number(QOR_SS_STREAM_QUANTILE_COUNT, static_cast<int64_t>(orders_.size()));
    task_.set(QOR_SS_STREAM_QUANTILE_ORDERS, orders_.data());
    task_.set(QOR_SS_STREAM_QUANTILES, quantiles_.data());
    task_.set_number(QOR_SS_STREAM_PARAMETER_COUNT, 1);
    task_.set(QOR_SS_STREAM_PARAMETERS, &epsilon_);
  }

  // The next observations.
  int feed(const std::vector<Real>& x, bool by_variable = false,
           uint64_t method = QOR_SS_METHOD_STREAM_ANSWER, const ThreadHook* hook = nullptr) {
    n_ = static_cast<int64_t>(x.size()) / p_;
    storage_ = by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION;
    task_.record().x = n_ == 0 ? nullptr : const_cast<Real*>(x.data());
    return Api<Real>::stream_quantiles(task_, 0, method, hook);
  }
  // The variables of the next observations.
  void select(const std::vector<int64_t>& indices) {
    indices_ = indices;
    task_.record().indices = indices.empty() ? nullptr : indices_.data();
  }

  const std::vector<Real>& quantiles() const { return quantiles_; }
  SsTask& record() { return task_.record(); }

 private:
  int64_t p_, n_ = 0, storage_ = 0;
  Real epsilon_;
  std::vector<int64_t> indices_;
  std::vector<Real> orders_, quantiles_;
  Task<Real> task_;
};

}  // namespace qor::test
