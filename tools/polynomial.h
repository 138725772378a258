// Polynomials for kernels: interpolation at the Chebyshev nodes of an interval around 0, which for
// the entire functions in question is the minimax polynomial but for the last bits.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/table_writer.h"

namespace qor::tools {

inline Real pi() {
  Real r;
  mpfr_const_pi(r.get(), MPFR_RNDN);
  return r;
}

// Coefficients from the constant upwards of the polynomial of this degree that agrees with f at the
// degree + 1 Chebyshev nodes of [-half_width, half_width]. (Newton's divided differences.)
template <class F>
std::vector<Real> interpolate(F f, const Real& half_width, int degree) {
  const int count = degree + 1;
  std::vector<Real> node, difference;
  for (int i = 0; i < count; ++i) {
    Real angle = pi() * Real(2.0 * i + 1.0) / Real(2.0 * count);
    mpfr_cos(angle.get(), angle.get(), MPFR_RNDN);
    node.push_back(angle * half_width);
    difference.push_back(f(node.back()));
  }
  for (int order = 1; order < count; ++order) {
    for (int i = degree; i >= order; --i) {
      difference[i] = (difference[i] - difference[i - 1]) / (node[i] - node[i - order]);
    }
  }
  std::vector<Real> coefficients(count, Real(0.0));
  for (int i = degree; i >= 0; --i) {
    for (int k = degree; k > 0; --k) {
      coefficients[k] = coefficients[k - 1] - coefficients[k] * node[i];
    }
    coefficients[0] = difference[i] - coefficients[0] * node[i];
  }
  return coefficients;
}

// log2 of the largest |f(x) - p(x)| |x|^weight on the interval, p having rounded coefficients.
template <class F, class T>
double worst_error(F f, const Real& half_width, const std::vector<T>& coefficients, int weight) {
  constexpr int points = 2000;
  Real worst(0.0);
  for (int i = 0; i <= points; ++i) {
    const Real x = half_width * Real(2.0 * i / points - 1.0);
    Real sum(0.0);
    for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) sum = sum * x + Real(*c);
    Real error = f(x) - sum;
    for (int k = 0; k < weight; ++k) error = error * x;
    mpfr_abs(error.get(), error.get(), MPFR_RNDN);
    mpfr_max(worst.get(), worst.get(), error.get(), MPFR_RNDN);
  }
  mpfr_log2(worst.get(), worst.get(), MPFR_RNDN);
  return mpfr_get_d(worst.get(), MPFR_RNDN);
}

// An array of numbers on a line.
template <class T>
void print_array(const char* name, const std::vector<T>& numbers) {
  std::printf("inline constexpr %s %s[%zu] = {", sizeof(T) == sizeof(float) ? "float" : "double",
              name, numbers.size());
  const char* separator = "";
  for (const T number : numbers) {
    std::printf("%s%s", separator, literal(number).c_str());
    separator = ", ";
  }
  std::printf("};\n");
}

// Prints the rounded coefficients, from the highest power down, as an array for lanes::horner.
// `rule` tells f, `weight` is the power of x that the kernel multiplies the polynomial by.
template <class T, class F>
void print_polynomial(const char* rule, const char* name, F f, const Real& half_width, int degree,
                      int weight) {
  std::vector<T> rounded;
  for (const Real& c : interpolate(f, half_width, degree)) rounded.push_back(nearest<T>(c));
  std::printf("\n// %s, |r| <= %.4g; error times |r|^%d below 2^%.1f.\n", rule,
              mpfr_get_d(half_width.get(), MPFR_RNDN), weight,
              worst_error(f, half_width, rounded, weight));
  std::reverse(rounded.begin(), rounded.end());
  print_array(name, rounded);
}

}  // namespace qor::tools
