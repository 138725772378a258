// Splines by their definition: all coefficients of all cells as the unknowns of one dense system,
// of one row for each condition, in extended precision.
#pragma once

#include <cstddef>
#include <vector>

namespace qor::test {

using Wide = long double;

// Cells left[i] .. left[i+1] with `order` coefficients each.
class SplineSystem {
 public:
  SplineSystem(std::vector<Wide> edges, int order) : edges_(std::move(edges)), order_(order) {}

  int cells() const { return static_cast<int>(edges_.size()) - 1; }
  int order() const { return order_; }
  Wide edge(int i) const { return edges_[static_cast<size_t>(i)]; }

  // Begins a condition: the sum of its terms is the value.
  SplineSystem& condition(Wide value);
  // Adds factor times a derivative of a cell's polynomial at a place.
  SplineSystem& term(Wide factor, int cell, int derivative, Wide at);

  // Conditions in common use.
  void matches(int cell, int derivative, Wide at, Wide value) {
    condition(value).term(1, cell, derivative, at);
  }
  // A derivative is continuous at the edge between cell - 1 and cell.
  void continuous(int cell, int derivative) {
    condition(0).term(1, cell - 1, derivative, edge(cell)).term(-1, cell, derivative, edge(cell));
  }

  // The coefficients, cell after cell, or none when the conditions do not fix them.
  std::vector<Wide> solve() const;

 private:
  size_t unknowns() const { return static_cast<size_t>(cells() * order_); }
  std::vector<Wide> edges_;
  int order_;
  std::vector<std::vector<Wide>> rows_;  // with the value behind the factors
};

// A derivative, and the integral from 0, of c[0] + c[1] t + ...
Wide polynomial_at(const std::vector<Wide>& c, int derivative, Wide t);
Wide primitive_at(const std::vector<Wide>& c, Wide t);

}  // namespace qor::test
