// The vector paths of the logarithms in double: log_b(x) for normal x > 0, and log_b(h + rest).
//
// x = 2^e m, m c = 1 + r for a reciprocal c of m, and log_b(x) = e log_b(2) - log_b(c) +
// log_b(1 + r) (Tang, 1990). The leading parts add up without rounding; everything else is small
// beside the result and is summed first, so that the error is little above that of one rounding.
// Beside 1, -log_b(c) + e log_b(2) is 0, so small results keep their relative accuracy.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "kernels/kernel_frame.h"
#include "kernels/lanes.h"
#include "kernels/log_constants.h"
#include "kernels/log_limits.h"
#include "kernels/log_polynomial.h"
#include "kernels/tables/log_polynomials.h"
#include "kernels/tables/log_tables.h"

namespace qor::kernels::log_double {

using lanes::all;
using lanes::f64;
using lanes::from_image;
using lanes::i64;
using lanes::image;
using lanes::multiply_add;
using lanes::Row;
using lanes::u64;
using tables::Sixteen;

// What the vector paths need of a base: the table rows and the polynomial for these, and the
// tables of 16 cells with theirs.
//
//   rows    log_b(1 + r) = v + v (linear + v P(v)), v = slope r
//   cells   log_b(1 + r) = r log_b(e) + r^2 P(r)
struct Natural : log_constants::Natural {
  static constexpr const Row<double>* rows = tables::ln_rows;
  static constexpr double linear = 0.0;
  // |r| <= 2^-10
  static constexpr double row_polynomial[] = {-0x1.ffffffffff81fp-2, 0x1.55555555543c5p-2,
                                              -0x1.0000148058ee1p-2, 0x1.9999cacdb4d0ap-3};
  static constexpr const Sixteen* cells = tables::ln_registers;
  static constexpr const auto& cell_polynomial = tables::ln_cells;
};

struct Decimal : log_constants::Decimal {
  static constexpr const Row<double>* rows = tables::log10_rows;
  static constexpr double linear = 0x1.a7a6cbf2e410cp-10;
  static constexpr double row_polynomial[] = {-0x1.27af2dc77b115p+0, 0x1.c6a02dc954978p+0,
                                              -0x1.8930964d2fa9bp+1, 0x1.6aba863a166dbp+2,
                                              -0x1.5c91a15f7eb9fp+3};
  static constexpr const Sixteen* cells = tables::log10_registers;
  static constexpr const auto& cell_polynomial = tables::log10_cells;
};

struct Binary : log_constants::Binary {
  static constexpr const Row<double>* rows = tables::log2_rows;
  static constexpr double linear = tables::log2_rows_first[0];
  static constexpr double row_polynomial[] = {
      tables::log2_rows_first[1], tables::log2_rows_first[2], log_constants::log2_rows_last[0],
      log_constants::log2_rows_last[1], log_constants::log2_rows_last[2]};
  static constexpr const Sixteen* cells = tables::log2_registers;
  static constexpr const auto& cell_polynomial = tables::log2_cells;
};

inline constexpr int64_t mantissa_bits = (int64_t{1} << 52) - 1;
inline constexpr int64_t leading_bits = ~((int64_t{1} << 26) - 1);
inline constexpr int64_t one_bits = int64_t{log_constants::exponent_bias} << 52;

using Row2 = lanes::Two<f64>;

// The biased exponent of x > 0.
inline f64 biased_exponent(f64 x) {
  constexpr double shifter = 0x1p+52;
  const auto bits = std::bit_cast<i64>(std::bit_cast<u64>(x) >> 52);
  return from_image(bits | std::bit_cast<int64_t>(shifter)) - shifter;
}

// The second part of an argument, below an ulp of the first. Arguments of one part have none.
struct Rest {
  f64 value;
  lanes::Lanes<double>::M tiny;  // the powers of r do not count, and would underflow
};
struct NoRest {};

template <class R>
inline constexpr bool has_rest = !std::is_same_v<R, NoRest>;

// e log_b(2) in two parts, added to the row's.
template <class Base>
inline Row2 add_exponent(f64 e, Row2 row) {
  if constexpr (Base::two_low == 0.0) {
    return {e * Base::two_high + row.first, row.second};
  } else {
    return {multiply_add(e, all(Base::two_high), row.first),
            multiply_add(e, all(Base::two_low), row.second)};
  }
}

// A row for each rounded reciprocal c. Products with c of the leading 27 bits of m, and of the
// others, are exact.
template <class Base, class R>
inline f64 by_rows(f64 x, R rest) {
  constexpr int bits = Base::row_bits;
  constexpr int64_t unit = one_bits - (int64_t{bits} << 52);  // of 2^-bits
  constexpr double shifter = 0x1.8p+52 - (1 << (bits - 1));   // the least c gives row 0
  const f64 m = from_image((image(x) & mantissa_bits) | unit);
  const f64 t = 1.0 / m + shifter;
  const f64 c = (t - shifter) * Base::slope;
  const Row2 row = lanes::gather_rows(Base::rows, image(t) & ((1 << bits) - 1));
  const f64 e = biased_exponent(x);
  const f64 leading = from_image(image(m) & leading_bits);
  const f64 v_high = multiply_add(leading, c, -Base::slope);
  f64 v_low = (m - leading) * c;
  if constexpr (has_rest<R>) {
    const f64 scale = from_image(image(m) - image(x) + (one_bits + one_bits - unit));
    v_low = multiply_add(rest.value, c * (1.0 / (1 << bits)) * scale, v_low);
  }
  f64 v = v_high + v_low;
  if constexpr (has_rest<R>) v = rest.tiny ? all(0.0) : v;
  const Row2 parts = add_exponent<Base>(e, row);
  const f64 p = polynomial(v, Base::row_polynomial);
  f64 low = parts.second + v_low;
  if constexpr (Base::linear != 0.0) low = multiply_add(v, all(Base::linear), low);
  return (parts.first + v_high) + multiply_add(v * v, p, low);
}

// Sixteen cells, in registers. m c - 1 is exact with fused multiply-add.
template <class Base, class R>
inline f64 by_cells(f64 x, R rest) {
  const f64 m = lanes::mantissa_around_one(x);
  const f64 e = lanes::exponent(x);
  const i64 cell = image(m) >> 48;
  const f64 c = lanes::look_up(Base::cells[0], cell);
  const Row2 row = {lanes::look_up(Base::cells[1], cell), lanes::look_up(Base::cells[2], cell)};
  Row2 parts = add_exponent<Base>(e, row);
  f64 r = multiply_add(m, c, -1.0);
  f64 lead = r;
  if constexpr (Base::per_natural != 1.0) {
    lead = r * Base::per_natural;
    parts.second +=
        multiply_add(r, all(Base::per_natural_low), multiply_add(r, all(Base::per_natural), -lead));
  }
  const f64 sum = parts.first + lead;
  parts.second += lead - (sum - parts.first);
  if constexpr (has_rest<R>) {
    const f64 scale = from_image(image(m) - image(x) + one_bits);
    const f64 r_rest = rest.value * (c * scale);
    parts.second += r_rest;
    r = rest.tiny ? all(0.0) : r + r_rest;
  }
  return sum + multiply_add(r * r, polynomial(r, Base::cell_polynomial), parts.second);
}

// log_b(x + rest), x normal and positive.
template <class Base, class R = NoRest>
inline f64 logarithm(f64 x, R rest = {}) {
  if constexpr (lanes::has_register_tables<double>) {
    return by_cells<Base>(x, rest);
  } else {
    return by_rows<Base>(x, rest);
  }
}

// Lanes that are not positive normal numbers.
inline lanes::Doubt<double> care(f64 x) {
  const auto moved = std::bit_cast<i64>(std::bit_cast<u64>(x) + limits::dlog::offset);
  return lanes::high_word_above(moved, limits::dlog::last_high_word);
}

}  // namespace qor::kernels::log_double
