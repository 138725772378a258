// What a task describes, as estimators read it: integers of either width, reals of the entry's
// type, the data block with its layout.
#pragma once

#include "statistics/task.h"

namespace qor::statistics {

// Integers of the caller, 32 or 64 bits wide.
struct Integers {
  const void* data;
  bool wide;

  bool given() const { return data != nullptr; }
  int64_t operator[](int64_t i) const {
    return wide ? static_cast<const int64_t*>(data)[i] : static_cast<const int32_t*>(data)[i];
  }
};

inline Integers integers(const SsTask& task, const void* field) {
  return {field, task.index_width != 0};
}
// The value behind a field that is not null.
inline int64_t integer(const SsTask& task, const void* field) { return integers(task, field)[0]; }

template <class Real>
Real* reals(void* field) {
  return static_cast<Real*>(field);
}

inline bool is_data_storage(int64_t word) {
  return (word & (QOR_SS_BY_VARIABLE | QOR_SS_BY_OBSERVATION)) != 0;
}

// Entries that take nothing but one of the two words.
inline bool is_exact_data_storage(int64_t word) {
  return word == QOR_SS_BY_VARIABLE || word == QOR_SS_BY_OBSERVATION;
}
inline bool is_exact_matrix_storage(int64_t word) {
  return word == QOR_SS_MATRIX_FULL || word == QOR_SS_MATRIX_LOWER || word == QOR_SS_MATRIX_UPPER;
}

// n observations of p variables.
template <class Real>
struct Observations {
  const Real* x;
  int64_t n, p;
  bool by_variable;
  const Real* weights;  // one per observation, or null
  Integers indices;     // one per variable, or none: then all take part
  // What turns values and weights into the units of a run (units.h); no scale: the values' are its.
  const Real* scale = nullptr;  // one per variable
  Real weight_scale = 1;

  int64_t variable_stride() const { return by_variable ? n : 1; }
  int64_t observation_stride() const { return by_variable ? 1 : p; }
  const Real* variable(int64_t j) const { return x + j * variable_stride(); }
  bool takes_part(int64_t j) const { return !indices.given() || indices[j] != 0; }
  bool has_weight(int64_t i) const { return weights == nullptr || weights[i] != 0; }
  // The weights of `count` observations in the units of a run: where they stand, or in `scaled`.
  const Real* weights_in_units(int64_t first, int64_t count, Real* scaled) const {
    if (weight_scale == 1) return weights + first;
    for (int64_t i = 0; i < count; ++i) scaled[i] = weights[first + i] * weight_scale;
    return scaled;
  }
  // A value of variable j of observation i in the units of a run that has a scale. Without weight
  // it adds nothing, however large, unless it is no number.
  Real in_units(Real value, int64_t i, int64_t j) const {
    return has_weight(i) ? value * scale[j] : value - value;
  }
};

// The data block of a task whose p, n, x and storage word have been found good. One variable counts
// as stored by variable.
template <class Real>
Observations<Real> observations(const SsTask& task) {
  const int64_t p = integer(task, task.p);
  const bool by_variable = (integer(task, task.x_storage) & QOR_SS_BY_VARIABLE) != 0 || p == 1;
  return {reals<Real>(task.x), integer(task, task.n),     p,
          by_variable,         reals<Real>(task.weights), integers(task, task.indices)};
}

// The means that a call of this precision and p has left with the task, or null.
template <class Real>
Real* saved_means(const SsTask& task, int64_t p) {
  const bool fit = task.saved_mean_count == p && task.saved_mean_precision == precision_of<Real>;
  return fit ? reals<Real>(task.saved_means) : nullptr;
}

}  // namespace qor::statistics
