// Pow2o3: the square of the cube root, of the magnitude, single and double.
//
// Method.   see rational_power.h.
// Accuracy. see docs/accuracy.md; below 1 ulp; of a cube exact.
// Special.  +-0 -> +0; +-inf -> +inf; a negative number counts as its magnitude and
//           reports nothing; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/root/limits.h"
#include "kernels/root/rational_power.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr limits::Range kNormal = limits::root::normal_double;
template <>
inline constexpr limits::Range kNormal<float> = limits::root::normal_float;

template <class T>
struct Pow2o3 : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;

  V core(V x) const { return RationalPower<T, 2, 3>::of(lanes::abs(x)); }

  LaneSet special(V x) const {
    return lanes::outside(lanes::bits(lanes::abs(x)), kNormal<T>.first, kNormal<T>.last);
  }

  Outcome<T> scalar(T x) const {
    if (x == 0 || !is_finite(x)) return {x * x};
    return {RationalPower<T, 2, 3>::of_denormal(magnitude(x))};
  }
};

}  // namespace

QOR_FILL_ROW(s, Pow2o3, unary, Pow2o3<float>)
QOR_FILL_ROW(d, Pow2o3, unary, Pow2o3<double>)

}  // namespace qor::kernels
