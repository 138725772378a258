// Natural cubic splines: continuous second derivatives. The first derivatives t at the breakpoints
// solve one tridiagonal system for all functions. A periodic spline's system is cyclic; it is
// solved with one more right-hand side u (Sherman and Morrison, 1950).

#include "fitting/construction.h"
#include "fitting/cubic_cell.h"
#include "fitting/natural_ends.h"
#include "fitting/natural_few.h"
#include "fitting/scratch.h"
#include "fitting/tridiagonal.h"

namespace qor::fitting {
namespace {

// A system of n rows and its data, in one block of scratch.
template <class Real, class Partition>
struct System {
  int64_t n, functions;
  Real *step, *inverse;  // n - 1 each
  Real *dl, *d, *du;     // n - 1, n, n - 1
  Real* slopes;          // n - 1 for each function
  Real* t;               // n for each function, and u behind them

  static int64_t scratch_size(int64_t n, int64_t functions) {
    const int64_t columns = counted_sum(counted_product(n, counted_sum(functions, 1)),
                                        counted_product(functions, n - 1));
    const int64_t bands = counted_product(5, n) - 4;
    return counted_sum(bands, columns);
  }

  System(const DFTask& task, const Partition& x, Real* scratch)
      : n(task.nx),
        functions(task.ny),
        step(scratch),
        inverse(step + n - 1),
        dl(inverse + n - 1),
        d(dl + n - 1),
        du(d + n),
        slopes(du + n - 1),
        t(slopes + functions * (n - 1)) {
    for (int64_t i = 0; i + 1 < n; ++i) step[i] = x.step(i);
    for (int64_t i = 0; i + 1 < n; ++i) inverse[i] = x.inverse_step(i);
  }

  Real weight(int64_t i) const {
    if constexpr (Partition::uniform) return 1;
    return step[i];
  }

  // Continuity of the second derivative at the inner breakpoints.
  void fill_inner_rows(const Partition& x) {
    for (int64_t i = 1; i + 1 < n; ++i) {
      dl[i - 1] = weight(i);
      d[i] = 2 * x.weight_span(i - 1, i + 1);
      du[i] = weight(i - 1);
    }
  }
  template <class Values>
  void fill_inner_right_sides(const Values& y, int64_t function) {
    Real* m = slopes + function * (n - 1);
    Real* b = t + function * n;
    for (int64_t i = 0; i + 1 < n; ++i) m[i] = (y[i + 1] - y[i]) * inverse[i];
    for (int64_t i = 1; i + 1 < n; ++i) b[i] = 3 * (weight(i - 1) * m[i] + weight(i) * m[i - 1]);
  }

  void fill_end_rows(const Partition& x, const Boundary<Real>& boundary) {
    const EndRow<Real> left = end_row(boundary.left.kind, weight(1), x.weight_span(0, 2));
    const EndRow<Real> right =
        end_row(boundary.right.kind, weight(n - 3), x.weight_span(n - 3, n - 1));
    d[0] = left.diagonal;
    du[0] = left.neighbour;
    d[n - 1] = right.diagonal;
    dl[n - 2] = right.neighbour;
  }
  template <class Values>
  void fill_end_right_sides(const Partition& x, const Values& y, const Boundary<Real>& boundary,
                            int64_t function) {
    Real* b = t + function * n;
    b[0] = end_right_side(boundary.left, left_cells<Real>(x, y));
    b[n - 1] = end_right_side(boundary.right, right_cells<Real>(x, y));
  }

  // The cyclic matrix less the product of u and (1, 0 ... 0, 1); the last row holds a place.
  void fill_periodic_rows() {
    const Real first = weight(0), before = weight(n - 3), last = weight(n - 2);
    d[0] = first + 2 * last;
    du[0] = last;
    d[n - 2] = before + 2 * last;
    du[n - 2] = 0;
    dl[n - 2] = 0;
    d[n - 1] = 1;
    Real* u = t + functions * n;
    for (int64_t i = 0; i < n; ++i) u[i] = 0;
    u[0] = first;
    u[n - 2] = before;
  }
  void fill_periodic_right_side(int64_t function) {
    const Real* m = slopes + function * (n - 1);
    Real* b = t + function * n;
    b[0] = 3 * (weight(0) * m[n - 2] + weight(n - 2) * m[0]);
    b[n - 1] = 0;
  }
  void close_period(int64_t function) {
    const Real* u = t + functions * n;
    Real* b = t + function * n;
    const Real a = (b[0] + b[n - 2]) / (u[0] + 1 + u[n - 2]);
    for (int64_t i = 0; i + 1 < n; ++i) b[i] -= u[i] * a;
    b[n - 1] = b[0];
  }

  bool solve(bool periodic) {
    return factor_tridiagonal(n, dl, d, du) &&
           solve_factored(n, periodic ? functions + 1 : functions, dl, d, du, t);
  }

  template <class Values>
  void write_cells(const Values& y, int64_t function, Real* c) const {
    const Real* m = slopes + function * (n - 1);
    const Real* b = t + function * n;
    for (int64_t i = 0; i + 1 < n; ++i) {
      write_cubic_cell(c + cubic_order * i, y[i], m[i], b[i], b[i + 1], inverse[i]);
    }
  }
};

template <class Real>
struct Natural {
  template <class Partition, class Values>
  static int run(const DFTask& task) {
    const Partition x(task);
    const Boundary<Real> boundary = boundary_of<Real>(task);
    if (boundary.periodic() && !all_close<Values>(task)) return QOR_DF_NOT_PERIODIC;
    if (x.n <= 3) {
      construct_few_points<Real, Partition, Values>(task, x, boundary);
      return QOR_DF_OK;
    }
    using NaturalSystem = System<Real, Partition>;
    const HeapScratch<Real> scratch(NaturalSystem::scratch_size(x.n, task.ny));
    if (scratch.data() == nullptr) return QOR_DF_NO_MEMORY;
    NaturalSystem system(task, x, scratch.data());
    fill<Values>(task, x, boundary, system);
    if (!system.solve(boundary.periodic())) return QOR_DF_SOLVER_FAILED;
    for (int64_t f = 0; f < task.ny; ++f) {
      if (boundary.periodic()) system.close_period(f);
      system.write_cells(Values(task, f), f, coefficients<Real>(task, f));
    }
    return QOR_DF_OK;
  }

  template <class Values, class Partition>
  static void fill(const DFTask& task, const Partition& x, const Boundary<Real>& boundary,
                   System<Real, Partition>& system) {
    system.fill_inner_rows(x);
    if (boundary.periodic()) {
      system.fill_periodic_rows();
    } else {
      system.fill_end_rows(x, boundary);
    }
    for (int64_t f = 0; f < task.ny; ++f) {
      const Values y(task, f);
      system.fill_inner_right_sides(y, f);
      if (boundary.periodic()) {
        system.fill_periodic_right_side(f);
      } else {
        system.fill_end_right_sides(x, y, boundary, f);
      }
    }
  }
};

template <class Real>
int construct_natural(const DFTask* task, int64_t method) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  if (method != 0) return QOR_DF_BAD_METHOD;
  const int64_t fewest = task->bc_type == QOR_DF_BC_NOT_A_KNOT ? 3 : 2;
  if (task->nx < fewest) return QOR_DF_BAD_NX;
  if (!is_storage_form(task->yhint)) return QOR_DF_BAD_Y_HINT;
  int status = check_boundary(*task);
  if (status == QOR_DF_OK) status = check_arrays(*task, spline_arrays);
  return status != QOR_DF_OK ? status : by_forms<Real, Natural<Real>>(*task, *task);
}

}  // namespace
}  // namespace qor::fitting

int qor_df_kernel_dDFNaturalCubicSpline1D(DFTask* task, int64_t, int64_t method,
                                          const ThreadHook*) {
  return qor::fitting::construct_natural<double>(task, method);
}
int qor_df_kernel_sDFNaturalCubicSpline1D(DFTask* task, int64_t, int64_t method,
                                          const ThreadHook*) {
  return qor::fitting::construct_natural<float>(task, method);
}
