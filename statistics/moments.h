// Running moments of p variables, and how two sets of them become one.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qor::statistics {

// One real per variable each; null when not in use. mean and raw hold moments, central holds sums
// of powers of the deviation from the mean. Index 0 is power 2.
template <class Real>
struct Moments {
  Real* mean;
  Real* raw[3];
  Real* central[3];

  // The same from variable j on.
  Moments from(int64_t j) const {
    const auto at = [j](Real* slot) { return slot == nullptr ? nullptr : slot + j; };
    return {at(mean),
            {at(raw[0]), at(raw[1]), at(raw[2])},
            {at(central[0]), at(central[1]), at(central[2])}};
  }
};

// Which of the slots a run keeps: the first `raw`, the mean counted as one, and the first
// `central`.
struct Order {
  int raw;
  int central;
};

// Running sums of the weights and of their squares: of a whole run, so in double throughout.
struct Weight {
  double sum = 0;
  double squares = 0;
};

// The shares of two parts in their union, from the sums of their weights.
template <class Real>
struct Shares {
  Real first, second;
  Real product;       // W1 W2 / (W1 + W2)
  bool has_no_first;  // the union is the second part, to the bit

  Shares(double weight1, double weight2)
      : first(static_cast<Real>(weight1 / (weight1 + weight2))),
        second(static_cast<Real>(weight2 / (weight1 + weight2))),
        product(static_cast<Real>(weight1 * (weight2 / (weight1 + weight2)))),
        has_no_first(weight1 == 0) {}

  // The mean of two means. By the difference, whose rounding is small beside that of two products;
  // where that gives no number, infinite parts and overflow, by the products.
  Real mean(Real mean1, Real mean2) const {
    const Real by_difference = mean1 + second * (mean2 - mean1);
    return std::isfinite(by_difference) ? by_difference : first * mean1 + second * mean2;
  }
};

// Takes the moments of a second part into those of the first (Chan, Golub and LeVeque, 1979; Pebay,
// 2008, for the higher ones). Inline, so that a kernel's order is known in it.
template <class Real>
[[gnu::always_inline]] inline void merge(const Moments<Real>& into, const Moments<Real>& part,
                                         int64_t variables, Order order,
                                         const Shares<Real>& shares) {
  if (shares.has_no_first) {
    std::copy_n(part.mean, variables, into.mean);
    for (int k = 0; k + 1 < order.raw; ++k) std::copy_n(part.raw[k], variables, into.raw[k]);
    for (int k = 0; k < order.central; ++k) {
      std::copy_n(part.central[k], variables, into.central[k]);
    }
    return;
  }
  const Real u = shares.first, v = shares.second, f = shares.product;
  for (int64_t j = 0; j < variables; ++j) {
    const Real delta = part.mean[j] - into.mean[j];
    const Real square = delta * delta;
    if (order.central > 2) {
      into.central[2][j] += part.central[2][j] + square * square * f * (u * u - u * v + v * v) +
                            6 * square * (u * u * part.central[0][j] + v * v * into.central[0][j]) +
                            4 * delta * (u * part.central[1][j] - v * into.central[1][j]);
    }
    if (order.central > 1) {
      into.central[1][j] += part.central[1][j] + square * delta * f * (u - v) +
                            3 * delta * (u * part.central[0][j] - v * into.central[0][j]);
    }
    if (order.central > 0) into.central[0][j] += part.central[0][j] + f * square;
    for (int k = 0; k + 1 < order.raw; ++k) {
      into.raw[k][j] = shares.mean(into.raw[k][j], part.raw[k][j]);
    }
    into.mean[j] = shares.mean(into.mean[j], part.mean[j]);
  }
}

}  // namespace qor::statistics
