// Logb: the exponent of a number as a number, single and double.
//
// Method.   the biased exponent, less the bias; exact.
// Special.  +-0 -> -inf code 1; +-inf -> +inf; NaN -> quiet NaN; denormals count as normalised.

#include <cmath>

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"
#include "kernels/logarithm/limits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

using lanes::abs;
using lanes::bits;

// Zeros, infinities and NaN; else the exponent of `scaled`, less that of 1.0 and of the scale.
template <class T, class Bits>
Outcome<T> logb_scalar(T x, T scale, int fraction_bits, Bits bias) {
  if (x == T{0}) return {pole(T{-1}), QOR_ERROR_DOMAIN};
  if (!std::isfinite(x)) return {std::fabs(quieted(x))};
  const Bits biased = std::bit_cast<Bits>(std::fabs(x) * scale) >> fraction_bits;
  return {static_cast<T>(biased - bias)};
}

struct SLogb : Guarded<float(float)> {
  V core(V x) const { return lanes::to_float((bits(abs(x)) >> 23) - 127); }
  LaneSet special(V x) const { return log_vector::special(abs(x)); }
  Outcome<float> scalar(float x) const {
    return logb_scalar(x, limits::slog::denormal_scale, 23, 127 + 25);
  }
};

struct DLogb : Guarded<double(double)> {
  V core(V x) const { return lanes::exponent(abs(x)); }
  LaneSet special(V x) const { return log_vector::special(abs(x)); }
  Outcome<double> scalar(double x) const {
    return logb_scalar(x, limits::dlog::denormal_scale, 52, int64_t{1023 + 55});
  }
};

}  // namespace

QOR_FILL_ROW(s, Logb, unary, SLogb)
QOR_FILL_ROW(d, Logb, unary, DLogb)

}  // namespace qor::kernels
