// A task for a stream of observations, and how far its answers are from the truth.
#pragma once

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {

template <class Real>
class Stream {
 public:
  Stream(int64_t p, Real epsilon, std::vector<Real> orders)
      : p_(p),
        epsilon_(epsilon),
        orders_(std::move(orders)),
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
  int feed(const Real* x, int64_t n, bool by_variable = false,
           uint64_t method = QOR_SS_METHOD_STREAM_ANSWER, const ThreadHook* hook = nullptr) {
    n_ = n;
    storage_ = by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION;
    task_.record().x = const_cast<Real*>(n == 0 ? nullptr : x);
    return Api<Real>::stream_quantiles(task_, 0, method, hook);
  }
  int feed(const std::vector<Real>& x, bool by_variable = false,
           uint64_t method = QOR_SS_METHOD_STREAM_ANSWER, const ThreadHook* hook = nullptr) {
    return feed(x.data(), static_cast<int64_t>(x.size()) / p_, by_variable, method, hook);
  }
  // 32-bit flags; the task keeps 64-bit integers.
  template <size_t N>
  void select(const int32_t (&indices)[N]) {
    indices_.assign(indices, indices + N);
    task_.record().indices = indices_.data();
  }

  const std::vector<Real>& quantiles() const { return quantiles_; }
  const std::vector<Real>& orders() const { return orders_; }
  SsTask& record() { return task_.record(); }

 private:
  int64_t p_, n_ = 0, storage_ = 0;
  Real epsilon_;
  std::vector<int64_t> indices_;
  std::vector<Real> orders_, quantiles_;
  Task<Real> task_;
};

// The worst distance between the place of an order and the ranks of its answer after so many
// observations, in units of epsilon*N or of one rank, whichever is more.
template <class Real>
double worst_rank_error(const std::vector<Real>& data, double epsilon,
                        const std::vector<int64_t>& lengths) {
  std::vector<Real> orders;
  for (int k = 0; k <= 128; ++k) orders.push_back(static_cast<Real>(k) / 128);
  for (int k = 0; k < 40; ++k)
    orders.push_back(std::fmod(static_cast<Real>(k) * Real(0.618), Real(1)));
  Stream<Real> stream(1, static_cast<Real>(epsilon), orders);
  double worst = 0;
  int64_t fed = 0;
  for (const int64_t length : lengths) {
    EXPECT_EQ(stream.feed(data.data() + fed, length - fed), QOR_SS_OK);
    fed = length;
    std::vector<Real> sorted(data.data(), data.data() + length);
    std::sort(sorted.begin(), sorted.end());
    const double n = static_cast<double>(length);
    for (size_t k = 0; k < orders.size(); ++k) {
      const auto [first, last] =
          std::equal_range(sorted.begin(), sorted.end(), stream.quantiles()[k]);
      EXPECT_NE(first, last) << "no observation";
      const double place = static_cast<double>(orders[k]) * n;
      const double lowest = static_cast<double>(first - sorted.begin() + 1);
      const double highest = static_cast<double>(last - sorted.begin());
      const double distance = std::max({lowest - place, place - highest, 0.0});
      worst = std::max(worst, distance / std::max(1.0, epsilon * n));
    }
  }
  return worst;
}

}  // namespace qor::test
