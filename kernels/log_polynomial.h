// Polynomials with their coefficients in an array, from the constant upwards.
#pragma once

#include <cstddef>
#include <utility>

#include "kernels/lanes.h"

namespace qor::kernels {

// Horner's rule.
template <class V, class T, std::size_t count>
inline V polynomial(V x, const T (&coefficients)[count]) {
  V sum = lanes::all(coefficients[count - 1]);
  [&]<std::size_t... i>(std::index_sequence<i...>) {
    ((sum = lanes::multiply_add(sum, x, coefficients[count - 2 - i])), ...);
  }
  (std::make_index_sequence<count - 1>{});
  return sum;
}

}  // namespace qor::kernels
