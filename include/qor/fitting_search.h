/* Data fitting: the cells of a partition that sites lie in. fitting.h has this with the rest. */
#ifndef QOR_FITTING_SEARCH_H
#define QOR_FITTING_SEARCH_H

#include <stdint.h>

#include "qor/api.h"
#include "qor/fitting_codes.h"
#include "qor/thread_hook.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct DFTask DFTask;

/* The cell of a site s is 0 below x[0]; k where x[k-1] <= s < x[k]; nx - 1 at x[nx-1]; nx above.
   Inner breakpoints of a uniform partition are i * step + x[0], rounded after the product and the
   sum. The breakpoints must increase; with a promise of order so must the sites. A site that is NaN
   gets some cell from 0 to nx. */

/* The user's search. n: the number of sites of the block; cell: a guess for each, to be written;
   flag: 0 on entry, to be set nonzero where a cell is not to be corrected; params as given to the
   entry; zero is null. Returns 0 (guesses), QOR_DF_CELLS_FINAL, or a negative status, which ends
   the call. */
typedef int (*qor_df_dsearch)(const int64_t* n, const double* site, int64_t* cell, int64_t* flag,
                              void* params, void* zero);
typedef int (*qor_df_ssearch)(const int64_t* n, const float* site, int64_t* cell, int64_t* flag,
                              void* params, void* zero);

/* Writes the cell of each of nsite sites to cell, 32-bit integers. `method` is not read. The first
   of these that holds decides how: search given (its guesses, corrected; on a uniform partition
   replaced, unless flagged); xhint 4; xhint 2; sites sorted; datahint null or datahint[1] = 0
   (bisection); datahint[1] = 1 and datahint[4] from 0 to nx (sites near a peak); otherwise
   BAD_DATA_HINT. NO_MEMORY: more than 4096 uniform sites without memory to expand them. A negative
   status of search is returned, a positive one after the last block. */
QOR_API int qor_df_kernel_dDFSearch1D(const DFTask* task, int64_t method, int64_t nsite,
                                      const double* site, int64_t sitehint, const double* datahint,
                                      int32_t* cell, qor_df_dsearch search, void* params,
                                      const ThreadHook* hook);
QOR_API int qor_df_kernel_sDFSearch1D(const DFTask* task, int64_t method, int64_t nsite,
                                      const float* site, int64_t sitehint, const float* datahint,
                                      int32_t* cell, qor_df_ssearch search, void* params,
                                      const ThreadHook* hook);

/* The methods by themselves, without a task; site always holds nsite values. A name with 32 behind
   it is the same routine. */

/* Uniform partition: x holds its two ends, step its step. Constant time per site. */
QOR_API int qor_df_kernel_dDFUniformSearch1D(int64_t nx, const double* x, int64_t nsite,
                                             const double* site, double step, int32_t* cell);
QOR_API int qor_df_kernel_sDFUniformSearch1D(int64_t nx, const float* x, int64_t nsite,
                                             const float* site, float step, int32_t* cell);
QOR_API int qor_df_kernel_dDFUniformSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                               const double* site, double step, int32_t* cell);
QOR_API int qor_df_kernel_sDFUniformSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                               const float* site, float step, int32_t* cell);

/* Quasi-uniform partition: x holds nx breakpoints, step their mean distance. */
QOR_API int qor_df_kernel_dDFQuasiUniformSearch1D(int64_t nx, const double* x, int64_t nsite,
                                                  const double* site, double step, int32_t* cell);
QOR_API int qor_df_kernel_sDFQuasiUniformSearch1D(int64_t nx, const float* x, int64_t nsite,
                                                  const float* site, float step, int32_t* cell);
QOR_API int qor_df_kernel_dDFQuasiUniformSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                                    const double* site, double step, int32_t* cell);
QOR_API int qor_df_kernel_sDFQuasiUniformSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                                    const float* site, float step, int32_t* cell);

/* Ascending sites. *last is the cell where the last call stopped (0 at first), and is updated. A
   site below the one before it is not searched for: it gets the cell of the one before. */
QOR_API int qor_df_kernel_dDFSortedSearch1D(int64_t nx, const double* x, int64_t nsite,
                                            const double* site, int32_t* last, int32_t* cell);
QOR_API int qor_df_kernel_sDFSortedSearch1D(int64_t nx, const float* x, int64_t nsite,
                                            const float* site, int32_t* last, int32_t* cell);
QOR_API int qor_df_kernel_dDFSortedSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                              const double* site, int32_t* last, int32_t* cell);
QOR_API int qor_df_kernel_sDFSortedSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                              const float* site, int32_t* last, int32_t* cell);

/* Sites in any order. */
QOR_API int qor_df_kernel_dDFHybridSearch1D(int64_t nx, const double* x, int64_t nsite,
                                            const double* site, int32_t* cell);
QOR_API int qor_df_kernel_sDFHybridSearch1D(int64_t nx, const float* x, int64_t nsite,
                                            const float* site, int32_t* cell);
QOR_API int qor_df_kernel_dDFHybridSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                              const double* site, int32_t* cell);
QOR_API int qor_df_kernel_sDFHybridSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                              const float* site, int32_t* cell);

/* Sites in any order that gather at a peak. */
QOR_API int qor_df_kernel_dDFPeakSearch1D(int64_t nx, const double* x, int64_t nsite,
                                          const double* site, int32_t* cell);
QOR_API int qor_df_kernel_sDFPeakSearch1D(int64_t nx, const float* x, int64_t nsite,
                                          const float* site, int32_t* cell);
QOR_API int qor_df_kernel_dDFPeakSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                            const double* site, int32_t* cell);
QOR_API int qor_df_kernel_sDFPeakSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                            const float* site, int32_t* cell);

/* The user's search with correction of its guesses, in blocks of at most 2048 sites. Returns the
   callback's status as DFSearch1D does. */
QOR_API int qor_df_kernel_dDFUserDefSearch1D(int64_t nx, const double* x, int64_t nsite,
                                             const double* site, qor_df_dsearch search,
                                             void* params, int32_t* cell);
QOR_API int qor_df_kernel_sDFUserDefSearch1D(int64_t nx, const float* x, int64_t nsite,
                                             const float* site, qor_df_ssearch search, void* params,
                                             int32_t* cell);
QOR_API int qor_df_kernel_dDFUserDefSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                               const double* site, qor_df_dsearch search,
                                               void* params, int32_t* cell);
QOR_API int qor_df_kernel_sDFUserDefSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                               const float* site, qor_df_ssearch search,
                                               void* params, int32_t* cell);

/* The same on a uniform partition: x holds its two ends, step its step. */
QOR_API int qor_df_kernel_dDFUniUserDefSearch1D(int64_t nx, const double* x, int64_t nsite,
                                                const double* site, double step,
                                                qor_df_dsearch search, void* params, int32_t* cell);
QOR_API int qor_df_kernel_sDFUniUserDefSearch1D(int64_t nx, const float* x, int64_t nsite,
                                                const float* site, float step,
                                                qor_df_ssearch search, void* params, int32_t* cell);
QOR_API int qor_df_kernel_dDFUniUserDefSearch1D32(int64_t nx, const double* x, int64_t nsite,
                                                  const double* site, double step,
                                                  qor_df_dsearch search, void* params,
                                                  int32_t* cell);
QOR_API int qor_df_kernel_sDFUniUserDefSearch1D32(int64_t nx, const float* x, int64_t nsite,
                                                  const float* site, float step,
                                                  qor_df_ssearch search, void* params,
                                                  int32_t* cell);

#ifdef __cplusplus
}
#endif

#endif
