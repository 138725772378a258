// To an integer in each direction, a register at a time.
//
// Where the level has no rounding instruction, all rests on a shift by S = 2^(p - 1), p the bits of
// the significand: (t + S) - S is the integer nearest to t for 0 <= t < S, to nearest being in
// force. From S on a value is an integer itself; such lanes, infinities and NaN pass by, and the
// arithmetic sees 0 in their place, so that they raise no flag.
#pragma once

#include <limits>
#include <type_traits>

#include "kernels/lanes.h"

namespace qor::kernels::rounding {

using lanes::Direction;

template <class V>
using ElementOf = std::remove_cvref_t<decltype(V{}[0])>;

template <class T>
inline constexpr T kShift = 1 / std::numeric_limits<T>::epsilon();

template <class V>
struct Shifted {
  V small;      // x where |x| < S, elsewhere 0
  V passed;     // x, quieted, where |x| >= S, elsewhere 0
  V magnitude;  // |small|
  V nearest;    // the integer nearest to the magnitude, ties to even

  // An integer with the sign of x, and the lanes that passed by.
  V finish(V integer) const {
    const V signed_integer = lanes::with_sign(integer, small);
    return lanes::from_bits(lanes::bits(signed_integer) | lanes::bits(passed));
  }
};

// x, a signalling NaN quieted: a product with a 1 that the compiler does not see.
template <class V>
inline V quieted(V x) {
  V one = lanes::broadcast(ElementOf<V>{1});
  asm("" : "+x"(one));
  return x * one;
}

// The integer nearest to a magnitude not above S, ties to even.
template <class V>
inline V nearest_of_magnitude(V t) {
  if constexpr (lanes::has_round) return lanes::round_to<Direction::nearest>(t);
  constexpr auto s = kShift<ElementOf<V>>;
  return (t + s) - s;
}

template <class V>
inline Shifted<V> shift(V x) {
  constexpr auto s = kShift<ElementOf<V>>;
  const auto large = lanes::magnitude_from(lanes::abs(x), s);
  const V small = lanes::from_bits(lanes::bits(x) & ~large);
  const V passed = lanes::from_bits(lanes::bits(quieted(x)) & large);
  const V magnitude = lanes::abs(small);
  return {small, passed, magnitude, nearest_of_magnitude(magnitude)};
}

// 1 in the lanes of a mask, +0 elsewhere.
template <class V, class M>
inline V one_where(M mask) {
  return lanes::from_bits(lanes::bits(lanes::broadcast(ElementOf<V>{1})) & mask);
}

template <class V>
inline V nearest(V x) {
  if constexpr (lanes::has_round) return lanes::round_to<Direction::nearest>(x);
  const Shifted<V> s = shift(x);
  return s.finish(s.nearest);
}

template <class V>
inline V to_zero(V x) {
  if constexpr (lanes::has_round) return lanes::round_to<Direction::to_zero>(x);
  const Shifted<V> s = shift(x);
  return s.finish(s.nearest - one_where<V>(s.magnitude < s.nearest));
}

template <class V>
inline V down(V x) {
  if constexpr (lanes::has_round) return lanes::round_to<Direction::down>(x);
  const Shifted<V> s = shift(x);
  const V r = lanes::with_sign(s.nearest, s.small);
  return s.finish(r - one_where<V>(s.small < r));
}

template <class V>
inline V up(V x) {
  if constexpr (lanes::has_round) return lanes::round_to<Direction::up>(x);
  const Shifted<V> s = shift(x);
  const V r = lanes::with_sign(s.nearest, s.small);
  return s.finish(r + one_where<V>(r < s.small));
}

// Halves away from zero. With the instruction: the largest number below one half, added with the
// sign of x, carries x across an integer exactly when its fraction is a half or more.
template <class V>
inline V half_away(V x) {
  using T = ElementOf<V>;
  constexpr T half = T{1} / 2;
  if constexpr (lanes::has_round) {
    constexpr T below_half = half - std::numeric_limits<T>::epsilon() / 4;
    const V once = lanes::loaded_once(x);
    return lanes::round_to<Direction::to_zero>(
        once + lanes::with_sign(lanes::broadcast(below_half), once));
  }
  const Shifted<V> s = shift(x);
  return s.finish(s.nearest + one_where<V>(s.magnitude - s.nearest == half));
}

}  // namespace qor::kernels::rounding
