// What the vector paths of the exponentials share: b^x = 2^(k / steps) b^r.
//
// The powers come from a table in two parts, small where the level keeps such tables in registers
// (with a longer polynomial), else of as many steps as the function asks for.
#pragma once

#include "kernels/exponential/tables/exp_tables.h"
#include "kernels/lanes.h"

namespace qor::kernels::exp_core {

using lanes::all;
using lanes::f32;
using lanes::f64;
using lanes::i32;
using lanes::i64;
using lanes::image;
using lanes::multiply_add;

// Registers of a group: two at 256 bits take a tenth less time an element than one by one, at 512
// bits a tenth more.
inline constexpr int registers = lanes::register_bytes < 64 ? 2 : 1;

// x = k step + r, k being an integer in the low bits of `bits`.
template <class T>
struct Reduced {
  typename lanes::Lanes<T>::V r;
  typename lanes::Lanes<T>::I bits;
};

// A step in two parts, the first such that x - k high is exact.
template <class T>
struct Step {
  T per_unit, shifter, high, low;
};

template <class T>
inline Reduced<T> reduce(typename lanes::Lanes<T>::V x, const Step<T>& step) {
  const auto t = multiply_add(x, all(step.per_unit), step.shifter);
  const auto k = t - step.shifter;
  return {multiply_add(k, all(-step.low), multiply_add(k, all(-step.high), x)), image(t)};
}

// The same with r also as the exact head - small, for a lead that no rounding touches.
template <class T>
struct ReducedInParts {
  typename lanes::Lanes<T>::V r, head, small;
  typename lanes::Lanes<T>::I bits;
};
template <class T>
inline ReducedInParts<T> reduce_in_parts(typename lanes::Lanes<T>::V x, const Step<T>& step) {
  const auto t = multiply_add(x, all(step.per_unit), step.shifter);
  const auto k = t - step.shifter;
  const auto head = multiply_add(k, all(-step.high), x);
  return {multiply_add(k, all(-step.low), head), head, k * step.low, image(t)};
}

// Of a step that is a power of two, which the shifter's unit says: exact.
template <class T>
inline Reduced<T> reduce(typename lanes::Lanes<T>::V x, T shifter) {
  const auto t = x + shifter;
  return {x - (t - shifter), image(t)};
}

// y 2^floor(bits / steps), for steps = 2^index_bits, added to the image: y and the result are
// normal.
template <int index_bits>
inline f32 scaled(f32 y, i32 bits) {
  return lanes::from_image(image(y) + ((bits >> index_bits) << 23));
}
template <int index_bits>
inline f64 scaled(f64 y, i64 bits) {
  constexpr int64_t index_mask = (int64_t{1} << index_bits) - 1;
  return lanes::from_image(image(y) + ((bits & ~index_mask) << (52 - index_bits)));
}

// 2^floor(bits / steps) itself.
template <int index_bits>
inline f32 power(i32 bits) {
  return lanes::from_image(((bits + (127 << index_bits)) << (23 - index_bits)) & 0x7F800000);
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
constexpr Step<float> step_of_level(Step<float> step, lanes::Row<float> short_step) {
  if constexpr (!short_tables<float>) return step;
  constexpr float ratio = static_cast<float>(table_steps) / steps<float, table_steps>;
  return {step.per_unit / ratio, step.shifter, short_step.high, short_step.low};
}

// 2^(bits / steps) (1 + q).
template <int table_steps>
inline f32 times_power(f32 q, i32 bits) {
  if constexpr (short_tables<float>) {
    const f32 high = lanes::look_up(tables::exp2_float_16_high, bits);
    const f32 low = lanes::look_up(tables::exp2_float_16_low, bits);
    return scaled<4>(multiply_add(q, high, low) + high, bits);
  } else if constexpr (table_steps == 64) {
    const auto row = lanes::gather_rows(tables::exp2_float_64, bits & 63);
    return power<6>(bits) * (row.first + multiply_add(q, row.first, row.second));
  } else {
    static_assert(table_steps == 128);
    const auto row = lanes::gather_rows(tables::exp2_float_128, bits & 127);
    return power<7>(bits) * (row.first + multiply_add(q, row.first, row.second));
  }
}

template <int table_steps>
inline f64 times_power(f64 q, i64 bits) {
  static_assert(table_steps == 64 || table_steps == 128);
  if constexpr (table_steps == 64) {
    const auto row = lanes::gather_rows(tables::exp2_double_64, bits & 63);
    return scaled<6>(multiply_add(q, row.first, row.second) + row.first, bits);
  } else {
    const auto row = lanes::gather_rows(tables::exp2_double_128, bits & 127);
    return scaled<7>(multiply_add(q, row.first, row.second) + row.first, bits);
  }
}

// The same by the short table, for q = lead + rest with an exact lead: q is not small enough there
// for a rounding of its own, so what its sum with the power loses is kept.
inline f64 times_short_power(f64 lead, f64 rest, i64 bits) {
  const f64 high = lanes::look_up(tables::exp2_double_16_high, bits);
  const f64 low = lanes::look_up(tables::exp2_double_16_low, bits);
  const f64 sum = multiply_add(lead, high, high);
  const f64 lost = multiply_add(lead, high, high - sum);
  return scaled<4>(sum + (lost + multiply_add(rest, high, low)), bits);
}

}  // namespace qor::kernels::exp_core
