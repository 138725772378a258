// BLAS through its Fortran symbols: matrices column by column, everything by address, and behind
// the arguments the lengths of the strings.
#pragma once

#include <cstddef>

extern "C" {

void dsyr_(const char* triangle, const int* n, const double* alpha, const double* x, const int* inc,
           double* a, const int* lda, size_t);
void ssyr_(const char* triangle, const int* n, const float* alpha, const float* x, const int* inc,
           float* a, const int* lda, size_t);
void dsyrk_(const char* triangle, const char* form, const int* n, const int* k, const double* alpha,
            const double* a, const int* lda, const double* beta, double* c, const int* ldc, size_t,
            size_t);
void ssyrk_(const char* triangle, const char* form, const int* n, const int* k, const float* alpha,
            const float* a, const int* lda, const float* beta, float* c, const int* ldc, size_t,
            size_t);
void dgemm_(const char* form_a, const char* form_b, const int* m, const int* n, const int* k,
            const double* alpha, const double* a, const int* lda, const double* b, const int* ldb,
            const double* beta, double* c, const int* ldc, size_t, size_t);
void sgemm_(const char* form_a, const char* form_b, const int* m, const int* n, const int* k,
            const float* alpha, const float* a, const int* lda, const float* b, const int* ldb,
            const float* beta, float* c, const int* ldc, size_t, size_t);

}  // extern "C"

namespace qor::statistics {

template <class Real>
struct Blas;

template <>
struct Blas<double> {
  static constexpr auto syr = dsyr_;
  static constexpr auto syrk = dsyrk_;
  static constexpr auto gemm = dgemm_;
};

template <>
struct Blas<float> {
  static constexpr auto syr = ssyr_;
  static constexpr auto syrk = ssyrk_;
  static constexpr auto gemm = sgemm_;
};

}  // namespace qor::statistics
