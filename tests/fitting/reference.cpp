#include "tests/fitting/reference.h"

#include <cmath>
#include <utility>

namespace qor::test {
namespace {

Wide falling(int k, int derivative) {
  Wide product = 1;
  for (int i = 0; i < derivative; ++i) product *= k - i;
  return product;
}

}  // namespace

Wide polynomial_at(const std::vector<Wide>& c, int derivative, Wide t) {
  Wide sum = 0;
  for (int k = static_cast<int>(c.size()) - 1; k >= derivative; --k) {
    sum = sum * t + falling(k, derivative) * c[static_cast<size_t>(k)];
  }
  return sum;
}

Wide primitive_at(const std::vector<Wide>& c, Wide t) {
  Wide sum = 0;
  for (size_t k = c.size(); k-- > 0;) sum = (sum + c[k] / static_cast<Wide>(k + 1)) * t;
  return sum;
}

SplineSystem& SplineSystem::condition(Wide value) {
  rows_.emplace_back(unknowns() + 1, Wide{0}).back() = value;
  return *this;
}

SplineSystem& SplineSystem::term(Wide factor, int cell, int derivative, Wide at) {
  const Wide t = at - edge(cell);
  for (int k = derivative; k < order_; ++k) {
    rows_.back()[static_cast<size_t>(cell * order_ + k)] +=
        factor * falling(k, derivative) * std::pow(t, static_cast<Wide>(k - derivative));
  }
  return *this;
}

std::vector<Wide> SplineSystem::solve() const {
  const size_t n = unknowns();
  auto a = rows_;
  if (a.size() != n) return {};
  for (size_t column = 0; column < n; ++column) {
    size_t pivot = column;
    for (size_t i = column; i < n; ++i) {
      if (std::fabs(a[i][column]) > std::fabs(a[pivot][column])) pivot = i;
    }
    std::swap(a[column], a[pivot]);
    if (std::fabs(a[column][column]) < 1e-12L) return {};
    for (size_t i = 0; i < n; ++i) {
      const Wide factor = i == column ? 0 : a[i][column] / a[column][column];
      if (factor == 0) continue;
      for (size_t j = column; j <= n; ++j) a[i][j] -= factor * a[column][j];
    }
  }
  std::vector<Wide> c(n);
  for (size_t i = 0; i < n; ++i) c[i] = a[i][n] / a[i][i];
  return c;
}

}  // namespace qor::test
