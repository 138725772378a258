// Cubic splines whose first derivative at an inner breakpoint depends on few data around it, or is
// given: one pass over the breakpoints, in groups of four, with the slopes around a group in a
// small window. A kind is a struct:
//
//   back, ahead   cells that a group of breakpoints looks at beyond the cells left of them
//   derivative    the first derivative at one breakpoint
//   boundary      the task's boundary as the kind takes it
//   rules, arrays what it makes of boundary codes, and what it reads and writes
#pragma once

#include <algorithm>

#include "fitting/construction.h"
#include "fitting/cubic_cell.h"
#include "fitting/cubic_ends.h"
#include "fitting/scratch.h"

namespace qor::fitting {

inline constexpr int group_size = 4;

// Slopes and weights around a group; place 0 is `back` cells before the cell left of the group.
template <class Real, class Partition>
struct Window {
  Real* slope;
  Real* derivative;  // at the group's breakpoints
  Real* weights;
  Real* inverse_steps;

  static constexpr int64_t rows = Partition::uniform ? 2 : 4;

  Window(Real* scratch, int64_t width)
      : slope(scratch),
        derivative(scratch + width),
        weights(scratch + (rows - 2) * width),
        inverse_steps(scratch + (rows - 1) * width) {}

  Real weight(int64_t place) const {
    if constexpr (Partition::uniform) return 1;
    return weights[place];
  }
  Real inverse_step(const Partition& x, int64_t place) const {
    if constexpr (Partition::uniform) return x.inverse;
    return inverse_steps[place];
  }

  template <class Values>
  void load(const Partition& x, const Values& y, int64_t place, int64_t cell) {
    if (cell < 0 || cell > x.n - 2) return;
    const Real inverse = x.inverse_step(cell);
    slope[place] = (y[cell + 1] - y[cell]) * inverse;
    if constexpr (!Partition::uniform) {
      weights[place] = x.weight(cell);
      inverse_steps[place] = inverse;
    }
  }
  void shift(int64_t by, int64_t kept) {
    std::copy(slope + by, slope + by + kept, slope);
    if constexpr (!Partition::uniform) {
      std::copy(weights + by, weights + by + kept, weights);
      std::copy(inverse_steps + by, inverse_steps + by + kept, inverse_steps);
    }
  }
};

// The first derivative at an end from the one at its neighbour, `inner`.
template <class Real>
Real end_derivative(const End<Real>& end, const EndCells<Real>& e, Real inner) {
  switch (end.kind) {
    case EndKind::not_a_knot:
      return (e.weight / e.span * e.weight * e.next_slope +
              (e.weight + 2 * e.span) / e.span * e.next * e.slope - inner * e.span) /
             e.next;
    case EndKind::free:
      return Real(1.5) * e.slope - Real(0.5) * inner;
    case EndKind::first_derivative:
      return end.value;
    case EndKind::second_derivative:
      return Real(1.5) * e.slope + e.outward * (Real(0.25) * e.step * end.value) -
             Real(0.5) * inner;
    case EndKind::periodic:
      return (e.slope * e.far_weight + e.far_slope * e.weight) / (e.weight + e.far_weight);
    case EndKind::estimated:
      break;
  }
  return (3 * e.slope - e.next_slope) / 2;
}

template <class Kind, class Real, class Partition, class Values>
void construct_local_function(const DFTask& task, const Partition& x,
                              const Boundary<Real>& boundary, Window<Real, Partition> window,
                              int64_t function) {
  constexpr int overlap = Kind::back + Kind::ahead;
  const Values y(task, function);
  Real* c = coefficients<Real>(task, function);
  const int64_t n = x.n;
  for (int k = 0; k < overlap; ++k) window.load(x, y, k, k - Kind::back);

  Real left = 0;  // the derivative at the left end of the next cell to be written
  for (int64_t i = 1; i < n - 1; i += group_size) {
    const auto group = static_cast<int>(std::min<int64_t>(group_size, n - 1 - i));
    const int64_t first_cell = i - 1 - Kind::back;
    for (int k = 0; k < group_size; ++k) {
      window.load(x, y, overlap + k, first_cell + overlap + k);
    }
    for (int j = 0; j < group; ++j) {
      window.derivative[j] = Kind::derivative(task, x, window, i + j, j + Kind::back);
    }
    if (i == 1) {
      left = end_derivative(boundary.left, left_cells<Real>(x, y), window.derivative[0]);
    }
    for (int j = 0; j < group; ++j) {
      const int place = j + Kind::back;
      const int64_t cell = i - 1 + j;
      write_cubic_cell(c + cubic_order * cell, y[cell], window.slope[place], left,
                       window.derivative[j], window.inverse_step(x, place));
      left = window.derivative[j];
    }
    window.shift(group_size, overlap);
  }
  const EndCells<Real> end = right_cells<Real>(x, y);
  write_cubic_cell(c + cubic_order * (n - 2), y[n - 2], end.slope, left,
                   end_derivative(boundary.right, end, left), x.inverse_step(n - 2));
}

template <class Kind, class Real>
struct LocalCubic {
  template <class Partition, class Values>
  static int run(const DFTask& task) {
    using KindWindow = Window<Real, Partition>;
    constexpr int64_t width = group_size + Kind::back + Kind::ahead;
    if (boundary_of<Real>(task).periodic() && !all_close<Values>(task)) return QOR_DF_NOT_PERIODIC;
    const HeapScratch<Real> scratch(KindWindow::rows * width);
    if (scratch.data() == nullptr) return QOR_DF_NO_MEMORY;
    const Partition x(task);
    const Boundary<Real> boundary = Kind::template boundary<Real>(task);
    for (int64_t f = 0; f < task.ny; ++f) {
      construct_local_function<Kind, Real, Partition, Values>(task, x, boundary,
                                                              KindWindow(scratch.data(), width), f);
    }
    return QOR_DF_OK;
  }
};

// Entry of a kind.
template <class Kind, class Real>
int construct_local(const DFTask* task) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  if (task->nx < Kind::fewest_breakpoints) return QOR_DF_BAD_NX;
  if (!is_storage_form(task->yhint)) return QOR_DF_BAD_Y_HINT;
  int status = check_boundary(*task, Kind::rules);
  if (status == QOR_DF_OK) status = check_arrays(*task, Kind::arrays);
  return status != QOR_DF_OK ? status : by_forms<Real, LocalCubic<Kind, Real>>(*task, *task);
}

// What most kinds have in common.
struct LocalKind {
  static constexpr BoundaryRules rules{};
  static constexpr unsigned arrays = spline_arrays;
  template <class Real>
  static Boundary<Real> boundary(const DFTask& task) {
    return boundary_of<Real>(task);
  }
};

}  // namespace qor::fitting
