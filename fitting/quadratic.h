// The two forms of quadratic splines.
#pragma once

#include "fitting/task.h"

namespace qor::fitting {

inline constexpr int quadratic_order = 3;

// The spline between the knots of the task's ic, its boundary and arrays being checked. Statuses:
// BAD_IC, NOT_PERIODIC, NO_MEMORY, SOLVER_FAILED.
template <class Real>
int construct_on_knots(const DFTask& task);

}  // namespace qor::fitting
