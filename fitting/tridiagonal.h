// The services' tridiagonal routines under one name for both precisions. Each returns whether it
// succeeded.
#pragma once

#include <cstdint>

#include "services/services.h"

namespace qor::fitting {

inline bool factor_tridiagonal(int64_t n, double* dl, double* d, double* du) {
  int64_t info = 0;
  ddttrfb_4dfl(&n, dl, d, du, &info);
  return info == 0;
}
inline bool factor_tridiagonal(int64_t n, float* dl, float* d, float* du) {
  int64_t info = 0;
  sdttrfb_4dfl(&n, dl, d, du, &info);
  return info == 0;
}

inline bool solve_factored(int64_t n, int64_t nrhs, const double* dl, const double* d,
                           const double* du, double* b) {
  int64_t info = 0;
  ddttrsb_4dfl("N", &n, &nrhs, dl, d, du, b, &n, &info);
  return info == 0;
}
inline bool solve_factored(int64_t n, int64_t nrhs, const float* dl, const float* d,
                           const float* du, float* b) {
  int64_t info = 0;
  sdttrsb_4dfl("N", &n, &nrhs, dl, d, du, b, &n, &info);
  return info == 0;
}

inline bool solve_tridiagonal(int64_t n, int64_t nrhs, double* dl, double* d, double* du,
                              double* b) {
  int64_t info = 0;
  ddtsvb_4dfl(&n, &nrhs, dl, d, du, b, &n, &info);
  return info == 0;
}
inline bool solve_tridiagonal(int64_t n, int64_t nrhs, float* dl, float* d, float* du, float* b) {
  int64_t info = 0;
  sdtsvb_4dfl(&n, &nrhs, dl, d, du, b, &n, &info);
  return info == 0;
}

}  // namespace qor::fitting
