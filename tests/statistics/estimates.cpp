#include "tests/statistics/estimates.h"

#include <cmath>
#include <limits>

namespace qor::test {
namespace {

// A sum with the sum of its magnitudes.
template <class Number>
struct Sum {
  Number value = 0, size = 0;

  void add(const Number& term) {
    value += term;
    size += abs(term);
  }
  Value scaled(const Number& by) const {
    return {rounded(value * by), std::fabs(rounded(size * by))};
  }
};

template <class Number>
Value ratio(const Number& value) {
  return {rounded(value), 10 * std::max(1.0, std::fabs(rounded(value)))};
}

// By their definitions, in two passes.
template <class Number, class Real>
Values values_by(const Sample<Real>& s, const Real* given) {
  using std::abs, std::sqrt;
  const auto p = static_cast<size_t>(s.p);
  Values v{std::vector(vector_count, std::vector<Value>(p)),
           std::vector(matrix_count, std::vector<Value>(p * p))};
  Number w = 0, w2 = 0;
  for (int64_t i = 0; i < s.n; ++i) {
    w += s.weight(i);
    w2 += Number(s.weight(i)) * s.weight(i);
  }
  const Number one = 1, unbiased = w / (w * w - w2), scale = one / (w - w2 / w);
  std::vector<Number> means;
  for (int64_t j = 0; j < s.p; ++j) {
    const auto at = static_cast<size_t>(j);
    Sum<Number> raw[4], central[3];
    for (int64_t i = 0; i < s.n; ++i) {
      for (int k = 0; k < 4; ++k) raw[k].add(Number(s.weight(i)) * power(s.at(i, j), k + 1));
    }
    means.push_back(given != nullptr ? Number(given[j]) : raw[0].value / w);
    for (int64_t i = 0; i < s.n; ++i) {
      const Number d = Number(s.at(i, j)) - means.back();
      for (int k = 0; k < 3; ++k) central[k].add(Number(s.weight(i)) * power(d, k + 2));
    }
    if (given != nullptr) raw[0].value = raw[0].size = means.back() * w;
    for (int k = 0; k < 4; ++k) {
      v.vectors[static_cast<size_t>(k)][at] = raw[k].scaled(one / w);
      v.vectors[static_cast<size_t>(7 + k)][at] = raw[k].scaled(one);
    }
    for (int k = 0; k < 3; ++k) {
      // The fast method makes them from raw moments, whose sizes count then.
      central[k].size = central[k].size + raw[k + 1].size;
      v.vectors[static_cast<size_t>(4 + k)][at] = central[k].scaled(k == 0 ? unbiased : one / w);
      v.vectors[static_cast<size_t>(11 + k)][at] = central[k].scaled(one);
    }
    const Number c2 = central[0].value * unbiased;
    v.vectors[14][at] = ratio(central[2].value / w / (c2 * c2) - 3);
    v.vectors[15][at] = ratio(central[1].value / w / sqrt(c2 * c2 * c2));
    v.vectors[16][at] = ratio(sqrt(c2) / means.back());
  }
  const auto products = [&](size_t j, size_t k) {
    Sum<Number> sum;
    for (int64_t i = 0; i < s.n; ++i) {
      const Number xj = s.at(i, static_cast<int64_t>(j)), xk = s.at(i, static_cast<int64_t>(k));
      sum.value += Number(s.weight(i)) * xj * xk;
      sum.size += Number(s.weight(i)) * abs(xj * xk);
    }
    sum.value = sum.value - w * means[j] * means[k];
    return sum;
  };
  std::vector<Number> roots;
  for (size_t j = 0; j < p; ++j) roots.push_back(sqrt(products(j, j).value));
  for (size_t j = 0; j < p; ++j) {
    for (size_t k = 0; k < p; ++k) {
      const Sum<Number> cp = products(j, k);
      v.matrices[0][j * p + k] = cp.scaled(scale);
      v.matrices[1][j * p + k] =
          j == k ? cp.scaled(scale) : ratio(cp.value / (roots[j] * roots[k]));
      v.matrices[2][j * p + k] = cp.scaled(one);
    }
  }
  return v;
}

}  // namespace

template <class Real>
Values exact_values(const Sample<Real>& s, const Real* given) {
  return values_by<Exact>(s, given);
}
template <class Real>
Values plain_values(const Sample<Real>& s, const Real* given) {
  return values_by<long double>(s, given);
}

template <class Real>
void expect_near(const Results<Real>& results, const Values& values, uint64_t mask, int64_t p,
                 int64_t storage, double ulps) {
  const double unit = ulps * std::numeric_limits<Real>::epsilon();
  for (size_t e = 0; e < vector_count; ++e) {
    if ((mask & vector_estimates[e].bit) == 0) continue;
    for (size_t j = 0; j < static_cast<size_t>(p); ++j) {
      const Value& value = values.vectors[e][j];
      EXPECT_NEAR(results.vectors[e][j], value.exact, unit * value.size)
          << vector_estimates[e].name << " of variable " << j;
    }
  }
  for (size_t e = 0; e < matrix_count; ++e) {
    if ((mask & matrix_estimates[e].bit) == 0) continue;
    for (int64_t j = 0; j < p; ++j) {
      for (int64_t k = 0; k < p; ++k) {
        const Value& value = values.matrices[e][static_cast<size_t>(j * p + k)];
        EXPECT_NEAR(results.matrices[e][static_cast<size_t>(place(storage, p, j, k))], value.exact,
                    unit * value.size)
            << matrix_estimates[e].name << " of variables " << j << " and " << k;
      }
    }
  }
}

template Values exact_values<double>(const Sample<double>&, const double*);
template Values exact_values<float>(const Sample<float>&, const float*);
template Values plain_values<double>(const Sample<double>&, const double*);
template Values plain_values<float>(const Sample<float>&, const float*);
template void expect_near<double>(const Results<double>&, const Values&, uint64_t, int64_t, int64_t,
                                  double);
template void expect_near<float>(const Results<float>&, const Values&, uint64_t, int64_t, int64_t,
                                 double);

}  // namespace qor::test
