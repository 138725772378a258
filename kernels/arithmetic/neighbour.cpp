// CopySign, NextAfter, single and double.
//
// Method.   NextAfter steps the bits of x by one, away from zero or towards it.
// Accuracy. exact.
// Special.  CopySign moves bits, NaN included. NextAfter: a NaN in either gives their sum; x = y
//           gives y; beyond the largest number infinity, code 3; a denormal or zero, code 4.

#include <bit>
#include <cmath>
#include <limits>

#include "kernels/frame/rows.h"
#include "kernels/frame/simple.h"
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

template <class T>
struct CopySign : Simple<T, 2> {
  using typename Simple<T, 2>::V;
  V core(V a, V b) const { return lanes::with_sign(lanes::abs(a), b); }
};

// Magnitudes that the vector path steps, one from either end of the normal range, by their bits
// (high words of a double).
template <class T>
struct Steppable {
  static constexpr int32_t first = 0x00800001, last = 0x7F7FFFFE;
};
template <>
struct Steppable<double> {
  static constexpr int32_t first = 0x00100001, last = 0x7FEFFFFE;
};

template <class T>
struct NextAfter : Binary<T> {
  using typename Binary<T>::V;
  using typename Binary<T>::I;
  using typename Binary<T>::LaneSet;
  static constexpr int registers = 4;
  static constexpr const char* name = sizeof(T) == sizeof(float) ? "vsNextAfter" : "vdNextAfter";

  V core(V x, V y) const {
    const I towards_zero = (x > T{0}) ^ (y > x);  // where x and y differ
    const I step = (towards_zero | 1) & (x != y);
    return lanes::from_bits(lanes::bits(x) + step);
  }

  LaneSet special(V x, V y) const {
    return lanes::magnitude_outside(x, Steppable<T>::first, Steppable<T>::last) |
           lanes::not_finite(y);
  }

  Outcome<T> scalar(T x, T y) const {
    if (std::isnan(x) || std::isnan(y)) return {nan_of(x, y)};
    const Bits<T> from = magnitude_bits(x), to = magnitude_bits(y);
    const bool same_sign = std::signbit(x) == std::signbit(y);
    if (from == to && (same_sign || from == 0)) return {y};
    if (from == 0) return step_to(1, y);
    return step_to(same_sign && from < to ? from + 1 : from - 1, x);
  }

  // The magnitude with these bits and the sign of `sign`, with the flag and code of a step there.
  static Outcome<T> step_to(Bits<T> magnitude, T sign) {
    const T value = std::copysign(std::bit_cast<T>(magnitude), sign);
    if (magnitude >= magnitude_bits(std::numeric_limits<T>::infinity())) {
      opaque(overflowed<T>());
      return {value, QOR_ERROR_OVERFLOW};
    }
    if (magnitude < magnitude_bits(std::numeric_limits<T>::min())) {
      opaque(underflowed<T>());
      return {value, QOR_ERROR_UNDERFLOW};
    }
    return {value};
  }
};

}  // namespace

QOR_FILL_ROW(s, CopySign, binary, A, 1, CopySign<float>)
QOR_FILL_ROW(d, CopySign, binary, A, 1, CopySign<double>)
QOR_FILL_ROW(s, NextAfter, binary, A, 1, NextAfter<float>)
QOR_FILL_ROW(d, NextAfter, binary, A, 1, NextAfter<double>)

}  // namespace qor::kernels
