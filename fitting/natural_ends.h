// The rows that the ends of a natural cubic spline add to its system, for the first derivatives t:
// diagonal * t[end] + neighbour * t[next to it] = right side.
#pragma once

#include "fitting/cubic_ends.h"

namespace qor::fitting {

template <class Real>
struct EndRow {
  Real diagonal, neighbour;
};

// weight and span of the end cells as in EndCells.
template <class Real>
EndRow<Real> end_row(EndKind kind, Real next_weight, Real span) {
  switch (kind) {
    case EndKind::not_a_knot:
      return {next_weight, span};
    case EndKind::first_derivative:
      return {1, 0};
    default:
      return {2, 1};
  }
}

template <class Real>
Real end_right_side(const End<Real>& end, const EndCells<Real>& e) {
  switch (end.kind) {
    case EndKind::not_a_knot:
      return (e.weight + 2 * e.span) / e.span * e.next * e.slope +
             e.weight / e.span * e.weight * e.next_slope;
    case EndKind::first_derivative:
      return end.value;
    case EndKind::second_derivative:
      return 3 * e.slope + e.outward * (Real(0.5) * e.step * end.value);
    default:
      return 3 * e.slope;
  }
}

}  // namespace qor::fitting
