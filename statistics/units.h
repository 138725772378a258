// The units in which a run counts values and weights: powers of two, which change the exponents of
// numbers and nothing else of them, so that fourth powers of deviations and squares of weights
// neither leave the range of the reals nor lose digits at its lower end. Most data need none.
#pragma once

#include <cmath>
#include <cstdint>

#include "statistics/moments.h"

namespace qor::statistics {

struct Units {
  const int32_t* exponents = nullptr;  // variable j counts in units of 2^exponents[j]; null: of 1
  int32_t weight = 0;                  // weights in units of 2^weight

  int32_t of(int64_t j) const { return exponents == nullptr ? 0 : exponents[j]; }
};

// v * 2^exponent.
template <class Real>
Real times_two_to(Real v, int32_t exponent) {
  return exponent == 0 ? v : std::scalbn(v, exponent);
}

// Sums of weights in units of 2^unit.
inline Weight in_units(const Weight& weight, int32_t unit) {
  return {times_two_to(weight.sum, -unit), times_two_to(weight.squares, -2 * unit)};
}

// The unit in which a sum of weights lies near 1; 1 for what is not above 0 and finite.
inline int32_t weight_unit(double sum) {
  return sum > 0 && std::isfinite(sum) ? std::ilogb(sum) : 0;
}

}  // namespace qor::statistics
