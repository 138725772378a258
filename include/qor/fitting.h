/* Data fitting: splines over one partition, for any number of functions.

   A task (DFTask) holds the partition x[0..nx-1], the functions y sampled on it and the description
   of a spline. A construction kernel fills the caller's coefficient arrays; search, interpolation
   and integration read them. The task keeps addresses: partition, values, coefficients and
   conditions stay in the caller's memory, and the caller keeps them alive. Only tables of pointers
   and a lookup table belong to the task.

   Entries come in double (d) and single (s) precision; a task is used with the entries of its own
   precision. Counts and codes are 64-bit signed integers. Every entry returns a status: 0, or one
   of the negative numbers of fitting_codes.h; a user's callback may add its own. A null task gives
   QOR_DF_NULL_TASK.

   Threads. A task belongs to one thread while it is edited. Construction, search, interpolation and
   integration read the task and write the caller's arrays only, so that any number of threads may
   use one task at a time for these. `hook` (thread_hook.h) may be null everywhere.

     DFTask* task;
     double x[5] = {0, 1, 2, 4, 5}, y[5] = {0, 1, 4, 16, 25}, c[4 * 4], site[2] = {1.5, 3}, r[2];
     qor_df_kernel_dNewTask1D(&task, 5, x, QOR_DF_NON_UNIFORM, 1, y, QOR_DF_NO_HINT, 1);
     qor_df_kernel_dEditPPSpline1D(task, 4, 5, QOR_DF_BC_NOT_A_KNOT, NULL, 0, NULL, c, 0);
     qor_df_kernel_dDFNaturalCubicSpline1D(task, 0, 0, NULL);
     qor_df_kernel_dDFInterpolate1D(task, 0, 0, 2, site, QOR_DF_SORTED, 0, NULL, NULL, r, 0, NULL,
                                    NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
     qor_df_kernel_DeleteTask(&task);                                                             */
#ifndef QOR_FITTING_H
#define QOR_FITTING_H

#include <stdint.h>

#include "qor/api.h"
#include "qor/fitting_codes.h"
#include "qor/fitting_search.h"
#include "qor/thread_hook.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Tasks ---------------------------------------------------------------------------------- */

/* Makes a task and writes its address to *task, on success only.
     x      the partition, in the form that xhint tells
     y      the functions, or null with ny = 0: by yhint 0 and 16 ny arrays of nx values one behind
            the other; 32 one array of nx * ny values; 128 the first array
     int_width  0: QueryVal writes and derivative flags are 32-bit integers; else 64-bit
   Statuses in the order of the checks: BAD_NX (below 2), NULL_X, BAD_X_HINT, NULL_Y (with ny not
   0), BAD_NY (below 1 with y given), BAD_Y_HINT, NO_MEMORY. */
QOR_API int qor_df_kernel_dNewTask1D(DFTask** task, int64_t nx, const double* x, int64_t xhint,
                                     int64_t ny, const double* y, int64_t yhint, int32_t int_width);
QOR_API int qor_df_kernel_sNewTask1D(DFTask** task, int64_t nx, const float* x, int64_t xhint,
                                     int64_t ny, const float* y, int64_t yhint, int32_t int_width);

/* Frees the task and sets *task to null. */
QOR_API int qor_df_kernel_DeleteTask(DFTask** task);

/* Sets all fields of the spline.
     s_order  coefficients per cell; s_type  the kind, see Interpolate1D
     bc, ic   boundary and internal conditions as the kernel needs them
     scoeff   the coefficients of all functions one behind the other, s_order * (nx - 1) values each
              (s_order * nx with s_type 1); with scoeffhint 128 of the first one. Null keeps what
              the task has.
   Statuses in order: BAD_ORDER, BAD_TYPE (negative), NULL_BC (bc_type other than 0, 1, 2, 64),
   BAD_IC (ic_type without ic), BAD_IC_TYPE (ic without ic_type), BAD_NY, NO_MEMORY. Fields whose
   check passed are stored even when a later check fails. */
QOR_API int qor_df_kernel_dEditPPSpline1D(DFTask* task, int64_t s_order, int64_t s_type,
                                          int64_t bc_type, const double* bc, int64_t ic_type,
                                          const double* ic, double* scoeff, int64_t scoeffhint);
QOR_API int qor_df_kernel_sEditPPSpline1D(DFTask* task, int64_t s_order, int64_t s_type,
                                          int64_t bc_type, const float* bc, int64_t ic_type,
                                          const float* ic, float* scoeff, int64_t scoeffhint);

/* Sets the field of a value code. Bad values give the field's BAD status, other codes BAD_CODE.
   QOR_DF_X_HINT with the value 1 rebuilds the lookup table from x (NO_MEMORY). */
QOR_API int qor_df_kernel_iEditVal(DFTask* task, int64_t code, int64_t value);

/* Sets the field of a pointer code. Null gives NULL_X, NULL_Y, BAD_IC, NULL_BC or NULL_SCOEFF; y
   and scoeff are laid out anew by the stored hint (BAD_NY with no functions, NO_MEMORY). */
QOR_API int qor_df_kernel_dEditPtr(DFTask* task, int64_t code, const void* pointer);
QOR_API int qor_df_kernel_sEditPtr(DFTask* task, int64_t code, const void* pointer);

/* Sets the array of function `index`, from 0 to ny - 1. Statuses in order: BAD_CODE, BAD_Y_HINT
   (interleaved functions), BAD_INDEX, NULL_Y or NULL_SCOEFF, NO_MEMORY (a table that must grow). */
QOR_API int qor_df_kernel_dEditIdxPtr(DFTask* task, int64_t code, int64_t index,
                                      const void* pointer);
QOR_API int qor_df_kernel_sEditIdxPtr(DFTask* task, int64_t code, int64_t index,
                                      const void* pointer);

/* Reads the field of a value code into *result, 32 or 64 bits wide by the task's int_width.
   Statuses: NULL_RESULT, BAD_CODE. */
QOR_API int qor_df_kernel_iQueryVal(const DFTask* task, int64_t code, void* result);

/* Reads the field of a pointer code into *result; for y and scoeff the array of function 0.
   Statuses: NULL_RESULT, BAD_CODE. */
QOR_API int qor_df_kernel_dQueryPtr(const DFTask* task, int64_t code, void** result);
QOR_API int qor_df_kernel_sQueryPtr(const DFTask* task, int64_t code, void** result);

/* Reads the array of function `index`; index = ny and entries never set read as null.
   Statuses: NULL_RESULT, BAD_CODE, BAD_INDEX, BAD_Y_HINT (interleaved functions). */
QOR_API int qor_df_kernel_dQueryIdxPtr(const DFTask* task, int64_t code, int64_t index,
                                       void** result);
QOR_API int qor_df_kernel_sQueryIdxPtr(const DFTask* task, int64_t code, int64_t index,
                                       void** result);

/* ---- Construction --------------------------------------------------------------------------- */

/* Each kernel fills scoeff: for every function, cells in order, the coefficients of a cell as
   powers of the distance from its left end, the constant first. s_format is not read; hook is not
   called, the work runs on the calling thread. method is 0; Linear, Quadratic and Natural give
   BAD_METHOD for another. Common statuses: BAD_NX (below the minimum), BAD_Y_HINT, BAD_BC_TYPE,
   NULL_BC, NOT_PERIODIC, NO_MEMORY; NULL_Y, NULL_SCOEFF and BAD_IC for arrays that the kernel needs
   and the task lacks. Coefficients are not written on failure (Default: not those of the function
   that failed and the later ones). */

/* Order 2, nx at least 2: straight lines. */
QOR_API int qor_df_kernel_dDFLinearSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                            const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFLinearSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                            const ThreadHook* hook);

/* Order 3, nx at least 2. By ic_type (another gives BAD_IC_TYPE):
     0  with bc_type 128: continuous first derivative, bc[0] the value in the middle of cell 0
     1  on knots of its own, ic: nx + 1 values, ic[0] = x[0], x[i-1] < ic[i] < x[i], ic[nx] =
        x[nx-1] (else BAD_IC); nx cells between knots, every value matched at its breakpoint. All
        boundary conditions but 0; not-a-knot (one polynomial over the first two and over the last
        two cells) needs nx of at least 3. SOLVER_FAILED when the knots defeat the solver. */
QOR_API int qor_df_kernel_dDFQuadraticSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                               const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFQuadraticSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                               const ThreadHook* hook);

/* Order 4, continuous second derivative; nx at least 2, and 3 for not-a-knot. SOLVER_FAILED. */
QOR_API int qor_df_kernel_dDFNaturalCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                  const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFNaturalCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                  const ThreadHook* hook);

/* Order 4 from second derivatives: ic holds those at the nx - 2 inner breakpoints; nx at least 3.
 */
QOR_API int qor_df_kernel_dDFDefaultCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                  const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFDefaultCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                  const ThreadHook* hook);

/* Order 4 from first derivatives: ic holds those at the nx - 2 inner breakpoints; nx at least 3. */
QOR_API int qor_df_kernel_dDFHermiteCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                  const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFHermiteCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                  const ThreadHook* hook);

/* Order 4, inner first derivatives from parabolas through three points; nx at least 4. */
QOR_API int qor_df_kernel_dDFBesselCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                 const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFBesselCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                 const ThreadHook* hook);

/* Order 4, inner first derivatives weighted by the change of slope (Akima, 1970); nx at least 5.
   Takes every boundary condition, 0 included. */
QOR_API int qor_df_kernel_dDFAkimaCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFAkimaCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                const ThreadHook* hook);

/* Order 4, Bessel's derivatives filtered so that monotone data give a monotone curve (Hyman, 1983);
   nx at least 4. */
QOR_API int qor_df_kernel_dDFHymanCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFHymanCubicSpline1D(DFTask* task, int64_t s_format, int64_t method,
                                                const ThreadHook* hook);

/* ---- Interpolation -------------------------------------------------------------------------- */

/* The user's values for *n consecutive sites of one kind: left of the partition, right of it, or
   inside. result: for each site the wanted derivatives in increasing order, one function at a time.
   params as given to the entry; zero is null. A negative status ends the call. */
typedef int (*qor_df_dvalues)(const int64_t* n, const double* site, const int32_t* cell,
                              double* result, void* params, void* zero);
typedef int (*qor_df_svalues)(const int64_t* n, const float* site, const int32_t* cell,
                              float* result, void* params, void* zero);

/* Evaluates the task's spline, or the user's functions, at nsite sites for all ny functions.
     type      QOR_DF_CELLS_OUT, QOR_DF_CELLS_IN, or 0; method is not read
     sitehint  bit 2 (value 4): uniform sites; 64: sorted
     ndorder, dorder  dorder[k] != 0 asks for the derivative of order k; integers of 32 bits, or 64
               with the task's int_width. ndorder 0, or no flag set, asks for the value. nd is the
               number of results per site and function.
     datahint, search_cb, search_params   as of DFSearch1D
     r, rhint  nsite * ny * nd results; of site i, function f and result d at
                 0, 16, 128  (f*nsite + i)*nd + d        32   (f*nd + d)*nsite + i
                 256         (i*ny + f)*nd + d           512  (i*nd + d)*ny + f
     cell      32-bit cells, with type 2 written and with type 4 read; else may be null
     le_cb, re_cb, i_cb   the user's values at sites of cell 0, of cell nx and of those between,
               each with its params; null extends the spline, and for i_cb evaluates it
   The interpolant is fixed by the order and type of the task (another pair gives BAD_TYPE):
     order 2                 linear              order 3, type 0    quadratic
     order 4, type 0 2-5 9   cubic               order 3, type 1    quadratic on the knots ic
     order 5 and above       polynomials         order 0, type 6    lookup of values at breakpoints
     order 0, type 7, 8      steps, continuous from the right (7: the value at the cell's left end)
                             or from the left (8: at its right end); a derivative of them is 0
     order 0, another type   the user's functions, all three needed
   Sites go in blocks of 256. With a hook of at least 2 threads and more than 4096 sites the blocks
   are shared out through its first slot; the results have the same bits with any hook.
   Statuses: BAD_TYPE, BAD_DATA_HINT, BAD_R_HINT, NULL_SCOEFF, NULL_Y or BAD_IC (arrays that the
   interpolant needs), NO_MEMORY, NOT_A_BREAKPOINT, LOOKUP_DERIVATIVES, LOOKUP_WITHOUT_VALUE, and
   negative ones of callbacks; results of finished blocks stay. */
QOR_API int qor_df_kernel_dDFInterpolate1D(
    const DFTask* task, int64_t type, int64_t method, int64_t nsite, const double* site,
    int64_t sitehint, int64_t ndorder, const void* dorder, const double* datahint, double* r,
    int64_t rhint, int32_t* cell, qor_df_dvalues le_cb, void* le_params, qor_df_dvalues re_cb,
    void* re_params, qor_df_dvalues i_cb, void* i_params, qor_df_dsearch search_cb,
    void* search_params, const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFInterpolate1D(
    const DFTask* task, int64_t type, int64_t method, int64_t nsite, const float* site,
    int64_t sitehint, int64_t ndorder, const void* dorder, const float* datahint, float* r,
    int64_t rhint, int32_t* cell, qor_df_svalues le_cb, void* le_params, qor_df_svalues re_cb,
    void* re_params, qor_df_svalues i_cb, void* i_params, qor_df_ssearch search_cb,
    void* search_params, const ThreadHook* hook);

/* ---- Integration ---------------------------------------------------------------------------- */

/* The user's integrals of *n pieces, from llim[i] up to rlim[i], into result[i]: left of the
   partition, right of it, or inside. A negative status ends the call. */
typedef int (*qor_df_dintegrals)(const int64_t* n, const double* llim, const double* rlim,
                                 double* result, void* params, void* zero);
typedef int (*qor_df_sintegrals)(const int64_t* n, const float* llim, const float* rlim,
                                 float* result, void* params, void* zero);

/* Integrates every function from llim[i] to rlim[i], i from 0 to nlim - 1. Exchanged limits give
   the exact negative.
     llimhint, rlimhint    as sitehint of DFSearch1D; method is not read
     ldatahint, rdatahint, search_cb, search_params   as of DFSearch1D
     r, rhint   0, 16, 128: integral i of function f at f*nlim + i; 32: at i*ny + f
     le_cb, re_cb, i_cb    the user's integrals of the pieces left of x[0], right of x[nx-1] and
                between; null extends the spline, and for i_cb integrates it
   The interpolants are those of Interpolate1D but lookup. Statuses: BAD_TYPE, BAD_DATA_HINT,
   BAD_INTEGRAL_R_HINT, NULL_SCOEFF, NULL_Y, BAD_IC, NO_MEMORY, and negative ones of callbacks.
   With a hook of at least 2 threads and more than 4096 pairs blocks of pairs are shared out; the
   results have the same bits with any hook. */
QOR_API int qor_df_kernel_dDFIntegrate1D(
    const DFTask* task, int64_t method, int64_t nlim, const double* llim, int64_t llimhint,
    const double* rlim, int64_t rlimhint, const double* ldatahint, const double* rdatahint,
    double* r, int64_t rhint, qor_df_dintegrals le_cb, void* le_params, qor_df_dintegrals re_cb,
    void* re_params, qor_df_dintegrals i_cb, void* i_params, qor_df_dsearch search_cb,
    void* search_params, const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFIntegrate1D(
    const DFTask* task, int64_t method, int64_t nlim, const float* llim, int64_t llimhint,
    const float* rlim, int64_t rlimhint, const float* ldatahint, const float* rdatahint, float* r,
    int64_t rhint, qor_df_sintegrals le_cb, void* le_params, qor_df_sintegrals re_cb,
    void* re_params, qor_df_sintegrals i_cb, void* i_params, qor_df_ssearch search_cb,
    void* search_params, const ThreadHook* hook);

#ifdef __cplusplus
}
#endif

#endif
