// Hypot: sqrt(x^2 + y^2), single and double.
//
// Method.   The squares and their sum in two parts each; the root of the first part and a last step
//           with the exact residual. Arguments outside a middle range of exponents are scaled
//           first.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormal results included; Pythagorean triples
//           are exact.
// Special.  an infinity gives +inf, with NaN too; NaN -> quiet NaN; overflow reports nothing.

#include <algorithm>

#include "kernels/exact/exact.h"
#include "kernels/frame/rows.h"
#include "kernels/root/inverse_root.h"
#include "kernels/root/limits.h"
#include "kernels/scalar/bits.h"

namespace qor::kernels {
namespace {

using lanes::broadcast;
using lanes::multiply_add;

template <class T>
inline constexpr limits::Range kMiddle = limits::hypot::middle_double;
template <>
inline constexpr limits::Range kMiddle<float> = limits::hypot::middle_float;

// What the two precisions differ in.
template <class T>
struct HypotConstants;
template <>
struct HypotConstants<float> {
  static constexpr int all_but_few = 19;  // 5 bits are left: their square and sums are exact
  static constexpr int half = 12;         // 12 bits are left: their square is exact
};
template <>
struct HypotConstants<double> {
  static constexpr int all_but_few = 46;  // 7 bits
  static constexpr int half = 27;         // 26 bits
};

template <class T>
struct Hypot : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::I;
  using typename Guarded<T(T, T)>::LaneSet;
  using Sum = exact::Sum<V>;
  using Constants = HypotConstants<T>;

  // x^2 + y^2 in two parts, the first nearest.
  static Sum sum_of_squares(V x, V y) {
    const Sum xx = exact::square<Constants::all_but_few>(x);
    const Sum yy = exact::square<Constants::all_but_few>(y);
    const Sum sum = exact::two_sum(xx.high, yy.high);
    return exact::fast_two_sum(sum.high, sum.low + (xx.low + yy.low));
  }

  V core(V x, V y) const {
    const Sum s = sum_of_squares(x, y);
    const V root = lanes::sqrt(s.high);
    const V missing = exact::minus_square<Constants::half>(s.high, root) + s.low;
    return multiply_add(missing, inverse_root_start(s.high) * T{0.5}, root);
  }

  LaneSet special(V x, V y) const {
    const auto [first, last] = kMiddle<T>;
    return lanes::outside(lanes::bits(lanes::abs(x)), first, last) |
           lanes::outside(lanes::bits(lanes::abs(y)), first, last);
  }

  // Once neither is 0 and they are near each other, one scale brings both to the middle range.
  Outcome<T> scalar(T x, T y) const {
    if (is_infinite(x) || is_infinite(y)) return {std::numeric_limits<T>::infinity()};
    if (is_nan(x) || is_nan(y)) return {x + y};
    const T larger = std::max(magnitude(x), magnitude(y));
    const T smaller = std::min(magnitude(x), magnitude(y));
    constexpr int digits = std::numeric_limits<T>::digits;
    const auto gap = (bits_of(larger) >> (digits - 1)) - (bits_of(smaller) >> (digits - 1));
    if (smaller == 0 || gap > digits + 1) return {larger + smaller};
    constexpr int n = std::numeric_limits<T>::max_exponent * 11 / 16;
    const int up = larger >= 1 ? -n : larger < power_of_two<T>(-n * 2 / 3) ? n : n / 2;
    const T scale = power_of_two<T>(up);
    return {core(broadcast(larger * scale), broadcast(smaller * scale))[0] * power_of_two<T>(-up)};
  }
};

}  // namespace

QOR_FILL_ROW(s, Hypot, binary, Hypot<float>)
QOR_FILL_ROW(d, Hypot, binary, Hypot<double>)

}  // namespace qor::kernels
