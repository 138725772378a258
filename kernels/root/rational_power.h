// x^(p/q) of positive normal numbers, q 2 or 3: what Cbrt, InvCbrt, Pow2o3 and Pow3o2 share.
//
// Method.   x = 2^(q n + k) m, k < q. The leading five bits of m choose a cell with center c;
//           r = (m - c) / c, |r| < 2^-6, and x^(p/q) = 2^(p n) (2^k c)^(p/q) (1 + r)^(p/q): the
//           second factor from a table in two parts, the third by its binomial series.
// Accuracy. The table's product and sum lose below 2^-8 ulp, the last addition rounds once.
#pragma once

#include <array>
#include <limits>

#include "kernels/frame.h"
#include "kernels/root/tables/root_tables.h"
#include "kernels/scalar/bits.h"

namespace qor::kernels {

// The coefficients of r, r^2 ... of (1 + r)^(p/q), from the highest power down.
template <class T, int p, int q, int degree>
constexpr std::array<T, degree> binomial_series() {
  std::array<T, degree> series{};
  double coefficient = 1.0;
  for (int i = 1; i <= degree; ++i) {
    coefficient *= (static_cast<double>(p) / q - (i - 1)) / i;
    series[static_cast<size_t>(degree - i)] = static_cast<T>(coefficient);
  }
  return series;
}

template <class T, int p, int q>
inline constexpr const lanes::TableQuad<T>* root_table = nullptr;
template <>
inline constexpr auto root_table<float, 1, 3> = tables::cbrt_float;
template <>
inline constexpr auto root_table<double, 1, 3> = tables::cbrt_double;
template <>
inline constexpr auto root_table<float, -1, 3> = tables::inv_cbrt_float;
template <>
inline constexpr auto root_table<double, -1, 3> = tables::inv_cbrt_double;
template <>
inline constexpr auto root_table<float, 2, 3> = tables::pow2o3_float;
template <>
inline constexpr auto root_table<double, 2, 3> = tables::pow2o3_double;
template <>
inline constexpr auto root_table<float, 3, 2> = tables::pow3o2_float;
template <>
inline constexpr auto root_table<double, 3, 2> = tables::pow3o2_double;

template <class T, int p, int q>
struct RationalPower {
  using V = typename lanes::Lanes<T>::V;
  using I = typename lanes::Lanes<T>::I;
  static constexpr int mantissa_bits = std::numeric_limits<T>::digits - 1;
  static constexpr int bias = std::numeric_limits<T>::max_exponent - 1;
  static constexpr int cell_bits = 5;
  static constexpr int degree = sizeof(T) == 8 ? 8 : 4;  // the rest is below 2^-58, 2^-34
  static constexpr auto series = binomial_series<T, p, q, degree>();
  // Added to the biased exponent, so that q divides the bias.
  static constexpr int shift = (q - bias % q) % q;

  static constexpr I multiple(I n) {
    static_assert(p == -1 || (p >= 1 && p <= 3));
    if constexpr (p == -1) return -n;
    if constexpr (p == 2) return n + n;
    if constexpr (p == 3) return n + n + n;
    return n;
  }

  // floor(e / q); for q = 3 as e * 0x1556 >> 14, right up to 2^13.
  static I quotient(I e) {
    if constexpr (q == 3) return lanes::high_product_16(e, 0x1556 << 2);
    return lanes::shift_right(e, q - 1);
  }

  static V series_at(V r) {
    V sum = lanes::broadcast(series[0]);
    for (size_t i = 1; i < degree; ++i) sum = lanes::multiply_add(sum, r, series[i]);
    return sum;
  }

  static V of(V x) {
    const I x_bits = lanes::bits(x);
    const I e = lanes::shift_right(x_bits, mantissa_bits) + shift;
    const I n = quotient(e);
    const I k = q == 3 ? e - n - n - n : e - n - n;
    const I cell = lanes::shift_right(x_bits, mantissa_bits - cell_bits) & ((1 << cell_bits) - 1);
    const auto row = lanes::gather_entries(root_table<T, p, q>, (k << cell_bits) | cell);
    constexpr Bits<T> one = Bits<T>{bias} << mantissa_bits;
    const V m = lanes::from_bits((x_bits & ((Bits<T>{1} << mantissa_bits) - 1)) | one);
    const V r = (m - row.c) * row.d;
    const V y = lanes::multiply_add(row.a, r * series_at(r), row.b) + row.a;
    constexpr int middle = (bias + shift) / q;
    return lanes::from_bits(lanes::bits(y) + (multiple(n - middle) << mantissa_bits));
  }

  // The same for one denormal number, scaled by 2^(q n): the power stays normal unless p > q.
  static T of_denormal(T x) {
    constexpr int n = (mantissa_bits + q) / q;
    return of(lanes::broadcast(x * power_of_two<T>(q * n)))[0] * power_of_two<T>(-p * n);
  }
};

}  // namespace qor::kernels
