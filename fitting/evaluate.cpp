// Evaluators of the polynomial kinds, and the choice among all kinds.

#include <algorithm>

#include "fitting/interpolate.h"
#include "fitting/pieces.h"
#include "fitting/polynomials.h"

namespace qor::fitting {
namespace {

// In two loops, of which the first one is free of loads that depend on each other.
template <class Real, class Pieces>
void locate_on(const Pieces pieces, const Block<Real> block) {
  for (int64_t i = 0; i < block.count; ++i) {
    block.piece[i] = pieces.find(block.site[i], block.cell[i]);
  }
  for (int64_t i = 0; i < block.count; ++i) {
    block.distance[i] = block.site[i] - pieces.left(block.piece[i]);
  }
}

template <class Real>
void fill_zero(int64_t count, Real* out, int64_t stride) {
  for (int64_t i = 0; i < count; ++i) out[i * stride] = 0;
}

template <class Real>
PolynomialRoutine<Real> routine_for(int64_t order, int64_t derivative) {
  const auto k = static_cast<size_t>(derivative);
  if (order == 2) return routines_of_order<Real, 2>[k];
  return order == 3 ? routines_of_order<Real, 3>[k] : routines_of_order<Real, 4>[k];
}

template <class Real>
void evaluate_derivative(const Real* c, int64_t order, int64_t derivative, const Block<Real>& block,
                         Real* out, int64_t stride) {
  if (derivative >= order) return fill_zero(block.count, out, stride);
  if (order <= 4) {
    return routine_for<Real>(order, derivative)(c, block.piece, block.distance, block.count, out,
                                                stride);
  }
  for (int64_t i = 0; i < block.count; ++i) {
    out[i * stride] =
        any_polynomial(c + order * block.piece[i], order, derivative, block.distance[i]);
  }
}

template <class Real>
void evaluate_spline(const DFTask& task, const WantedDerivatives& wanted, const Block<Real>& block,
                     int64_t function, Real* out) {
  const Real* c = coefficients<Real>(task, function);
  const int64_t order = task.s_order;
  if (wanted.value_alone() && order <= 4) {
    const auto values = order == 2   ? evaluate_values<Real, 2>
                        : order == 3 ? evaluate_values<Real, 3>
                                     : evaluate_cubic_values<Real>;
    return values(c, block.piece, block.distance, block.count, out);
  }
  wanted.for_each([&](int64_t derivative, int64_t position) {
    evaluate_derivative(c, order, derivative, block, out + position, wanted.results());
  });
}

}  // namespace

template <class Real>
void locate(const DFTask& task, Interpolant interpolant, const Block<Real>& block) {
  if (interpolant == Interpolant::polynomial_on_knots) {
    locate_on(KnotPieces<Real>(task), block);
  } else if (is_uniform(task)) {
    locate_on(CellPieces<UniformPartition<Real>>(task), block);
  } else {
    locate_on(CellPieces<Breakpoints<Real>>(task), block);
  }
}

template <class Real>
int evaluate(const DFTask& task, Interpolant interpolant, const WantedDerivatives& wanted,
             const Block<Real>& block, int64_t function, Real* out) {
  switch (interpolant) {
    case Interpolant::lookup:
      return evaluate_lookup(task, wanted, block, function, out);
    case Interpolant::step_right_continuous:
    case Interpolant::step_left_continuous:
      evaluate_steps(task, interpolant == Interpolant::step_left_continuous, wanted, block,
                     function, out);
      return QOR_DF_OK;
    default:
      evaluate_spline(task, wanted, block, function, out);
      return QOR_DF_OK;
  }
}

template void locate<double>(const DFTask&, Interpolant, const Block<double>&);
template void locate<float>(const DFTask&, Interpolant, const Block<float>&);
template int evaluate<double>(const DFTask&, Interpolant, const WantedDerivatives&,
                              const Block<double>&, int64_t, double*);
template int evaluate<float>(const DFTask&, Interpolant, const WantedDerivatives&,
                             const Block<float>&, int64_t, float*);

}  // namespace qor::fitting
