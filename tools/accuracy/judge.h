// The errors of all kernels of a row over batches, by estimates where these can tell.
#pragma once

#include <limits>
#include <vector>

#include "tools/accuracy/estimated_error.h"
#include "tools/accuracy/levels.h"

namespace qor::tools {

// Exact values cost a hundred times as much as estimates, and count so against a budget.
template <class T>
class Judge {
 public:
  using R = Wider<T>;

  Judge(const reference::Row<T>& row, const std::vector<LevelKernel<T>>& kernels)
      : row_(row), kernels_(kernels), results_(kernels.size()) {}

  // Calls use(kernel, error, numbers) for each kernel, element and output.
  template <class Use>
  void judge(const reference::Batch<T>& batch, Use use) {
    const auto n = static_cast<size_t>(reference::count_of(row_, batch));
    if (n == 0) return;
    for (size_t k = 0; k < kernels_.size(); ++k) kernels_[k].run(batch, results_[k]);
    const bool estimated = estimate(batch, n);
    spent_ += estimated ? n : 64 * n;
    for (size_t i = 0; i < n; ++i) {
      const reference::Numbers<T> numbers = reference::numbers_of(row_, batch, static_cast<int>(i));
      bool known = false;
      for (int y = 0; y < row_.shape.outputs * row_.shape.output_parts; ++y) {
        for (size_t k = 0; k < kernels_.size(); ++k) {
          const T computed = result(k, y, i);
          double error = std::numeric_limits<double>::quiet_NaN();
          if (estimated) error = estimated_error(computed, exact_[static_cast<size_t>(y)][i]);
          if (std::isnan(error)) {
            if (!known) value_.compute(*row_.reference, numbers.data(), row_.shape.numbers_in());
            known = true;
            error = value_.error(y, computed);
          }
          use(k, error, numbers);
        }
      }
    }
  }

  uint64_t spent() const { return spent_; }

 private:
  T result(size_t k, int y, size_t i) const {
    const auto parts = static_cast<size_t>(row_.shape.output_parts), j = static_cast<size_t>(y);
    return results_[k][j / parts][i * parts + j % parts];
  }

  // False for a function without an estimate.
  bool estimate(const reference::Batch<T>& batch, size_t n) {
    const auto run = [&] {
      if constexpr (sizeof(T) == sizeof(float)) return row_.reference->estimates.in_double;
      if constexpr (sizeof(T) == sizeof(double)) return row_.reference->estimates.in_extended;
    }();
    if (run == nullptr) return false;
    const R* in[reference::Value<T>::most_inputs];
    R* out[reference::Value<T>::most_outputs];
    for (size_t k = 0; k < static_cast<size_t>(row_.shape.numbers_in()); ++k) {
      const auto vectors = static_cast<size_t>(row_.shape.inputs);
      if (k < vectors) {
        wide_[k].assign(batch.in[k].begin(), batch.in[k].end());
      } else {
        wide_[k].assign(n, static_cast<R>(batch.scalar[k - vectors]));
      }
      in[k] = wide_[k].data();
    }
    for (size_t k = 0; k < reference::Value<T>::most_outputs; ++k) {
      exact_[k].resize(n);
      out[k] = exact_[k].data();
    }
    run(n, in, out);
    return true;
  }

  const reference::Row<T>& row_;
  const std::vector<LevelKernel<T>>& kernels_;
  std::vector<reference::Results<T>> results_;
  std::vector<R> wide_[reference::Value<T>::most_inputs], exact_[reference::Value<T>::most_outputs];
  reference::Value<T> value_;
  uint64_t spent_ = 0;
};

}  // namespace qor::tools
