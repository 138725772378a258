// Log2: the binary logarithm, single and double.
//
// Method.   as Ln, with tables and polynomials in base 2.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormals included; exact at powers of two.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/log_double.h"
#include "kernels/log_scalar.h"
#include "kernels/log_single.h"
#include "kernels/rows.h"

namespace qor::kernels {
namespace {

using lanes::all;
using lanes::multiply_add;

struct SLog2 : Unary<float> {
  static constexpr const char* name = "vsLog2";

  V core(V x) const {
    using namespace log_constants::single;
    const auto [exponent, r] = log_single::reduce<even_split>(x);
    const V p = polynomial(r, tables::log2_single);
    return log_single::to_float(exponent) + multiply_add(r, all(binary_slope), r * p);
  }
  Doubt care(V x) const { return log_single::care(x); }
  Outcome<float> scalar(float x) const { return log_scalar::logarithm<log_constants::Binary>(x); }
};

struct DLog2 : Unary<double> {
  static constexpr const char* name = "vdLog2";

  V core(V x) const { return log_double::logarithm<log_double::Binary>(x); }
  Doubt care(V x) const { return log_double::care(x); }
  Outcome<double> scalar(double x) const { return log_scalar::logarithm<log_constants::Binary>(x); }
};

}  // namespace

QOR_FILL_ROW(s, Log2, unary, A, 1, SLog2)
QOR_FILL_ROW(d, Log2, unary, A, 1, DLog2)

}  // namespace qor::kernels
