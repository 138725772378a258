// The scalar routines that all logarithms share: special arguments, and the logarithm of the few
// finite ones that the vector paths do not take.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "kernels/frame.h"
#include "kernels/logarithm/tables/log_tables.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels::log_scalar {

// ln(m), m in [1, 2): m c = 1 + r for a reciprocal c of the 64th nearest to m, |r| < 2^-6.
inline double ln_of_mantissa(double m) {
  constexpr double to_index = 0x1p+46 + 1;  // its sum with m has units of 1/64
  constexpr double to_leading = 0x1p+21;    // cuts m after 31 bits: times c exact
  // (ln(1 + r) - r) / r^2, from the highest power down
  constexpr double polynomial[] = {-0x1.000b405a2836dp-3,
                                   0x1.249c02481059dp-3,
                                   -0x1.555555228b38fp-3,
                                   0x1.9999997b36c81p-3,
                                   -0x1.0000000000262p-2,
                                   0x1.5555555555613p-2,
                                   -0.5};
  const auto index = static_cast<uint64_t>(std::bit_cast<int64_t>(m + to_index)) & 127;
  const lanes::TableQuad<double>& row = tables::ln_scalar_rows[index];
  const double leading = (m + to_leading) - to_leading;
  const double r_high = leading * row.a - 1.0;
  const double r = r_high + (m - leading) * row.a;
  double p = polynomial[0];
  for (int i = 1; i < 7; ++i) p = p * r + polynomial[i];
  return row.b + (r + (row.c + p * r * r));
}

// log_b(x) for finite x > 0 that is far from 1: the sum is led by the exponent's part.
template <class Base>
double far_from_one(double x) {
  constexpr int64_t mantissa = (int64_t{1} << 52) - 1;
  constexpr int64_t one = int64_t{1023} << 52;
  int64_t exponent = -1023;
  if (x < std::numeric_limits<double>::min()) {
    x = opaque(x) * 0x1p60;
    exponent -= 60;
  }
  const auto bits = std::bit_cast<int64_t>(x);
  const auto e = static_cast<double>(exponent + (bits >> 52));
  const double m = std::bit_cast<double>((bits & mantissa) | one);
  const double ln_m = ln_of_mantissa(m);
  return e * Base::two_high + (e * Base::two_low + ln_m * Base::log_e);
}

// log_b of an argument that the vector path does not take.
template <template <class> class Base, class T>
Outcome<T> logarithm(T x) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  if (x != x || x == infinity) return {x * x};
  if (x == T{0}) return {pole(T{-1}), QOR_ERROR_SINGULARITY};
  if (x < T{0}) return {undefined<T>(), QOR_ERROR_DOMAIN};
  return {static_cast<T>(far_from_one<Base<double>>(static_cast<double>(x)))};
}

}  // namespace qor::kernels::log_scalar
