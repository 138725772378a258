// Cbrt, InvCbrt: the cube root and its reciprocal, single and double.
//
// Method.   see rational_power.h.
// Accuracy. see docs/accuracy.md; below 1 ulp; the root of a cube is exact.
// Special.  Cbrt: +-0, +-inf -> itself. InvCbrt: +-0 -> +-inf, code 2; +-inf -> +-0. The sign goes
//           through; NaN -> quiet NaN.

#include <cmath>

#include "kernels/frame/rows.h"
#include "kernels/root/limits.h"
#include "kernels/root/rational_power.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

// The contiguous single forms keep the caller's rounding and denormal modes.
template <class T>
inline constexpr Environment kContiguous{};
template <>
inline constexpr Environment kContiguous<float>{X87::double_precision, Mxcsr::mask};

template <class T>
inline constexpr limits::Range kNormal = limits::root::normal_double;
template <>
inline constexpr limits::Range kNormal<float> = limits::root::normal_float;

// The sign goes through, the magnitude to `power`.
template <class V, class Power>
V odd(V x, Power power) {
  const V magnitude = lanes::abs(x);
  const auto sign = lanes::bits(x) ^ lanes::bits(magnitude);
  return lanes::from_bits(lanes::bits(power(magnitude)) | sign);
}

template <class T, int p>
struct CubeRoot : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;
  using Power = RationalPower<T, p, 3>;
  static constexpr bool is_inverse = p < 0;
  static constexpr Traits traits{.strided_name = sizeof(T) == sizeof(float),
                                 .environment = kContiguous<T>};

  V core(V x) const {
    return odd(x, [](V magnitude) { return Power::of(magnitude); });
  }

  LaneSet special(V x) const {
    return lanes::outside(lanes::bits(lanes::abs(x)), kNormal<T>.first, kNormal<T>.last);
  }

  Outcome<T> scalar(T x) const {
    const T sign = std::copysign(T{1}, x);
    if (x == 0) {
      if constexpr (is_inverse) return {pole(sign), QOR_ERROR_SINGULARITY};
      return {x + x};
    }
    if (is_nan(x)) return {x + x};
    if (is_infinite(x)) return {is_inverse ? sign * T{0} : x};
    return {sign * Power::of_denormal(magnitude(x))};
  }
};

using SCbrt = CubeRoot<float, 1>;
using DCbrt = CubeRoot<double, 1>;
using SInvCbrt = CubeRoot<float, -1>;
using DInvCbrt = CubeRoot<double, -1>;

}  // namespace

QOR_FILL_ROW(s, Cbrt, unary, SCbrt)
QOR_FILL_ROW(d, Cbrt, unary, DCbrt)
QOR_FILL_ROW(s, InvCbrt, unary, SInvCbrt)
QOR_FILL_ROW(d, InvCbrt, unary, DInvCbrt)

}  // namespace qor::kernels
