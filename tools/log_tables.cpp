// Makes kernels/tables/log_tables.h: reciprocals of mantissa cells and the logarithms that undo
// them, in two parts.

#include <array>
#include <cmath>
#include <cstdlib>

#include "kernels/log_constants.h"
#include "tools/table_writer.h"

namespace {

namespace bases = qor::kernels::log_constants;
using qor::tools::nearest;
using qor::tools::Real;

// log_b(x)
template <class Base>
Real logarithm(const Real& x) {
  Real y, two(2.0);
  mpfr_log2(y.get(), x.get(), MPFR_RNDN);
  if constexpr (Base::per_natural == bases::Binary::per_natural) return y;
  if constexpr (Base::per_natural == bases::Decimal::per_natural) {
    mpfr_log10(two.get(), two.get(), MPFR_RNDN);
  } else {
    mpfr_log(two.get(), two.get(), MPFR_RNDN);
  }
  return y * two;
}

// log_b(x) + twos * log_b(2), x in [1/sqrt2, sqrt2]: the part of x rounded to the grid, so that a
// power of two gets exactly the multiple of two_high and two_low that an exponent cancels.
template <class Base>
std::array<double, 2> parts(const Real& x, int twos) {
  const Real value = logarithm<Base>(x);
  const double high = std::nearbyint(nearest<double>(value) / bases::row_grid) * bases::row_grid;
  const double low = nearest<double>(value - Real(high) + Real(twos * Base::two_low));
  return {high + twos * Base::two_high, low};
}

// Row i: log_b(2^row_bits / c) less the exponent bias, c = 2^(row_bits - 1) + i.
template <class Base>
std::array<double, 2> row(int i) {
  const int unit = 1 << Base::row_bits;
  const int c = unit / 2 + i;
  const bool halved = 4 * c < 3 * unit;  // counts as 2 * (unit/2) / c
  const Real x = Real(halved ? unit / 2 : unit) / Real(c);
  return parts<Base>(x, (halved ? 1 : 0) - bases::exponent_bias);
}

template <class Base>
void print_rows(const char* name, const char* base) {
  const int rows = (1 << (Base::row_bits - 1)) + 1;
  char rule[160];
  std::snprintf(rule, sizeof rule, "%s(%d / c) - 1023 %s(2) for c = %d..%d: high part, low part.",
                base, 1 << Base::row_bits, base, rows - 1, 2 * (rows - 1));
  qor::tools::print_table(rule, "Row<double>", name, rows, row<Base>);
}

// A sixteenth of the mantissas m in [0.75, 1.5), by the top four bits of their images.
struct Cell {
  explicit Cell(int i)
      : first(i < 8 ? 1.0 + i / 16.0 : 0.5 + i / 32.0), width(i < 8 ? 1 / 16.0 : 1 / 32.0) {}
  bool below_one() const { return first < 1; }
  // 1 beside 1; elsewhere short enough that m * reciprocal - 1 is exact.
  double reciprocal() const {
    if (first == 1.0 || first + width == 1.0) return 1.0;
    const double grid = below_one() ? 16 : 32;
    return std::nearbyint(grid / (first + width / 2)) / grid;
  }
  double first, width;
};

// The exponent that goes with a mantissa below 1 is one too low: its log_b(2) is in the table.
template <class Base>
std::array<double, 16> registers(int part) {
  std::array<double, 16> numbers;
  for (int i = 0; i < 16; ++i) {
    const Cell cell(i);
    const double c = cell.reciprocal();
    if (c * cell.first - 1 < bases::cell_first) std::abort();
    if (c * (cell.first + cell.width) - 1 > bases::cell_last) std::abort();
    const auto logarithms = parts<Base>(Real(1.0) / Real(c), cell.below_one() ? 1 : 0);
    numbers[static_cast<std::size_t>(i)] = part == 0   ? c
                                           : part == 1 ? logarithms[0]
                                                       : logarithms[1];
  }
  return numbers;
}

template <class Base>
void print_registers(const char* name, const char* base) {
  char rule[160];
  std::snprintf(rule, sizeof rule,
                "c, %s(1 / c) high and low, for m in 16 cells of [0.75, 1.5).",
                base);
  qor::tools::print_table(rule, "Sixteen", name, 3, registers<Base>);
}

// Row i: a reciprocal c of 1 + i / 64, of 12 bits, and ln(1 / c).
std::array<double, 3> scalar_row(int i) {
  const double c = std::nearbyint(0x1p12 / (1 + i / 64.0)) / 0x1p12;
  const auto logarithms = parts<bases::Natural>(Real(1.0) / Real(c), 0);
  return {c, logarithms[0], logarithms[1]};
}

}  // namespace

int main() {
  qor::tools::print_head("log_tables", "#include \"kernels/lanes.h\"\n");
  std::printf("\nusing lanes::Row;\n");
  std::printf("\nusing Sixteen = double[16];\n");
  std::printf("\nstruct ReciprocalRow {\n  double reciprocal, high, low;\n};\n");
  print_rows<bases::Natural>("ln_rows", "ln");
  print_rows<bases::Decimal>("log10_rows", "log10");
  print_rows<bases::Binary>("log2_rows", "log2");
  print_registers<bases::Natural>("ln_registers", "ln");
  print_registers<bases::Decimal>("log10_registers", "log10");
  print_registers<bases::Binary>("log2_registers", "log2");
  qor::tools::print_table(
      "c, the 12-bit number nearest to 1 / (1 + i/64), and ln(1 / c): high part, low part.",
      "ReciprocalRow", "ln_scalar_rows", 65, scalar_row);
  qor::tools::print_tail();
}
