// Ln: the natural logarithm, single and double.
//
// Method.   x = 2^e m; s: a polynomial at m - 1; d: a reciprocal of m with its logarithm from a
//           table and a polynomial (log_single.h, log_double.h).
// Accuracy. see docs/accuracy.md; below 1 ulp (s), below 0.55 ulp (d), denormals included; ln 1 =
// 0. Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/log_double.h"
#include "kernels/log_scalar.h"
#include "kernels/log_single.h"
#include "kernels/rows.h"

namespace qor::kernels {
namespace {

using lanes::all;
using lanes::multiply_add;

struct SLn : Unary<float> {
  static constexpr const char* name = "vsLn";

  V core(V x) const {
    const auto [exponent, r] = log_single::reduce<log_constants::single::natural_split>(x);
    const V e = log_single::to_float(exponent);
    const V ln_m = multiply_add(r * r, polynomial(r, log_single::ln_polynomial), r);
    return multiply_add(e, all(log_single::two_high),
                        multiply_add(e, all(log_single::two_low), ln_m));
  }
  Doubt care(V x) const { return log_single::care(x); }
  Outcome<float> scalar(float x) const { return log_scalar::logarithm<log_constants::Natural>(x); }
};

struct DLn : Unary<double> {
  static constexpr const char* name = "vdLn";

  V core(V x) const { return log_double::logarithm<log_double::Natural>(x); }
  Doubt care(V x) const { return log_double::care(x); }
  Outcome<double> scalar(double x) const {
    return log_scalar::logarithm<log_constants::Natural>(x);
  }
};

}  // namespace

QOR_FILL_ROW(s, Ln, unary, A, 1, SLn)
QOR_FILL_ROW(d, Ln, unary, A, 1, DLn)

}  // namespace qor::kernels
