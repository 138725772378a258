// Where an order lies among counted things.
#pragma once

#include <cstdint>
#include <limits>

namespace qor::statistics {

// order * count, in the arithmetic of the orders while that holds the count exactly, else in
// double.
template <class Real>
double order_place(Real order, int64_t count) {
  constexpr int64_t largest_exact = int64_t{1} << std::numeric_limits<Real>::digits;
  if (count <= largest_exact) return static_cast<double>(order * static_cast<Real>(count));
  return static_cast<double>(order) * static_cast<double>(count);
}

}  // namespace qor::statistics
