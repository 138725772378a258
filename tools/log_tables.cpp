// Makes kernels/logarithm/tables/log_tables.h: reciprocals of mantissas and the logarithms that
// undo them, in two parts.

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>

#include "kernels/logarithm/constants.h"
#include "tools/table_writer.h"

namespace {

namespace constants = qor::kernels::log_constants;
using qor::tools::nearest;
using qor::tools::Real;
using Logarithm = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

// A base by its name and by MPFR's function.
struct Function {
  const char* name;
  Logarithm logarithm;

  Real operator()(const Real& x) const {
    Real y;
    logarithm(y.get(), x.get(), MPFR_RNDN);
    return y;
  }
};

template <class T>
constexpr bool single = sizeof(T) == sizeof(float);

// log_b(x) + twos * log_b(2), x in [1/sqrt2, sqrt2]: the high part of x rounded to the grid, so
// that a power of two gets exactly the multiple of two_high and two_low that an exponent cancels.
template <class T, class Base>
std::array<T, 2> parts(const Function& log, const Real& x, int twos) {
  const double grid = constants::NumberLayout<T>::grid;
  const Real value = log(x);
  const double high = std::nearbyint(nearest<double>(value) / grid) * grid;
  const double two_high = twos * static_cast<double>(Base::two_high);
  const Real two_low = Real(twos) * Real(static_cast<double>(Base::two_low));
  return {static_cast<T>(high + two_high), nearest<T>(value - Real(high) + two_low)};
}

// Row i: log_b(2^row_bits / c) less the exponent bias, c = 2^(row_bits - 1) + i.
template <class T, class Base>
void print_rows(const std::string& stem, const Function& log) {
  const int unit = 1 << Base::row_bits, bias = constants::NumberLayout<T>::bias;
  const auto row = [&](int i) {
    const int c = unit / 2 + i;
    const bool halved = 4 * c < 3 * unit;  // taken as 2 * (unit/2) / c
    const Real x = Real(halved ? unit / 2 : unit) / Real(c);
    return parts<T, Base>(log, x, (halved ? 1 : 0) - bias);
  };
  char rule[160];
  std::snprintf(rule, sizeof rule, "%s(%d / c) - %d %s(2) for c = %d..%d: high part, low part.",
                log.name, unit, bias, log.name, unit / 2, unit);
  qor::tools::print_table(rule, single<T> ? "TablePair<float>" : "TablePair<double>",
                          (stem + "_rows").c_str(), unit / 2 + 1, row);
}

// One of `count` cells of the mantissas m in [0.75, 1.5), by the top bits of their images.
struct Cell {
  Cell(int i, int count)
      : first(i < count / 2 ? 1.0 + 1.0 * i / count : 0.5 + 0.5 * i / count),
        width((first < 1 ? 0.5 : 1.0) / count),
        grid(first < 1 ? count : 2 * count) {}

  // 1 beside 1; elsewhere short enough that m * reciprocal - 1 is exact, and such that all cells
  // have it in the interval of those beside 1.
  double reciprocal(int count) const {
    if (first == 1.0 || first + width == 1.0) return 1.0;
    return std::nearbyint(grid * (1 + 0.25 / count) / (first + width / 2)) / grid;
  }

  double first, width, grid;
};

// Row i: the reciprocal c of cell i, log_b(1 / c) in two parts, and 0. The exponent that goes with
// a mantissa below 1 is one too low: its log_b(2) is in the table.
template <int count, class T, class Base>
std::array<T, 4> cell_row(const Function& log, int i) {
  const Cell cell(i, count);
  const double c = cell.reciprocal(count);
  if (c * cell.first - 1 < constants::Cells<count>::first) std::abort();
  if (c * (cell.first + cell.width) - 1 > constants::Cells<count>::last) std::abort();
  const auto logs = parts<T, Base>(log, Real(1.0) / Real(c), cell.first < 1 ? 1 : 0);
  return {static_cast<T>(c), logs[0], logs[1], T{0}};
}

template <int count>
std::string cells_rule(const Function& log) {
  return std::string("c, ") + log.name + "(1 / c) high and low, for m in " + std::to_string(count) +
         " cells of [0.75, 1.5), by its top bits.";
}

// Cells that are looked up in memory: a row for each.
template <int count, class Base>
void print_cells(const std::string& stem, const Function& log) {
  qor::tools::print_table(cells_rule<count>(log).c_str(), "TableQuad<double>",
                          (stem + "_cells_" + std::to_string(count)).c_str(), count,
                          [&](int i) { return cell_row<count, double, Base>(log, i); });
}

// Cells that are looked up in registers: a row for each kind of number.
template <int count, class T, class Base>
void print_register_cells(const std::string& stem, const Function& log) {
  const std::string type = (single<T> ? "Floats" : "Doubles") + std::to_string(count);
  const auto kind = [&](int k) {
    std::array<T, count> numbers;
    int i = 0;
    for (T& number : numbers) {
      number = cell_row<count, T, Base>(log, i++)[static_cast<std::size_t>(k)];
    }
    return numbers;
  };
  qor::tools::print_table(cells_rule<count>(log).c_str(), type.c_str(),
                          (stem + "_cells_" + std::to_string(count)).c_str(), 3, kind);
}

template <template <class> class Base>
void print_base(const char* name, Logarithm logarithm) {
  const Function log{name, logarithm};
  const std::string d = std::string("d") + name, s = std::string("s") + name;
  print_rows<double, Base<double>>(d, log);
  print_cells<128, Base<double>>(d, log);
  print_register_cells<16, double, Base<double>>(d, log);
  print_rows<float, Base<float>>(s, log);
  print_register_cells<8, float, Base<float>>(s, log);
  print_register_cells<16, float, Base<float>>(s, log);
}

}  // namespace

int main() {
  qor::tools::print_head("log_tables", "#include \"kernels/lanes.h\"\n");
  std::printf("\nusing lanes::TablePair;\nusing lanes::TableQuad;\n");
  std::printf("\nusing Doubles16 = double[16];\nusing Floats16 = float[16];\n");
  std::printf("using Floats8 = float[8];\n");
  print_base<constants::Natural>("ln", mpfr_log);
  print_base<constants::Decimal>("log10", mpfr_log10);
  print_base<constants::Binary>("log2", mpfr_log2);
  qor::tools::print_tail();
}
