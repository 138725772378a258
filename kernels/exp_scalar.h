// The scalar routine's arithmetic that all exponentials share: 2^(m/64) (1 + q) in double, with the
// results of the denormal range rounded once.
#pragma once

#include <bit>
#include <cstdint>

#include "kernels/kernel_frame.h"
#include "kernels/signals.h"
#include "kernels/tables/exp_tables.h"

namespace qor::kernels::exp_scalar {

inline constexpr double shifter = 0x1.8p+52;  // its sum's low bits hold a rounded integer

// 2^(exponent - 1023)
inline double power_of_two(int32_t exponent) {
  return std::bit_cast<double>(static_cast<int64_t>(exponent) << 52);
}

// The biased exponent of the scale 2^(m >> 6), with `bias` for 1.0.
inline int32_t scale_exponent(int32_t m, int32_t bias) { return ((m >> 6) + bias) & 0x7FF; }

// T q + T scaled by 2^(m >> 6), for results that are normal. `q` is the polynomial's value times T.
inline double scale_normal(double q, double t, int32_t m) {
  const double sum = q + t;
  const int32_t exponent = scale_exponent(m, 1023);
  if (exponent > 2046) return sum * power_of_two(exponent - 1) * 2.0;
  return sum * power_of_two(exponent);
}

// The same for results that may be denormal: worked out 2^60 times too large, split so that the
// last step rounds once.
inline double scale_denormal(double q, double t, int32_t m) {
  constexpr double down = 0x1p-60;
  constexpr double split = 0x1.8p+32;
  const int32_t exponent = scale_exponent(m, 1083);
  const double power = power_of_two(exponent);
  const double v = q * power, w = t * power;
  const double s = v + w;
  if (exponent <= 50) return s * down;
  const double h = (s + s * split) - s * split;
  const double error = (w - s + v) + (s - h);
  return h * down + error * down;
}

}  // namespace qor::kernels::exp_scalar
