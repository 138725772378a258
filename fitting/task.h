// The task record: what all of fitting reads, and only the editors write.
#pragma once

#include <cstdint>

#include "qor/fitting.h"

namespace qor::fitting {

// The breakpoints among which the cell of a site of one bin lies.
struct LookupBin {
  uint32_t low, high;
};

// The precision of a task is that of all its arrays.
template <class Real>
inline constexpr int32_t precision_of = sizeof(Real) == sizeof(double) ? 1 : 0;

inline constexpr uint8_t task_kind = 4;

}  // namespace qor::fitting

struct DFTask {
  int32_t int_width;  // 0: QueryVal and derivative flags have 32 bits, else 64
  uint8_t kind;
  int32_t precision;
  int32_t valid;
  int64_t nx;
  const void* x;
  int64_t xhint;
  int64_t ny;
  const void** y;  // owned table
  int64_t yhint;
  int64_t s_order;
  int64_t s_type;
  int64_t ic_type;
  const void* ic;
  int64_t bc_type;
  const void* bc;
  void** scoeff;  // owned table
  int64_t scoeffhint;
  int32_t check;
  int64_t lut_size;
  qor::fitting::LookupBin* lut;  // owned, lut_size + 2 bins
  union {
    float s;
    double d;
  } lut_scale;     // bins per unit of x
  int64_t y_room;  // entries of the table y; one more, null, stands behind them
  int64_t scoeff_room;
};

namespace qor::fitting {

template <class Real>
const Real* partition_of(const DFTask& task) {
  return static_cast<const Real*>(task.x);
}
template <class Real>
const Real* boundary_values(const DFTask& task) {
  return static_cast<const Real*>(task.bc);
}
template <class Real>
const Real* internal_conditions(const DFTask& task) {
  return static_cast<const Real*>(task.ic);
}
template <class Real>
Real* coefficients(const DFTask& task, int64_t function) {
  return static_cast<Real*>(task.scoeff[function]);
}

inline bool is_partition_form(int64_t xhint) {
  return xhint == 0 || xhint == QOR_DF_NON_UNIFORM || xhint == QOR_DF_QUASI_UNIFORM ||
         xhint == QOR_DF_UNIFORM_PARTITION;
}
inline bool is_uniform(const DFTask& task) { return (task.xhint & QOR_DF_UNIFORM_PARTITION) != 0; }
// Of functions and of coefficients.
inline bool is_storage_form(int64_t hint) {
  return hint == QOR_DF_NO_HINT || hint == QOR_DF_BY_FUNCTION || hint == QOR_DF_INTERLEAVED ||
         hint == QOR_DF_FIRST_POINTER;
}

// Replaces the table of function or coefficient pointers by one laid out from `first`, an array of
// values of `size` bytes. Statuses: BAD_NY, NO_MEMORY; the old table stays on failure.
int lay_out_functions(DFTask& task, const void* first, int64_t size);
int lay_out_coefficients(DFTask& task, void* first, int64_t hint, int64_t size);

// What a kernel reads and writes of a task beside its partition and its boundary values.
enum Arrays : unsigned {
  inner_conditions = 1,
  function_values = 2,     // of every function
  coefficient_arrays = 4,  // of every function
  spline_arrays = function_values | coefficient_arrays
};

// Whether the task has all arrays of the given kinds; else, in this order, BAD_IC, NULL_Y or
// NULL_SCOEFF. Tables may be shorter than the number of functions and have gaps, as hints, numbers
// and entries are edited one by one.
int check_arrays(const DFTask& task, unsigned kinds);

// Builds the lookup table from the partition; NO_MEMORY leaves the old one.
template <class Real>
int build_lookup_table(DFTask& task);

}  // namespace qor::fitting
