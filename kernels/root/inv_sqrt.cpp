// InvSqrt: 1 / sqrt(x), single and double.
//
// Method.   A start y (inverse_root.h) cut so that its square is exact, the error
//           e = x y^2 - 1, and the series of y (1 + e)^(-1/2). Without fused multiply-add a double
//           x is taken in two parts for e, the products of the first exact; and a single result is
//           the root of the reciprocal, two roundings one after the other, which keeps the order of
//           numbers.
// Accuracy. see docs/accuracy.md; below 1 ulp.
// Special.  +-0 -> +-inf, code 2; below 0 -> NaN, code 1; +inf -> +0; NaN -> quiet NaN.

#include <cmath>

#include "kernels/exact/exact.h"
#include "kernels/frame/rows.h"
#include "kernels/root/inverse_root.h"
#include "kernels/root/limits.h"
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr limits::Range kFast = limits::root::dinv_sqrt;
template <>
inline constexpr limits::Range kFast<float> = limits::root::sinv_sqrt;

using lanes::multiply_add;

// y (1 + e)^(-1/2)
template <class V, class T, size_t count>
V corrected(V y, V e, const T (&series)[count]) {
  return multiply_add(y * e, lanes::horner(e, series), y);
}

inline lanes::f32 inverse_root(lanes::f32 x) {
  if constexpr (lanes::has_fma) {
    const auto y = exact::leading<12>(inverse_root_start(x));  // 12 bits
    return corrected(y, multiply_add(x, y * y, -1.0f), tables::inverse_root_float);
  } else {
    return lanes::sqrt(1.0f / x);
  }
}

inline lanes::f64 inverse_root(lanes::f64 x) {
  if constexpr (lanes::has_fma) {
    const auto y = exact::leading<27>(inverse_root_start(x));  // 26 bits
    return corrected(y, multiply_add(x, y * y, -1.0), tables::inverse_root_double);
  } else {
    const auto y = exact::leading<40>(inverse_root_start(x)), square = y * y;  // 13 and 26 bits
    const auto leading = exact::leading<27>(x);                                // 26 bits
    const auto e = (leading * square - 1.0) + (x - leading) * square;
    return corrected(y, e, tables::inverse_root_double_cut);
  }
}

template <class T>
struct InvSqrt : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;
  static constexpr Traits traits{.group = 4};

  V core(V x) const { return inverse_root(x); }

  LaneSet special(V x) const {
    return lanes::outside(lanes::bits(x), kFast<T>.first, kFast<T>.last);
  }

  Outcome<T> scalar(T x) const {
    if (x == 0) return {pole(std::copysign(T{1}, x)), QOR_ERROR_SINGULARITY};
    if (is_nan(x)) return {x + x};
    if (is_negative(x)) return {undefined<T>(), QOR_ERROR_DOMAIN};
    if (is_infinite(x)) return {T{0}};
    const int n = x < 1 ? std::numeric_limits<T>::digits : -std::numeric_limits<T>::digits;
    return {core(lanes::broadcast(x * power_of_two<T>(2 * n)))[0] * power_of_two<T>(n)};
  }
};

}  // namespace

QOR_FILL_ROW(s, InvSqrt, unary, InvSqrt<float>)
QOR_FILL_ROW(d, InvSqrt, unary, InvSqrt<double>)

}  // namespace qor::kernels
