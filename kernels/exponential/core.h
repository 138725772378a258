// What the vector paths of the exponentials share: b^x = 2^(k / steps) b^r.
//
// The powers come from a table in two parts, small where the level keeps such tables in registers
// (with a longer polynomial), else of as many steps as the function asks for.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "kernels/exponential/tables/exp_tables.h"
#include "kernels/frame.h"
#include "kernels/lanes.h"

namespace qor::kernels::exp_core {

using lanes::bits;
using lanes::broadcast;
using lanes::f32;
using lanes::f64;
using lanes::i32;
using lanes::i64;
using lanes::multiply_add;

// Registers of a group: two at 256 bits take a tenth less time an element than one by one, at 512
// bits a tenth more.
inline constexpr int registers = lanes::register_bytes < 64 ? 2 : 1;

// x = k step + r, k being an integer in the low bits of `shifted`.
template <class T>
struct Reduced {
  typename lanes::Lanes<T>::V r;
  typename lanes::Lanes<T>::I shifted;
};

// A step in two parts, the first such that x - k high is exact.
template <class T>
struct Step {
  T per_unit, shifter, high, low;
};

template <class T>
inline Reduced<T> reduce(typename lanes::Lanes<T>::V x, const Step<T>& step) {
  const auto t = multiply_add(x, broadcast(step.per_unit), step.shifter);
  const auto k = t - step.shifter;
  return {multiply_add(k, broadcast(-step.low), multiply_add(k, broadcast(-step.high), x)),
          bits(t)};
}

// The same with r also as the exact head - small, for a lead that no rounding touches.
template <class T>
struct ReducedInParts {
  typename lanes::Lanes<T>::V r, head, small;
  typename lanes::Lanes<T>::I shifted;
};
template <class T>
inline ReducedInParts<T> reduce_in_parts(typename lanes::Lanes<T>::V x, const Step<T>& step) {
  const auto t = multiply_add(x, broadcast(step.per_unit), step.shifter);
  const auto k = t - step.shifter;
  const auto head = multiply_add(k, broadcast(-step.high), x);
  return {multiply_add(k, broadcast(-step.low), head), head, k * step.low, bits(t)};
}

// Of a step that is a power of two, which the shifter's unit says: exact.
template <class T>
inline Reduced<T> reduce(typename lanes::Lanes<T>::V x, T shifter) {
  const auto t = x + shifter;
  return {x - (t - shifter), bits(t)};
}

// y 2^floor(shifted / steps), for steps = 2^index_bits, added to the bits: y and the result are
// normal.
template <int index_bits>
inline f32 scaled(f32 y, i32 shifted) {
  return lanes::from_bits(bits(y) + ((shifted >> index_bits) << 23));
}
template <int index_bits>
inline f64 scaled(f64 y, i64 shifted) {
  constexpr int64_t index_mask = (int64_t{1} << index_bits) - 1;
  return lanes::from_bits(bits(y) + ((shifted & ~index_mask) << (52 - index_bits)));
}

// 2^floor(shifted / steps) itself.
template <int index_bits>
inline f32 power(i32 shifted) {
  return lanes::from_bits(((shifted + (127 << index_bits)) << (23 - index_bits)) & 0x7F800000);
}

// ---- Steps and tables of the level ----------------------------------------------------------

template <class T>
inline constexpr bool short_tables = lanes::has_register_tables<T>;

// Steps to a factor of two where a function's own table has `table_steps`.
template <class T, int table_steps>
inline constexpr int steps = short_tables<T> ? 16 : table_steps;

// A function's step, stated for its own table, as the level has it.
template <int table_steps>
constexpr Step<double> step_of_level(Step<double> step) {
  constexpr double ratio = static_cast<double>(table_steps) / steps<double, table_steps>;
  return {step.per_unit / ratio, step.shifter, step.high * ratio, step.low * ratio};
}

// The same for float, where the short step is another split: multiply-add takes all of its bits.
template <int table_steps>
constexpr Step<float> step_of_level(Step<float> step, lanes::TablePair<float> short_step) {
  if constexpr (!short_tables<float>) return step;
  constexpr float ratio = static_cast<float>(table_steps) / steps<float, table_steps>;
  return {step.per_unit / ratio, step.shifter, short_step.high, short_step.low};
}

// The table's row of a shifted index, where the tables are in memory.
template <int table_steps>
inline lanes::Two<f32> power_row(i32 shifted) {
  static_assert(table_steps == 64 || table_steps == 128);
  if constexpr (table_steps == 64)
    return lanes::gather_entries(tables::exp2_float_64, shifted & 63);
  return lanes::gather_entries(tables::exp2_float_128, shifted & 127);
}
template <int table_steps>
inline lanes::Two<f64> power_row(i64 shifted) {
  static_assert(table_steps == 64 || table_steps == 128);
  if constexpr (table_steps == 64) {
    return lanes::gather_entries(tables::exp2_double_64, shifted & 63);
  }
  return lanes::gather_entries(tables::exp2_double_128, shifted & 127);
}

// 2^(shifted / steps) (1 + q), by a table in memory.
template <int table_steps, class V, class I>
inline V times_power(V q, I shifted) {
  const auto [high, low] = power_row<table_steps>(shifted);
  return scaled<std::countr_zero(unsigned{table_steps})>(high + multiply_add(q, high, low),
                                                         shifted);
}

// 2^(shifted / steps) (1 + r + rest r), |rest| below 1/3: the sum never falls while r rises, since
// what the roundings of `rest` change is small against the steps of r itself. (A product with
// 1 + rest, rounded, may gain an ulp where |r| loses less than that.)
template <int table_steps, class V, class I>
inline V times_growth(V r, V rest, I shifted) {
  if constexpr (lanes::has_fma) return times_power<table_steps>(multiply_add(rest, r, r), shifted);
  const auto [high, low] = power_row<table_steps>(shifted);
  const V high_r = high * r;
  const V sum = (low + high_r) + rest * high_r;
  return scaled<std::countr_zero(unsigned{table_steps})>(sum + high, shifted);
}

// 2^(shifted / 16) (1 + lead + factor x), by the short table.
inline f32 times_short_power(f32 lead, f32 factor, f32 x, i32 shifted) {
  const f32 base = lanes::look_up(tables::exp2_float_16_bases, shifted);
  const f32 rest = lanes::look_up(tables::exp2_float_16_rests, shifted);
  const f32 power = lanes::from_bits(bits(base) + (shifted << 19));
  return multiply_add(power, lead + multiply_add(factor, x, rest), power);
}

// 2^(shifted / 16) (1 + lead + rest) with an exact lead: the sum is not small enough for a rounding
// of its own, so what its sum with the power loses is kept.
inline f64 times_short_power(f64 lead, f64 rest, i64 shifted) {
  const f64 high = lanes::look_up(tables::exp2_double_16_high, shifted);
  const f64 low = lanes::look_up(tables::exp2_double_16_low, shifted);
  const f64 sum = multiply_add(lead, high, high);
  const f64 lost = multiply_add(lead, high, high - sum);
  return scaled<4>(sum + (lost + multiply_add(rest, high, low)), shifted);
}

// ---- Wide form ------------------------------------------------------------------------------

// Where results leave the type's range: +infinity from `overflow` up, 0 from `underflow` down.
template <class T>
struct Range {
  T overflow, underflow;
};

// A block with special lanes: `core` on the ordinary ones; infinities and results beyond the range.
// What is left are results at the range's ends, denormal ones above all.
template <class T, class V, class Core>
inline Wide<T> wide(V x, lanes::LaneSet<T> special, Range<T> range, Core core) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  const auto infinite = lanes::equal(lanes::abs(x), broadcast(infinity));
  const auto above = lanes::at_least(x, range.overflow);
  const auto below = lanes::at_most(x, range.underflow);
  V y = core(lanes::select(special, T{0}, x));
  y = lanes::select(above, infinity, y);
  y = lanes::select(below, T{0}, y);
  return {.value = y,
          .left = special.without(above | below),
          .overflow = above.without(infinite),
          .underflow = below.without(infinite)};
}

}  // namespace qor::kernels::exp_core
