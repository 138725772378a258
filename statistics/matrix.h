// Symmetric matrices in the caller's storage.
#pragma once

#include "statistics/view.h"

namespace qor::statistics {

enum class MatrixForm { full, lower, upper };

// The form that a storage word tells by its bits.
inline MatrixForm matrix_form(int64_t word) {
  if ((word & QOR_SS_MATRIX_UPPER) != 0) return MatrixForm::upper;
  return (word & QOR_SS_MATRIX_LOWER) != 0 ? MatrixForm::lower : MatrixForm::full;
}

// Where element (j, k), j not above k, stands; in a full matrix also at the mirrored place.
inline int64_t element_place(MatrixForm form, int64_t p, int64_t j, int64_t k) {
  switch (form) {
    case MatrixForm::lower:
      return k * (k + 1) / 2 + j;
    case MatrixForm::upper:
      return j * p - j * (j - 1) / 2 + (k - j);
    default:
      return k * p + j;
  }
}

// The elements (j, k), j not above k, to k*p + j; `to` may be the full matrix itself.
template <class Real>
void read_matrix(const Real* from, MatrixForm form, int64_t p, Real* to) {
  for (int64_t k = 0; k < p; ++k) {
    for (int64_t j = 0; j <= k; ++j) to[k * p + j] = from[element_place(form, p, j, k)];
  }
}

// value(j, k) to all elements of the variables that take part.
template <class Real, class Value>
void write_matrix(Real* to, MatrixForm form, int64_t p, Integers indices, Value value) {
  const auto takes_part = [indices](int64_t j) { return !indices.given() || indices[j] != 0; };
  for (int64_t k = 0; k < p; ++k) {
    if (!takes_part(k)) continue;
    for (int64_t j = 0; j <= k; ++j) {
      if (!takes_part(j)) continue;
      const Real element = value(j, k);
      to[element_place(form, p, j, k)] = element;
      if (form == MatrixForm::full) to[j * p + k] = element;
    }
  }
}

}  // namespace qor::statistics
