// Sqrt: the square root, single and double.
//
// Method.   The processor's instruction, at every level: its result is the same on every processor,
//           and no scheme on top of an estimate is faster where memory is the limit.
// Accuracy. correctly rounded.
// Special.  +-0 -> itself; +inf -> +inf; below 0 -> NaN, code 1; NaN -> quiet NaN.

#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

template <class T>
struct Sqrt : Tiered<T(T)> {
  using typename Tiered<T(T)>::V;
  using typename Tiered<T(T)>::LaneSet;
  static constexpr Traits traits{.code_flags = CodeFlags::by_wide};

  V core(V x) const { return lanes::sqrt(x); }

  LaneSet special(V x) const { return lanes::negative(x); }

  // The instruction gives the values and raises the flags that are due; a denormal that counts as 0
  // gives 0.
  Complete<T> wide(V x, LaneSet) const {
    const V root = lanes::sqrt(x);
    return {.value = root, .domain = lanes::unordered(root, root).without(lanes::unordered(x, x))};
  }
};

}  // namespace

QOR_FILL_ROW(s, Sqrt, unary, Sqrt<float>)
QOR_FILL_ROW(d, Sqrt, unary, Sqrt<double>)

}  // namespace qor::kernels
