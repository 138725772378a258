// Linear splines.

#include "fitting/construction.h"

namespace qor::fitting {
namespace {

template <class Real>
struct Linear {
  template <class Partition, class Values>
  static int run(const DFTask& task) {
    const Partition x(task);
    for (int64_t f = 0; f < task.ny; ++f) {
      const Values y(task, f);
      Real* c = coefficients<Real>(task, f);
      for (int64_t i = 0; i + 1 < x.n; ++i) {
        c[2 * i] = y[i];
        c[2 * i + 1] = x.slope(y[i + 1] - y[i], i);
      }
    }
    return QOR_DF_OK;
  }
};

template <class Real>
int construct_linear(const DFTask* task, int64_t method) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  if (method != 0) return QOR_DF_BAD_METHOD;
  if (task->nx < 2) return QOR_DF_BAD_NX;
  if (!is_storage_form(task->yhint)) return QOR_DF_BAD_Y_HINT;
  const int status = check_arrays(*task, spline_arrays);
  return status != QOR_DF_OK ? status : by_forms<Real, Linear<Real>>(*task, *task);
}

}  // namespace
}  // namespace qor::fitting

int qor_df_kernel_dDFLinearSpline1D(DFTask* task, int64_t, int64_t method, const ThreadHook*) {
  return qor::fitting::construct_linear<double>(task, method);
}
int qor_df_kernel_sDFLinearSpline1D(DFTask* task, int64_t, int64_t method, const ThreadHook*) {
  return qor::fitting::construct_linear<float>(task, method);
}
