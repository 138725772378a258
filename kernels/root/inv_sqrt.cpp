// InvSqrt: 1 / sqrt(x), single and double.
//
// Method.   An estimate y, the error e = x y^2 - 1 of its square, and the series of
//           y (1 + e)^(-1/2). With fused multiply-add e is exact to its last bits as it stands;
//           without, the estimate is cut so that the products are exact.
// Accuracy. see docs/accuracy.md; below 0.51 ulp (single without fused multiply-add below 1).
// Special.  +-0 -> +-inf, code 2; below 0 -> NaN, code 1; +inf -> +0; NaN -> quiet NaN.

#include <cmath>

#include "kernels/frame/rows.h"
#include "kernels/root/limits.h"
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr limits::Range kNormal = limits::root::normal_double;
template <>
inline constexpr limits::Range kNormal<float> = limits::root::normal_float;

using lanes::broadcast;
using lanes::f32;
using lanes::f64;
using lanes::multiply_add;

// Estimate y and error x y^2 - 1, with fused multiply-add.
template <class T, class V = typename lanes::Lanes<T>::V>
lanes::Two<V> estimate_fused(V x) {
  const V y = lanes::inverse_root_estimate(x);
  const V h = x * y;
  const V low = multiply_add(x, y, -h);
  return {y, multiply_add(low, y, multiply_add(h, y, T{-1}))};
}

// The same without: y of 9 bits, so that y * y is exact.
[[maybe_unused]] lanes::Two<f32> estimate_cut(f32 x) {
  const f32 y = lanes::from_bits(lanes::bits(lanes::inverse_root_estimate(x)) & -0x8000);
  return {y, x * (y * y) - 1.0f};
}

// And y of 13 bits; x in 26 bits and the rest.
[[maybe_unused]] lanes::Two<f64> estimate_cut(f64 x) {
  const f64 y = lanes::from_bits(lanes::bits(lanes::inverse_root_estimate(x)) & -0x10000000000);
  const f64 high = lanes::from_bits(lanes::bits(x) & -0x8000000);
  return {y, (high * y * y - 1.0) + (x - high) * y * y};
}

template <class T, class V = typename lanes::Lanes<T>::V>
lanes::Two<V> estimate(V x) {
  if constexpr (lanes::has_fma) {
    return estimate_fused<T>(x);
  } else {
    return estimate_cut(x);
  }
}

// ((1 + e)^(-1/2) - 1) / e
f32 series(f32 e) { return lanes::horner(e, -0.3125f, 0.375f, -0.5f); }
// |e| < 2^-10, to 2^-52 of e
f64 series(f64 e) {
  return lanes::horner(e, 0x1.1800032338cbbp-2, -0x1.40000b13001d9p-2, 0x1.80000000000f6p-2,
                       -0x1.ffffffffffe71p-2);
}

template <class T>
struct InvSqrt : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;

  V core(V x) const {
    const auto [y, e] = estimate<T>(x);
    return multiply_add(y * e, series(e), y);
  }

  LaneSet special(V x) const {
    return lanes::outside(lanes::bits(x), kNormal<T>.first, kNormal<T>.last);
  }

  Outcome<T> scalar(T x) const {
    if (x == 0) return {pole(std::copysign(T{1}, x)), QOR_ERROR_SINGULARITY};
    if (is_nan(x)) return {x + x};
    if (is_negative(x)) return {undefined<T>(), QOR_ERROR_DOMAIN};
    if (is_infinite(x)) return {T{0}};
    constexpr int n = std::numeric_limits<T>::digits / 2 + 1;  // 4^n makes a denormal normal
    return {core(broadcast(x * power_of_two<T>(2 * n)))[0] * power_of_two<T>(n)};
  }
};

}  // namespace

QOR_FILL_ROW(s, InvSqrt, unary, InvSqrt<float>)
QOR_FILL_ROW(d, InvSqrt, unary, InvSqrt<double>)

}  // namespace qor::kernels
