// Natural cubic splines through two and three points, in closed form.
#pragma once

#include "fitting/cubic_cell.h"
#include "fitting/natural_ends.h"

namespace qor::fitting {

// What an end's row asks beyond a straight line of slope m: the unknowns are the distances of the
// derivatives from m, so that a line comes out exactly.
template <class Real>
Real beyond_line(const End<Real>& end, Real outward, Real h, Real m) {
  if (end.kind == EndKind::first_derivative) return end.value - m;
  return end.kind == EndKind::second_derivative ? outward * (Real(0.5) * h * end.value) : 0;
}

// Derivatives at the ends of the one cell.
template <class Real, class Partition, class Values>
void solve_two_points(const Partition& x, const Values& y, const Boundary<Real>& boundary,
                      Real* t) {
  const Real m = slope_of_cell(x, y, 0), h = x.step(0);
  t[0] = t[1] = m;
  if (boundary.periodic()) return;  // the data are one value, and so is the spline
  const EndRow<Real> left = end_row<Real>(boundary.left.kind, 1, 1);
  const EndRow<Real> right = end_row<Real>(boundary.right.kind, 1, 1);
  const Real l = beyond_line<Real>(boundary.left, -1, h, m);
  const Real r = beyond_line<Real>(boundary.right, 1, h, m);
  const Real determinant = left.diagonal * right.diagonal - left.neighbour * right.neighbour;
  t[0] += (l * right.diagonal - left.neighbour * r) / determinant;
  t[1] += (left.diagonal * r - right.neighbour * l) / determinant;
}

// Derivatives at three points: the ends are eliminated from the row of the middle.
template <class Real, class Partition, class Values>
void solve_three_points(const Partition& x, const Values& y, const Boundary<Real>& boundary,
                        Real* t) {
  const EndCells<Real> l = left_cells<Real>(x, y), r = right_cells<Real>(x, y);
  const Real middle = l.weight * r.slope + r.weight * l.slope;
  if (boundary.periodic()) {
    t[0] = t[1] = t[2] = middle / l.span;
  } else if (boundary.left.kind == EndKind::not_a_knot) {
    // The parabola through the points: both ends ask for one and the same.
    t[1] = middle / l.span;
    t[0] = 2 * l.slope - t[1];
    t[2] = 2 * r.slope - t[1];
  } else {
    const EndRow<Real> left = end_row(boundary.left.kind, l.next, l.span);
    const EndRow<Real> right = end_row(boundary.right.kind, r.next, r.span);
    const Real before = end_right_side(boundary.left, l) / left.diagonal;
    const Real behind = end_right_side(boundary.right, r) / right.diagonal;
    t[1] = (3 * middle - r.weight * before - l.weight * behind) /
           (2 * l.span - r.weight * left.neighbour / left.diagonal -
            l.weight * right.neighbour / right.diagonal);
    t[0] = before - left.neighbour / left.diagonal * t[1];
    t[2] = behind - right.neighbour / right.diagonal * t[1];
  }
}

template <class Real, class Partition, class Values>
void construct_few_points(const DFTask& task, const Partition& x, const Boundary<Real>& boundary) {
  for (int64_t f = 0; f < task.ny; ++f) {
    const Values y(task, f);
    Real t[3];
    if (x.n == 2) {
      solve_two_points(x, y, boundary, t);
    } else {
      solve_three_points(x, y, boundary, t);
    }
    Real* c = coefficients<Real>(task, f);
    for (int64_t i = 0; i + 1 < x.n; ++i) {
      write_cubic_cell(c + cubic_order * i, y[i], slope_of_cell(x, y, i), t[i], t[i + 1],
                       x.inverse_step(i));
    }
  }
}

}  // namespace qor::fitting
