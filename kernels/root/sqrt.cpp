// Sqrt: the square root, single and double.
//
// Method.   The processor's instruction, at every level: its result is the same on every processor,
//           and no scheme on top of an estimate is faster where memory is the limit.
// Accuracy. correctly rounded.
// Special.  +-0 -> itself; +inf -> +inf; below 0 -> NaN, code 1; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/root/limits.h"
#include "kernels/scalar/bits.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr limits::Range kFast = limits::root::dsqrt;
template <>
inline constexpr limits::Range kFast<float> = limits::root::ssqrt;

template <class T>
struct Sqrt : Unary<T> {
  using typename Unary<T>::V;
  using typename Unary<T>::LaneSet;
  static constexpr const char* name = sizeof(T) == sizeof(float) ? "vsSqrt" : "vdSqrt";

  V core(V x) const { return lanes::sqrt(x); }

  LaneSet special(V x) const {
    return lanes::outside(lanes::bits(x), kFast<T>.first, kFast<T>.last);
  }

  // The instruction raises the flags that are due; a denormal that counts as 0 gives 0.
  Outcome<T> scalar(T x) const {
    const T root = lanes::sqrt(lanes::broadcast(x))[0];
    const bool is_undefined = is_nan(root) && !is_nan(x);
    return {root, is_undefined ? QOR_ERROR_DOMAIN : QOR_ERROR_NONE};
  }
};

}  // namespace

QOR_FILL_ROW(s, Sqrt, unary, A, 1, Sqrt<float>)
QOR_FILL_ROW(d, Sqrt, unary, A, 1, Sqrt<double>)

}  // namespace qor::kernels
