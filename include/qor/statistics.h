/* Summary statistics of a matrix of observations: n observations of p variables.

   A task (SsTask) holds the addresses of the caller's arrays and parameters; it copies nothing. The
   caller makes a task, registers arrays with the editors, and calls a compute entry with a mask of
   estimates and a method word. Results go straight to the registered arrays. Every address is read
   afresh at each compute call, so that a data set may be fed block by block: with `accumulated
   weights` registered and the result arrays left in place, a call continues what stands in them.

   Entries come in double (d) and single (s) precision, which tells how the registered real arrays
   are read. Integer parameters (p, n, storage words, counts, index arrays) are 32 or 64 bits wide
   by the task's index width flag. Functions that return int32_t return a status: 0, or one of the
   negative numbers of statistics_codes.h. Checks come before any output is written, in the order
   told; a pointer that an entry needs and the task lacks gives the status of its code.

   Threads. A task belongs to one thread at a time; a compute entry uses further threads through
   `hook` alone (thread_hook.h), which may be null. With the same number of threads the results are
   the same to the bit, whichever team runs.

     SsTask* task;
     int32_t p = 2, n = 3, by_observation = QOR_SS_BY_OBSERVATION;
     double x[6] = {1, 10, 2, 20, 3, 60}, mean[2], r2[2], c2[2];
     __ostdSSNewTask(&task, &p, &n, &by_observation, x, NULL, NULL, 0);
     __ostdSSEditMoments(task, mean, r2, NULL, NULL, c2, NULL, NULL);
     _ostdSSBasic(task, QOR_SS_ESTIMATE_CENTRAL_2, QOR_SS_METHOD_ONE_PASS, NULL);
     __ostSSDeleteTask(&task);                                                                  */
#ifndef QOR_STATISTICS_H
#define QOR_STATISTICS_H

#include <stdint.h>

#include "qor/api.h"
#include "qor/statistics_codes.h"
#include "qor/thread_hook.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct SsTask SsTask;

/* ---- Tasks ---------------------------------------------------------------------------------- */

/* Makes a task and writes its address to *task, on success only.
     p, n        number of variables and of observations; n may be null when x is
     x_storage   the data's storage word; x, n and x_storage are looked at when x is not null
     weights     null, or one real per observation
     indices     null, or one integer per variable
     index_width 0: all integers of this task have 32 bits; else 64
   Statuses in the order of the checks: NULL_TASK, BAD_P, NULL_STORAGE, BAD_STORAGE, BAD_N,
   NO_MEMORY. */
QOR_API int32_t __ostdSSNewTask(SsTask** task, const void* p, const void* n, const void* x_storage,
                                const double* x, const double* weights, const void* indices,
                                int32_t index_width);
QOR_API int32_t __ostsSSNewTask(SsTask** task, const void* p, const void* n, const void* x_storage,
                                const float* x, const float* weights, const void* indices,
                                int32_t index_width);

/* Frees the task and what it owns, and sets *task, which must hold a task, to null. */
QOR_API int32_t __ostSSDeleteTask(SsTask** task);

/* Sets the field of a code. Statuses: NULL_TASK, BAD_CODE (also for a code of the other kind), the
   field's NULL or BAD status for a null value, which leaves the field alone. */
QOR_API int32_t __ostiSSEditTask(SsTask* task, int64_t code, const void* value);
QOR_API int32_t __ostdSSEditTask(SsTask* task, int64_t code, const double* value);
QOR_API int32_t __ostsSSEditTask(SsTask* task, int64_t code, const float* value);

/* The editors of whole families. A null argument leaves its field alone. They return NULL_TASK or
   0. Arguments are named by their codes above; integers are read through const void*. */
QOR_API int32_t __ostdSSEditMoments(SsTask* task, double* mean, double* raw_2, double* raw_3,
                                    double* raw_4, double* central_2, double* central_3,
                                    double* central_4);
QOR_API int32_t __ostsSSEditMoments(SsTask* task, float* mean, float* raw_2, float* raw_3,
                                    float* raw_4, float* central_2, float* central_3,
                                    float* central_4);

QOR_API int32_t __ostdSSEditSums(SsTask* task, double* sum, double* raw_sum_2, double* raw_sum_3,
                                 double* raw_sum_4, double* central_sum_2, double* central_sum_3,
                                 double* central_sum_4);
QOR_API int32_t __ostsSSEditSums(SsTask* task, float* sum, float* raw_sum_2, float* raw_sum_3,
                                 float* raw_sum_4, float* central_sum_2, float* central_sum_3,
                                 float* central_sum_4);

QOR_API int32_t __ostdSSEditCovCor(SsTask* task, double* mean, double* cov, const void* cov_storage,
                                   double* cor, const void* cor_storage);
QOR_API int32_t __ostsSSEditCovCor(SsTask* task, float* mean, float* cov, const void* cov_storage,
                                   float* cor, const void* cor_storage);

QOR_API int32_t __ostdSSEditCP(SsTask* task, double* mean, double* sum, double* cp,
                               const void* cp_storage);
QOR_API int32_t __ostsSSEditCP(SsTask* task, float* mean, float* sum, float* cp,
                               const void* cp_storage);

QOR_API int32_t __ostdSSEditPartialCovCor(SsTask* task, const void* partial_index, double* cov,
                                          const void* cov_storage, double* cor,
                                          const void* cor_storage, double* partial_cov,
                                          const void* partial_cov_storage, double* partial_cor,
                                          const void* partial_cor_storage);
QOR_API int32_t __ostsSSEditPartialCovCor(SsTask* task, const void* partial_index, float* cov,
                                          const void* cov_storage, float* cor,
                                          const void* cor_storage, float* partial_cov,
                                          const void* partial_cov_storage, float* partial_cor,
                                          const void* partial_cor_storage);

QOR_API int32_t __ostdSSEditQuantiles(SsTask* task, const void* count, double* orders,
                                      double* quantiles, double* order_statistics,
                                      const void* order_statistics_storage);
QOR_API int32_t __ostsSSEditQuantiles(SsTask* task, const void* count, float* orders,
                                      float* quantiles, float* order_statistics,
                                      const void* order_statistics_storage);

QOR_API int32_t __ostdSSEditStreamQuantiles(SsTask* task, const void* count, double* orders,
                                            double* quantiles, const void* parameter_count,
                                            double* parameters);
QOR_API int32_t __ostsSSEditStreamQuantiles(SsTask* task, const void* count, float* orders,
                                            float* quantiles, const void* parameter_count,
                                            float* parameters);

QOR_API int32_t __ostdSSEditPooledCovariance(SsTask* task, const void* group_indices,
                                             double* pooled_mean, double* pooled_cov,
                                             const void* group_selection, double* group_means,
                                             double* group_covs);
QOR_API int32_t __ostsSSEditPooledCovariance(SsTask* task, const void* group_indices,
                                             float* pooled_mean, float* pooled_cov,
                                             const void* group_selection, float* group_means,
                                             float* group_covs);

QOR_API int32_t __ostdSSEditRCov(SsTask* task, const void* robust_storage,
                                 const void* parameter_count, double* parameters, double* mean,
                                 double* cov);
QOR_API int32_t __ostsSSEditRCov(SsTask* task, const void* robust_storage,
                                 const void* parameter_count, float* parameters, float* mean,
                                 float* cov);

QOR_API int32_t __ostdSSEditOutDetect(SsTask* task, const void* parameter_count, double* parameters,
                                      double* outlier_weights);
QOR_API int32_t __ostsSSEditOutDetect(SsTask* task, const void* parameter_count, float* parameters,
                                      float* outlier_weights);

QOR_API int32_t __ostdSSEditMissingVals(SsTask* task, const void* parameter_count,
                                        double* parameters, const void* initial_estimate_count,
                                        double* initial_estimates, const void* pattern_count,
                                        double* patterns, const void* simulated_estimate_count,
                                        double* simulated_estimates,
                                        const void* simulated_correlation_count,
                                        double* simulated_correlations);
QOR_API int32_t __ostsSSEditMissingVals(SsTask* task, const void* parameter_count,
                                        float* parameters, const void* initial_estimate_count,
                                        float* initial_estimates, const void* pattern_count,
                                        float* patterns, const void* simulated_estimate_count,
                                        float* simulated_estimates,
                                        const void* simulated_correlation_count,
                                        float* simulated_correlations);

QOR_API int32_t __ostdSSEditMtxParametrz(SsTask* task, double* cor, const void* cor_storage,
                                         double* parametrized_cor,
                                         const void* parametrized_cor_storage);
QOR_API int32_t __ostsSSEditMtxParametrz(SsTask* task, float* cor, const void* cor_storage,
                                         float* parametrized_cor,
                                         const void* parametrized_cor_storage);

/* ---- Compute entries ------------------------------------------------------------------------- */

/* Moments, sums and matrices of products, by one of three methods over the data:
     ONE_PASS     updates mean and central sums observation by observation: the accurate one
     FAST         raw sums; central moments from them, so that data far from zero lose digits;
                  matrices by blocks through BLAS
     GIVEN_MEANS  central sums about the means found in `mean`, which stays as it is
   or by FROM_SUMS from the registered sums and accumulated weights (or n), with no pass over data.
   Central moment 2, cov and the diagonal of cor divide by W - W2/W, W the sum of weights and W2 of
   their squares: n - 1 with unit weights. Central moments 3 and 4 divide by W. Kurtosis is the
   excess, c4/c2^2 - 3; skewness c3/c2^1.5; variation sqrt(c2)/mean. Results in the precision's
   range come out, whatever the powers on the way; multiplying all weights by a power of two changes
   no bit of a moment. An infinite moment or sum of squared weights is lost to later blocks.
   Beside its own array an estimate needs others as working space, which are then written too:
     central moment k    mean, raw moments 2 to k
     kurtosis            mean, raw moments 2 to 4, central moments 2 and 4
     skewness            mean, raw moments 2 and 3, central moments 2 and 3
     variation           mean, raw moment 2, central moment 2
     central sum k       mean; with FAST also raw moments 2 to k
     cov, cor, cp        mean
     sum                 with GIVEN_MEANS mean, which it is a multiple of
   and with FROM_SUMS: a moment its sum, cov and cor cp, the ratios their moments as they stand.
   A registered array of a quantity that the kernel keeps anyhow is written as well. All others stay
   untouched, as do variables whose entry in `indices` is 0, with their rows and columns.
   Blocks: with accumulated weights above 0 the registered arrays are gone on from; at 0 they start
   afresh. The first asked for of cp, cov, cor carries the matrix. GIVEN_MEANS: the task keeps the
   means that the matrix is central about; a call with another p, or of the other precision, takes
   it as central about its own. ONE_PASS needs, for central moments and sums 3 and 4, those of lower
   order or the raw moments carried, else it gives the status of the missing central sum. Threads:
   one per 8192 elements (n*p, or n with a matrix) and 16 observations at most, merged in order.
   Statuses in order: NULL_TASK; BAD_METHOD (no or several data methods); that of the first missing
   array, BAD_METHOD for a sum with FROM_SUMS; BAD_N, NULL_X, NULL_STORAGE, BAD_STORAGE, or with
   FROM_SUMS BAD_ACCUMULATED_WEIGHTS (none, and weights are given or n is null); BAD_P; NULL_MEAN
   (sum with GIVEN_MEANS); NULL_STORAGE of a matrix; NULL_CENTRAL_SUM_2 or 3 (above); NO_MEMORY. */
QOR_API int32_t _ostdSSBasic(SsTask* task, uint64_t estimates, uint64_t method,
                             const ThreadHook* hook);
QOR_API int32_t _ostsSSBasic(SsTask* task, uint64_t estimates, uint64_t method,
                             const ThreadHook* hook);

/* Minimum and maximum, from the values that stand in `min` and `max` at the call on: fill these
   first, or leave them in place from block to block. NaNs in the data are passed over. Methods FAST
   and ONE_PASS, which do the same. No threads.
   Statuses in order: NULL_TASK, BAD_STORAGE, NULL_MIN, NULL_MAX, BAD_METHOD, NO_MEMORY. */
QOR_API int32_t _ostdSSMinmax(SsTask* task, uint64_t estimates, uint64_t method,
                              const ThreadHook* hook);
QOR_API int32_t _ostsSSMinmax(SsTask* task, uint64_t estimates, uint64_t method,
                              const ThreadHook* hook);

/* Quantiles and order statistics, method FAST. The quantile of order q lies at q*(n - 1) in the
   sorted values, counted from 0, linear between neighbours. Items are the variables taking part, in
   order: item i has quantiles[i*count ...] and place i in `order statistics`. Statuses in order:
   NULL_TASK, BAD_STORAGE; with quantiles NULL_QUANTILES, NULL_QUANTILE_ORDERS, BAD_QUANTILE_COUNT;
   with order statistics NULL_ORDER_STATISTICS, NULL_STORAGE, BAD_STORAGE; BAD_METHOD, NO_MEMORY. */
QOR_API int32_t _ostdSSQuantiles(SsTask* task, uint64_t estimates, uint64_t method,
                                 const ThreadHook* hook);
QOR_API int32_t _ostsSSQuantiles(SsTask* task, uint64_t estimates, uint64_t method,
                                 const ThreadHook* hook);

/* Quantiles of a stream that is fed block by block, off by at most epsilon*N places among the N
   observations so far, or by less than one. The summary lives in the task, and how the stream is
   cut does not matter. n may be 0, to read results only; nothing is written before the first
   observation. The first call tells which variables there are; `indices` of later calls may name
   some of them, which then take the block and answer, in their order. A stream keeps the p and the
   precision that began it, until __ostSQuantilesFreeBuffers ends it.
   Statuses in order: NULL_TASK, BAD_N, NULL_X, NULL_STORAGE, BAD_STORAGE, NULL_STREAM_QUANTILES,
   NULL_STREAM_QUANTILE_ORDERS, BAD_STREAM_QUANTILE_COUNT (count), NULL_STREAM_PARAMETER_COUNT,
   BAD_STREAM_PARAMETER_COUNT, BAD_STREAM_QUANTILE_COUNT (an order), NULL_STREAM_PARAMETERS,
   BAD_METHOD, BAD_STREAM_EPSILON, BAD_P, BAD_METHOD (a stream of the other precision), BAD_P (of
   another p), BAD_INDICES (variables that the first call left out, or none), NO_MEMORY. */
QOR_API int32_t _ostdSSStreamQuantiles(SsTask* task, uint64_t estimates, uint64_t method,
                                       const ThreadHook* hook);
QOR_API int32_t _ostsSSStreamQuantiles(SsTask* task, uint64_t estimates, uint64_t method,
                                       const ThreadHook* hook);

/* Sorts each variable ascending into `sorted output`, which may be x itself, method SORT. Stable;
   NaNs stand at the ends, by their bits.
   Statuses in order: NULL_TASK, NULL_SORTED_OUTPUT, NULL_STORAGE, NULL_STORAGE (in place, with the
   two layouts different), SORTED_IN_PLACE_WITH_INDICES, BAD_STORAGE, BAD_METHOD, NO_MEMORY. */
QOR_API int32_t _ostdSSSort(SsTask* task, uint64_t estimates, uint64_t method,
                            const ThreadHook* hook);
QOR_API int32_t _ostsSSSort(SsTask* task, uint64_t estimates, uint64_t method,
                            const ThreadHook* hook);

/* The entries from here to the sorting routines check their arguments and then give NOT_BUILT. */
QOR_API int32_t _ostdSSMAD(SsTask* task, uint64_t estimates, uint64_t method,
                           const ThreadHook* hook);
QOR_API int32_t _ostsSSMAD(SsTask* task, uint64_t estimates, uint64_t method,
                           const ThreadHook* hook);
QOR_API int32_t _ostdSSMissingValues(SsTask* task, uint64_t estimates, uint64_t method,
                                     const ThreadHook* hook);
QOR_API int32_t _ostsSSMissingValues(SsTask* task, uint64_t estimates, uint64_t method,
                                     const ThreadHook* hook);
QOR_API int32_t _ostdSSOutliersDetection(SsTask* task, uint64_t estimates, uint64_t method,
                                         const ThreadHook* hook);
QOR_API int32_t _ostsSSOutliersDetection(SsTask* task, uint64_t estimates, uint64_t method,
                                         const ThreadHook* hook);
QOR_API int32_t _ostdSSPartialCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                         const ThreadHook* hook);
QOR_API int32_t _ostsSSPartialCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                         const ThreadHook* hook);
QOR_API int32_t _ostdSSPooledCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                        const ThreadHook* hook);
QOR_API int32_t _ostsSSPooledCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                        const ThreadHook* hook);
QOR_API int32_t _ostdSSRobustCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                        const ThreadHook* hook);
QOR_API int32_t _ostsSSRobustCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                        const ThreadHook* hook);
QOR_API int32_t _ostdSSCorParametrization(SsTask* task, uint64_t estimates, uint64_t method,
                                          const ThreadHook* hook);
QOR_API int32_t _ostsSSCorParametrization(SsTask* task, uint64_t estimates, uint64_t method,
                                          const ThreadHook* hook);
QOR_API int32_t _ostdSSWMedian(SsTask* task);
QOR_API int32_t _ostsSSWMedian(SsTask* task);
QOR_API int32_t _ostdSSMahDistance(SsTask* task);
QOR_API int32_t _ostsSSMahDistance(SsTask* task);

/* ---- Sorting --------------------------------------------------------------------------------- */

/* Sorts `count` reals ascending in place; Step: every stride-th from the first on. Reals compare
   plainly, so that the place of NaNs is not told. */
QOR_API int32_t __ostdQSort(int64_t count, double* array);
QOR_API int32_t __ostdQSortStep(int64_t count, double* array, int64_t stride);
QOR_API int32_t __ostsQSort(int64_t count, float* array);
QOR_API int32_t __ostsQSortStep(int64_t count, float* array, int64_t stride);

/* Reorders the array until the element of sorted position k, from 0, stands at k, and returns it; a
   NaN when there is no such position. */
QOR_API double __ostdQSortSelect(int64_t count, double* array, int64_t k);
QOR_API float __ostsQSortSelect(int64_t count, float* array, int64_t k);

/* Frees the task's summary of a stream; __ostSSDeleteTask does so too. NULL_TASK or 0. */
QOR_API int32_t __ostSQuantilesFreeBuffers(SsTask* task);

#ifdef __cplusplus
}
#endif

#endif
