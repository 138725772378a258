// Default cubic splines: the second derivatives s at the inner breakpoints are given. There is no
// system; each cell follows from its values and second derivatives, the end cells from the
// boundary.

#include "fitting/construction.h"
#include "fitting/cubic_cell.h"
#include "fitting/scratch.h"

namespace qor::fitting {
namespace {

// Steps, their inverses and the slopes of one function, n - 1 values each.
template <class Real>
struct Cells {
  Real *step, *inverse, *slope;
  int64_t count;

  // One value more than the three arrays hold.
  static int64_t scratch_size(int64_t n) { return counted_product(3, n) - 2; }

  Cells(Real* scratch, int64_t n)
      : step(scratch), inverse(scratch + n - 1), slope(scratch + 2 * (n - 1)), count(n - 1) {}
};

// A cell from the second derivatives at its ends.
template <class Real>
void write_cell(Real* c, Real y, const Cells<Real>& cells, int64_t i, Real left, Real right) {
  c[0] = y;
  c[1] = cells.slope[i] - (right / 6 + left / 3) * cells.step[i];
  c[2] = left / 2;
  c[3] = (right - left) * cells.inverse[i] / 6;
}

// The first cell; s is the second derivative at its right end, third the cubic coefficient of its
// neighbour (0 where both cells are end cells).
template <class Real>
void write_first_cell(Real* c, Real y, const Cells<Real>& cells, const End<Real>& end, Real s,
                      Real third) {
  const Real h = cells.step[0], m = cells.slope[0];
  if (end.kind == EndKind::not_a_knot) {
    c[3] = third;
    c[2] = s / 2 - 3 * h * c[3];
    c[1] = m - (c[3] * h + c[2]) * h;
  } else if (end.kind == EndKind::first_derivative) {
    const Real inverse = cells.inverse[0];
    c[1] = end.value;
    c[3] = ((end.value - m) * inverse / 2 + s / 4) * inverse;
    c[2] = s / 2 - 3 * h * c[3];
  } else {
    write_cell(c, y, cells, 0, end.value, s);
  }
  c[0] = y;
}

// The last cell; s is the second derivative at its left end.
template <class Real>
void write_last_cell(Real* c, Real y, const Cells<Real>& cells, const End<Real>& end, Real s,
                     Real third) {
  const int64_t last = cells.count - 1;
  const Real h = cells.step[last], m = cells.slope[last], inverse = cells.inverse[last];
  c[2] = s / 2;
  if (end.kind == EndKind::not_a_knot) {
    c[3] = third;
    c[1] = m - (c[3] * h + c[2]) * h;
  } else if (end.kind == EndKind::first_derivative) {
    c[3] = ((end.value - m) * inverse - c[2]) * inverse / 2;
    c[1] = m - (c[3] * h + c[2]) * h;
  } else {
    write_cell(c, y, cells, last, s, end.value);
  }
  c[0] = y;
}

template <class Real, class Values>
void construct_function(const DFTask& task, const Boundary<Real>& boundary,
                        const Cells<Real>& cells, int64_t function) {
  const Values y(task, function);
  const Real* s = internal_conditions<Real>(task) - 1;  // s[i] at breakpoint i
  Real* c = coefficients<Real>(task, function);
  const int64_t last = cells.count - 1;
  for (int64_t i = 0; i <= last; ++i) cells.slope[i] = (y[i + 1] - y[i]) * cells.inverse[i];
  for (int64_t i = 1; i < last; ++i) {
    write_cell(c + cubic_order * i, y[i], cells, i, s[i], s[i + 1]);
  }
  const bool inner = last > 1;
  write_first_cell(c, y[0], cells, boundary.left, s[1], inner ? c[cubic_order + 3] : 0);
  write_last_cell(c + cubic_order * last, y[last], cells, boundary.right, s[last],
                  inner ? c[cubic_order * (last - 1) + 3] : 0);
}

template <class Real>
struct Default {
  template <class Partition, class Values>
  static int run(const DFTask& task) {
    const Partition x(task);
    const Boundary<Real> boundary = boundary_of<Real>(task);
    const HeapScratch<Real> scratch(Cells<Real>::scratch_size(x.n));
    if (scratch.data() == nullptr) return QOR_DF_NO_MEMORY;
    const Cells<Real> cells(scratch.data(), x.n);
    for (int64_t i = 0; i < cells.count; ++i) {
      cells.step[i] = x.step(i);
      cells.inverse[i] = x.inverse_step(i);
    }
    for (int64_t f = 0; f < task.ny; ++f) {
      if (boundary.periodic() && !closes<Values>(task, f)) return QOR_DF_NOT_PERIODIC;
      construct_function<Real, Values>(task, boundary, cells, f);
    }
    return QOR_DF_OK;
  }
};

template <class Real>
int construct_default(const DFTask* task) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  if (task->nx < 3) return QOR_DF_BAD_NX;
  if (!is_storage_form(task->yhint)) return QOR_DF_BAD_Y_HINT;
  int status = check_boundary(*task, {.takes_periodic_value = true});
  if (status == QOR_DF_OK) status = check_arrays(*task, inner_conditions | spline_arrays);
  return status != QOR_DF_OK ? status : by_forms<Real, Default<Real>>(*task, *task);
}

}  // namespace
}  // namespace qor::fitting

int qor_df_kernel_dDFDefaultCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return qor::fitting::construct_default<double>(task);
}
int qor_df_kernel_sDFDefaultCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return qor::fitting::construct_default<float>(task);
}
