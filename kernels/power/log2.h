// log2 of positive normal doubles in two parts, for the powers.
//
// Method.   x = 2^k z; a cell of z gives a short reciprocal c and -log2 c in two parts, the first a
//           multiple of 2^-42; r = z c - 1 is exact. log2 x = (k - log2 c) + log2(1 + r), summed
//           largest first with the lost bits kept.
// Accuracy. relative, below 2^-67 without fused multiply-add and below 2^-66 with it. The worst is
//           beside the cell of 1, where the logarithm is as small as r and the square of r, far
//           from 1 a small term, is 2^-12 of it.
#pragma once

#include "kernels/exact/exact.h"
#include "kernels/frame.h"
#include "kernels/power/tables/pow_tables.h"

namespace qor::kernels::dpow {

using lanes::broadcast;
using lanes::f64;
using lanes::i64;
using lanes::multiply_add;

// A logarithm and its products: low is below 2^-16 of high; without fused multiply-add `high` has
// 26 bits.
using Sum = exact::Sum<f64>;

inline constexpr int half_bits = 27;  // without them 26 are left

// A positive normal x as 2^k z, z in [a, 2 a), and the cell of z.
template <int32_t first_high_word, int cell_bits>
struct Split {
  f64 k, z;
  i64 cell;

  explicit Split(f64 x) {
    constexpr int64_t a = int64_t{first_high_word} << 32;
    constexpr int64_t mantissa = 0xFFFFFFFFFFFFF;
    constexpr int64_t bias = 1024;  // keeps the exponent's field positive
    const i64 moved = lanes::bits(x) + ((bias << 52) - a);
    z = lanes::from_bits((moved & mantissa) + a);
    cell = lanes::shift_right(moved, 52 - cell_bits) & ((1 << cell_bits) - 1);
    constexpr double two_52 = 0x1p+52;  // a number below it, or-ed to its bits, is added to it
    const i64 field = lanes::shift_right(moved, 52) | std::bit_cast<int64_t>(two_52);
    k = lanes::from_bits(field) - (two_52 + static_cast<double>(bias));
  }
};

// ---- With fused multiply-add ----------------------------------------------------------------

inline constexpr double kLog2e = 0x1.71547652b82fep+0;
inline constexpr double kLog2eLow = 0x1.777d0ffda0d24p-56;

// log2(1 + r) = log2(e) (r - r^2/2 + r^3/3 ...), |r| < 2^-7.5: the terms from r^9 down to r^3,
// divided by -r^3/2.
inline constexpr double kSeries[] = {-2 * kLog2e / 9, 2 * kLog2e / 8,  -2 * kLog2e / 7,
                                     2 * kLog2e / 6,  -2 * kLog2e / 5, 2 * kLog2e / 4,
                                     -2 * kLog2e / 3};

inline Sum log2_fused(f64 x) {
  const Split<0x3FE7F000, 7> split(x);
  const auto row = lanes::gather_entries(tables::pow_log2_128, split.cell);
  const f64 r = multiply_add(split.z, row.a, -1.0);
  const f64 minus_half = r * -0.5, square = minus_half * r;  // -r^2/2
  const Sum u = exact::fast_two_sum(r, square);
  const f64 u_low = u.low + multiply_add(minus_half, r, -square);
  const Sum product = exact::two_product(u.high, broadcast(kLog2e));
  const f64 product_low = multiply_add(u_low, broadcast(kLog2e),
                                       multiply_add(u.high, broadcast(kLog2eLow), product.low));
  const Sum sum = exact::fast_two_sum(split.k + row.b, product.high);
  const f64 rest = sum.low + (row.c + product_low);
  return {sum.high, multiply_add(square * r, lanes::even_odd(r, kSeries), rest)};
}

// ---- Without --------------------------------------------------------------------------------

// log2(1 + r) as a series in R = r K, K the first 23 bits of log2(e) so that r K is exact where r
// is short: from R^6 down to R^3, the coefficient -1/(2 K) of R^2, and what log2(e) - K adds to R
// and to its square.
inline constexpr double kShortLog2e = 0x1.715474p+0;
inline constexpr double kCubic[] = {-0.026667131649815552, 0.046167041872023737,
                                    -0.083256194960726712, 0.16015105075297303};
inline constexpr double kQuadratic = -0.5 / kShortLog2e;
inline constexpr double kLinear = 9.5979350332335112e-08;
inline constexpr double kQuadraticRest = kLinear * kQuadratic;

inline Sum log2_split(f64 x) {
  const Split<0x3FE7FE00, 10> split(x);
  const auto row = lanes::gather_entries(tables::pow_log2_1024, split.cell);
  // Rounded, not cut: of z just below 1 it is 1, so that r_high is never far above r.
  const f64 z_high = exact::nearest_leading<half_bits>(split.z);
  // Exact, 28 bits; beside 1, where c is short too, few enough for the square to be exact.
  const f64 r_high = z_high * row.a - 1.0;
  const f64 r_low = (split.z - z_high) * row.a;
  const f64 R_high = r_high * kShortLog2e, R_low = r_low * kShortLog2e;
  const f64 R = R_high + R_low;
  // -K r^2 / 2, the first 26 bits of r_high^2 exact.
  const f64 square = r_high * r_high, square_short = exact::leading<half_bits>(square);
  const f64 quadratic = square_short * (-0.5 * kShortLog2e);
  const f64 quadratic_low =
      (square - square_short) * (-0.5 * kShortLog2e) + R_low * (R + R_high) * kQuadratic;
  const f64 series = R * (R * (R * lanes::horner(R, kCubic) + kQuadraticRest) + kLinear);
  const f64 t = split.k + row.b;
  const f64 high = exact::leading<half_bits>((t + R) + quadratic);
  const f64 rest = (((t - high) + R_high) + quadratic) + R_low;  // the differences cancel exactly
  return {high, rest + (row.c + (quadratic_low + series))};
}

inline Sum log2(f64 x) {
  if constexpr (lanes::has_fma) {
    return log2_fused(x);
  } else {
    return log2_split(x);
  }
}

}  // namespace qor::kernels::dpow
