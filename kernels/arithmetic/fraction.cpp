// Frac, Modf: the fractional part, and the integral and fractional parts, single and double.
//
// Method.   the integral part is x cut towards zero, the fraction what is left.
// Accuracy. exact.
// Special.  both parts have the sign of x, zeros too; an infinity has the fraction 0; a NaN is
//           quieted in both. Nothing is reported.

#include <cmath>

#include "kernels/arithmetic/rounding_core.h"
#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

// Both parts of a register of finite values.
template <class V>
lanes::Two<V> finite_parts(V x) {
  const V integral = rounding::to_zero(x);
  return {integral, lanes::with_sign(x - integral, x)};
}

// Both parts of an infinity or a NaN.
template <class T>
Two<T> special_parts(T x) {
  if (std::isnan(x)) return {x + x, x + x};
  return {x, std::copysign(T{0}, x)};
}

template <class T>
struct Frac : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;
  static constexpr Traits traits{.group = 4};

  V core(V x) const { return finite_parts(x).second; }
  LaneSet special(V x) const { return lanes::not_finite(x); }
  Outcome<T> scalar(T x) const { return {special_parts(x).second}; }
};

template <class T>
struct Modf : Guarded<Two<T>(T)> {
  using typename Guarded<Two<T>(T)>::V;
  using typename Guarded<Two<T>(T)>::LaneSet;
  static constexpr Traits traits{.group = 4};

  Two<V> core(V x) const { return finite_parts(x); }
  LaneSet special(V x) const { return lanes::not_finite(x); }
  Outcome<Two<T>> scalar(T x) const { return {special_parts(x)}; }
};

}  // namespace

QOR_FILL_ROW(s, Frac, unary, Frac<float>)
QOR_FILL_ROW(d, Frac, unary, Frac<double>)
QOR_FILL_ROW(s, Modf, two_outputs, Modf<float>)
QOR_FILL_ROW(d, Modf, two_outputs, Modf<double>)

}  // namespace qor::kernels
