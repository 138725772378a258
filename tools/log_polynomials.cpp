// Makes kernels/logarithm/tables/log_polynomials.h: polynomials of the logarithms, coefficients
// from the highest power down.
//
// A polynomial interpolates its function at the Chebyshev nodes of the interval, which is within a
// small factor of the best; then its coefficients are rounded. The bound printed is the greatest
// error of the rounded polynomial, in exact arithmetic, relative to the logarithm that it is part
// of, over 4001 points.

#include <cmath>
#include <iterator>
#include <string>
#include <vector>

#include "kernels/logarithm/constants.h"
#include "tools/table_writer.h"

namespace {

namespace constants = qor::kernels::log_constants;
using qor::tools::nearest;
using qor::tools::Real;

Real log_of_one_plus(const Real& x) {
  Real y;
  mpfr_log1p(y.get(), x.get(), MPFR_RNDN);
  return y;
}

// log_b(e); base 0 stands for e itself
Real log_e(int base) {
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

// A polynomial P for log_b(1 + x / scale) = lead x + square x^2 + x^power P(x). Coefficients behind
// the fitted ones may be given, from the lowest power up.
struct Part {
  std::string name;
  const char* rule;
  int base;
  double scale;
  Real lead;
  int power;
  Interval interval;
  int count;
  std::vector<double> given = {};
  double square = 0;

  Real logarithm(const Real& x) const { return log_of_one_plus(x / Real(scale)) * log_e(base); }
  Real target(const Real& x) const;
};

// Coefficients from the constant upwards.
template <class T>
Real value(const std::vector<T>& coefficients, const Real& x) {
  Real sum(0.0);
  for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) {
    sum = sum * x + Real(static_cast<double>(*c));
  }
  return sum;
}

// What the fitted coefficients are to approach.
Real Part::target(const Real& x) const {
  Real y = logarithm(x) - (lead + Real(square) * x) * x;
  for (int i = 0; i < power; ++i) y = y / x;
  Real rest = value(given, x);
  for (int i = 0; i < count; ++i) rest = rest * x;
  return y - rest;
}

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

// Coefficients from the constant upwards: each is the constant of what the polynomial is after
// taking off the ones before it and dividing by x.
template <class T>
std::vector<T> fit(const Part& part) {
  std::vector<Real> x, y;
  for (int i = 0; i < part.count; ++i) {
    x.push_back(part.interval.node(i, part.count));
    y.push_back(part.target(x.back()));
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

template <class T>
double worst_error(const Part& part, const std::vector<T>& coefficients) {
  double worst = 0;
  for (int i = 0; i <= 4000; ++i) {
    const double at = part.interval.first + (part.interval.last - part.interval.first) * i / 4000;
    if (at == 0) continue;
    const Real x(at);
    Real error = part.target(x) - value(coefficients, x);
    for (int k = 0; k < part.power; ++k) error = error * x;
    worst = std::fmax(worst, std::fabs(nearest<double>(error / part.logarithm(x))));
  }
  return worst;
}

template <class T>
void print(const Part& part) {
  const auto coefficients = fit<T>(part);
  std::printf("\n// %s for %g <= x <= %g; relative error 2^%.1f.\n", part.rule, part.interval.first,
              part.interval.last, std::log2(worst_error(part, coefficients)));
  std::printf("inline constexpr %s %s[] = {", sizeof(T) == sizeof(float) ? "float" : "double",
              part.name.c_str());
  for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) {
    std::printf("\n  %s,", qor::tools::literal(*c).c_str());
  }
  std::printf("\n};\n");
}

// Rows: |r| <= 2^-row_bits, and x = slope r where the slope is not 1.
template <class Base>
Interval row_interval() {
  const double reach = static_cast<double>(Base::slope) / (1 << Base::row_bits);
  return {-reach, reach};
}

template <class Base>
void print_scaled_rows(const char* name, const char* rule, int base) {
  const double slope = static_cast<double>(Base::slope);
  print<float>({name, rule, base, slope, 1.0, 1, row_interval<Base>(), 4});
}

// A polynomial of `terms` terms beside the leading one of log_b e.
template <int cells, class T>
void print_cells(const std::string& letter, int terms) {
  const Interval interval{constants::Cells<cells>::first, constants::Cells<cells>::last};
  const std::string suffix = "_cells_" + std::to_string(cells) + "_polynomial";
  const auto print_base = [&]<class Base>(Base, const char* name, const char* rule, int base) {
    const Real lead(static_cast<double>(Base::log_e));
    print<T>({letter + name + suffix, rule, base, 1, lead, 1, interval, terms + 1});
  };
  if (cells == 16 && sizeof(T) == sizeof(double)) {
    // -1/2 by itself, for products with it are exact: the largest cells need that for 0.55 ulp.
    print<T>({letter + "ln" + suffix,
              "ln(1 + x) = x - x^2/2 + x^3 P(x)",
              0,
              1,
              1.0,
              3,
              interval,
              terms - 1,
              {},
              -0.5});
  } else {
    print<T>({letter + "ln" + suffix, "ln(1 + x) = x + x^2 P(x)", 0, 1, 1.0, 2, interval, terms});
  }
  print_base(constants::Decimal<T>{}, "log10", "log10(1 + x) = x log_e + x P(x)", 10);
  print_base(constants::Binary<T>{}, "log2", "log2(1 + x) = x log_e + x P(x)", 2);
}

}  // namespace

int main() {
  using namespace constants;
  qor::tools::print_head("log_polynomials", "");
  print<double>({"dln_rows_polynomial", "ln(1 + x) = x + x^2 P(x)", 0, 1, 1.0, 2,
                 row_interval<Natural<double>>(), 5});
  print<double>({"dlog2_rows_lower",
                 "log2(1 + 256/369 x) = x + x (P(x) + x^3 Q(x)), Q given,",
                 2,
                 Binary<double>::slope,
                 1.0,
                 1,
                 row_interval<Binary<double>>(),
                 3,
                 {std::rbegin(log2_row_upper), std::rend(log2_row_upper)}});
  print<float>({"sln_rows_polynomial", "ln(1 + x) = x + x^2 P(x)", 0, 1, 1.0, 2,
                row_interval<Natural<float>>(), 3});
  print_scaled_rows<Decimal<float>>("slog10_rows_polynomial", "log10(1 + 16/7 x) = x + x P(x)", 10);
  print_scaled_rows<Binary<float>>("slog2_rows_polynomial", "log2(1 + 16/23 x) = x + x P(x)", 2);
  print_cells<16, double>("d", 10);
  print_cells<128, double>("d", 6);
  print_cells<16, float>("s", 5);
  print_cells<8, float>("s", 6);
  qor::tools::print_tail();
}
