#include "tests/statistics/estimates.h"

#include <cmath>
#include <limits>

namespace qor::test {
namespace {

using Number = long double;

// A sum with the sum of its magnitudes.
struct Sum {
  Number value = 0, size = 0;

  Value times(Number factor) const {
    return {static_cast<double>(value * factor), static_cast<double>(std::abs(size * factor))};
  }
};

Value ratio(Number value) {
  const auto rounded = static_cast<double>(value);
  return {rounded, 10 * std::max(1.0, std::abs(rounded))};
}

// The sum of term(i) over the observations by their weights.
template <class Real, class Term>
Sum sum_of(const Sample<Real>& s, Term term) {
  Sum sum;
  for (int64_t i = 0; i < s.n; ++i) {
    const Number t = s.weight(i) * Number(term(i));
    sum.value += t;
    sum.size += std::abs(t);
  }
  return sum;
}

// The sum of a power of the deviations of a variable.
template <class Real>
Sum power_sum(const Sample<Real>& s, int64_t j, Number mean, int power) {
  return sum_of(s, [&](int64_t i) {
    const Number d = s.at(i, j) - mean, square = d * d;
    return (power % 2 == 1 ? d : 1) * (power >= 2 ? square : 1) * (power == 4 ? square : 1);
  });
}

}  // namespace

template <class Real>
Values exact_values(const Sample<Real>& s, uint64_t method) {
  Values v;
  for (const Estimate& e : estimates) v.emplace_back(e.values(s.p));
  const Number w = sum_of(s, [](int64_t) { return 1; }).value,
               squares = sum_of(s, [&](int64_t i) { return s.weight(i); }).value,
               unbiased = w / (w * w - squares), scale = 1 / (w - squares / w);
  const auto given = given_means<Real>(s.p, s.unit);
  std::vector<Number> means, roots;
  const auto products = [&](size_t j, size_t k) {
    Sum sum = sum_of(s, [&](int64_t i) {
      return Number{s.at(i, static_cast<int64_t>(j))} * s.at(i, static_cast<int64_t>(k));
    });
    sum.value -= w * means[j] * means[k];
    return sum;
  };
  const auto p = static_cast<size_t>(s.p);
  for (size_t j = 0; j < p; ++j) {
    const auto variable = static_cast<int64_t>(j);
    Sum raw[4], central[3];
    for (int k = 0; k < 4; ++k) raw[k] = power_sum(s, variable, 0, k + 1);
    if (method == kGiven) raw[0].value = raw[0].size = given[j] * w;
    means.push_back(raw[0].value / w);
    for (size_t k = 0; k < 4; ++k) {
      v[k][j] = raw[k].times(1 / w);
      v[7 + k][j] = raw[k].times(1);
    }
    for (size_t k = 0; k < 3; ++k) {
      central[k] = power_sum(s, variable, means[j], static_cast<int>(k) + 2);
      // The fast method makes them from raw moments, whose sizes count then.
      central[k].size += raw[k + 1].size;
      v[4 + k][j] = central[k].times(k == 0 ? unbiased : 1 / w);
      v[11 + k][j] = central[k].times(1);
    }
    const Number c2 = central[0].value * unbiased;
    v[14][j] = ratio(central[2].value / w / (c2 * c2) - 3);
    v[15][j] = ratio(central[1].value / w / std::sqrt(c2 * c2 * c2));
    v[16][j] = ratio(std::sqrt(c2) / means[j]);
    roots.push_back(std::sqrt(products(j, j).value));
  }
  for (size_t j = 0; j < p; ++j) {
    for (size_t k = 0; k < p; ++k) {
      const Sum cp = products(j, k);
      v[17][j * p + k] = cp.times(scale);
      v[18][j * p + k] = j == k ? cp.times(scale) : ratio(cp.value / (roots[j] * roots[k]));
      v[19][j * p + k] = cp.times(1);
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
    const int64_t columns = estimates[e].is_matrix() ? p : 1;
    for (int64_t i = 0; i < p * columns; ++i) {
      const Value& value = values[e][static_cast<size_t>(i)];
      const size_t at = estimates[e].place(asked.storage, p, i / columns, i % columns);
      const Real result = results.arrays[e][at], rounded = static_cast<Real>(value.exact);
      if (!std::isfinite(rounded)) {
        EXPECT_PRED2(same_value<Real>, result, rounded) << estimates[e].name << " " << i;
        continue;
      }
      const double least = 4 * double{std::numeric_limits<Real>::denorm_min()};
      EXPECT_NEAR(result, value.exact, std::max(unit * value.size, least))
          << estimates[e].name << " " << i;
    }
  }
}

template Values exact_values<double>(const Sample<double>&, uint64_t);
template Values exact_values<float>(const Sample<float>&, uint64_t);
template void expect_near<double>(const Results<double>&, const Values&, const Asked&, double);
template void expect_near<float>(const Results<float>&, const Values&, const Asked&, double);

}  // namespace qor::test
