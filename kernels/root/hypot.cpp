// Hypot: sqrt(x^2 + y^2), single and double.
//
// Method.   The squares and their sum in two parts each; the root of the first part and a last step
//           with the exact residual. Arguments outside a middle range of exponents are scaled
//           first.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormal results included; Pythagorean triples
//           are exact.
// Special.  an infinity gives +inf, with NaN too; NaN -> quiet NaN; overflow reports nothing.

#include <algorithm>

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
  [[maybe_unused]] static constexpr int32_t short_part =
      -0x80000;  // 5 bits: their square and sums are exact
  [[maybe_unused]] static constexpr int32_t half_part = -0x1000;  // 12 bits: their square is exact
};
template <>
struct HypotConstants<double> {
  [[maybe_unused]] static constexpr int64_t short_part = -0x400000000000;  // 7 bits
  [[maybe_unused]] static constexpr int64_t half_part = -0x8000000;        // 26 bits
};

template <class T>
struct Hypot : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::I;
  using typename Guarded<T(T, T)>::LaneSet;
  using Pair = lanes::Two<V>;
  using Constants = HypotConstants<T>;

  static V part(V x, Bits<T> mask) { return lanes::from_bits(lanes::bits(x) & mask); }

  // x^2 in two parts, exact but for the last bits of the second.
  static Pair square(V x) {
    if constexpr (lanes::has_fma) {
      const V high = x * x;
      return {high, multiply_add(x, x, -high)};
    } else {
      const V high = part(x, Constants::short_part);
      return {high * high, (x - high) * (x + high)};
    }
  }

  // x^2 + y^2 in two parts, the first nearest.
  static Pair sum_of_squares(V x, V y) {
    const Pair xx = square(x), yy = square(y);
    const V sum = xx.first + yy.first;
    const V of_y = sum - xx.first;
    const V lost = (xx.first - (sum - of_y)) + (yy.first - of_y);
    const V rest = lost + (xx.second + yy.second);
    const V high = sum + rest;
    return {high, (sum - high) + rest};
  }

  // s - g^2, exact, g nearly the root of s.
  static V residual(V s, V g) {
    if constexpr (lanes::has_fma) {
      return multiply_add(-g, g, s);
    } else {
      const V high = part(g, Constants::half_part);
      return (s - high * high) - (g - high) * (g + high);
    }
  }

  V core(V x, V y) const {
    const Pair s = sum_of_squares(x, y);
    const V root = lanes::sqrt(s.first);
    const V missing = residual(s.first, root) + s.second;
    return multiply_add(missing, inverse_root_start(s.first) * T{0.5}, root);
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
