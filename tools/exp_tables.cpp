// Makes kernels/exponential/tables/exp_tables.h: powers of two in two parts, and polynomials of the
// exponentials.

#include <array>
#include <bit>

#include "tools/polynomial.h"
#include "tools/table_writer.h"

namespace {

using qor::tools::nearest;
using qor::tools::Real;

// 2^(j / n)
Real exp2_of_ratio(int j, int n) {
  Real x = Real(j) / Real(n);
  mpfr_exp2(x.get(), x.get(), MPFR_RNDN);
  return x;
}

// The number nearest to 2^(j / n), and the rest.
template <class T>
std::array<T, 2> parts(int j, int n) {
  const Real value = exp2_of_ratio(j, n);
  const T high = nearest<T>(value);
  return {high, nearest<T>(value - Real(static_cast<double>(high)))};
}

std::array<double, 2> parts_with_relative_rest(int j, int n) {
  const Real value = exp2_of_ratio(j, n);
  const double high = nearest<double>(value);
  return {high, nearest<double>((value - Real(high)) / Real(high))};
}

// The same as two arrays, 16 rows.
void print_sixteenths(const char* high, const char* low) {
  std::vector<double> numbers[2];
  for (int j = 0; j < 16; ++j) {
    for (int which = 0; which < 2; ++which) numbers[which].push_back(parts<double>(j, 16)[which]);
  }
  std::printf("\n// 2^(j/16): the nearest double, and the double nearest to the rest.\n");
  qor::tools::print_array(high, numbers[0]);
  qor::tools::print_array(low, numbers[1]);
}

// 2^(j/16) less j sixteenths of a binary order in its image, which then takes k << 19 for k = 16 n
// + j to become 2^(k/16); and the rest divided by the power.
void print_sixteenths_for_images() {
  std::vector<float> bases, rests;
  for (int j = 0; j < 16; ++j) {
    const Real value = exp2_of_ratio(j, 16);
    const float high = nearest<float>(value);
    bases.push_back(std::bit_cast<float>(std::bit_cast<int32_t>(high) - (j << 19)));
    rests.push_back(nearest<float>((value - Real(static_cast<double>(high))) / value));
  }
  std::printf(
      "\n// Of 2^(j/16): the image of the nearest float less j << 19; the rest, relative.\n");
  qor::tools::print_array("exp2_float_16_bases", bases);
  qor::tools::print_array("exp2_float_16_rests", rests);
}

// The first 32 bits of 2^(j / 128), and the rest.
std::array<double, 2> split_parts(int j) {
  const Real value = exp2_of_ratio(j, 128);
  const double high = std::ldexp(std::floor(std::ldexp(nearest<double>(value), 31)), -31);
  return {high, nearest<double>(value - Real(high))};
}

Real logarithm(double x) {
  Real y(x);
  mpfr_log(y.get(), y.get(), MPFR_RNDN);
  return y;
}

// (base^r - the first `terms` terms of its series) / r^terms times `factor` - less, by that series.
struct Tail {
  Real log_base;
  int terms;
  double less = 0.0, factor = 1.0;

  Real operator()(const Real& r) const {
    constexpr int last = 60;
    Real term(1.0), sum(0.0);
    for (int k = 1; k <= terms; ++k) term = term * log_base / Real(static_cast<double>(k));
    for (int k = terms + 1; k <= last; ++k) {
      sum = sum + term;
      term = term * log_base * r / Real(static_cast<double>(k));
    }
    return sum * Real(factor) - Real(less);
  }
};

const Real e(1.0), two = logarithm(2.0), ten = logarithm(10.0);  // bases, by their logarithms

// 1 / 16 of a factor of two as an argument of base^x: the nearest float, and the rest.
void print_step(const char* name, const Real& log_base) {
  const Real step = two / log_base / Real(16.0);
  const float high = nearest<float>(step);
  const float low = nearest<float>(step - Real(static_cast<double>(high)));
  std::printf("inline constexpr TablePair<float> %s = {%s, %s};\n", name,
              qor::tools::literal(high).c_str(), qor::tools::literal(low).c_str());
}

void print_polynomials() {
  using qor::tools::print_polynomial;
  // Half of a step of 1 / steps of a binary order, in units of the base's argument.
  const auto half_step = [&](const Real& log_base, double steps) {
    return two / log_base / Real(2.0 * steps);
  };
  print_polynomial<float>("(e^r - 1 - r) / r^2", "exp_float_16", Tail{e, 2}, half_step(e, 16), 2,
                          2);
  print_polynomial<float>("(2^r - 1) / r - 1", "exp2_float_16", Tail{two, 1, 1.0},
                          half_step(two, 16), 2, 1);
  print_polynomial<float>("(10^r - 1) / (2 r) - 1", "exp10_float_16", Tail{ten, 1, 1.0, 0.5},
                          half_step(ten, 16), 3, 1);
  print_polynomial<double>("(e^r - 1 - r) / r^2", "exp_double_16", Tail{e, 2}, half_step(e, 16), 5,
                           2);
  print_polynomial<double>("(2^r - 1) / r - 1 / 2", "exp2_double_16", Tail{two, 1, 0.5},
                           half_step(two, 16), 6, 1);
  print_polynomial<double>("(10^r - 1) / r - 2", "exp10_double_16", Tail{ten, 1, 2.0},
                           half_step(ten, 16), 6, 1);
  print_polynomial<double>("(e^r - 1 - r) / r^2", "expm1_128", Tail{e, 2}, half_step(e, 128), 3, 2);
  print_polynomial<double>("(e^r - 1 - r - r^2 / 2) / r^3", "expm1_small", Tail{e, 3},
                           Real(0.03125), 5, 3);
}

}  // namespace

int main() {
  using qor::tools::print_table;
  qor::tools::print_head("exp_tables", "#include \"kernels/lanes.h\"\n");
  std::printf("\nusing lanes::TablePair;\n");
  print_table("2^(j/64): the nearest float, and the float nearest to the rest.", "TablePair<float>",
              "exp2_float_64", 64, [](int j) { return parts<float>(j, 64); });
  print_table("2^(j/128): the nearest float, and the float nearest to the rest.",
              "TablePair<float>", "exp2_float_128", 128,
              [](int j) { return parts<float>(j, 128); });
  print_sixteenths_for_images();
  print_sixteenths("exp2_double_16_high", "exp2_double_16_low");
  print_table("2^(j/64): the nearest double, and the double nearest to the rest.",
              "TablePair<double>", "exp2_double_64", 64,
              [](int j) { return parts<double>(j, 64); });
  print_table("2^(j/128): the nearest double, and the double nearest to the rest.",
              "TablePair<double>", "exp2_double_128", 128,
              [](int j) { return parts<double>(j, 128); });
  print_table("2^(j/128): its first 32 bits, and the double nearest to the rest.",
              "TablePair<double>", "exp2_split_128", 128, [](int j) { return split_parts(j); });
  print_table("2^(j/64): the nearest double T, and the rest divided by T.", "TablePair<double>",
              "exp2_relative_64", 64, [](int j) { return parts_with_relative_rest(j, 64); });
  std::printf(
      "\n// A step of the 16-row tables, as an argument: the nearest float, and the rest.\n");
  print_step("exp_step_16", e);
  print_step("exp10_step_16", ten);
  print_polynomials();
  qor::tools::print_tail();
}
