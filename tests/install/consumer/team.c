/* A spline evaluated by the default team of threads, as on one. */
#include <qor/fitting.h>
#include <qor/team.h>
#include <stdio.h>
#include <string.h>

enum { kSites = 10000 };

static double alone[kSites], shared[kSites];

static int evaluate(DFTask* task, const double* ends, double* values, const ThreadHook* hook) {
  return qor_df_kernel_dDFInterpolate1D(task, 0, 0, kSites, ends, QOR_DF_UNIFORM_SITES, 0, NULL,
                                        NULL, values, 0, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
                                        NULL, NULL, hook);
}

int main(void) {
  double x[4] = {0, 1, 2, 4}, y[4] = {0, 1, 8, 64}, c[12], ends[2] = {0, 4};
  DFTask* task;
  int status = qor_df_kernel_dNewTask1D(&task, 4, x, QOR_DF_NON_UNIFORM, 1, y, 0, 1);
  if (status == 0) {
    status = qor_df_kernel_dEditPPSpline1D(task, 4, 5, QOR_DF_BC_NOT_A_KNOT, NULL, 0, NULL, c, 0);
  }
  if (status == 0) status = qor_df_kernel_dDFNaturalCubicSpline1D(task, 0, 0, NULL);
  if (status == 0) status = evaluate(task, ends, alone, NULL);
  if (status == 0) status = evaluate(task, ends, shared, qor_team_openmp());
  if (status != 0) return 1;
  printf("%.3f, %s\n", shared[kSites / 2],
         memcmp(alone, shared, sizeof alone) == 0 ? "the same bits" : "other bits");
  return qor_df_kernel_DeleteTask(&task);
}
