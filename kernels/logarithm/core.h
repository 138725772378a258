// The vector paths of the logarithms: log_b(x) and log_b(x + rest) for normal x > 0.
//
// x = 2^e m, m c = 1 + r for a reciprocal c of m, and log_b(x) = e log_b(2) - log_b(c) +
// log_b(1 + r) (Tang, 1990). The leading parts add up exactly or with their error kept; everything
// else is small beside the result and is summed first, so that the error is little above that of
// one rounding. Beside 1, e log_b(2) - log_b(c) is 0, so small results keep their relative
// accuracy.
//
// Without fused multiply-add, c is a rounded quotient and has a table row for each of its values;
// with it, c belongs to a cell of m and comes with the row. The processor's reciprocal estimates
// have no part in it: a level gives the same bits on every processor.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "kernels/exact/exact.h"
#include "kernels/frame.h"
#include "kernels/lanes.h"
#include "kernels/logarithm/bases.h"
#include "kernels/logarithm/constants.h"
#include "kernels/logarithm/limits.h"
#include "kernels/scalar/bits.h"

namespace qor::kernels::log_vector {

using lanes::bits;
using lanes::broadcast;
using lanes::from_bits;
using lanes::Lanes;
using lanes::multiply_add;

template <class T>
using V = typename Lanes<T>::V;
template <class T>
using I = typename Lanes<T>::I;
template <class T>
using Pair = lanes::Two<V<T>>;

// Registers a step: two side by side take a tenth less time.
inline constexpr int registers = 2;

// ---- Parts ----------------------------------------------------------------------------------

// Images of 1 and of the parts of a number.
template <class T>
struct BitLayout : log_constants::NumberLayout<T> {
  using Base = log_constants::NumberLayout<T>;
  using Integer = typename Lanes<T>::Integer;
  static constexpr Integer exponent_step = Integer{1} << Base::fraction_bits;
  static constexpr Integer one = Base::bias * exponent_step;
  static constexpr Integer fraction = exponent_step - 1;
  // The end of the fraction without which products with c are exact.
  static constexpr int trailing_bits = Base::fraction_bits == 52 ? 26 : 12;
  static constexpr T shifter = static_cast<T>(3) * (Integer{1} << (Base::fraction_bits - 1));
};

// The second part of an argument, below an ulp of the first; or none.
template <class T>
struct Rest {
  V<T> value;
};
struct NoRest {};

// Where the argument's exponent is that of another number, how much is to be taken off it; or
// nothing.
template <class T>
struct Excess {
  V<T> value;
};
struct NoExcess {};
template <class T>
inline V<T> less(V<T> e, Excess<T> excess) {
  return e - excess.value;
}
template <class V>
inline V less(V e, NoExcess) {
  return e;
}

// What a rest adds to the low parts, close to ln(1 + r + rest) - ln(1 + r). `scale` takes x to m c.
// When the rest is tiny, r is 0, so that nothing underflows.
template <class T>
inline V<T> rest_term(Rest<T> rest, V<T> scale, V<T> r) {
  const V<T> scaled = rest.value * scale;
  return multiply_add(-r, scaled, scaled);
}

// e log_b(2), added to a table's logarithm.
template <class Base, class T>
inline Pair<T> add_exponent(V<T> e, Pair<T> row) {
  if constexpr (Base::two_low == 0) {
    return {e + row.first, row.second};
  } else {
    return {multiply_add(e, broadcast(Base::two_high), row.first),
            multiply_add(e, broadcast(Base::two_low), row.second)};
  }
}

// high + lead + (low + x p): the last two are far below the lead, and high is 0 or |high| > |lead|.
// In double the error of the first sum is kept.
inline lanes::f32 add_up(lanes::f32 high, lanes::f32 lead, lanes::f32 low, lanes::f32 x,
                         lanes::f32 p) {
  return high + (lead + multiply_add(x, p, low));
}
inline lanes::f64 add_up(lanes::f64 high, lanes::f64 lead, lanes::f64 low, lanes::f64 x,
                         lanes::f64 p) {
  const exact::Sum<lanes::f64> sum = exact::fast_two_sum(high, lead);
  return sum.high + multiply_add(x, p, low + sum.low);
}

// high + r - r^2/2 + r^3 p + low, the largest first. In cells as large as these the square is large
// enough for its rounding, and that of the sum with it, to be kept.
template <class T>
inline V<T> add_up_apart(Pair<T> log, V<T> r, V<T> p) {
  const V<T> half = broadcast(T{-0.5});
  const exact::Sum<V<T>> square = exact::two_product(r, r);
  const exact::Sum<V<T>> first = exact::fast_two_sum(log.first, r);
  const V<T> second = multiply_add(square.high, half, first.high);
  const V<T> lost = multiply_add(square.high, half, first.high - second) + first.low;
  const V<T> cubic = multiply_add(square.high * r, p, log.second);
  return second + (lost + multiply_add(square.low, half, cubic));
}

// At 512 bits the count of operations bounds the speed, below it the length of their chain.
template <class V, class T, std::size_t count>
inline V polynomial(V x, const T (&coefficients)[count]) {
  if constexpr (lanes::register_bytes == 64) {
    return lanes::horner(x, coefficients);
  } else {
    return lanes::estrin(x, coefficients);
  }
}

// ---- Rows -----------------------------------------------------------------------------------

// A table row for each reciprocal c rounded to row_bits. The products of c slope with the leading
// bits of m and with the others are exact; with slope 1 so is their sum.
template <class Base, class R, class E, class T = typename Base::Real>
inline V<T> by_rows(V<T> x, R rest, E excess) {
  using F = BitLayout<T>;
  constexpr int row_bits = Base::row_bits;
  constexpr auto unit = F::one - row_bits * F::exponent_step;  // the bits of 2^-row_bits
  constexpr T shifter = F::shifter - (1 << (row_bits - 1));    // the least c has row 0
  const V<T> m = from_bits((bits(x) & F::fraction) | unit);
  const V<T> t = T{1} / m + shifter;
  const V<T> c = t - shifter;
  const Pair<T> row = lanes::gather_entries<T>(Base::rows, bits(t) & ((1 << row_bits) - 1));
  Pair<T> sum = add_exponent<Base, T>(less(lanes::biased_exponent(x), excess), row);

  const V<T> leading = exact::nearest_leading<F::trailing_bits>(m);
  const V<T> scaled = c * Base::slope;
  const V<T> v_high = leading * scaled - Base::slope, v_low = (m - leading) * scaled;
  const V<T> v = v_high + v_low;
  const V<T> p = polynomial(v, Base::row_polynomial);
  if constexpr (Base::slope != 1) return add_up(sum.first, v_high, v_low + sum.second, v, p);
  if constexpr (std::is_same_v<R, Rest<T>>) {
    const V<T> power = from_bits(bits(m) - bits(x) + (F::one + row_bits * F::exponent_step));
    sum.second += rest_term<T>(rest, c * (T{1} / (1 << row_bits)) * power, v);
  }
  return add_up(sum.first, v, sum.second, v * v, p);
}

// ---- Cells ----------------------------------------------------------------------------------

// The reciprocal and the logarithm's parts for the cell of x's mantissa: that of its top bits.
template <class T>
struct CellRow {
  V<T> reciprocal;
  Pair<T> logarithm;
};

// The top bits of x's fraction; other bits stand above them.
template <std::size_t count, class T>
inline I<T> cell_index(V<T> x) {
  constexpr int last = BitLayout<T>::fraction_bits - std::countr_zero(count);
  return std::bit_cast<I<T>>(std::bit_cast<typename Lanes<T>::U>(x) >> last);
}

template <class T, std::size_t count>
inline CellRow<T> look_up_cell(const T (&cells)[3][count], V<T> x) {
  const I<T> i = cell_index<count, T>(x);
  return {lanes::look_up(cells[0], i), {lanes::look_up(cells[1], i), lanes::look_up(cells[2], i)}};
}
template <class T, std::size_t count>
inline CellRow<T> look_up_cell(const lanes::TableQuad<double> (&cells)[count], V<T> x) {
  const auto row = lanes::gather_entries(cells, cell_index<count, T>(x) & int64_t{count - 1});
  return {row.a, {row.b, row.c}};
}

// A table row for each cell of m. m c - 1 is exact when fused.
template <class Base, class R, class E, class T = typename Base::Real>
inline V<T> by_cells(V<T> x, R rest, E excess) {
  using F = BitLayout<T>;
  const V<T> m = lanes::mantissa_around_one(x);
  const CellRow<T> row = look_up_cell<T>(Base::cells, x);
  Pair<T> sum = add_exponent<Base, T>(less(lanes::exponent(x), excess), row.logarithm);
  const V<T> r = multiply_add(m, row.reciprocal, T{-1});
  const V<T> p = polynomial(r, Base::cell_polynomial);
  if constexpr (std::is_same_v<R, Rest<T>>) {
    const V<T> power = from_bits(bits(m) - bits(x) + F::one);
    sum.second += rest_term<T>(rest, row.reciprocal * power, r);
  }
  if constexpr (Base::log_e == 1) {
    if constexpr (Base::half_apart) return add_up_apart<T>(sum, r, p);
    return add_up(sum.first, r, sum.second, r * r, p);
  } else if constexpr (std::is_same_v<T, float> && Base::two_low == 0) {
    // Base 2: r log_e is the largest beside the logarithm; rounded once more it would cost 0.3 ulp.
    const V<T> high = multiply_add(r, broadcast(Base::log_e), sum.first);
    const V<T> lost = multiply_add(r, broadcast(Base::log_e), sum.first - high);
    return high + multiply_add(r, p, sum.second + lost);
  } else if constexpr (std::is_same_v<T, float>) {
    return sum.first + multiply_add(r, broadcast(Base::log_e), multiply_add(r, p, sum.second));
  } else {
    const exact::Sum<V<T>> lead = exact::two_product(r, broadcast(Base::log_e));
    return add_up(sum.first, lead.high, lead.low + sum.second, r, p);
  }
}

// ---- Together -------------------------------------------------------------------------------

// log_b(x + rest), x normal and positive. A rest needs base e.
template <class Base, class R = NoRest, class E = NoExcess>
inline auto logarithm(V<typename Base::Real> x, R rest = {}, E excess = {}) {
  if constexpr (lanes::has_fma) {
    return by_cells<Base>(x, rest, excess);
  } else {
    return by_rows<Base>(x, rest, excess);
  }
}

// A block with special lanes: `log` gives the logarithm of a normal number with some excess of the
// exponent, which takes denormals in their unit.
template <class T, class Log>
inline Complete<T> wide(V<T> x, lanes::LaneSet<T> special, Log log) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  const auto infinite = lanes::equal(x, broadcast(infinity)), zero = lanes::equal(x, V<T>{});
  const auto negative = lanes::negative(x).without(zero);
  const auto denormal = special.without(infinite | zero | negative);
  const V<T> m = lanes::select(denormal, lanes::denormal_units(x), broadcast(T{1}));
  constexpr T excess = -lanes::denormal_exponent<T>;
  V<T> y = log(lanes::select(special, m, x), Excess<T>{lanes::select(special, excess, T{0})});
  y = lanes::select(infinite, infinity, y);
  y = lanes::select(zero, -infinity, y);
  y = lanes::select(negative, default_nan<T>, y);
  return {.value = y, .domain = negative, .pole = zero};
}

// Lanes that are not positive normal numbers.
inline lanes::LaneSet<float> special(lanes::f32 x) {
  return lanes::outside(bits(x), limits::slog::first_image, limits::slog::last_image);
}
inline lanes::LaneSet<double> special(lanes::f64 x) {
  return lanes::outside(bits(x), limits::dlog::first_high_word, limits::dlog::last_high_word);
}

// A logarithm that is these steps alone, with a base of bases.h.
template <class T, template <class> class Base, int registers_of_a_step>
struct Logarithm : Tiered<T(T)> {
  static constexpr Traits traits{.group = registers_of_a_step, .nan_passes = true};

  V<T> core(V<T> x) const { return logarithm<Base<T>>(x); }
  lanes::LaneSet<T> special(V<T> x) const { return log_vector::special(x); }
  Complete<T> wide(V<T> x, lanes::LaneSet<T> special_lanes) const {
    return log_vector::wide<T>(x, special_lanes, [](V<T> m, auto excess) {
      return logarithm<Base<T>>(m, NoRest{}, excess);
    });
  }
};

// Lanes that are not above -1, or large.
inline lanes::LaneSet<float> special_of_log1p(lanes::f32 x) {
  constexpr int32_t sign_bit = std::numeric_limits<int32_t>::min();
  return lanes::above(bits(x), limits::slog1p::last_image) |
         lanes::above(bits(x) ^ sign_bit, limits::slog1p::negative_image);
}
inline lanes::LaneSet<double> special_of_log1p(lanes::f64 x) {
  constexpr int64_t sign_bit = std::numeric_limits<int64_t>::min();
  return lanes::high_word_above(bits(x), limits::dlog1p::last_high_word) |
         lanes::high_word_above(bits(x) ^ sign_bit, limits::dlog1p::negative_high_word);
}

}  // namespace qor::kernels::log_vector
