// Makes kernels/tables/log_polynomials.h: polynomials of the logarithms.
//
// A polynomial interpolates its function at the Chebyshev nodes of the interval, which is within a
// small factor of the best; then its coefficients are rounded. The bound printed is the greatest
// error of the rounded polynomial, in exact arithmetic, relative to the logarithm that it is part
// of, over 4001 points.

#include <cmath>
#include <vector>

#include "kernels/log_constants.h"
#include "tools/table_writer.h"

namespace {

namespace bases = qor::kernels::log_constants;
using qor::tools::nearest;
using qor::tools::Real;

Real log_of_one_plus(const Real& x) {
  Real y;
  mpfr_log1p(y.get(), x.get(), MPFR_RNDN);
  return y;
}

// 1 / ln(base); base 0 stands for e
Real per_natural(double base) {
  if (base == 0) return 1.0;
  Real y(base);
  mpfr_log(y.get(), y.get(), MPFR_RNDN);
  return Real(1.0) / y;
}

struct Interval {
  double first, last;
  Real node(int i, int count) const {
    const double angle = (2 * i + 1) * 3.14159265358979323846 / (2 * count);
    return Real((first + last) / 2 + (last - first) / 2 * std::cos(angle));
  }
};

// The constant coefficient of the polynomial through the points: Neville's scheme at 0.
Real constant_of_interpolant(const std::vector<Real>& x, std::vector<Real> y) {
  for (std::size_t step = 1; step < x.size(); ++step) {
    for (std::size_t a = 0; a + step < x.size(); ++a) {
      const std::size_t b = a + step;
      y[a] = (x[b] * y[a] - x[a] * y[a + 1]) / (x[b] - x[a]);
    }
  }
  return y[0];
}

template <class T>
Real value(const std::vector<T>& coefficients, const Real& x) {
  Real sum(0.0);
  for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) {
    sum = sum * x + Real(static_cast<double>(*c));
  }
  return sum;
}

// Coefficients from the constant upwards: each is the constant of what the polynomial is after
// taking off the ones before it and dividing by x.
template <class T, class Function>
std::vector<T> fit(const Function& f, Interval interval, int count) {
  std::vector<Real> x, y;
  for (int i = 0; i < count; ++i) {
    x.push_back(interval.node(i, count));
    y.push_back(f(x.back()));
  }
  std::vector<T> coefficients;
  while (!x.empty()) {
    const Real constant = constant_of_interpolant(x, y);
    coefficients.push_back(nearest<T>(constant));
    x.pop_back();
    y.pop_back();
    for (std::size_t i = 0; i < x.size(); ++i) y[i] = (y[i] - constant) / x[i];
  }
  return coefficients;
}

// A polynomial P for log_b(1 + x / scale) = lead x + x^power P(x). Coefficients behind the fitted
// ones may be given.
struct Part {
  const char* name;
  const char* rule;
  double base, scale;
  Real lead;
  int power;
  Interval interval;
  int count;
  std::vector<double> given = {};

  Real logarithm(const Real& x) const {
    return log_of_one_plus(x / Real(scale)) * per_natural(base);
  }
  // What the fitted coefficients are to approach.
  Real operator()(const Real& x) const {
    Real y = logarithm(x) - lead * x;
    for (int i = 0; i < power; ++i) y = y / x;
    Real rest = value(given, x);
    for (int i = 0; i < count; ++i) rest = rest * x;
    return y - rest;
  }
};

template <class T>
double worst_error(const Part& part, const std::vector<T>& coefficients) {
  double worst = 0;
  for (int i = 0; i <= 4000; ++i) {
    const double at = part.interval.first + (part.interval.last - part.interval.first) * i / 4000;
    if (at == 0) continue;
    const Real x(at);
    Real error = part(x) - value(coefficients, x);
    for (int k = 0; k < part.power; ++k) error = error * x;
    const double relative = nearest<double>(error / part.logarithm(x));
    worst = std::fmax(worst, std::fabs(relative));
  }
  return worst;
}

template <class T>
void print(const Part& part) {
  const auto coefficients = fit<T>(part, part.interval, part.count);
  std::printf("\n// %s, in [%g, %g]; relative error %.2g = 2^%.1f.\n", part.rule,
              part.interval.first, part.interval.last, worst_error(part, coefficients),
              std::log2(worst_error(part, coefficients)));
  std::printf("inline constexpr %s %s[] = {", sizeof(T) == 4 ? "float" : "double", part.name);
  for (const T c : coefficients) std::printf("\n  %s,", qor::tools::literal(c).c_str());
  std::printf("\n};\n");
}

}  // namespace

int main() {
  qor::tools::print_head("log_polynomials", "");
  const Interval even{std::sqrt(0.5) - 1, std::sqrt(2.0) - 1};
  print<float>({"log10_single", "log10(1 + r) = r/2 + r P(r)", 10, 1,
                Real(static_cast<double>(bases::single::decimal_slope)), 1, even, 10});
  print<float>({"log2_single", "log2(1 + r) = 3r/2 + r P(r)", 2, 1,
                Real(static_cast<double>(bases::single::binary_slope)), 1, even, 10});
  // |r| <= 2^-9, v = slope r
  const double reach = bases::Binary::slope / 512;
  print<double>({"log2_rows_first",
                 "log2(1 + r) = v + v (P(v) + v^3 Q(v)), v = 369/256 r, Q given",
                 2,
                 bases::Binary::slope,
                 Real(1.0),
                 1,
                 {-reach, reach},
                 3,
                 {bases::log2_rows_last[0], bases::log2_rows_last[1], bases::log2_rows_last[2]}});
  const Interval cell{bases::cell_first, bases::cell_last};
  print<double>({"ln_cells", "ln(1 + r) = r + r^2 P(r)", 0, 1, Real(1.0), 2, cell, 10});
  print<double>(
      {"log10_cells", "log10(1 + r) = r log10(e) + r^2 P(r)", 10, 1, per_natural(10), 2, cell, 10});
  print<double>(
      {"log2_cells", "log2(1 + r) = r log2(e) + r^2 P(r)", 2, 1, per_natural(2), 2, cell, 10});
  qor::tools::print_tail();
}
