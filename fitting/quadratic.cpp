// Quadratic splines: entries, and the form with a given value in the middle of the first cell.

#include "fitting/quadratic.h"

#include "fitting/construction.h"
#include "fitting/scratch.h"

namespace qor::fitting {
namespace {

constexpr int64_t kMidpointsOnStack = 4095;  // reached with nx = 4094

// The values z in the middle of the cells: the first is given, the others follow from the first
// derivatives being equal at inner breakpoints.
template <class Real, class Partition, class Values>
void find_midpoints(const Partition& x, const Values& y, Real first, Real* z) {
  z[0] = first;
  for (int64_t i = 0; i + 2 < x.n; ++i) {
    const Real h = x.step(i), next = x.step(i + 1);
    z[i + 1] = Real(0.25) * next * ((y[i] + 3 * y[i + 1]) / h + (3 * y[i + 1] + y[i + 2]) / next) -
               next / h * z[i];
  }
}

template <class Real, class Partition, class Values>
void write_midpoint_cells(const Partition& x, const Values& y, const Real* z, Real* c) {
  for (int64_t i = 0; i + 1 < x.n; ++i, c += quadratic_order) {
    const Real g = x.step(i) / 2;
    c[0] = y[i];
    c[2] = (y[i] - 2 * z[i] + y[i + 1]) / g / (2 * g);
    c[1] = (z[i] - y[i]) / g - g * c[2];
  }
}

template <class Real>
struct MidpointQuadratic {
  template <class Partition, class Values>
  static int run(const DFTask& task) {
    const Partition x(task);
    const Scratch<Real, kMidpointsOnStack> z(counted_sum(x.n, 1));
    if (z.data() == nullptr) return QOR_DF_NO_MEMORY;
    for (int64_t f = 0; f < task.ny; ++f) {
      const Values y(task, f);
      find_midpoints(x, y, boundary_values<Real>(task)[0], z.data());
      write_midpoint_cells(x, y, z.data(), coefficients<Real>(task, f));
    }
    return QOR_DF_OK;
  }
};

template <class Real>
int construct_quadratic(const DFTask* task, int64_t method) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  if (method != 0) return QOR_DF_BAD_METHOD;
  if (task->nx < 2) return QOR_DF_BAD_NX;
  if (!is_storage_form(task->yhint)) return QOR_DF_BAD_Y_HINT;
  if (task->ic_type != 0 && task->ic_type != 1) return QOR_DF_BAD_IC_TYPE;
  const bool on_knots = task->ic_type == 1;
  if (on_knots) {
    const int status = check_boundary(*task);
    if (status != QOR_DF_OK) return status;
    if (task->bc_type == QOR_DF_BC_NOT_A_KNOT && task->nx < 3) return QOR_DF_BAD_NX;
  } else {
    if (task->bc_type != QOR_DF_BC_FIRST_MIDPOINT) return QOR_DF_BAD_BC_TYPE;
    if (task->bc == nullptr) return QOR_DF_NULL_BC;
  }
  const int status =
      check_arrays(*task, on_knots ? inner_conditions | spline_arrays : spline_arrays);
  if (status != QOR_DF_OK) return status;
  return on_knots ? construct_on_knots<Real>(*task)
                  : by_forms<Real, MidpointQuadratic<Real>>(*task, *task);
}

}  // namespace
}  // namespace qor::fitting

int qor_df_kernel_dDFQuadraticSpline1D(DFTask* task, int64_t, int64_t method, const ThreadHook*) {
  return qor::fitting::construct_quadratic<double>(task, method);
}
int qor_df_kernel_sDFQuadraticSpline1D(DFTask* task, int64_t, int64_t method, const ThreadHook*) {
  return qor::fitting::construct_quadratic<float>(task, method);
}
