// Tridiagonal systems: factorisation without pivoting, and solution for many right-hand sides.

#include <cstdint>

#include "qor/services.h"

namespace {

template <class Real>
void factor(int64_t n, Real* dl, Real* d, const Real* du, int64_t* info) {
  *info = 0;
  for (int64_t i = 0; i < n; ++i) {
    if (i > 0) {
      dl[i - 1] /= d[i - 1];
      d[i] -= dl[i - 1] * du[i - 1];
    }
    if (d[i] == 0) {
      *info = i + 1;
      return;
    }
  }
}

// `Columns` right-hand sides together: their chains of operations do not wait for each other.
template <int Columns, class Real>
void solve_columns(int64_t n, const Real* dl, const Real* d, const Real* du, Real* b, int64_t ldb) {
  Real x[Columns];
  for (int k = 0; k < Columns; ++k) x[k] = b[k * ldb];
  for (int64_t i = 1; i < n; ++i) {
    for (int k = 0; k < Columns; ++k) {
      Real& value = b[k * ldb + i];
      x[k] = value - dl[i - 1] * x[k];
      value = x[k];
    }
  }
  for (int k = 0; k < Columns; ++k) {
    x[k] /= d[n - 1];
    b[k * ldb + n - 1] = x[k];
  }
  // Both quotients are off the chain, which is a multiplication and a subtraction per row.
  for (int64_t i = n - 2; i >= 0; --i) {
    const Real ratio = du[i] / d[i];
    for (int k = 0; k < Columns; ++k) {
      Real& value = b[k * ldb + i];
      x[k] = value / d[i] - ratio * x[k];
      value = x[k];
    }
  }
}

template <class Real>
void solve(int64_t n, int64_t nrhs, const Real* dl, const Real* d, const Real* du, Real* b,
           int64_t ldb) {
  if (n <= 0) return;
  int64_t column = 0;
  for (; column + 4 <= nrhs; column += 4) solve_columns<4>(n, dl, d, du, b + column * ldb, ldb);
  for (; column < nrhs; ++column) solve_columns<1>(n, dl, d, du, b + column * ldb, ldb);
}

template <class Real>
void factor_and_solve(int64_t n, int64_t nrhs, Real* dl, Real* d, Real* du, Real* b, int64_t ldb,
                      int64_t* info) {
  factor(n, dl, d, du, info);
  if (*info == 0) solve(n, nrhs, dl, d, du, b, ldb);
}

// Only the untransposed form is known.
template <class Real>
void solve_form(char form, int64_t n, int64_t nrhs, const Real* dl, const Real* d, const Real* du,
                Real* b, int64_t ldb, int64_t* info) {
  *info = form == 'N' ? 0 : -1;
  if (*info == 0) solve(n, nrhs, dl, d, du, b, ldb);
}

}  // namespace

void ddttrfb_4dfl(const int64_t* n, double* dl, double* d, double* du, int64_t* info) {
  factor(*n, dl, d, du, info);
}
void sdttrfb_4dfl(const int64_t* n, float* dl, float* d, float* du, int64_t* info) {
  factor(*n, dl, d, du, info);
}

void ddttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const double* dl,
                  const double* d, const double* du, double* b, const int64_t* ldb, int64_t* info) {
  solve_form(*form, *n, *nrhs, dl, d, du, b, *ldb, info);
}
void sdttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const float* dl,
                  const float* d, const float* du, float* b, const int64_t* ldb, int64_t* info) {
  solve_form(*form, *n, *nrhs, dl, d, du, b, *ldb, info);
}

void ddtsvb_4dfl(const int64_t* n, const int64_t* nrhs, double* dl, double* d, double* du,
                 double* b, const int64_t* ldb, int64_t* info) {
  factor_and_solve(*n, *nrhs, dl, d, du, b, *ldb, info);
}
void sdtsvb_4dfl(const int64_t* n, const int64_t* nrhs, float* dl, float* d, float* du, float* b,
                 const int64_t* ldb, int64_t* info) {
  factor_and_solve(*n, *nrhs, dl, d, du, b, *ldb, info);
}
