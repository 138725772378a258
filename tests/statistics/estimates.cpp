#include "tests/statistics/estimates.h"

#include <cmath>
#include <limits>

namespace qor::test {
namespace {

using Number = long double;

// A sum with the sum of its magnitudes.
struct Sum {
  Number value = 0, size = 0;

  void add(Number term) {
    value += term;
    size += std::abs(term);
  }
  Value scaled(Number by) const {
    return {static_cast<double>(value * by), static_cast<double>(std::abs(size * by))};
  }
};

Value ratio(Number value) {
  const auto rounded = static_cast<double>(value);
  return {rounded, 10 * std::max(1.0, std::abs(rounded))};
}

Number power(Number base, int exponent) {
  Number product = 1;
  for (int i = 0; i < exponent; ++i) product *= base;
  return product;
}

struct Weight {
  Number sum = 0, squares = 0;
};

// Those of variable j; returns the mean in use.
template <class Real>
Number add_vectors(const Sample<Real>& s, const Weight& weight, size_t j, const Real* given,
                   Values& v) {
  const Number w = weight.sum, unbiased = w / (w * w - weight.squares);
  const auto at = [&](int64_t i) { return Number{s.at(i, static_cast<int64_t>(j))}; };
  Sum raw[4], central[3];
  for (int64_t i = 0; i < s.n; ++i) {
    for (int k = 0; k < 4; ++k) raw[k].add(s.weight(i) * power(at(i), k + 1));
  }
  const Number mean = given != nullptr ? given[j] : raw[0].value / w;
  for (int64_t i = 0; i < s.n; ++i) {
    for (int k = 0; k < 3; ++k) central[k].add(s.weight(i) * power(at(i) - mean, k + 2));
  }
  if (given != nullptr) raw[0].value = raw[0].size = mean * w;
  for (size_t k = 0; k < 4; ++k) {
    v[k][j] = raw[k].scaled(1 / w);
    v[7 + k][j] = raw[k].scaled(1);
  }
  for (size_t k = 0; k < 3; ++k) {
    // The fast method makes them from raw moments, whose sizes count then.
    central[k].size += raw[k + 1].size;
    v[4 + k][j] = central[k].scaled(k == 0 ? unbiased : 1 / w);
    v[11 + k][j] = central[k].scaled(1);
  }
  const Number c2 = central[0].value * unbiased;
  v[14][j] = ratio(central[2].value / w / (c2 * c2) - 3);
  v[15][j] = ratio(central[1].value / w / std::sqrt(c2 * c2 * c2));
  v[16][j] = ratio(std::sqrt(c2) / mean);
  return mean;
}

}  // namespace

template <class Real>
Values reference(const Sample<Real>& s, uint64_t method) {
  const auto p = static_cast<size_t>(s.p);
  Values v;
  for (const Estimate& e : estimates) v.emplace_back(e.values(s.p));
  Weight weight;
  for (int64_t i = 0; i < s.n; ++i) {
    weight.sum += s.weight(i);
    weight.squares += Number{s.weight(i)} * s.weight(i);
  }
  const std::vector<Real> given = given_means<Real>(s.p);
  std::vector<Number> means, roots;
  const auto products = [&](size_t j, size_t k) {
    Sum sum;
    for (int64_t i = 0; i < s.n; ++i) {
      sum.add(Number{s.weight(i)} * s.rows[static_cast<size_t>(i) * p + j] *
              s.rows[static_cast<size_t>(i) * p + k]);
    }
    sum.value -= weight.sum * means[j] * means[k];
    return sum;
  };
  for (size_t j = 0; j < p; ++j) {
    means.push_back(add_vectors(s, weight, j, method == kGiven ? given.data() : nullptr, v));
    roots.push_back(std::sqrt(products(j, j).value));
  }
  const Number scale = 1 / (weight.sum - weight.squares / weight.sum);
  for (size_t j = 0; j < p; ++j) {
    for (size_t k = 0; k < p; ++k) {
      const Sum cp = products(j, k);
      v[17][j * p + k] = cp.scaled(scale);
      v[18][j * p + k] = j == k ? cp.scaled(scale) : ratio(cp.value / (roots[j] * roots[k]));
      v[19][j * p + k] = cp.scaled(1);
    }
  }
  return v;
}

template <class Real>
void expect_near(const Results<Real>& results, const Values& values, const Asked& asked,
                 double ulps) {
  const double unit = ulps * std::numeric_limits<Real>::epsilon();
  const auto p = static_cast<int64_t>(values[0].size());
  for (size_t e = 0; e < estimate_count; ++e) {
    if ((asked.mask & estimates[e].bit) == 0) continue;
    const bool matrix = estimates[e].storage_code != 0;
    for (size_t at = 0; at < values[e].size(); ++at) {
      const auto i = static_cast<int64_t>(at);
      const Value& value = values[e][at];
      EXPECT_NEAR(results.arrays[e][matrix ? place(asked.storage, p, i / p, i % p) : at],
                  value.exact, unit * value.size)
          << estimates[e].name << " " << at;
    }
  }
}

template Values reference<double>(const Sample<double>&, uint64_t);
template Values reference<float>(const Sample<float>&, uint64_t);
template void expect_near<double>(const Results<double>&, const Values&, const Asked&, double);
template void expect_near<float>(const Results<float>&, const Values&, const Asked&, double);

}  // namespace qor::test
