#include "tests/fitting/reference.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qor::test {

Wide polynomial_at(const std::vector<Wide>& c, int derivative, Wide t) {
  Wide sum = 0;
  for (int k = static_cast<int>(c.size()) - 1; k >= derivative; --k) {
    Wide factor = 1;
    for (int i = 0; i < derivative; ++i) factor *= k - i;
    sum = sum * t + factor * c[static_cast<size_t>(k)];
  }
  return sum;
}

Wide primitive_at(const std::vector<Wide>& c, Wide t) {
  Wide sum = 0;
  for (size_t k = c.size(); k-- > 0;) sum = (sum + c[k] / static_cast<Wide>(k + 1)) * t;
  return sum;
}

SplineConditions& SplineConditions::condition(Wide value) {
  conditions_.push_back({-value, 0});
  return *this;
}

SplineConditions& SplineConditions::term(Wide factor, int cell, int derivative, Wide at) {
  const auto first = c_.begin() + cell * order_;
  const std::vector<Wide> ones(static_cast<size_t>(order_), 1);
  const Wide t = at - edge(cell);
  Condition& last = conditions_.back();
  last.failure += factor * polynomial_at({first, first + order_}, derivative, t);
  last.size += std::fabs(factor) * polynomial_at(ones, derivative, std::fabs(t));
  return *this;
}

Wide SplineConditions::largest_failure() const {
  constexpr Wide kInfinity = std::numeric_limits<Wide>::infinity();
  if (conditions_.size() != c_.size()) return kInfinity;
  Wide largest = 2, worst = 0;
  for (const Wide c : c_) largest = std::max(largest, std::fabs(c));
  for (const Condition& k : conditions_) {
    const Wide failure = std::fabs(k.failure) / (largest * k.size);
    worst = std::isnan(failure) ? kInfinity : std::max(worst, failure);
  }
  return worst;
}

}  // namespace qor::test
