// One variable without weights, as several: its observations in turn are those of `fold_lanes`
// variables, so that registers are filled; the parts are then put together.
#pragma once

#include <algorithm>

#include "statistics/kernels.h"
#include "statistics/slots.h"

namespace qor::statistics {

template <class Real>
inline constexpr int64_t fold_lanes = 64 / sizeof(Real);  // the same at every level

// From here on the folding pays.
template <class Real>
inline constexpr int64_t least_folded = 32 * fold_lanes<Real>;

// The moments of the lanes, of which `order` tells the slots in use.
template <class Real>
struct FoldedMoments {
  Real values[slot_count][fold_lanes<Real>] = {};

  Moments<Real> view(Order order) {
    Moments<Real> moments{};
    for (int s = 0; s < slot_count; ++s) {
      if (in_use(order, s)) slot(moments, s) = values[s];
    }
    return moments;
  }
};

// Takes as many of the observations from `first` to `end` as go into the lanes, by the kernel for
// data by observation, and returns the first that is left. Slots hold what the method's do inside a
// run: moments and central sums with one pass, else sums.
template <class Real>
int64_t take_folded(const Observations<Real>& data, int64_t first, int64_t end, Method method,
                    Order order, Kernel<Real> kernel, Accumulator<Real>& into) {
  constexpr int64_t lanes = fold_lanes<Real>;
  const int64_t rows = (end - first) / lanes;
  Real scale[lanes];
  if (data.scale != nullptr) std::fill_n(scale, lanes, data.scale[0]);
  const Observations<Real> folded = {
      data.x + first, rows, lanes, false, nullptr, {}, data.scale == nullptr ? nullptr : scale};
  FoldedMoments<Real> parts;
  Accumulator<Real> gathered{parts.view(order), {}, nullptr, nullptr};
  if (method == Method::given_means) std::fill_n(parts.values[0], lanes, into.moments.mean[0]);
  kernel(folded, 0, rows, gathered);
  for (int64_t l = 0; l < lanes; ++l) {
    if (method == Method::one_pass) {
      const Shares<Real> shares(into.weight.sum, gathered.weight.sum);
      merge(into.moments, gathered.moments.from(l), 1, order, shares);
    } else {
      for (int s = method == Method::given_means ? 1 : 0; s < slot_count; ++s) {
        if (in_use(order, s)) slot(into.moments, s)[0] += parts.values[s][l];
      }
    }
    into.weight.sum += gathered.weight.sum;
    into.weight.squares += gathered.weight.squares;
  }
  return first + rows * lanes;
}

}  // namespace qor::statistics
