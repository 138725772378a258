// The single powers, worked out in double: 2^(y log2 x).
//
// Method.   log2 by 16 cells of the mantissa, whose reciprocals are chosen such that their
//           logarithms are floats to 2^-39, and the series of log2(1 + r), |r| <= 2^-5; 2^f by one
//           polynomial for |f| <= 1/2. Relative error below 2^-31, then narrowed once.
#pragma once

#include "kernels/power/limits.h"
#include "kernels/power/log2.h"
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels::spow {

using lanes::f32;
using lanes::f64;
using lanes::i32;
using lanes::multiply_add;

inline constexpr double kShifter = 0x1.8p+52;  // its sum's low bits hold the rounded product
inline constexpr double kLog2e = dpow::kLog2e;
// log2(1 + r) / r
inline constexpr double kSeries[] = {kLog2e / 7, -kLog2e / 6, kLog2e / 5, -kLog2e / 4,
                                     kLog2e / 3, -kLog2e / 2, kLog2e};

// log2(2^k z), c the reciprocal of z's cell and t = k - log2 c
inline f64 log2(f64 z, f64 c, f64 t) {
  const f64 r = multiply_add(z, c, -1.0);
  return multiply_add(r, lanes::estrin(r, kSeries), t);
}

// Exponent, mantissa and cell are worked out on the floats' bits: x = 2^k z, z in [a, 2 a).
inline lanes::Two<f64> log2(f32 x) {
  constexpr int32_t a = 0x3F3C0000;
  constexpr int mantissa_bits = 23, cell_bits = 4;
  constexpr int32_t mantissa = (1 << mantissa_bits) - 1;
  const i32 moved = lanes::bits(x) - a;
  const i32 cell = lanes::shift_right(moved, mantissa_bits - cell_bits);
  const auto z = lanes::widen(lanes::from_bits((moved & mantissa) + a));
  const auto c = lanes::widen(lanes::look_up(tables::pow_reciprocal_16, cell));
  const auto t = lanes::widen(lanes::look_up(tables::pow_log2_16, cell));
  const auto k = lanes::to_double(moved >> mantissa_bits);
  return {log2(z.first, c.first, k.first + t.first), log2(z.second, c.second, k.second + t.second)};
}

// 2^p as 2^n power, n in the low word of `shifted`.
struct ScaledPower {
  f64 power, shifted;
};
inline ScaledPower exp2(f64 p) {
  const f64 shifted = p + kShifter;
  return {lanes::estrin(p - (shifted - kShifter), tables::pow_exp2), shifted};
}

inline Checked<float> power(f32 x, f32 y) {
  const auto log = log2(x), wide_y = lanes::widen(y);
  const ScaledPower low = exp2(wide_y.first * log.first), high = exp2(wide_y.second * log.second);
  const i32 n = lanes::low_words({low.shifted, high.shifted});
  const i32 power = lanes::bits(lanes::narrow({low.power, high.power}));
  return {lanes::from_bits(power + (n << 23)),
          lanes::outside(n, -limits::spow::exponent_of_result, limits::spow::exponent_of_result)};
}

inline lanes::LaneSet<float> special(f32 x, f32 y) {
  using namespace limits::spow;
  return lanes::outside(lanes::bits(x), base.first, base.last) |
         lanes::outside(lanes::bits(lanes::abs(y)), exponent.first, exponent.last);
}

// x^y of one pair, x positive and finite, y finite; overflow and underflow with their flags, a
// denormal result rounded once.
inline float power_of_one(float x, float y) {
  constexpr float scale = 0x1p+40f;
  const bool is_denormal = x < std::numeric_limits<float>::min();
  const double log = log2(lanes::broadcast(is_denormal ? x * scale : x)).first[0];
  const double p = static_cast<double>(y) * (is_denormal ? log - 40 : log);
  if (p >= 129) return overflowed<float>();
  if (p <= -151) return underflowed<float>();
  const ScaledPower power = exp2(lanes::broadcast(p));
  const auto n = static_cast<int32_t>(std::bit_cast<int64_t>(power.shifted[0]));
  return static_cast<float>(power.power[0] * power_of_two<double>(n));
}

}  // namespace qor::kernels::spow
