// The vector paths of the logarithms: log_b(x) and log_b(x + rest) for normal x > 0.
//
// x = 2^e m, m c = 1 + r for a reciprocal c of m, and log_b(x) = e log_b(2) - log_b(c) +
// log_b(1 + r) (Tang, 1990). The leading parts add up exactly or with their error kept; everything
// else is small beside the result and is summed first, so that the error is little above that of
// one rounding. Beside 1, e log_b(2) - log_b(c) is 0, so small results keep their relative
// accuracy. The reciprocals come from correctly rounded operations and tables, not from the
// processor's estimates: a level gives the same bits on every processor.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "kernels/kernel_frame.h"
#include "kernels/lanes.h"
#include "kernels/log_constants.h"
#include "kernels/log_limits.h"
#include "kernels/tables/log_polynomials.h"
#include "kernels/tables/log_tables.h"

namespace qor::kernels::log_vector {

using lanes::all;
using lanes::from_image;
using lanes::image;
using lanes::Lanes;
using lanes::multiply_add;

// ---- Bases ----------------------------------------------------------------------------------

// What the vector paths need of a base beside its constants: table and polynomial of the rows, of
// the cells.
//
//   rows    log_b(1 + r) = v + v P(v), v = slope r
//   cells   log_b(1 + r) = r log_b(e) + r P(r)
//
// and for base e, where the linear terms are 0, r + r^2 P(r) for both.
template <class T>
struct Natural;
template <class T>
struct Decimal;
template <class T>
struct Binary;

inline constexpr double log2_row_polynomial[] = {
    log_constants::log2_row_upper[0], log_constants::log2_row_upper[1],
    log_constants::log2_row_upper[2], tables::dlog2_rows_lower[0],
    tables::dlog2_rows_lower[1],      tables::dlog2_rows_lower[2]};

template <>
struct Natural<double> : log_constants::Natural<double> {
  using Real = double;
  static constexpr const auto& rows = tables::dln_rows;
  static constexpr const auto& row_polynomial = tables::dln_rows_polynomial;
  static constexpr const auto& cells = tables::dln_cells;
  static constexpr const auto& cell_polynomial = tables::dln_cells_polynomial;
};

template <>
struct Decimal<double> : log_constants::Decimal<double> {
  using Real = double;
  static constexpr const auto& rows = tables::dlog10_rows;
  static constexpr const auto& row_polynomial = log_constants::log10_row_polynomial;
  static constexpr const auto& cells = tables::dlog10_cells;
  static constexpr const auto& cell_polynomial = tables::dlog10_cells_polynomial;
};

template <>
struct Binary<double> : log_constants::Binary<double> {
  using Real = double;
  static constexpr const auto& rows = tables::dlog2_rows;
  static constexpr const auto& row_polynomial = log2_row_polynomial;
  static constexpr const auto& cells = tables::dlog2_cells;
  static constexpr const auto& cell_polynomial = tables::dlog2_cells_polynomial;
};

template <>
struct Natural<float> : log_constants::Natural<float> {
  using Real = float;
  static constexpr const auto& rows = tables::sln_rows;
  static constexpr const auto& row_polynomial = tables::sln_rows_polynomial;
  static constexpr const auto& cells = tables::sln_cells;
  static constexpr const auto& cell_polynomial = tables::sln_cells_polynomial;
};

template <>
struct Decimal<float> : log_constants::Decimal<float> {
  using Real = float;
  static constexpr const auto& rows = tables::slog10_rows;
  static constexpr const auto& row_polynomial = tables::slog10_rows_polynomial;
  static constexpr const auto& cells = tables::slog10_cells;
  static constexpr const auto& cell_polynomial = tables::slog10_cells_polynomial;
};

template <>
struct Binary<float> : log_constants::Binary<float> {
  using Real = float;
  static constexpr const auto& rows = tables::slog2_rows;
  static constexpr const auto& row_polynomial = tables::slog2_rows_polynomial;
  static constexpr const auto& cells = tables::slog2_cells;
  static constexpr const auto& cell_polynomial = tables::slog2_cells_polynomial;
};

// ---- Parts ----------------------------------------------------------------------------------

template <class T>
using V = typename Lanes<T>::V;
template <class T>
using I = typename Lanes<T>::I;
template <class T>
using Pair = lanes::Two<V<T>>;

// Images of 1 and of the parts of a number.
template <class T>
struct Format : log_constants::Format<T> {
  using Base = log_constants::Format<T>;
  using Integer = typename Lanes<T>::Integer;
  static constexpr Integer exponent_step = Integer{1} << Base::fraction_bits;
  static constexpr Integer one = Base::bias * exponent_step;
  static constexpr Integer fraction = exponent_step - 1;
  // The end of the fraction without which products with c are exact.
  static constexpr int trailing_bits = Base::fraction_bits == 52 ? 26 : 12;
  static constexpr Integer half_trailing = Integer{1} << (trailing_bits - 1);
  static constexpr Integer leading = -(Integer{1} << trailing_bits);
  static constexpr T shifter = static_cast<T>(3) * (Integer{1} << (Base::fraction_bits - 1));
};

// The second part of an argument, below an ulp of the first; or none.
template <class T>
struct Rest {
  V<T> value;
};
struct NoRest {};

// What a rest adds to the low parts: near ln(1 + r + rest) - ln(1 + r), |rest| below an ulp of 1.
// `scale` takes x to m c. When x is tiny, r is 0, so that nothing underflows.
template <class T>
inline V<T> rest_term(Rest<T> rest, V<T> scale, V<T> r) {
  const V<T> scaled = rest.value * scale;
  return multiply_add(-r, scaled, scaled);
}

// log_b(2) e, added to a table's logarithm.
template <class Base, class T>
inline Pair<T> add_exponent(V<T> e, Pair<T> row) {
  if constexpr (Base::two_low == 0) {
    return {e + row.first, row.second};
  } else {
    return {multiply_add(e, all(Base::two_high), row.first),
            multiply_add(e, all(Base::two_low), row.second)};
  }
}

// high + lead + low: |low| is far below |lead|, and high is 0 or |high| > |lead|. Single keeps the
// error below 0.8 ulp, double below 0.55.
inline lanes::f32 add_up(lanes::f32 high, lanes::f32 lead, lanes::f32 low) {
  return high + (lead + low);
}
inline lanes::f64 add_up(lanes::f64 high, lanes::f64 lead, lanes::f64 low) {
  const lanes::f64 sum = high + lead;
  return sum + (low + (lead - (sum - high)));
}

// ---- Rows -----------------------------------------------------------------------------------

// slope (m c - 1) as an exact sum of two parts, and rounded.
template <class T>
struct Reduced {
  V<T> lead, low, v;
};

template <class Base, class T>
inline Reduced<T> reduce(V<T> m, V<T> c) {
  using F = Format<T>;
  if constexpr (lanes::has_fma) {
    const V<T> r = multiply_add(m, c, T{-1});  // exact
    const V<T> v = r * Base::slope;
    return {v, multiply_add(r, all(Base::slope), -v), v};
  } else {
    const V<T> scaled = c * Base::slope;
    const V<T> leading = from_image((image(m) + F::half_trailing) & F::leading);
    const V<T> high = leading * scaled - Base::slope, low = (m - leading) * scaled;
    return {high, low, high + low};
  }
}

// The same with slope 1: the sum is exact.
template <class T>
inline V<T> reduce_plain(V<T> m, V<T> c) {
  if constexpr (lanes::has_fma) return multiply_add(m, c, T{-1});
  using F = Format<T>;
  const V<T> leading = from_image((image(m) + F::half_trailing) & F::leading);
  return (leading * c - T{1}) + (m - leading) * c;
}

// A table row for each reciprocal c rounded to row_bits.
template <class Base, class R, class T = typename Base::Real>
inline V<T> by_rows(V<T> x, R rest) {
  using F = Format<T>;
  constexpr int bits = Base::row_bits;
  constexpr auto unit = F::one - bits * F::exponent_step;  // the image of 2^-bits
  constexpr T shifter = F::shifter - (1 << (bits - 1));    // the least c has row 0
  const V<T> m = from_image((image(x) & F::fraction) | unit);
  const V<T> t = T{1} / m + shifter;
  const V<T> c = t - shifter;
  const Pair<T> row = lanes::gather_rows<T>(Base::rows, image(t) & ((1 << bits) - 1));
  Pair<T> sum = add_exponent<Base, T>(lanes::biased_exponent(x), row);
  if constexpr (Base::slope == 1) {
    const V<T> r = reduce_plain<T>(m, c);
    if constexpr (std::is_same_v<R, Rest<T>>) {
      const V<T> power = from_image(image(m) - image(x) + (F::one + bits * F::exponent_step));
      sum.second += rest_term<T>(rest, c * (T{1} / (1 << bits)) * power, r);
    }
    const V<T> p = lanes::horner(r, Base::row_polynomial);
    return add_up(sum.first, r, multiply_add(r * r, p, sum.second));
  } else {
    const Reduced<T> r = reduce<Base, T>(m, c);
    const V<T> p = lanes::horner(r.v, Base::row_polynomial);
    return add_up(sum.first, r.lead, multiply_add(r.v, p, r.low + sum.second));
  }
}

// ---- Cells ----------------------------------------------------------------------------------

// A table row for each of 16 cells of m, in registers. m c - 1 is exact when fused.
template <class Base, class R, class T = typename Base::Real>
inline V<T> by_cells(V<T> x, R rest) {
  using F = Format<T>;
  const V<T> m = lanes::mantissa_around_one(x);
  const I<T> cell = image(m) >> (F::fraction_bits - 4);
  const V<T> c = lanes::look_up(Base::cells[0], cell);
  const Pair<T> row = {lanes::look_up(Base::cells[1], cell), lanes::look_up(Base::cells[2], cell)};
  Pair<T> sum = add_exponent<Base, T>(lanes::exponent(x), row);
  const V<T> r = multiply_add(m, c, T{-1});
  if constexpr (std::is_same_v<R, Rest<T>>) {
    const V<T> power = from_image(image(m) - image(x) + F::one);
    sum.second += rest_term<T>(rest, c * power, r);
  }
  const V<T> p = lanes::horner(r, Base::cell_polynomial);
  if constexpr (Base::log_e == 1) {
    return add_up(sum.first, r, multiply_add(r * r, p, sum.second));
  } else if constexpr (std::is_same_v<T, float>) {
    return sum.first + multiply_add(r, all(Base::log_e), multiply_add(r, p, sum.second));
  } else {
    const V<T> lead = r * Base::log_e;
    const V<T> lead_low = multiply_add(r, all(Base::log_e), -lead);
    return add_up(sum.first, lead, multiply_add(r, p, lead_low + sum.second));
  }
}

// ---- Together -------------------------------------------------------------------------------

// log_b(x + rest), x normal and positive.
template <class Base, class R = NoRest>
inline auto logarithm(V<typename Base::Real> x, R rest = {}) {
  constexpr bool single = std::is_same_v<typename Base::Real, float>;
  if constexpr (single ? lanes::has_single_register_tables : lanes::has_register_tables) {
    return by_cells<Base>(x, rest);
  } else {
    return by_rows<Base>(x, rest);
  }
}

// Lanes that are not positive normal numbers.
inline lanes::Doubt<float> care(lanes::f32 x) {
  const auto moved = std::bit_cast<lanes::i32>(std::bit_cast<lanes::u32>(x) + limits::slog::offset);
  return lanes::above(moved, limits::slog::last_image);
}
inline lanes::Doubt<double> care(lanes::f64 x) {
  const auto moved = std::bit_cast<lanes::i64>(std::bit_cast<lanes::u64>(x) + limits::dlog::offset);
  return lanes::high_word_above(moved, limits::dlog::last_high_word);
}

}  // namespace qor::kernels::log_vector
