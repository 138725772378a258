// Makes kernels/tables/log_tables.h: reciprocals of mantissa cells and the logarithms that undo
// them, in two parts.

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>

#include "kernels/log_constants.h"
#include "tools/table_writer.h"

namespace {

namespace constants = qor::kernels::log_constants;
using qor::tools::nearest;
using qor::tools::Real;

enum class Of { natural, decimal, binary };

Real logarithm(Of base, const Real& x) {
  Real y;
  switch (base) {
    case Of::natural:
      mpfr_log(y.get(), x.get(), MPFR_RNDN);
      break;
    case Of::decimal:
      mpfr_log10(y.get(), x.get(), MPFR_RNDN);
      break;
    case Of::binary:
      mpfr_log2(y.get(), x.get(), MPFR_RNDN);
      break;
  }
  return y;
}

// log_b(x) + twos * log_b(2), x in [1/sqrt2, sqrt2]: the high part of x rounded to the grid, so
// that a power of two gets exactly the multiple of two_high and two_low that an exponent cancels.
template <class T, class Base>
std::array<T, 2> parts(Of base, const Real& x, int twos) {
  const double grid = constants::Format<T>::grid;
  const Real value = logarithm(base, x);
  const double high = std::nearbyint(nearest<double>(value) / grid) * grid;
  const double two_high = twos * static_cast<double>(Base::two_high);
  const Real two_low = Real(twos) * Real(static_cast<double>(Base::two_low));
  return {static_cast<T>(high + two_high), nearest<T>(value - Real(high) + two_low)};
}

// Row i: log_b(2^row_bits / c) less the exponent bias, c = 2^(row_bits - 1) + i.
template <class T, class Base>
void print_rows(const char* name, const char* base_name, Of base) {
  const int unit = 1 << Base::row_bits, bias = constants::Format<T>::bias;
  const auto row = [&](int i) {
    const int c = unit / 2 + i;
    const bool halved = 4 * c < 3 * unit;  // taken as 2 * (unit/2) / c
    const Real x = Real(halved ? unit / 2 : unit) / Real(c);
    return parts<T, Base>(base, x, (halved ? 1 : 0) - bias);
  };
  char rule[160];
  std::snprintf(rule, sizeof rule, "%s(%d / c) - %d %s(2) for c = %d..%d: high part, low part.",
                base_name, unit, bias, base_name, unit / 2, unit);
  const char* type = sizeof(T) == sizeof(float) ? "Row<float>" : "Row<double>";
  qor::tools::print_table(rule, type, name, unit / 2 + 1, row);
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

// Three rows: reciprocals, high and low parts. The exponent that goes with a mantissa below 1 is
// one too low: its log_b(2) is in the table.
template <class T, class Base>
void print_cells(const char* name, const char* base_name, Of base) {
  const auto row = [&](int part) {
    std::array<T, 16> numbers;
    for (int i = 0; i < 16; ++i) {
      const Cell cell(i);
      const double c = cell.reciprocal();
      if (c * cell.first - 1 < constants::cell_first) std::abort();
      if (c * (cell.first + cell.width) - 1 > constants::cell_last) std::abort();
      const auto log = parts<T, Base>(base, Real(1.0) / Real(c), cell.below_one() ? 1 : 0);
      numbers[static_cast<std::size_t>(i)] =
          part == 0 ? static_cast<T>(c) : log[static_cast<std::size_t>(part - 1)];
    }
    return numbers;
  };
  char rule[160];
  std::snprintf(rule, sizeof rule,
                "c, %s(1 / c) high and low, for m in 16 cells of [0.75, 1.5), by its top bits.",
                base_name);
  qor::tools::print_table(rule, sizeof(T) == sizeof(float) ? "SixteenSingle" : "Sixteen", name, 3,
                          row);
}

template <class T, template <class> class Base>
void print_base(const std::string& stem, const char* base_name, Of base) {
  print_rows<T, Base<T>>((stem + "_rows").c_str(), base_name, base);
  print_cells<T, Base<T>>((stem + "_cells").c_str(), base_name, base);
}

template <class T>
void print_type(const std::string& letter) {
  print_base<T, constants::Natural>(letter + "ln", "ln", Of::natural);
  print_base<T, constants::Decimal>(letter + "log10", "log10", Of::decimal);
  print_base<T, constants::Binary>(letter + "log2", "log2", Of::binary);
}

// Row i: a reciprocal c of 1 + i / 64, of 12 bits, and ln(1 / c).
std::array<double, 3> scalar_row(int i) {
  const double c = std::nearbyint(0x1p12 / (1 + i / 64.0)) / 0x1p12;
  const Real x = Real(1.0) / Real(c);
  const auto log = parts<double, constants::Natural<double>>(Of::natural, x, 0);
  return {c, log[0], log[1]};
}

}  // namespace

int main() {
  qor::tools::print_head("log_tables", "#include \"kernels/lanes.h\"\n");
  std::printf(
      "\nusing lanes::Row;\nusing Sixteen = double[16];\nusing SixteenSingle = float[16];\n");
  std::printf("\nstruct ReciprocalRow {\n  double reciprocal, high, low;\n};\n");
  print_type<double>("d");
  print_type<float>("s");
  qor::tools::print_table(
      "c, the 12-bit number nearest to 1 / (1 + i/64), and ln(1 / c): high part, low part.",
      "ReciprocalRow", "ln_scalar_rows", 65, scalar_row);
  qor::tools::print_tail();
}
