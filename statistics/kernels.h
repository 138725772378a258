// The kernel families of Basic: how observations enter the moments, by method. One routine per
// combination of layout, weighting, order and, for one pass, matrix; chosen from tables.
#pragma once

#include "statistics/moments.h"
#include "statistics/view.h"

namespace qor::statistics {

// What one thread has gathered. `cross` is the p by p matrix of sums of products of deviations,
// null without a matrix; its element (j, k), j not above k, stands at k*p + j, the other triangle
// is nobody's. `work` is the thread's own.
template <class Real>
struct Accumulator {
  Moments<Real> moments;
  Weight weight;
  Real* cross;
  Real* work;
};

// Takes the observations from `first` to `end` into the accumulator. Where there is no weight yet,
// the first of them must have one.
template <class Real>
using Kernel = void (*)(const Observations<Real>& data, int64_t first, int64_t end,
                        Accumulator<Real>& into);

// `order` is the row of the order table, 0 to 3.
template <class Real>
Kernel<Real> one_pass_kernel(bool by_variable, bool weighted, int order, bool matrix);

// Sums of powers: the raw slots hold sums, not moments, while these run.
template <class Real>
Kernel<Real> fast_kernel(bool by_variable, bool weighted, int order);
template <class Real>
Kernel<Real> given_means_kernel(bool by_variable, bool weighted, int order);

// Reals of work that a one pass kernel with a matrix needs.
template <class Real>
int64_t one_pass_work(int64_t p);

// The order tables: slots in use by row.
inline constexpr Order one_pass_orders[] = {{1, 0}, {1, 1}, {2, 1}, {4, 3}};
inline constexpr Order fast_orders[] = {{1, 0}, {2, 0}, {3, 0}, {4, 0}};
inline constexpr Order given_means_orders[] = {{1, 1}, {1, 2}, {1, 3}, {4, 3}};

}  // namespace qor::statistics
