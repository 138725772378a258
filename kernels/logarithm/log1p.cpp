// Log1p: ln(1 + x), single and double.
//
// Method.   1 + x = h + rest in two parts, and ln(h + rest), see core.h.
// Accuracy. see docs/accuracy.md; below 1 ulp, small and denormal arguments included.
// Special.  +-0 -> +-0; -1 -> -inf code 2; x < -1 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include <limits>

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"

namespace qor::kernels {
namespace {

using lanes::bits;
using lanes::from_bits;

template <class T>
struct Log1p : Tiered<T(T)> {
  using typename Tiered<T(T)>::V;
  using typename Tiered<T(T)>::LaneSet;
  using Integer = typename lanes::Lanes<T>::Integer;
  static constexpr Traits traits{.nan_passes = true};
  static constexpr Integer sign_bit = std::numeric_limits<Integer>::min();

  static log_vector::Rest<T> rest(V x, V h) { return {x - (h - T{1})}; }

  // The sign of x is that of the result, -0 included.
  static V with_sign_of(V x, V y) { return from_bits(bits(y) | (bits(x) & sign_bit)); }

  V core(V x) const {
    const V h = x + T{1};
    return with_sign_of(x, log_vector::logarithm<log_vector::Natural<T>>(h, rest(x, h)));
  }

  LaneSet special(V x) const { return log_vector::special_of_log1p(x); }

  // Large arguments, which have no rest, are brought down by a power of two.
  Complete<T> wide(V x, LaneSet special_lanes) const {
    constexpr T infinity = std::numeric_limits<T>::infinity();
    constexpr T exponent = 64, down = 0x1p-64;
    const LaneSet infinite = lanes::equal(x, lanes::broadcast(infinity));
    const LaneSet pole = lanes::equal(x, lanes::broadcast(T{-1}));
    const LaneSet domain = (special_lanes & lanes::negative(x)).without(pole);
    const LaneSet large = special_lanes.without(infinite | pole | domain);

    const V ordinary = lanes::select(special_lanes, T{1}, x);
    const V h = ordinary + T{1};
    const V small = lanes::select(large, x, lanes::broadcast(T{1})) * down;
    V y = log_vector::logarithm<log_vector::Natural<T>>(
        lanes::select(special_lanes, small, h), rest(ordinary, h),
        log_vector::Excess<T>{lanes::select(special_lanes, -exponent, T{0})});
    y = with_sign_of(ordinary, y);
    y = lanes::select(infinite, infinity, y);
    y = lanes::select(pole, -infinity, y);
    y = lanes::select(domain, default_nan<T>, y);
    return {.value = y, .domain = domain, .pole = pole};
  }
};

}  // namespace

QOR_FILL_ROW(s, Log1p, unary, Log1p<float>)
QOR_FILL_ROW(d, Log1p, unary, Log1p<double>)

}  // namespace qor::kernels
