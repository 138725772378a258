// Log1p: ln(1 + x), single and double.
//
// Method.   1 + x = h + rest in two parts; Ln's reduction and polynomials at h, the rest added to
//           the reduced argument.
// Accuracy. see docs/accuracy.md; below 1 ulp, small and denormal arguments included.
// Special.  +-0 -> +-0; -1 -> -inf code 2; x < -1 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/log_double.h"
#include "kernels/log_scalar.h"
#include "kernels/log_single.h"
#include "kernels/rows.h"

namespace qor::kernels {
namespace {

using lanes::abs;
using lanes::all;
using lanes::from_image;
using lanes::image;
using lanes::multiply_add;

// The scalar routine's arguments are -1 and less, large, infinite or NaN.
template <class T>
Outcome<T> log1p_scalar(T x) {
  return log_scalar::logarithm<log_constants::Natural>(x + T{1});
}

struct SLog1p : Unary<float> {
  static constexpr const char* name = "vsLog1p";
  static constexpr int32_t sign_bit = std::numeric_limits<int32_t>::min();

  V core(V x) const {
    const V h = x + 1.0f;
    const V rest = x - (h - 1.0f);
    const auto [exponent, r_h] = log_single::reduce<log_constants::single::natural_split>(h);
    const V scale = from_image((127 - exponent) << 23);
    const V r_rest = rest * scale;
    const V r = r_h + r_rest;
    const V left = r_rest - (r - r_h);  // what the sum lost
    const V e = log_single::to_float(exponent);
    const V q = abs(x) < limits::slog1p::tiny ? all(0.0f) : r;  // its square would underflow
    const V p = multiply_add(q * q, polynomial(q, log_single::ln_polynomial), left) + r;
    const V y =
        multiply_add(e, all(log_single::two_high), multiply_add(e, all(log_single::two_low), p));
    return from_image(image(y) | (image(x) & sign_bit));  // the sign of -0
  }
  Doubt care(V x) const {
    return lanes::above(image(x), limits::slog1p::last_image) |
           lanes::above(image(x) ^ sign_bit, limits::slog1p::negative_image);
  }
  Outcome<float> scalar(float x) const { return log1p_scalar(x); }
};

struct DLog1p : Unary<double> {
  static constexpr const char* name = "vdLog1p";
  static constexpr int64_t sign_bit = std::numeric_limits<int64_t>::min();

  V core(V x) const {
    const V h = x + 1.0;
    const log_double::Rest rest = {x - (h - 1.0), abs(x) < limits::dlog1p::tiny};
    const V y = log_double::logarithm<log_double::Natural>(h, rest);
    return from_image(image(y) | (image(x) & sign_bit));  // the sign of -0
  }
  Doubt care(V x) const {
    return lanes::high_word_above(image(x), limits::dlog1p::last_high_word) |
           lanes::high_word_above(image(x) ^ sign_bit, limits::dlog1p::negative_high_word);
  }
  Outcome<double> scalar(double x) const { return log1p_scalar(x); }
};

}  // namespace

QOR_FILL_ROW(s, Log1p, unary, A, 1, SLog1p)
QOR_FILL_ROW(d, Log1p, unary, A, 1, DLog1p)

}  // namespace qor::kernels
