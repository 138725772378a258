// The search methods as entries of their own. A name with 32 behind it is a second name.

#include "fitting/search_methods.h"

using namespace qor::fitting;

int qor_df_kernel_dDFUniformSearch1D(int64_t nx, const double* x, int64_t nsite, const double* site,
                                     double step, int32_t* cell) {
  search_uniform(nx, x, nsite, site, step, cell);
  return QOR_DF_OK;
}
int qor_df_kernel_sDFUniformSearch1D(int64_t nx, const float* x, int64_t nsite, const float* site,
                                     float step, int32_t* cell) {
  search_uniform(nx, x, nsite, site, step, cell);
  return QOR_DF_OK;
}
[[gnu::alias("qor_df_kernel_dDFUniformSearch1D")]] int qor_df_kernel_dDFUniformSearch1D32(
    int64_t, const double*, int64_t, const double*, double, int32_t*);
[[gnu::alias("qor_df_kernel_sDFUniformSearch1D")]] int qor_df_kernel_sDFUniformSearch1D32(
    int64_t, const float*, int64_t, const float*, float, int32_t*);

int qor_df_kernel_dDFQuasiUniformSearch1D(int64_t nx, const double* x, int64_t nsite,
                                          const double* site, double step, int32_t* cell) {
  search_quasi_uniform(nx, x, nsite, site, step, cell);
  return QOR_DF_OK;
}
int qor_df_kernel_sDFQuasiUniformSearch1D(int64_t nx, const float* x, int64_t nsite,
                                          const float* site, float step, int32_t* cell) {
  search_quasi_uniform(nx, x, nsite, site, step, cell);
  return QOR_DF_OK;
}
[[gnu::alias("qor_df_kernel_dDFQuasiUniformSearch1D")]] int qor_df_kernel_dDFQuasiUniformSearch1D32(
    int64_t, const double*, int64_t, const double*, double, int32_t*);
[[gnu::alias("qor_df_kernel_sDFQuasiUniformSearch1D")]] int qor_df_kernel_sDFQuasiUniformSearch1D32(
    int64_t, const float*, int64_t, const float*, float, int32_t*);

int qor_df_kernel_dDFSortedSearch1D(int64_t nx, const double* x, int64_t nsite, const double* site,
                                    int32_t* last, int32_t* cell) {
  search_sorted(nx, x, nsite, site, last, cell);
  return QOR_DF_OK;
}
int qor_df_kernel_sDFSortedSearch1D(int64_t nx, const float* x, int64_t nsite, const float* site,
                                    int32_t* last, int32_t* cell) {
  search_sorted(nx, x, nsite, site, last, cell);
  return QOR_DF_OK;
}
[[gnu::alias("qor_df_kernel_dDFSortedSearch1D")]] int qor_df_kernel_dDFSortedSearch1D32(
    int64_t, const double*, int64_t, const double*, int32_t*, int32_t*);
[[gnu::alias("qor_df_kernel_sDFSortedSearch1D")]] int qor_df_kernel_sDFSortedSearch1D32(
    int64_t, const float*, int64_t, const float*, int32_t*, int32_t*);

int qor_df_kernel_dDFHybridSearch1D(int64_t nx, const double* x, int64_t nsite, const double* site,
                                    int32_t* cell) {
  search_hybrid(nx, x, nsite, site, cell);
  return QOR_DF_OK;
}
int qor_df_kernel_sDFHybridSearch1D(int64_t nx, const float* x, int64_t nsite, const float* site,
                                    int32_t* cell) {
  search_hybrid(nx, x, nsite, site, cell);
  return QOR_DF_OK;
}
[[gnu::alias("qor_df_kernel_dDFHybridSearch1D")]] int qor_df_kernel_dDFHybridSearch1D32(
    int64_t, const double*, int64_t, const double*, int32_t*);
[[gnu::alias("qor_df_kernel_sDFHybridSearch1D")]] int qor_df_kernel_sDFHybridSearch1D32(
    int64_t, const float*, int64_t, const float*, int32_t*);

int qor_df_kernel_dDFPeakSearch1D(int64_t nx, const double* x, int64_t nsite, const double* site,
                                  int32_t* cell) {
  search_peak(nx, x, nsite, site, cell);
  return QOR_DF_OK;
}
int qor_df_kernel_sDFPeakSearch1D(int64_t nx, const float* x, int64_t nsite, const float* site,
                                  int32_t* cell) {
  search_peak(nx, x, nsite, site, cell);
  return QOR_DF_OK;
}
[[gnu::alias("qor_df_kernel_dDFPeakSearch1D")]] int qor_df_kernel_dDFPeakSearch1D32(
    int64_t, const double*, int64_t, const double*, int32_t*);
[[gnu::alias("qor_df_kernel_sDFPeakSearch1D")]] int qor_df_kernel_sDFPeakSearch1D32(
    int64_t, const float*, int64_t, const float*, int32_t*);

int qor_df_kernel_dDFUserDefSearch1D(int64_t nx, const double* x, int64_t nsite, const double* site,
                                     qor_df_dsearch search, void* params, int32_t* cell) {
  return search_user_defined(nx, x, nsite, site, search, params, cell);
}
int qor_df_kernel_sDFUserDefSearch1D(int64_t nx, const float* x, int64_t nsite, const float* site,
                                     qor_df_ssearch search, void* params, int32_t* cell) {
  return search_user_defined(nx, x, nsite, site, search, params, cell);
}
[[gnu::alias("qor_df_kernel_dDFUserDefSearch1D")]] int qor_df_kernel_dDFUserDefSearch1D32(
    int64_t, const double*, int64_t, const double*, qor_df_dsearch, void*, int32_t*);
[[gnu::alias("qor_df_kernel_sDFUserDefSearch1D")]] int qor_df_kernel_sDFUserDefSearch1D32(
    int64_t, const float*, int64_t, const float*, qor_df_ssearch, void*, int32_t*);

int qor_df_kernel_dDFUniUserDefSearch1D(int64_t nx, const double* x, int64_t nsite,
                                        const double* site, double step, qor_df_dsearch search,
                                        void* params, int32_t* cell) {
  return search_uniform_user_defined(nx, x, nsite, site, step, search, params, cell);
}
int qor_df_kernel_sDFUniUserDefSearch1D(int64_t nx, const float* x, int64_t nsite,
                                        const float* site, float step, qor_df_ssearch search,
                                        void* params, int32_t* cell) {
  return search_uniform_user_defined(nx, x, nsite, site, step, search, params, cell);
}
[[gnu::alias("qor_df_kernel_dDFUniUserDefSearch1D")]] int qor_df_kernel_dDFUniUserDefSearch1D32(
    int64_t, const double*, int64_t, const double*, double, qor_df_dsearch, void*, int32_t*);
[[gnu::alias("qor_df_kernel_sDFUniUserDefSearch1D")]] int qor_df_kernel_sDFUniUserDefSearch1D32(
    int64_t, const float*, int64_t, const float*, float, qor_df_ssearch, void*, int32_t*);
