// What is integrated: primitives on one piece, and their sums over pieces.
#pragma once

#include <cstdint>

#include "fitting/function_values.h"
#include "fitting/pieces.h"

namespace qor::fitting {

// c[0] t + c[1] t^2/2 + ... of a piece, by Horner's rule.
template <class Real, int order>
struct PolynomialIntegrand {
  const Real* c;

  PolynomialIntegrand(const DFTask& task, int64_t function)
      : c(coefficients<Real>(task, function)) {}
  Real primitive(int64_t piece, Real t) const {
    const Real* p = c + order * piece;
    Real value = p[order - 1] / order;
    for (int k = order - 2; k >= 0; --k) value = value * t + p[k] / static_cast<Real>(k + 1);
    return value * t;
  }
};

template <class Real>
struct AnyPolynomialIntegrand {
  const Real* c;
  int64_t order;

  AnyPolynomialIntegrand(const DFTask& task, int64_t function)
      : c(coefficients<Real>(task, function)), order(task.s_order) {}
  Real primitive(int64_t piece, Real t) const {
    const Real* p = c + order * piece;
    Real value = 0;
    for (int64_t k = order - 1; k >= 0; --k) value = value * t + p[k] / static_cast<Real>(k + 1);
    return value * t;
  }
};

// Piece p of a step function has the value at its left end, or (left-continuous) at its right end;
// the piece behind the last breakpoint has the last value.
template <class Real, bool left_continuous>
struct StepIntegrand {
  StridedValues<Real> y;
  int64_t last;

  StepIntegrand(const DFTask& task, int64_t function) : y(task, function), last(task.nx - 1) {}
  Real primitive(int64_t piece, Real t) const {
    return y[left_continuous && piece < last ? piece + 1 : piece] * t;
  }
};

// The integral from lower, in piece `first`, to upper, in piece `end`; lower <= upper.
template <class Real, class Pieces, class Integrand>
Real integrate_pieces(const Pieces& pieces, const Integrand& f, Real lower, int64_t first,
                      Real upper, int64_t end) {
  const Real from = f.primitive(first, lower - pieces.left(first));
  const Real to = f.primitive(end, upper - pieces.left(end));
  if (first == end) return to - from;
  Real sum = f.primitive(first, pieces.width(first)) - from;
  for (int64_t p = first + 1; p < end; ++p) sum += f.primitive(p, pieces.width(p));
  return sum + to;
}

}  // namespace qor::fitting
