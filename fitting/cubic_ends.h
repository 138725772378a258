// The ends of a cubic spline, left and right alike: what lies at the end, seen from the end.
#pragma once

#include "fitting/construction.h"

namespace qor::fitting {

// The cells nearest to an end. `outward` is -1 at the left end and +1 at the right one.
template <class Real>
struct EndCells {
  Real outward;
  Real step;          // of the end cell
  Real weight, next;  // of the end cell and its neighbour
  Real span;          // of both together
  Real slope, next_slope;
  Real far_weight, far_slope;  // of the cell at the other end
};

// The slope of the cell: the rise times the inverse step.
template <class Partition, class Values>
auto slope_of_cell(const Partition& x, const Values& y, int64_t i) {
  return (y[i + 1] - y[i]) * x.inverse_step(i);
}

// The end cells of one function over at least three points.
template <class Real, class Partition, class Values>
EndCells<Real> left_cells(const Partition& x, const Values& y) {
  const int64_t last = x.n - 2;
  return {-1,
          x.step(0),
          x.weight(0),
          x.weight(1),
          x.weight_span(0, 2),
          slope_of_cell(x, y, 0),
          slope_of_cell(x, y, 1),
          x.weight(last),
          slope_of_cell(x, y, last)};
}
template <class Real, class Partition, class Values>
EndCells<Real> right_cells(const Partition& x, const Values& y) {
  const int64_t last = x.n - 2;
  return {1,
          x.step(last),
          x.weight(last),
          x.weight(last - 1),
          x.weight_span(last - 1, last + 1),
          slope_of_cell(x, y, last),
          slope_of_cell(x, y, last - 1),
          x.weight(0),
          slope_of_cell(x, y, 0)};
}

}  // namespace qor::fitting
