// What the construction kernels share: entry checks, boundary conditions as data, and the choice by
// partition and storage.
#pragma once

#include <cstdint>

#include "fitting/function_values.h"
#include "fitting/partition.h"
#include "fitting/task.h"

namespace qor::fitting {

// What is known at one end of the partition.
enum class EndKind {
  not_a_knot,
  free,  // second derivative 0
  first_derivative,
  second_derivative,
  periodic,
  estimated
};

template <class Real>
struct End {
  EndKind kind;
  Real value;  // of the derivative; of a periodic end where the kernel takes one
};

template <class Real>
struct Boundary {
  End<Real> left, right;
  bool periodic() const { return left.kind == EndKind::periodic; }
};

// The kinds of both ends under a boundary code.
struct BoundaryCode {
  int64_t bc_type;
  EndKind left, right;
};
const BoundaryCode* boundary_code(int64_t bc_type);

// What a kernel makes of boundary codes beyond what all of them do.
struct BoundaryRules {
  bool takes_none = false;            // estimates the ends under QOR_DF_BC_NONE
  bool takes_periodic_value = false;  // reads a value of periodic ends
};

// Status of a boundary code whose values, where it has any, must be there: BAD_BC_TYPE, NULL_BC.
int check_boundary(const DFTask& task, const BoundaryRules& rules = {});

// The boundary of a checked task.
template <class Real>
Boundary<Real> boundary_of(const DFTask& task) {
  const BoundaryCode& code = *boundary_code(task.bc_type);
  const Real* bc = boundary_values<Real>(task);
  if (bc == nullptr) return {{code.left, 0}, {code.right, 0}};
  if (code.left == EndKind::periodic) return {{code.left, bc[0]}, {code.right, bc[0]}};
  const bool valued = code.left != EndKind::not_a_knot && code.left != EndKind::free &&
                      code.left != EndKind::estimated;
  return valued ? Boundary<Real>{{code.left, bc[0]}, {code.right, bc[1]}}
                : Boundary<Real>{{code.left, 0}, {code.right, 0}};
}

// Whether the first and the last value of every function are equal.
template <class Values>
bool closes(const DFTask& task, int64_t function) {
  const Values y(task, function);
  return y[0] == y[task.nx - 1];
}
template <class Values>
bool all_close(const DFTask& task) {
  for (int64_t f = 0; f < task.ny; ++f) {
    if (!closes<Values>(task, f)) return false;
  }
  return true;
}

// Routine::template run<Partition, Values>(arguments...) for the task's forms.
template <class Real, class Routine, class... Arguments>
int by_forms(const DFTask& task, Arguments... arguments) {
  const bool interleaved = task.yhint == QOR_DF_INTERLEAVED;
  if (is_uniform(task)) {
    using Partition = UniformPartition<Real>;
    return interleaved ? Routine::template run<Partition, InterleavedValues<Real>>(arguments...)
                       : Routine::template run<Partition, SeparateValues<Real>>(arguments...);
  }
  using Partition = Breakpoints<Real>;
  return interleaved ? Routine::template run<Partition, InterleavedValues<Real>>(arguments...)
                     : Routine::template run<Partition, SeparateValues<Real>>(arguments...);
}

}  // namespace qor::fitting
