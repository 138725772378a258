// Integrals of one function over pairs of limits: each pair is cut at the ends of the partition
// where callbacks serve a part, and summed over the pieces between.
#pragma once

#include <algorithm>
#include <cstdint>

#include "fitting/integrands.h"
#include "fitting/interpolant.h"

namespace qor::fitting {

template <class Real>
using UserIntegrals = int (*)(const int64_t*, const Real*, const Real*, Real*, void*, void*);

template <class Real>
struct IntegralCallback {
  UserIntegrals<Real> routine;
  void* params;
};

template <class Real>
struct IntegralCallbacks {
  IntegralCallback<Real> left, right, inside;

  bool all() const {
    return left.routine != nullptr && right.routine != nullptr && inside.routine != nullptr;
  }
  bool any() const {
    return left.routine != nullptr || right.routine != nullptr || inside.routine != nullptr;
  }
};

// A pair of limits in ascending order, with their cells.
template <class Real>
struct Range {
  Real lower, upper;
  int32_t lower_cell, upper_cell;
};

// Integrals of one function over `count` ranges. Returns a callback's negative status.
template <class Real>
using RangeRoutine = int (*)(const DFTask& task, const IntegralCallbacks<Real>& callbacks,
                             int64_t function, int64_t count, const Range<Real>* range, Real* out);

// The integral over a part: the user's, or else that of the spline.
template <class Real, class Spline>
int integrate_part(const IntegralCallback<Real>& callback, Real lower, Real upper, Spline spline,
                   Real* sum) {
  Real value = 0;
  int status = QOR_DF_OK;
  if (callback.routine != nullptr) {
    const int64_t one = 1;
    status = callback.routine(&one, &lower, &upper, &value, callback.params, nullptr);
  } else {
    value = spline(lower, upper);
  }
  *sum += value;
  return std::min(status, 0);
}

// The parts left of the partition, inside and right of it, in this order: by the limits, which
// cells of a user's search may not fit, so that no part has its own in exchanged order.
template <class Real, class Pieces, class Integrand>
int integrate_parts(const IntegralCallbacks<Real>& user, const Pieces& pieces, const Integrand& f,
                    int64_t n, Real first, Real last, const Range<Real>& range, Real* out) {
  const int64_t end = pieces.count() - 1;
  Real sum = 0;
  int status = QOR_DF_OK;
  const bool from_first = range.lower<first, to_last = range.upper> last;
  if (from_first) {
    status = integrate_part(
        user.left, range.lower, std::min(range.upper, first),
        [&](Real l, Real u) { return integrate_pieces(pieces, f, l, 0, u, 0); }, &sum);
  }
  if (status == QOR_DF_OK && !(range.lower > last) && !(range.upper < first)) {
    const Real lower = from_first ? first : range.lower, upper = to_last ? last : range.upper;
    status = integrate_part(
        user.inside, lower, upper,
        [&](Real l, Real u) {
          const int64_t from = from_first ? 0 : pieces.find(l, range.lower_cell);
          const int64_t to = pieces.find(u, to_last ? last_piece(n) : range.upper_cell);
          return integrate_pieces(pieces, f, l, from, u, to);
        },
        &sum);
  }
  if (status == QOR_DF_OK && to_last) {
    status = integrate_part(
        user.right, std::max(range.lower, last), range.upper,
        [&](Real l, Real u) { return integrate_pieces(pieces, f, l, end, u, end); }, &sum);
  }
  *out = sum;
  return status;
}

template <class Real, class Pieces, class Integrand>
int integrate_ranges(const DFTask& task, const IntegralCallbacks<Real>& callbacks, int64_t function,
                     int64_t count, const Range<Real>* range, Real* out) {
  const Pieces pieces(task);
  const Integrand f(task, function);
  const Real* x = partition_of<Real>(task);
  const Real first = x[0], last = is_uniform(task) ? x[1] : x[task.nx - 1];
  const bool cut = callbacks.any();
  for (int64_t i = 0; i < count; ++i) {
    const Range<Real>& g = range[i];
    if (cut) {
      const int status = integrate_parts(callbacks, pieces, f, task.nx, first, last, g, out + i);
      if (status < 0) return status;
    } else {
      out[i] = integrate_pieces(pieces, f, g.lower, pieces.find(g.lower, g.lower_cell), g.upper,
                                pieces.find(g.upper, g.upper_cell));
    }
  }
  return QOR_DF_OK;
}

// The user's functions have no pieces of their own: every part goes to a callback.
template <class Real>
struct NoIntegrand {
  NoIntegrand(const DFTask&, int64_t) {}
  Real primitive(int64_t, Real) const { return 0; }
};

template <class Real, class Partition>
RangeRoutine<Real> routine_on(const DFTask& task, Interpolant interpolant) {
  using Cells = CellPieces<Partition>;
  using Steps = StepPieces<Partition>;
  switch (interpolant) {
    case Interpolant::polynomial:
      if (task.s_order == 2) return integrate_ranges<Real, Cells, PolynomialIntegrand<Real, 2>>;
      if (task.s_order == 3) return integrate_ranges<Real, Cells, PolynomialIntegrand<Real, 3>>;
      if (task.s_order == 4) return integrate_ranges<Real, Cells, PolynomialIntegrand<Real, 4>>;
      return integrate_ranges<Real, Cells, AnyPolynomialIntegrand<Real>>;
    case Interpolant::polynomial_on_knots:
      return integrate_ranges<Real, KnotPieces<Real>, PolynomialIntegrand<Real, 3>>;
    case Interpolant::step_right_continuous:
      return integrate_ranges<Real, Steps, StepIntegrand<Real, false>>;
    case Interpolant::step_left_continuous:
      return integrate_ranges<Real, Steps, StepIntegrand<Real, true>>;
    case Interpolant::user:
      return integrate_ranges<Real, Cells, NoIntegrand<Real>>;
    default:
      return nullptr;
  }
}

template <class Real>
RangeRoutine<Real> routine_for(const DFTask& task) {
  const Interpolant interpolant = interpolant_of(task.s_order, task.s_type);
  return is_uniform(task) ? routine_on<Real, UniformPartition<Real>>(task, interpolant)
                          : routine_on<Real, Breakpoints<Real>>(task, interpolant);
}

}  // namespace qor::fitting
