#include "statistics/run.h"

#include <algorithm>

#include "statistics/cross_product.h"
#include "statistics/fold.h"
#include "statistics/slots.h"

namespace qor::statistics {
namespace {

// Observations first to end - 1 through the kernel, folded where that fills registers.
template <class Real>
void take(const Run<Real>& run, int64_t first, int64_t end, Accumulator<Real>& a) {
  const bool folds = run.data.p == 1 && run.data.weights == nullptr && !run.matrix;
  if (folds && end - first >= least_folded<Real>) {
    first = take_folded(run.data, first, end, run.request.method, run.order, run.folded_kernel, a);
  }
  run.kernel(run.data, first, end, a);
}

// Slots that hold sums while a method by sums runs: all raw ones, but not a given mean.
template <class Real>
void scale_raw(const Run<Real>& run, Accumulator<Real>& a, bool to_sums) {
  const Real w = static_cast<Real>(a.weight.sum);
  for (int s = run.request.method == Method::given_means ? 1 : 0; s < run.order.raw; ++s) {
    Real* values = slot(a.moments, s);
    for (int64_t j = 0; j < run.data.p; ++j) values[j] = to_sums ? values[j] * w : values[j] / w;
  }
}

// The methods by sums: moments and the matrix become sums about 0, and central again at the end.
template <class Real>
void run_sums(const Run<Real>& run, int64_t first, int64_t end, Accumulator<Real>& a) {
  const int64_t p = run.data.p;
  if (run.matrix && a.weight.sum != 0) {
    add_rank_one(static_cast<Real>(a.weight.sum), run.start_means, p, a.cross);
  }
  scale_raw(run, a, true);
  const int64_t block = run.matrix ? product_block(p) : end - first;
  for (int64_t count; first < end; first += count) {
    count = std::min(block, end - first);
    take(run, first, first + count, a);
    if (run.matrix) add_products(run.data, first, count, a.work, a.cross);
  }
  scale_raw(run, a, false);
  if (run.matrix) add_rank_one(static_cast<Real>(-a.weight.sum), a.moments.mean, p, a.cross);
}

// The first observation from `first` on whose weight is not exactly 0 (a NaN is not), or `end`.
template <class Real>
int64_t first_weighted(const Real* weights, int64_t first, int64_t end) {
  while (first < end && weights[first] == 0) ++first;
  return first;
}

// Member t of the team: an equal share of the observations, the last one's with the remainder.
template <class Real>
void run_member(const Run<Real>& run, int64_t t) {
  const int64_t n = run.data.n, share = n / run.threads;
  const int64_t end = t + 1 == run.threads ? n : (t + 1) * share;
  int64_t first = t * share;
  Accumulator<Real>& gathered = run.members[t].gathered;
  if (run.data.weights != nullptr) first = first_weighted(run.data.weights, first, end);
  if (first == end) return;
  if (run.request.method == Method::one_pass) {
    take(run, first, end, gathered);
  } else {
    run_sums(run, first, end, gathered);
  }
}

// Sums about the same means need no formulas.
template <class Real>
void merge_about_given_means(const Run<Real>& run, const Moments<Real>& into,
                             const Moments<Real>& part, const Shares<Real>& shares) {
  for (int64_t j = 0; j < run.data.p; ++j) {
    for (int k = 0; k < run.order.central; ++k) into.central[k][j] += part.central[k][j];
    for (int k = 0; k + 1 < run.order.raw; ++k) {
      into.raw[k][j] = shares.mean(into.raw[k][j], part.raw[k][j]);
    }
  }
}

template <class Real>
void merge_cross(int64_t p, const Accumulator<Real>& into, const Accumulator<Real>& part,
                 const Shares<Real>& shares) {
  if (shares.has_no_first) {
    std::copy_n(part.cross, p * p, into.cross);
    return;
  }
  const Real f = shares.product;
  const Real *mean = into.moments.mean, *other = part.moments.mean;
  for (int64_t k = 0; k < p; ++k) {
    for (int64_t j = 0; j <= k; ++j) {
      into.cross[k * p + j] +=
          part.cross[k * p + j] + f * (other[j] - mean[j]) * (other[k] - mean[k]);
    }
  }
}

// In the order of the threads.
template <class Real>
void merge_members(const Run<Real>& run) {
  Accumulator<Real>& into = run.members[0].gathered;
  for (int64_t t = 1; t < run.threads; ++t) {
    const Accumulator<Real>& part = run.members[t].gathered;
    if (part.weight.sum == 0) continue;
    const Shares<Real> shares(into.weight.sum, part.weight.sum);
    if (run.matrix) merge_cross(run.data.p, into, part, shares);
    if (run.request.method == Method::given_means) {
      merge_about_given_means(run, into.moments, part.moments, shares);
    } else {
      merge(into.moments, part.moments, run.data.p, run.order, shares);
    }
    into.weight.sum += part.weight.sum;
    into.weight.squares += part.weight.squares;
  }
}

}  // namespace

template <class Real>
void run_members(const Run<Real>& run, const ThreadHook* hook) {
  if (run.threads == 1) return run_member(run, 0);
  hook->run_team(run.threads, const_cast<Run<Real>*>(&run),
                 [](int64_t t, int64_t, int64_t, void* context) {
                   run_member(*static_cast<const Run<Real>*>(context), t);
                 });
  merge_members(run);
}

template void run_members<double>(const Run<double>&, const ThreadHook*);
template void run_members<float>(const Run<float>&, const ThreadHook*);

}  // namespace qor::statistics
