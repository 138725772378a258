// The kinds of functions that a task can stand for, by its order and type.
#pragma once

#include <cstdint>

#include "fitting/task.h"

namespace qor::fitting {

enum class Interpolant {
  unknown,
  polynomial,           // on cells between breakpoints
  polynomial_on_knots,  // quadratic, on cells between the task's own knots
  lookup,
  step_right_continuous,
  step_left_continuous,
  user  // callbacks alone
};

inline constexpr int64_t lookup_type = 6, step_right_type = 7, step_left_type = 8;

inline bool is_polynomial(Interpolant interpolant) {
  return interpolant == Interpolant::polynomial || interpolant == Interpolant::polynomial_on_knots;
}

Interpolant interpolant_of(int64_t s_order, int64_t s_type);

// The Arrays that the interpolant reads.
unsigned arrays_of(Interpolant interpolant);

}  // namespace qor::fitting
