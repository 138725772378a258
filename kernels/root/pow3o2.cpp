// Pow3o2: the cube of the square root, single and double.
//
// Method.   see rational_power.h. Outside the range where the result is normal, x is scaled
//           by a power of 4 first.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormal results included.
// Special.  +-0 -> +0; +inf -> +inf; overflow -> +inf and underflow report nothing; below 0 -> NaN,
//           code 1; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/root/limits.h"
#include "kernels/root/rational_power.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr limits::Range kFast = limits::root::dpow3o2;
template <>
inline constexpr limits::Range kFast<float> = limits::root::spow3o2;

template <class T>
struct Pow3o2 : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;
  using Power = RationalPower<T, 3, 2>;

  V core(V x) const { return Power::of(x); }

  LaneSet special(V x) const {
    return lanes::outside(lanes::bits(x), kFast<T>.first, kFast<T>.last);
  }

  // x 4^-n to the 3/2, times 8^n: only the last product may overflow or become denormal.
  static T scaled(T x, int n) {
    const T power = Power::of(lanes::broadcast(x * power_of_two<T>(-n) * power_of_two<T>(-n)))[0];
    const T scale = power_of_two<T>(n);
    return power * scale * scale * scale;
  }

  Outcome<T> scalar(T x) const {
    if (x == 0 || is_nan(x)) return {x * x};
    if (is_negative(x)) return {undefined<T>(), QOR_ERROR_DOMAIN};
    if (is_infinite(x)) return {x};
    constexpr int n = std::numeric_limits<T>::max_exponent / 3;
    return {x < 1 ? scaled(x, -n) : scaled(x, n)};
  }
};

}  // namespace

QOR_FILL_ROW(s, Pow3o2, unary, Pow3o2<float>)
QOR_FILL_ROW(d, Pow3o2, unary, Pow3o2<double>)

}  // namespace qor::kernels
