// Splines held against their definition: the conditions that fix the coefficients, one by one, in
// extended precision.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace qor::test {

using Wide = long double;

// A derivative, and the integral from 0, of c[0] + c[1] t + ...
Wide polynomial_at(const std::vector<Wide>& c, int derivative, Wide t);
Wide primitive_at(const std::vector<Wide>& c, Wide t);

// Cells edges[i] .. edges[i+1] with `order` coefficients each.
class SplineConditions {
 public:
  SplineConditions(std::vector<Wide> edges, int order, std::vector<Wide> c)
      : edges_(std::move(edges)), c_(std::move(c)), order_(order) {}

  int cells() const { return static_cast<int>(edges_.size()) - 1; }
  int order() const { return order_; }
  Wide edge(int i) const { return edges_[static_cast<size_t>(i)]; }

  // Begins a condition: the sum of its terms is the value.
  SplineConditions& condition(Wide value);
  // Adds factor times a derivative of a cell's polynomial at a place.
  SplineConditions& term(Wide factor, int cell, int derivative, Wide at);

  // Conditions in common use; the second at the edge between cell - 1 and cell.
  void matches(int cell, int derivative, Wide at, Wide value) {
    condition(value).term(1, cell, derivative, at);
  }
  void continuous(int cell, int derivative) {
    condition(0).term(1, cell - 1, derivative, edge(cell)).term(-1, cell, derivative, edge(cell));
  }

  // By how much a condition fails, as a part of what its terms may be with coefficients of the size
  // of the largest; infinite where the conditions are not as many as the coefficients.
  Wide largest_failure() const;

 private:
  struct Condition {
    Wide failure, size;
  };
  std::vector<Wide> edges_, c_;
  int order_;
  std::vector<Condition> conditions_;
};

}  // namespace qor::test
