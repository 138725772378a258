// Evaluators of the polynomial kinds, and the choice among all kinds.

#include <algorithm>

#include "fitting/interpolate.h"
#include "fitting/pieces.h"
#include "fitting/polynomials.h"
#include "kernels/lanes.h"

namespace qor::fitting {
namespace {

// Cells that are compared with the ones before them at once.
constexpr int64_t kCells = lanes::register_bytes / sizeof(int32_t);

bool any_changes(const int32_t* cell) {
  lanes::i32 before, here;
  __builtin_memcpy(&before, cell - 1, sizeof before);
  __builtin_memcpy(&here, cell, sizeof here);
  return lanes::lane_bits(before != here) != 0;
}

// The ends of stretches of equal cells; returns their number, 0 when it is more than `most`. `end`
// has room for kCells more.
int64_t find_ends(int64_t count, const int32_t* cell, int64_t most, int32_t* end) {
  int64_t found = 0, i = 1;
  const auto note = [&](int64_t at) {
    end[found] = static_cast<int32_t>(at);
    found += cell[at - 1] != cell[at] ? 1 : 0;
  };
  for (; i + kCells <= count && found < most; i += kCells) {
    if (!any_changes(cell + i)) continue;
    for (int64_t j = 0; j < kCells; ++j) note(i + j);
  }
  for (; i < count && found < most; ++i) note(i);
  if (found >= most) return 0;
  end[found] = static_cast<int32_t>(count);
  return found + 1;
}

template <class Real, class Pieces>
bool locate_stretches_on(const Pieces pieces, const Block<Real>& block, Stretches<Real>* found) {
  using Found = Stretches<Real>;
  static_assert(Found::most + kCells <= Found::room);
  found->count = find_ends(block.count, block.cell, block.count / Found::shortest, found->end);
  for (int64_t k = 0, first = 0; k < found->count; first = found->end[k++]) {
    found->piece[k] = pieces.find(block.site[first], block.cell[first]);
    found->left[k] = pieces.left(found->piece[k]);
  }
  return found->count > 0;
}

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

// Values, a register of sites together with one polynomial. Where a register reaches beyond its
// stretch the next one writes again.
template <class Real, int order>
void evaluate_stretches(const Real* c, const Block<Real>& block, Real* out) {
  using Register = typename lanes::Lanes<Real>::V;
  constexpr int64_t kLanes = lanes::Lanes<Real>::count;
  const Stretches<Real>& stretches = *block.stretches;
  int64_t i = 0;
  for (int64_t k = 0; k < stretches.count; ++k) {
    const int64_t end = stretches.end[k];
    const Real* p = c + int64_t{order} * stretches.piece[k];
    const Real left = stretches.left[k];
    Register coefficient[order];
    for (int power = 0; power < order; ++power) coefficient[power] = lanes::broadcast(p[power]);
    for (; i < end && i + kLanes <= block.count; i += kLanes) {
      const Register t = lanes::load(block.site + i) - lanes::broadcast(left);
      Register value = coefficient[order - 1];
      for (int power = order - 2; power >= 0; --power) value = value * t + coefficient[power];
      lanes::store(out + i, value);
    }
    for (; i < end; ++i) out[i] = polynomial<Real, order, 0>(p, block.site[i] - left);
    i = end;
  }
}

template <class Real>
void evaluate_spline(const DFTask& task, const WantedDerivatives& wanted, const Block<Real>& block,
                     int64_t function, Real* out) {
  const Real* c = coefficients<Real>(task, function);
  const int64_t order = task.s_order;
  if (wanted.value_alone() && order <= 4) {
    if (block.stretches != nullptr) {
      return order == 2   ? evaluate_stretches<Real, 2>(c, block, out)
             : order == 3 ? evaluate_stretches<Real, 3>(c, block, out)
                          : evaluate_stretches<Real, 4>(c, block, out);
    }
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
bool locate_stretches(const DFTask& task, Interpolant interpolant, const Block<Real>& block,
                      Stretches<Real>* stretches) {
  if (interpolant == Interpolant::polynomial_on_knots || task.s_order > 4) return false;
  return is_uniform(task)
             ? locate_stretches_on(CellPieces<UniformPartition<Real>>(task), block, stretches)
             : locate_stretches_on(CellPieces<Breakpoints<Real>>(task), block, stretches);
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
template bool locate_stretches<double>(const DFTask&, Interpolant, const Block<double>&,
                                       Stretches<double>*);
template bool locate_stretches<float>(const DFTask&, Interpolant, const Block<float>&,
                                      Stretches<float>*);
template int evaluate<double>(const DFTask&, Interpolant, const WantedDerivatives&,
                              const Block<double>&, int64_t, double*);
template int evaluate<float>(const DFTask&, Interpolant, const WantedDerivatives&,
                             const Block<float>&, int64_t, float*);

}  // namespace qor::fitting
