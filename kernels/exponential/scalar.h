// The scalar routine's arithmetic that all exponentials share: 2^(m/64) (1 + p) in double, with the
// results of the denormal range rounded once.
#pragma once

#include <bit>
#include <cstdint>

#include "kernels/exponential/tables/exp_tables.h"
#include "kernels/frame.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels::exp_scalar {

inline constexpr double shifter = 0x1.8p+52;  // its sum's low bits hold a rounded integer

// The integer that a sum with a shifter holds in its low bits.
inline int32_t low_integer(double sum) { return static_cast<int32_t>(std::bit_cast<int64_t>(sum)); }

// Whether x is an infinity or a NaN.
inline bool special(float x) { return (std::bit_cast<uint32_t>(x) & 0x7F800000) == 0x7F800000; }
inline bool special(double x) { return (std::bit_cast<uint64_t>(x) >> 52 & 0x7FF) == 0x7FF; }

// Infinities and NaN: +0 at -infinity, else x quieted. (A branch: as a select it would be a compare
// that raises a flag at a NaN.)
template <class T>
Outcome<T> at_special(T x) {
  if (x == -std::numeric_limits<T>::infinity()) return {opaque(T{0})};
  return {x * x};
}

// Results beyond the type's range, worked out in double.
template <class T>
Outcome<T> overflow() {
  return {static_cast<T>(overflowed<double>()), QOR_ERROR_OVERFLOW};
}
template <class T>
Outcome<T> underflow() {
  return {static_cast<T>(underflowed<double>()), QOR_ERROR_UNDERFLOW};
}

// ---- 2^(m/64) (1 + p) -----------------------------------------------------------------------

// (q + t) 2^(m >> 6), q small against t.
struct Parts {
  double q, t;
  int32_t m;
};

inline Parts parts(double p, int32_t m) {
  const auto& row = tables::exp2_relative_64[m & 63];
  return {(p + row.low) * row.high, row.high, m};
}

// 2^(exponent - 1023)
inline double power_of_two(int32_t exponent) {
  return std::bit_cast<double>(static_cast<int64_t>(exponent) << 52);
}

// The biased exponent of the scale 2^(m >> 6), with `bias` for 1.0.
inline int32_t scale_exponent(int32_t m, int32_t bias) { return ((m >> 6) + bias) & 0x7FF; }

// The value, for results that are normal.
inline double scale_normal(const Parts& e) {
  const double sum = e.q + e.t;
  const int32_t exponent = scale_exponent(e.m, 1023);
  if (exponent > 2046) return sum * power_of_two(exponent - 1) * 2.0;
  return sum * power_of_two(exponent);
}

// The same for results that may be denormal: worked out 2^60 times too large, split so that the
// last step rounds once.
inline double scale_denormal(const Parts& e) {
  constexpr double down = 0x1p-60;
  constexpr double split = 0x1.8p+32;
  const int32_t exponent = scale_exponent(e.m, 1083);
  const double power = opaque(power_of_two(exponent));
  const double v = e.q * power, w = e.t * power;
  const double s = v + w;
  if (exponent <= 50) return s * down;
  const double h = (s + s * split) - s * split;
  const double error = (w - s + v) + (s - h);
  return h * down + error * down;
}

// The outcome of a result within the type's range, with the code of a denormal one.
template <class T>
Outcome<T> in_range(const Parts& e, bool denormal) {
  if (denormal) return {static_cast<T>(scale_denormal(e)), QOR_ERROR_UNDERFLOW};
  return {static_cast<T>(scale_normal(e))};
}

// ---- e^x ------------------------------------------------------------------------------------

inline constexpr double steps_per_unit = 0x1.71547652b82fep+6;  // 64 / ln 2
inline constexpr double step_high = 0x1.62e42fefap-7;           // ln 2 / 64, its first 32 bits
inline constexpr double step_low = 0x1.cf79abc9e3b3ap-46;       // and the rest
// (e^r - 1 - r) / r^2, |r| <= ln 2 / 128
inline constexpr double natural[] = {0x1.6c16a1c2a3ffdp-10, 0x1.111123aaf20d3p-7,
                                     0x1.5555555558fccp-5, 0x1.55555555548f8p-3, 0.5};

inline double polynomial(double r, const double (&coefficients)[5]) {
  double sum = coefficients[0];
  for (int i = 1; i < 5; ++i) sum = sum * r + coefficients[i];
  return sum;
}

inline Parts natural_parts(double r, int32_t m) {
  return parts(polynomial(r, natural) * r * r + r, m);
}

// e^x where it is within float's range. The smaller part of a step goes first.
inline Parts natural_of_float(double x) {
  const double t = steps_per_unit * x + shifter;
  const double k = t - shifter;
  return natural_parts((x - k * step_low) - k * step_high, low_integer(t));
}

// e^x where it is within double's range. The larger part goes first.
inline Parts natural_of_double(double x) {
  const double t = steps_per_unit * x + shifter;
  const double k = t - shifter;
  return natural_parts((x - k * step_high) - k * step_low, low_integer(t));
}

}  // namespace qor::kernels::exp_scalar
