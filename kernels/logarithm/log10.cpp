// Log10: the decimal logarithm, single and double.
//
// Method.   see core.h.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormals included; exact at powers of ten.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"
#include "kernels/logarithm/scalar.h"

namespace qor::kernels {
namespace {

template <class T>
struct Log10 : Guarded<T(T)> {
  using Base = log_vector::Decimal<T>;
  static constexpr Traits traits{.group = log_vector::registers};
  using typename Guarded<T(T)>::V;

  V core(V x) const { return log_vector::logarithm<Base>(x); }
  lanes::LaneSet<T> special(V x) const { return log_vector::special(x); }
  Outcome<T> scalar(T x) const { return log_scalar::logarithm<log_constants::Decimal>(x); }
};

}  // namespace

QOR_FILL_ROW(s, Log10, unary, Log10<float>)
QOR_FILL_ROW(d, Log10, unary, Log10<double>)

}  // namespace qor::kernels
