// The double powers: 2^(y log2 x) on the vector path, and of one pair of numbers for any result.
//
// Accuracy. see docs/accuracy.md; below 0.6 ulp, denormal results rounded once.
#pragma once

#include "kernels/exponential/tables/exp_tables.h"
#include "kernels/power/limits.h"
#include "kernels/power/log2.h"
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels::dpow {

// Registers a step: one alone waits for its long chain of operations.
inline constexpr int registers = 2;

inline constexpr double kShifter = 0x1.8p+45;  // its sum's low bits hold 128 times the product
// (2^f - 1) / f, |f| < 2^-7.9
inline constexpr double kExp2[] = {0x1.5d87fe78a6731p-10, 0x1.3b2ab6fba4e77p-7, 0x1.c6b08d704a0cp-5,
                                   0x1.ebfbdff82c58fp-3, 0x1.62e42fefa39efp-1};

// y log in two parts that are not normalised, as those of the logarithm.
inline Sum product(f64 y, Sum log) {
  if constexpr (lanes::has_fma) {
    const Sum product = exact::two_product(y, log.high);
    return {product.high, multiply_add(y, log.low, product.low)};
  } else {
    const f64 y_high = exact::leading<half_bits>(y);
    return {y_high * log.high, (y - y_high) * log.high + y * log.low};
  }
}

// 2^p as (high + low) 2^floor(m / 128), m the low bits of the shifted product.
struct ScaledPower {
  f64 high, low;
  i64 shifted;
};

inline ScaledPower exp2(Sum p) {
  // A short first part has a second one of no weight here, which is a sum less to wait for.
  const f64 t = (lanes::has_fma ? p.high + p.low : p.high) + kShifter;
  const i64 shifted = lanes::bits(t);
  const f64 f = (p.high - (t - kShifter)) + p.low;
  // In halves: the port that transposes rows has those of the logarithm to do.
  const auto row = lanes::gather_halves(tables::exp2_double_128, shifted & 127);
  return {row.first, multiply_add(f * lanes::horner(f, kExp2), row.first, row.second), shifted};
}

inline Checked<double> power(f64 x, f64 y) {
  const Sum p = product(y, log2(x));
  const ScaledPower power = exp2(p);
  const i64 exponent = (power.shifted & -128) << 45;
  return {lanes::from_bits(lanes::bits(power.high + power.low) + exponent),
          lanes::high_word_above(lanes::bits(lanes::abs(p.high)), limits::dpow::product_high_word)};
}

inline lanes::LaneSet<double> special(f64 x, f64 y) {
  using namespace limits::dpow;
  return lanes::outside(lanes::bits(x), base.first, base.last) |
         lanes::outside(lanes::bits(lanes::abs(y)), exponent.first, exponent.last);
}

// ---- One pair of numbers --------------------------------------------------------------------

// (high + low) 2^exponent where that is denormal or nearly so: summed 2^1022 times as large, on
// top of 1, where the last place is that of denormals.
inline double denormal_sum(double high, double low, int exponent) {
  const double scale = power_of_two<double>(exponent + 1022);
  const double h = high * scale, l = low * scale;
  if (h + l >= 1) return (h + l) * 0x1p-1022;
  const exact::Sum<double> sum = exact::fast_two_sum(1.0, h);
  const double rounded = (sum.high + (sum.low + l)) - 1;
  if ((rounded - h) - l != 0) static_cast<void>(opaque(underflowed<double>()));
  return rounded * 0x1p-1022;
}

inline double exp2_of_one(double high, double low) {
  if (high >= 1025) return overflowed<double>();
  if (high <= -1080) return underflowed<double>();
  const ScaledPower power = exp2({broadcast(high), broadcast(low)});
  const int exponent = static_cast<int32_t>(power.shifted[0]) >> 7;
  if (exponent < -1020) return denormal_sum(power.high[0], power.low[0], exponent);
  constexpr int first = 1000;  // 2^exponent itself may be above the range
  const double sum = power.high[0] + power.low[0];
  if (exponent < first) return sum * power_of_two<double>(exponent);
  return sum * power_of_two<double>(first) * power_of_two<double>(exponent - first);
}

// log2 of a positive x, denormal or not.
inline Sum log2_of_one(double x) {
  if (x >= std::numeric_limits<double>::min()) return log2(broadcast(x));
  constexpr double scale = 0x1.0p+200;  // 1.6069380442589903e60
  const Sum log = log2(broadcast(x * scale));
  const f64 high = log.high - 200.0;
  return {high, ((log.high - high) - 200.0) + log.low};
}

// x^y, x positive and finite, y finite; overflow and underflow with their flags.
inline double power_of_one(double x, double y) {
  if (x == 1) return 1;
  const double size = magnitude(y);
  if (size >= 0x1p+64) return (x > 1) == (y > 0) ? overflowed<double>() : underflowed<double>();
  if (size < 0x1p-65) return 1 + y;
  const Sum p = product(broadcast(y), log2_of_one(x));
  return exp2_of_one(p.high[0], p.low[0]);
}

}  // namespace qor::kernels::dpow
