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

struct Below {
  template <class Real>
  static Real keep(Real value, Real kept) {
    return value < kept ? value : kept;
  }
};
struct Above {
  template <class Real>
  static Real keep(Real value, Real kept) {
    return value > kept ? value : kept;
  }
};

// kept[i] against the stretches of `length` values from x on.
template <class Extreme, class Real>
void fold_stretches(const Real* x, int64_t stretches, int64_t length, Real* kept) {
  for (int64_t s = 0; s < stretches; ++s, x += length) {
    for (int64_t i = 0; i < length; ++i) kept[i] = Extreme::keep(x[i], kept[i]);
  }
}

// The extremes of p interleaved variables of n observations, from those that stand in `extreme` on.
template <class Extreme, class Real>
void fold_rows(const Real* x, int64_t n, int64_t p, Real* extreme) {
  if (p > kStretch / 2) return fold_stretches<Extreme>(x, n, p, extreme);
  const int64_t rows = kStretch / p, length = rows * p;
  Real kept[kStretch];
  for (int64_t i = 0; i < length; ++i) kept[i] = extreme[i % p];
  fold_stretches<Extreme>(x, n / rows, length, kept);
  fold_stretches<Extreme>(x + n / rows * length, n % rows, p, kept);
  for (int64_t i = 0; i < length; ++i) {
    extreme[i % p] = Extreme::keep(kept[i], extreme[i % p]);
  }
}

// Both at once, so that the data pass once.
template <class Real>
void fold_both(const Real* x, int64_t n, int64_t p, Real* min, Real* max) {
  // Elements that stay in the first cache between the two.
  constexpr int64_t kBlock = 2048;
  const int64_t rows = std::max<int64_t>(kBlock / p, 1);
  for (int64_t first = 0; first < n; first += rows) {
    const int64_t count = std::min(rows, n - first);
    if (min != nullptr) fold_rows<Below>(x + first * p, count, p, min);
    if (max != nullptr) fold_rows<Above>(x + first * p, count, p, max);
  }
}

template <class Real>
void write_selected(const Observations<Real>& data, const Real* from, Real* to) {
  if (from == nullptr) return;
  for (int64_t j = 0; j < data.p; ++j) {
    if (data.takes_part(j)) to[j] = from[j];
  }
}

template <class Real>
int fold_observations(const Observations<Real>& data, Real* min, Real* max) {
  if (!data.indices.given()) {
    fold_both(data.x, data.n, data.p, min, max);
    return QOR_SS_OK;
  }
  // What is left out is neither read nor written in the caller's arrays.
  const services::HeapScratch<Real> copies(services::counted_product(data.p, 2));
  if (copies.data() == nullptr) return QOR_SS_NO_MEMORY;
  Real* low = min == nullptr ? nullptr : copies.data();
  Real* high = max == nullptr ? nullptr : copies.data() + data.p;
  std::fill(copies.data(), copies.data() + 2 * data.p, Real(0));
  write_selected(data, min, low);
  write_selected(data, max, high);
  fold_both(data.x, data.n, data.p, low, high);
  write_selected<Real>(data, low, min);
  write_selected<Real>(data, high, max);
  return QOR_SS_OK;
}

}  // namespace

template <class Real>
int compute_min_max(SsTask& task, uint64_t estimates) {
  const Observations<Real> data = observations<Real>(task);
  Real* min = (estimates & QOR_SS_ESTIMATE_MIN) != 0 ? reals<Real>(task.min) : nullptr;
  Real* max = (estimates & QOR_SS_ESTIMATE_MAX) != 0 ? reals<Real>(task.max) : nullptr;
  if (!data.by_variable) return fold_observations(data, min, max);
  for (int64_t j = 0; j < data.p; ++j) {
    if (!data.takes_part(j)) continue;
    fold_both(data.variable(j), data.n, int64_t{1}, min == nullptr ? nullptr : min + j,
              max == nullptr ? nullptr : max + j);
  }
  return QOR_SS_OK;
}

template int compute_min_max<double>(SsTask&, uint64_t);
template int compute_min_max<float>(SsTask&, uint64_t);

}  // namespace qor::statistics
