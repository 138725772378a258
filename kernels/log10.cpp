// Log10: the decimal logarithm, single and double.
//
// Method.   as Ln, with tables and polynomials in base 10.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormals included; exact at powers of ten.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/log_double.h"
#include "kernels/log_scalar.h"
#include "kernels/log_single.h"
#include "kernels/rows.h"

namespace qor::kernels {
namespace {

using lanes::all;
using lanes::multiply_add;

struct SLog10 : Unary<float> {
  static constexpr const char* name = "vsLog10";
  static constexpr float two_high = 0x1.3442p-2f;   // log10(2)
  static constexpr float two_low = -0x1.95ecp-19f;  // and the rest

  V core(V x) const {
    using namespace log_constants::single;
    const auto [exponent, r] = log_single::reduce<even_split>(x);
    const V e = log_single::to_float(exponent);
    const V log_m = multiply_add(r, all(decimal_slope), r * polynomial(r, tables::log10_single));
    return multiply_add(e, all(two_high), multiply_add(e, all(two_low), log_m));
  }
  Doubt care(V x) const { return log_single::care(x); }
  Outcome<float> scalar(float x) const { return log_scalar::logarithm<log_constants::Decimal>(x); }
};

struct DLog10 : Unary<double> {
  static constexpr const char* name = "vdLog10";

  V core(V x) const { return log_double::logarithm<log_double::Decimal>(x); }
  Doubt care(V x) const { return log_double::care(x); }
  Outcome<double> scalar(double x) const {
    return log_scalar::logarithm<log_constants::Decimal>(x);
  }
};

}  // namespace

QOR_FILL_ROW(s, Log10, unary, A, 1, SLog10)
QOR_FILL_ROW(d, Log10, unary, A, 1, DLog10)

}  // namespace qor::kernels
