// Evaluators that read the function values themselves: lookup and step functions.

#include <cmath>

#include "fitting/function_values.h"
#include "fitting/interpolate.h"
#include "fitting/partition.h"
#include "fitting/pieces.h"

namespace qor::fitting {
namespace {

constexpr double kUniformTolerance = 0x1p-40;

constexpr int64_t kNoBreakpoint = -1;

template <class Real>
bool is_breakpoint(const Breakpoints<Real>& x, Real site, int64_t k) {
  return site == x.x(k);
}
template <class Real>
bool is_breakpoint(const UniformPartition<Real>& x, Real site, int64_t k) {
  const Real distance = site - static_cast<Real>(k) * x.h - x.first;
  return site == x.x(k) || std::abs(distance) <= static_cast<Real>(kUniformTolerance);
}

// The breakpoint that the site is; cells of the caller's may be out of range.
template <class Partition, class Real>
int64_t find_breakpoint(const Partition& x, Real site, int32_t cell) {
  if (cell < 1 || cell > x.n) return kNoBreakpoint;
  if (site == x.last()) return x.n - 1;
  if (is_breakpoint(x, site, cell - 1)) return cell - 1;
  return cell < x.n && is_breakpoint(x, site, cell) ? cell : kNoBreakpoint;
}

template <class Partition, class Real>
int look_up(const DFTask& task, const WantedDerivatives& wanted, const Block<Real>& block,
            int64_t function, Real* out) {
  const Partition x(task);
  const StridedValues<Real> y(task, function);
  int64_t found[block_size];
  for (int64_t i = 0; i < block.count; ++i) {
    found[i] = find_breakpoint(x, block.site[i], block.cell[i]);
    if (found[i] == kNoBreakpoint) return QOR_DF_NOT_A_BREAKPOINT;
  }
  if (wanted.asked() != 1) return QOR_DF_LOOKUP_DERIVATIVES;
  if (!wanted.value_flagged()) return QOR_DF_LOOKUP_WITHOUT_VALUE;
  for (int64_t i = 0; i < block.count; ++i) out[i] = y[found[i]];
  return QOR_DF_OK;
}

// The breakpoint whose value a step function has at the site.
template <class Partition, class Real>
int64_t step_source(const Partition& x, bool left_continuous, Real site, int32_t cell) {
  const int64_t k = piece_of_cell(cell, x.n), last = x.n - 1;
  if (k == last || site == x.last()) return last;
  return left_continuous && site != x.x(k) ? k + 1 : k;
}

template <class Partition, class Real>
void evaluate_steps_on(const DFTask& task, bool left_continuous, const Block<Real>& block,
                       int64_t function, Real* out, int64_t stride) {
  const Partition x(task);
  const StridedValues<Real> y(task, function);
  for (int64_t i = 0; i < block.count; ++i) {
    out[i * stride] = y[step_source(x, left_continuous, block.site[i], block.cell[i])];
  }
}

}  // namespace

template <class Real>
int evaluate_lookup(const DFTask& task, const WantedDerivatives& wanted, const Block<Real>& block,
                    int64_t function, Real* out) {
  return is_uniform(task) ? look_up<UniformPartition<Real>>(task, wanted, block, function, out)
                          : look_up<Breakpoints<Real>>(task, wanted, block, function, out);
}

template <class Real>
void evaluate_steps(const DFTask& task, bool left_continuous, const WantedDerivatives& wanted,
                    const Block<Real>& block, int64_t function, Real* out) {
  const int64_t stride = wanted.results();
  wanted.for_each([&](int64_t derivative, int64_t position) {
    Real* results = out + position;
    if (derivative > 0) {
      for (int64_t i = 0; i < block.count; ++i) results[i * stride] = 0;
    } else if (is_uniform(task)) {
      evaluate_steps_on<UniformPartition<Real>>(task, left_continuous, block, function, results,
                                                stride);
    } else {
      evaluate_steps_on<Breakpoints<Real>>(task, left_continuous, block, function, results, stride);
    }
  });
}

template int evaluate_lookup<double>(const DFTask&, const WantedDerivatives&, const Block<double>&,
                                     int64_t, double*);
template int evaluate_lookup<float>(const DFTask&, const WantedDerivatives&, const Block<float>&,
                                    int64_t, float*);
template void evaluate_steps<double>(const DFTask&, bool, const WantedDerivatives&,
                                     const Block<double>&, int64_t, double*);
template void evaluate_steps<float>(const DFTask&, bool, const WantedDerivatives&,
                                    const Block<float>&, int64_t, float*);

}  // namespace qor::fitting
