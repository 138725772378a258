// The scalar routine's arithmetic that all exponentials share: 2^(m/64) (1 + p) in double, with the
// results of the denormal range rounded once.
#pragma once

#include <bit>
#include <cstdint>

#include "kernels/exponential/tables/exp_tables.h"
#include "kernels/frame.h"
#include "kernels/scalar/bits.h"
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
struct ScaledSum {
  double q, t;
  int32_t m;
};

inline ScaledSum parts(double p, int32_t m) {
  const auto& row = tables::exp2_relative_64[m & 63];
  return {(p + row.low) * row.high, row.high, m};
}

// The value, for results that are normal.
inline double scale_normal(const ScaledSum& e) {
  const double sum = e.q + e.t;
  const int32_t n = e.m >> 6;
  if (n > 1023) return sum * power_of_two<double>(n - 1) * 2.0;
  return sum * power_of_two<double>(n);
}

// The same for results that may be denormal: worked out 2^60 times too large, split so that the
// last step rounds once.
inline double scale_denormal(const ScaledSum& e) {
  constexpr double down = 0x1p-60;
  constexpr double split = 0x1.8p+32;
  const int32_t n = e.m >> 6;
  const double power = opaque(power_of_two<double>(n + 60));
  const double v = e.q * power, w = e.t * power;
  const double s = v + w;
  if (n <= -1033) return s * down;
  const double h = (s + s * split) - s * split;
  const double error = (w - s + v) + (s - h);
  return h * down + error * down;
}

// The outcome of a result within the type's range, with the code of a denormal one.
template <class T>
Outcome<T> in_range(const ScaledSum& e, bool denormal) {
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

inline ScaledSum natural_parts(double r, int32_t m) {
  return parts(polynomial(r, natural) * r * r + r, m);
}

// e^x where it is within float's range. The smaller part of a step goes first.
inline ScaledSum natural_of_float(double x) {
  const double t = steps_per_unit * x + shifter;
  const double k = t - shifter;
  return natural_parts((x - k * step_low) - k * step_high, low_integer(t));
}

// e^x where it is within double's range. The larger part goes first.
inline ScaledSum natural_of_double(double x) {
  const double t = steps_per_unit * x + shifter;
  const double k = t - shifter;
  return natural_parts((x - k * step_high) - k * step_low, low_integer(t));
}

}  // namespace qor::kernels::exp_scalar
