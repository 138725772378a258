// The two storages of function values: element j of function f.
#pragma once

#include <cstdint>

#include "fitting/task.h"

namespace qor::fitting {

// An array for each function.
template <class Real>
struct SeparateValues {
  const Real* values;

  SeparateValues(const DFTask& task, int64_t function)
      : values(static_cast<const Real*>(task.y[function])) {}
  Real operator[](int64_t j) const { return values[j]; }
};

// Either storage, for where its cost does not matter.
template <class Real>
struct StridedValues {
  const Real* values;
  int64_t stride;

  StridedValues(const DFTask& task, int64_t function)
      : values(task.yhint == QOR_DF_INTERLEAVED ? static_cast<const Real*>(task.y[0]) + function
                                                : static_cast<const Real*>(task.y[function])),
        stride(task.yhint == QOR_DF_INTERLEAVED ? task.ny : 1) {}
  Real operator[](int64_t j) const { return values[j * stride]; }
};

// One array for all functions, element after element.
template <class Real>
struct InterleavedValues {
  const Real* values;
  int64_t functions;

  InterleavedValues(const DFTask& task, int64_t function)
      : values(static_cast<const Real*>(task.y[0]) + function), functions(task.ny) {}
  Real operator[](int64_t j) const { return values[j * functions]; }
};

}  // namespace qor::fitting
