// Makes kernels/tables/exp_tables.h: powers of two in two parts.

#include <array>

#include "tools/table_writer.h"

namespace {

using qor::tools::nearest;
using qor::tools::Real;

// 2^(j / n)
Real power_of_two(int j, int n) {
  Real x = Real(j) / Real(n);
  mpfr_exp2(x.get(), x.get(), MPFR_RNDN);
  return x;
}

// The number nearest to 2^(j / n), and the rest.
template <class T>
std::array<T, 2> parts(int j, int n) {
  const Real value = power_of_two(j, n);
  const T high = nearest<T>(value);
  return {high, nearest<T>(value - Real(static_cast<double>(high)))};
}

std::array<double, 2> parts_with_relative_rest(int j, int n) {
  const Real value = power_of_two(j, n);
  const double high = nearest<double>(value);
  return {high, nearest<double>((value - Real(high)) / Real(high))};
}

}  // namespace

int main() {
  using qor::tools::print_table;
  qor::tools::print_head("exp_tables", "#include \"kernels/lanes.h\"\n");
  std::printf("\nusing lanes::Row;\n");
  print_table("2^(j/64): the nearest float, and the float nearest to the rest.", "Row<float>",
              "exp2_float_64", 64, [](int j) { return parts<float>(j, 64); });
  print_table("2^(j/128): the nearest float, and the float nearest to the rest.", "Row<float>",
              "exp2_float_128", 128, [](int j) { return parts<float>(j, 128); });
  print_table("2^(j/64): the nearest double, and the double nearest to the rest.", "Row<double>",
              "exp2_double_64", 64, [](int j) { return parts<double>(j, 64); });
  print_table("2^(j/128): the nearest double, and the double nearest to the rest.", "Row<double>",
              "exp2_double_128", 128, [](int j) { return parts<double>(j, 128); });
  print_table("2^(j/64): the nearest double T, and the rest divided by T.", "Row<double>",
              "exp2_relative_64", 64, [](int j) { return parts_with_relative_rest(j, 64); });
  qor::tools::print_tail();
}
