/* Summary statistics of a matrix of observations: n observations of p variables.

   A task (SsTask) holds the addresses of the caller's arrays and parameters; it copies nothing. The
   caller makes a task, registers arrays with the editors, and calls a compute entry with a mask of
   estimates and a method word. Results go straight to the registered arrays. Every address is read
   afresh at each compute call, so that a data set may be fed block by block: with `accumulated
   weights` registered and the result arrays left in place, a call continues what stands in them.

   Entries come in double (d) and single (s) precision, which tells how the registered real arrays
   are read. Integer parameters (p, n, storage words, counts, index arrays) are 32 or 64 bits wide
   by the task's index width flag. Functions that return int32_t return a status: 0, or one of the
   negative numbers below. Checks come before any output is written, in the order told; a pointer
   that an entry needs and the task lacks gives the status of its code.

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
#include "qor/thread_hook.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct SsTask SsTask;

/* ---- Statuses ------------------------------------------------------------------------------- */

enum {
  QOR_SS_OK = 0,
  QOR_SS_BAD_CODE = -3, /* an editor: no such code, or one of the other editor */
  QOR_SS_NO_MEMORY = -4000,
  QOR_SS_BAD_P = -4001,       /* null, or not above 0 */
  QOR_SS_BAD_N = -4002,       /* null, or too small for the entry */
  QOR_SS_BAD_STORAGE = -4003, /* a storage word that the entry does not know */
  QOR_SS_BAD_INDICES = -4004,
  QOR_SS_NULL_WEIGHTS = -4005,
  QOR_SS_NULL_MEAN = -4006, /* also `sum`, from the editor */
  QOR_SS_NULL_RAW_2 = -4007,
  QOR_SS_NULL_RAW_3 = -4008,
  QOR_SS_NULL_RAW_4 = -4009,
  QOR_SS_NULL_CENTRAL_2 = -4010,
  QOR_SS_NULL_CENTRAL_3 = -4011,
  QOR_SS_NULL_CENTRAL_4 = -4012,
  QOR_SS_NULL_KURTOSIS = -4013,
  QOR_SS_NULL_SKEWNESS = -4014,
  QOR_SS_NULL_MIN = -4015,
  QOR_SS_NULL_MAX = -4016,
  QOR_SS_NULL_VARIATION = -4017,
  QOR_SS_NULL_COV = -4018,
  QOR_SS_NULL_COR = -4019,
  QOR_SS_BAD_ACCUMULATED_WEIGHTS = -4020,
  QOR_SS_NULL_QUANTILE_ORDERS = -4021,
  QOR_SS_BAD_QUANTILE_COUNT = -4022, /* also an order outside 0 to 1 */
  QOR_SS_NULL_QUANTILES = -4023,
  QOR_SS_NULL_ORDER_STATISTICS = -4024,
  QOR_SS_NULL_ROBUST_COVARIANCE = -4027,
  QOR_SS_NULL_ROBUST_MEAN = -4028,
  QOR_SS_BAD_METHOD = -4029,
  QOR_SS_NULL_GROUP_INDICES = -4030,
  QOR_SS_NULL_TASK = -4031,
  QOR_SS_NULL_X = -4032,
  QOR_SS_NULL_POOLED_COVARIANCE = -4034,
  QOR_SS_NULL_POOLED_MEAN = -4035,
  QOR_SS_NULL_GROUP_COVARIANCES = -4036,
  QOR_SS_NULL_GROUP_MEANS = -4037,
  QOR_SS_BAD_GROUPS = -4038, /* a negative group number, a selection entry other than 0 or 1 */
  QOR_SS_NULL_OUTLIER_PARAMETERS = -4039,
  QOR_SS_NULL_OUTLIER_PARAMETER_COUNT = -4040,
  QOR_SS_NULL_OUTLIER_WEIGHTS = -4041,
  QOR_SS_NULL_ROBUST_PARAMETERS = -4042,
  QOR_SS_NULL_ROBUST_PARAMETER_COUNT = -4043,
  QOR_SS_NULL_STORAGE = -4044, /* also matrices whose storage does not go together */
  QOR_SS_NULL_PARTIAL_INDEX = -4045,
  QOR_SS_NULL_PARTIAL_COVARIANCE = -4046,
  QOR_SS_NULL_PARTIAL_CORRELATION = -4047,
  QOR_SS_NULL_MISSING_PARAMETERS = -4048,
  QOR_SS_NULL_MISSING_PARAMETER_COUNT = -4049,
  QOR_SS_BAD_MISSING_PARAMETER_COUNT = -4050,
  QOR_SS_NULL_INITIAL_ESTIMATE_COUNT = -4052,
  QOR_SS_NULL_INITIAL_ESTIMATES = -4053,
  QOR_SS_NULL_SIMULATED_ESTIMATES = -4054,
  QOR_SS_NULL_SIMULATED_ESTIMATE_COUNT = -4055,
  QOR_SS_NULL_SIMULATED_CORRELATION_COUNT = -4056,
  QOR_SS_NULL_SIMULATED_CORRELATIONS = -4057,
  QOR_SS_NO_SIMULATED_OUTPUT = -4060, /* neither simulated estimates nor correlations */
  QOR_SS_NULL_PATTERN_COUNT = -4061,
  QOR_SS_NULL_PATTERNS = -4062,
  QOR_SS_NULL_STREAM_PARAMETER_COUNT = -4064, /* from the compute entry */
  QOR_SS_NULL_STREAM_PARAMETERS = -4065,
  QOR_SS_BAD_STREAM_PARAMETER_COUNT = -4066, /* not 1; or null, from the editor */
  QOR_SS_BAD_STREAM_EPSILON = -4067,         /* not above 0, or above 1 */
  QOR_SS_NULL_STREAM_QUANTILE_ORDERS = -4068,
  QOR_SS_BAD_STREAM_QUANTILE_COUNT = -4069, /* also an order outside 0 to 1 */
  QOR_SS_NULL_STREAM_QUANTILES = -4070,
  QOR_SS_NULL_PARAMETRIZED_CORRELATION = -4071,
  QOR_SS_NULL_SUM = -4074,
  QOR_SS_NULL_RAW_SUM_2 = -4075,
  QOR_SS_NULL_RAW_SUM_3 = -4076,
  QOR_SS_NULL_RAW_SUM_4 = -4077,
  QOR_SS_NULL_CENTRAL_SUM_2 = -4078,
  QOR_SS_NULL_CENTRAL_SUM_3 = -4079,
  QOR_SS_NULL_CENTRAL_SUM_4 = -4080,
  QOR_SS_NULL_CP = -4081,
  QOR_SS_NULL_MEDIAN_ABSOLUTE_DEVIATION = -4082,
  QOR_SS_NULL_MEAN_ABSOLUTE_DEVIATION = -4083,
  QOR_SS_NULL_SORTED_OUTPUT = -4084,
  QOR_SS_SORTED_IN_PLACE_WITH_INDICES = -4085,
  QOR_SS_NOT_BUILT = -4999 /* the arguments are good; this version does not compute the estimate */
};

/* ---- Storage words -------------------------------------------------------------------------- */

enum {
  QOR_SS_BY_VARIABLE = 0x10000,    /* variable j of observation i at x[j*n + i] */
  QOR_SS_BY_OBSERVATION = 0x20000, /* variable j of observation i at x[i*p + j] */
  QOR_SS_MATRIX_FULL = 0,          /* p by p, both triangles */
  QOR_SS_MATRIX_LOWER = 1,         /* lower triangle by rows: (i,j), j <= i, at i(i+1)/2 + j */
  QOR_SS_MATRIX_UPPER = 2          /* upper triangle by rows, each beginning with its diagonal */
};

/* ---- Parameter codes ------------------------------------------------------------------------ */

/* Real arrays: __ostdSSEditTask, __ostsSSEditTask. "p" after a name: one real per variable. */
enum {
  QOR_SS_X = 3,
  QOR_SS_WEIGHTS = 6, /* n reals */
  QOR_SS_MEAN = 7,    /* p */
  QOR_SS_RAW_2 = 8,   /* p, as all up to VARIATION */
  QOR_SS_RAW_3 = 9,
  QOR_SS_RAW_4 = 10,
  QOR_SS_CENTRAL_2 = 11,
  QOR_SS_CENTRAL_3 = 12,
  QOR_SS_CENTRAL_4 = 13,
  QOR_SS_KURTOSIS = 14,
  QOR_SS_SKEWNESS = 15,
  QOR_SS_MIN = 16,
  QOR_SS_MAX = 17,
  QOR_SS_VARIATION = 18,
  QOR_SS_COV = 19,                 /* matrix in the storage of its word */
  QOR_SS_COR = 21,                 /* likewise; its diagonal holds the variances */
  QOR_SS_ACCUMULATED_WEIGHTS = 23, /* 2 reals: sum of weights, sum of their squares */
  QOR_SS_QUANTILE_ORDERS = 25,
  QOR_SS_QUANTILES = 26,        /* one real per order, variable after variable */
  QOR_SS_ORDER_STATISTICS = 27, /* as x, in the storage of its word */
  QOR_SS_POOLED_MEAN = 30,
  QOR_SS_POOLED_COVARIANCE = 31,
  QOR_SS_GROUP_MEANS = 33,
  QOR_SS_GROUP_COVARIANCES = 35,
  QOR_SS_ROBUST_PARAMETERS = 38,
  QOR_SS_ROBUST_MEAN = 39,
  QOR_SS_ROBUST_COVARIANCE = 40,
  QOR_SS_OUTLIER_PARAMETERS = 42,
  QOR_SS_OUTLIER_WEIGHTS = 43,
  QOR_SS_PARTIAL_COVARIANCE = 46,
  QOR_SS_PARTIAL_CORRELATION = 48,
  QOR_SS_MISSING_PARAMETERS = 51,
  QOR_SS_INITIAL_ESTIMATES = 53,
  QOR_SS_SIMULATED_ESTIMATES = 55,
  QOR_SS_SIMULATED_CORRELATIONS = 57,
  QOR_SS_PATTERNS = 59,
  QOR_SS_PARAMETRIZED_CORRELATION = 60,
  QOR_SS_STREAM_PARAMETERS = 63, /* 1 real: epsilon */
  QOR_SS_STREAM_QUANTILE_ORDERS = 65,
  QOR_SS_STREAM_QUANTILES = 66,
  QOR_SS_SUM = 67, /* p, as all up to CENTRAL_SUM_4 */
  QOR_SS_RAW_SUM_2 = 68,
  QOR_SS_RAW_SUM_3 = 69,
  QOR_SS_RAW_SUM_4 = 70,
  QOR_SS_CENTRAL_SUM_2 = 71,
  QOR_SS_CENTRAL_SUM_3 = 72,
  QOR_SS_CENTRAL_SUM_4 = 73,
  QOR_SS_CP = 74, /* matrix of sums of products of deviations */
  QOR_SS_MEDIAN_ABSOLUTE_DEVIATION = 76,
  QOR_SS_MEAN_ABSOLUTE_DEVIATION = 77,
  QOR_SS_SORTED_OUTPUT = 78
};

/* Integers: __ostiSSEditTask. */
enum {
  QOR_SS_P = 1,
  QOR_SS_N = 2,
  QOR_SS_X_STORAGE = 4,
  QOR_SS_INDICES = 5, /* one per variable; 0 leaves the variable out */
  QOR_SS_COV_STORAGE = 20,
  QOR_SS_COR_STORAGE = 22,
  QOR_SS_QUANTILE_COUNT = 24,
  QOR_SS_GROUP_INDICES = 28,
  QOR_SS_POOLED_COVARIANCE_STORAGE = 29,
  QOR_SS_GROUP_SELECTION = 32,
  QOR_SS_GROUP_COVARIANCE_STORAGE = 34,
  QOR_SS_ROBUST_COVARIANCE_STORAGE = 36,
  QOR_SS_ROBUST_PARAMETER_COUNT = 37,
  QOR_SS_OUTLIER_PARAMETER_COUNT = 41,
  QOR_SS_ORDER_STATISTICS_STORAGE = 44,
  QOR_SS_PARTIAL_INDEX = 45,
  QOR_SS_PARTIAL_COVARIANCE_STORAGE = 47,
  QOR_SS_PARTIAL_CORRELATION_STORAGE = 49,
  QOR_SS_MISSING_PARAMETER_COUNT = 50,
  QOR_SS_INITIAL_ESTIMATE_COUNT = 52,
  QOR_SS_SIMULATED_ESTIMATE_COUNT = 54,
  QOR_SS_SIMULATED_CORRELATION_COUNT = 56,
  QOR_SS_PATTERN_COUNT = 58,
  QOR_SS_PARAMETRIZED_CORRELATION_STORAGE = 61,
  QOR_SS_STREAM_PARAMETER_COUNT = 62,
  QOR_SS_STREAM_QUANTILE_COUNT = 64,
  QOR_SS_CP_STORAGE = 75,
  QOR_SS_SORTED_OUTPUT_STORAGE = 79
};

/* ---- Estimates and methods ------------------------------------------------------------------ */

#define QOR_SS_ESTIMATE_MEAN 0x1ull
#define QOR_SS_ESTIMATE_RAW_2 0x2ull
#define QOR_SS_ESTIMATE_RAW_3 0x4ull
#define QOR_SS_ESTIMATE_RAW_4 0x8ull
#define QOR_SS_ESTIMATE_CENTRAL_2 0x10ull
#define QOR_SS_ESTIMATE_CENTRAL_3 0x20ull
#define QOR_SS_ESTIMATE_CENTRAL_4 0x40ull
#define QOR_SS_ESTIMATE_KURTOSIS 0x80ull
#define QOR_SS_ESTIMATE_SKEWNESS 0x100ull
#define QOR_SS_ESTIMATE_VARIATION 0x200ull
#define QOR_SS_ESTIMATE_MIN 0x400ull
#define QOR_SS_ESTIMATE_MAX 0x800ull
#define QOR_SS_ESTIMATE_COVARIANCE 0x1000ull
#define QOR_SS_ESTIMATE_CORRELATION 0x2000ull
#define QOR_SS_ESTIMATE_POOLED_COVARIANCE 0x4000ull
#define QOR_SS_ESTIMATE_GROUP_COVARIANCES 0x8000ull
#define QOR_SS_ESTIMATE_QUANTILES 0x10000ull
#define QOR_SS_ESTIMATE_ORDER_STATISTICS 0x20000ull
#define QOR_SS_ESTIMATE_PARTIAL_COVARIANCE 0x100000ull
#define QOR_SS_ESTIMATE_PARTIAL_CORRELATION 0x200000ull
#define QOR_SS_ESTIMATE_SUM 0x2000000ull
#define QOR_SS_ESTIMATE_RAW_SUM_2 0x4000000ull
#define QOR_SS_ESTIMATE_RAW_SUM_3 0x8000000ull
#define QOR_SS_ESTIMATE_RAW_SUM_4 0x10000000ull
#define QOR_SS_ESTIMATE_CENTRAL_SUM_2 0x20000000ull
#define QOR_SS_ESTIMATE_CENTRAL_SUM_3 0x40000000ull
#define QOR_SS_ESTIMATE_CENTRAL_SUM_4 0x80000000ull
#define QOR_SS_ESTIMATE_CP 0x100000000ull
#define QOR_SS_ESTIMATE_MEDIAN_ABSOLUTE_DEVIATION 0x200000000ull
#define QOR_SS_ESTIMATE_MEAN_ABSOLUTE_DEVIATION 0x400000000ull
#define QOR_SS_ESTIMATE_POOLED_MEAN 0x800000000ull
#define QOR_SS_ESTIMATE_GROUP_MEANS 0x1000000000ull

/* Only the low 32 bits of a method word are looked at. */
#define QOR_SS_METHOD_FAST 0x1ull
#define QOR_SS_METHOD_ONE_PASS 0x2ull
#define QOR_SS_METHOD_SPECTRAL 0x4ull
#define QOR_SS_METHOD_ROBUST 0x8ull
#define QOR_SS_METHOD_SIMULATION 0x10ull
#define QOR_SS_METHOD_OUTLIERS 0x20ull
#define QOR_SS_METHOD_STREAM_ANSWER 0x40ull /* updates, then answers */
#define QOR_SS_METHOD_STREAM_UPDATE 0x80ull /* updates only */
#define QOR_SS_METHOD_GIVEN_MEANS 0x100ull  /* central sums about the means in `mean` */
#define QOR_SS_METHOD_FROM_SUMS 0x200ull    /* estimates from the registered sums; 0x400 likewise */
#define QOR_SS_METHOD_FROM_SUMS_2 0x400ull
#define QOR_SS_METHOD_SORT 0x100000ull

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
   excess, c4/c2^2 - 3; skewness c3/c2^1.5; variation sqrt(c2)/mean.
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
   afresh. The first asked for of cp, cov, cor carries the matrix. ONE_PASS needs, for central
   moments and sums 3 and 4, those of lower order or the raw moments carried, else it gives the
   status of the missing central sum.
   Statuses in order: NULL_TASK; BAD_METHOD (no or several data methods); that of the first missing
   array, BAD_METHOD for a sum with FROM_SUMS; BAD_N, NULL_X, NULL_STORAGE, BAD_STORAGE, or with
   FROM_SUMS BAD_ACCUMULATED_WEIGHTS (none, and weights are given or n is null); BAD_P; NULL_MEAN
   (sum with GIVEN_MEANS); NULL_STORAGE of a matrix; NULL_CENTRAL_SUM_2 or 3 (above); NO_MEMORY.
   Threads: one per 8192 elements (n*p, or n with a matrix) and per 16 observations at most, merged
   in their order. */
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
   some of them, which then take the block and answer, in their order.
   Statuses in order: NULL_TASK, BAD_N, NULL_X, NULL_STORAGE, BAD_STORAGE, NULL_STREAM_QUANTILES,
   NULL_STREAM_QUANTILE_ORDERS, BAD_STREAM_QUANTILE_COUNT (count), NULL_STREAM_PARAMETER_COUNT,
   BAD_STREAM_PARAMETER_COUNT, BAD_STREAM_QUANTILE_COUNT (an order), NULL_STREAM_PARAMETERS,
   BAD_METHOD, BAD_STREAM_EPSILON, BAD_INDICES (variables that the first call left out, or none),
   NO_MEMORY. */
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
