#include "fitting/interpolant.h"

namespace qor::fitting {
namespace {

Interpolant of_order_0(int64_t s_type) {
  switch (s_type) {
    case lookup_type:
      return Interpolant::lookup;
    case step_right_type:
      return Interpolant::step_right_continuous;
    case step_left_type:
      return Interpolant::step_left_continuous;
    default:
      return Interpolant::user;
  }
}

Interpolant of_order_3(int64_t s_type) {
  if (s_type == 0) return Interpolant::polynomial;
  return s_type == 1 ? Interpolant::polynomial_on_knots : Interpolant::unknown;
}

bool is_cubic_type(int64_t s_type) {
  return s_type == 0 || (s_type >= 2 && s_type <= 5) || s_type == 9;
}

}  // namespace

Interpolant interpolant_of(int64_t s_order, int64_t s_type) {
  if (s_order == 0) return of_order_0(s_type);
  if (s_order == 3) return of_order_3(s_type);
  const bool known = s_order == 2 || s_order >= 5 || (s_order == 4 && is_cubic_type(s_type));
  return known ? Interpolant::polynomial : Interpolant::unknown;
}

unsigned arrays_of(Interpolant interpolant) {
  switch (interpolant) {
    case Interpolant::polynomial:
      return coefficient_arrays;
    case Interpolant::polynomial_on_knots:
      return inner_conditions | coefficient_arrays;
    case Interpolant::lookup:
    case Interpolant::step_right_continuous:
    case Interpolant::step_left_continuous:
      return function_values;
    default:
      return 0;
  }
}

}  // namespace qor::fitting
