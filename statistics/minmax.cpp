// Minimum and maximum. A value takes the place of one that it is strictly below or above, so that
// NaNs in the data never enter and one that stood there first stays.

#include <algorithm>

#include "statistics/columns.h"
#include "statistics/estimators.h"

namespace qor::statistics {
namespace {

// The extremes are kept for a stretch of the data, several rows where these are short, and folded
// in the end: the loop over a stretch has no element that waits for another.
constexpr int64_t kStretch = 64;

// The smallest and the largest of a stretch or of all variables; null where not asked for.
template <class Real>
struct Extremes {
  Real *min, *max;
};

// kept[i] against the stretches of `length` values from x on.
template <bool Min, bool Max, class Real>
void fold_stretches(const Real* x, int64_t stretches, int64_t length, Extremes<Real> kept) {
  for (int64_t s = 0; s < stretches; ++s, x += length) {
    for (int64_t i = 0; i < length; ++i) {
      if (Min) kept.min[i] = x[i] < kept.min[i] ? x[i] : kept.min[i];
      if (Max) kept.max[i] = x[i] > kept.max[i] ? x[i] : kept.max[i];
    }
  }
}

template <class Real>
void fold(const Real* x, int64_t stretches, int64_t length, Extremes<Real> kept) {
  if (kept.max == nullptr) return fold_stretches<true, false>(x, stretches, length, kept);
  if (kept.min == nullptr) return fold_stretches<false, true>(x, stretches, length, kept);
  fold_stretches<true, true>(x, stretches, length, kept);
}

// n observations of p interleaved variables, from the extremes that stand in `all` on.
template <class Real>
void fold_rows(const Real* x, int64_t n, int64_t p, Extremes<Real> all) {
  if (p > kStretch / 2) return fold(x, n, p, all);
  const int64_t rows = kStretch / p, length = rows * p;
  Real min[kStretch], max[kStretch];
  const Extremes<Real> kept{all.min == nullptr ? nullptr : min, all.max == nullptr ? nullptr : max};
  for (int64_t i = 0; i < length; ++i) {
    if (kept.min != nullptr) min[i] = all.min[i % p];
    if (kept.max != nullptr) max[i] = all.max[i % p];
  }
  fold(x, n / rows, length, kept);
  fold(x + n / rows * length, n % rows, p, kept);
  if (kept.min != nullptr) fold(min, rows, p, Extremes<Real>{all.min, nullptr});
  if (kept.max != nullptr) fold(max, rows, p, Extremes<Real>{nullptr, all.max});
}

template <class Real>
void write_selected(const Observations<Real>& data, const Real* from, Real* to) {
  if (from == nullptr) return;
  for (int64_t j = 0; j < data.p; ++j) {
    if (data.takes_part(j)) to[j] = from[j];
  }
}

template <class Real>
int fold_observations(const Observations<Real>& data, Extremes<Real> all) {
  if (!data.indices.given()) {
    fold_rows(data.x, data.n, data.p, all);
    return QOR_SS_OK;
  }
  // Places of the caller's arrays that are left out are neither read nor written.
  const services::HeapScratch<Real> copies(services::counted_product(data.p, 2));
  if (copies.data() == nullptr) return QOR_SS_NO_MEMORY;
  std::fill(copies.data(), copies.data() + 2 * data.p, Real(0));
  const Extremes<Real> copy{all.min == nullptr ? nullptr : copies.data(),
                            all.max == nullptr ? nullptr : copies.data() + data.p};
  write_selected(data, all.min, copy.min);
  write_selected(data, all.max, copy.max);
  fold_rows(data.x, data.n, data.p, copy);
  write_selected(data, copy.min, all.min);
  write_selected(data, copy.max, all.max);
  return QOR_SS_OK;
}

}  // namespace

template <class Real>
int compute_min_max(SsTask& task, uint64_t estimates) {
  const Observations<Real> data = observations<Real>(task);
  Real* min = (estimates & QOR_SS_ESTIMATE_MIN) != 0 ? reals<Real>(task.min) : nullptr;
  Real* max = (estimates & QOR_SS_ESTIMATE_MAX) != 0 ? reals<Real>(task.max) : nullptr;
  if (min == nullptr && max == nullptr) return QOR_SS_OK;
  if (!data.by_variable) return fold_observations(data, Extremes<Real>{min, max});
  for (int64_t j = 0; j < data.p; ++j) {
    if (!data.takes_part(j)) continue;
    fold_rows(
        data.variable(j), data.n, 1,
        Extremes<Real>{min == nullptr ? nullptr : min + j, max == nullptr ? nullptr : max + j});
  }
  return QOR_SS_OK;
}

template int compute_min_max<double>(SsTask&, uint64_t);
template int compute_min_max<float>(SsTask&, uint64_t);

}  // namespace qor::statistics
