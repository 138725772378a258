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
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

template <class T>
struct CopySign : Everywhere<T(T, T)> {
  using typename Everywhere<T(T, T)>::V;
  static constexpr Traits traits{.group = 4, .aligned_stores = true};
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
struct NextAfter : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::I;
  using typename Guarded<T(T, T)>::LaneSet;
  static constexpr Traits traits{.group = 4};

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

QOR_FILL_ROW(s, CopySign, binary, CopySign<float>)
QOR_FILL_ROW(d, CopySign, binary, CopySign<double>)
QOR_FILL_ROW(s, NextAfter, binary, NextAfter<float>)
QOR_FILL_ROW(d, NextAfter, binary, NextAfter<double>)

}  // namespace qor::kernels
