// Makes kernels/root/tables/root_tables.h: cells of the mantissa for powers with a rational
// exponent.
//
// A row belongs to a cell [1 + j/32, 1 + (j+1)/32) with the center c = 1 + (j + 1/2)/32, and to a
// rest k of the exponent: it holds (2^k c)^s in two parts, c and 1 / c, at index 32 k + j.

#include <array>
#include <string>

#include "tools/table_writer.h"

namespace {

using qor::tools::nearest;
using qor::tools::Real;

constexpr int cells = 32;

// x^(p / q)
Real rational_power(const Real& x, int p, int q) {
  Real y;
  mpfr_rootn_ui(y.get(), x.get(), static_cast<unsigned long>(q), MPFR_RNDN);
  mpfr_pow_si(y.get(), y.get(), p, MPFR_RNDN);
  return y;
}

template <class T>
std::array<T, 4> row(int i, int p, int q) {
  const double center = 1 + (i % cells + 0.5) / cells;
  const Real power = rational_power(Real(center) * Real(static_cast<double>(1 << i / cells)), p, q);
  const T high = nearest<T>(power);
  return {high, nearest<T>(power - Real(static_cast<double>(high))), static_cast<T>(center),
          nearest<T>(Real(1) / Real(center))};
}

template <class T>
void print(const char* type, const char* name, int p, int q) {
  const std::string rule = "(2^k c)^(" + std::to_string(p) + "/" + std::to_string(q) +
                           "), nearest and rest; c; 1 / c, nearest. Row 32 k + j.";
  qor::tools::print_table(rule.c_str(), type, name, cells * q,
                          [=](int i) { return row<T>(i, p, q); });
}

}  // namespace

int main() {
  qor::tools::print_head("root_tables", "#include \"kernels/lanes.h\"\n");
  std::printf("\nusing lanes::TableQuad;\n");
  print<float>("TableQuad<float>", "cbrt_float", 1, 3);
  print<double>("TableQuad<double>", "cbrt_double", 1, 3);
  print<float>("TableQuad<float>", "inv_cbrt_float", -1, 3);
  print<double>("TableQuad<double>", "inv_cbrt_double", -1, 3);
  print<float>("TableQuad<float>", "pow2o3_float", 2, 3);
  print<double>("TableQuad<double>", "pow2o3_double", 2, 3);
  print<float>("TableQuad<float>", "pow3o2_float", 3, 2);
  print<double>("TableQuad<double>", "pow3o2_double", 3, 2);
  qor::tools::print_tail();
}
