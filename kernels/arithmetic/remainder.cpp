// Remainder, Fmod: what a division by y leaves of x, with the quotient rounded to nearest (halves
// to even) or cut towards zero, single and double.
//
// Method.   |x| / |y| rounded to an integer q by floating point, then |x| - q |y|, which is exact
//           for quotients up to a bound of the level, and a correction by |y| where q was one off.
//           Beyond the bound long division on integers, exact as well.
// Accuracy. exact.
// Special.  a zero result has the sign of x. |x| < |y| (Fmod) or y infinite gives x. A NaN is
//           quieted. Remainder: y zero a NaN, code 1; x infinite a NaN that is not reported. Fmod:
//           y zero or x infinite a NaN, code 2.
//
// Denormals are what they are here, in the mode that counts them as zero too.

#include <bit>
#include <cmath>

#include "kernels/arithmetic/long_division.h"
#include "kernels/arithmetic/rounding_core.h"
#include "kernels/frame/rows.h"
#include "kernels/scalar/bits.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

// ---- Vector path ----------------------------------------------------------------------------

// Quotients |x| / |y| below 2^quotient_bits have an exact vector path. Let p be the digits of the
// type and u the last place of |y|. |x| - q |y| is a multiple of u not above |y|, or of the last
// place of a smaller x: a number. A fused multiply-add yields it whenever q is at most one off, so
// up to 2^p. Without one, |y| is split into a high part and low_bits low bits; with quotient_bits =
// low_bits and 2 low_bits < p both products are exact, and |x| - q high, between -|y| / 2 and |x|
// and not above 2^p u, is exact too.
template <class T>
struct Reach {
  static constexpr int digits = std::numeric_limits<T>::digits;
  static constexpr int low_bits = (digits - 1) / 2;
  static constexpr int quotient_bits = lanes::has_fma ? digits : low_bits;
};

// Operands of the vector path, by the bits of their magnitudes (high words of a double). A
// divisor is so large that nothing on the way is denormal, so that it does not matter how the mode
// treats denormals; a dividend so small that the product with a quotient rounded up does not
// overflow.
template <class T>
struct Operands {
  static constexpr int32_t first_divisor = 0x0C800000, last_divisor = 0x7F7FFFFF;
  static constexpr int32_t last_dividend = 0x7EFFFFFF;
};
template <>
struct Operands<double> {
  static constexpr int32_t first_divisor = 0x03600000, last_divisor = 0x7FEFFFFF;
  static constexpr int32_t last_dividend = 0x7FDFFFFF;
};

// Lanes whose quotient of magnitudes may reach the bound: bits less than m steps of the exponent
// apart mean a quotient below 2^(m + 1).
inline lanes::LaneSet<float> far_apart(lanes::f32 x, lanes::f32 y) {
  const lanes::i32 apart = lanes::bits(lanes::abs(x)) - lanes::bits(lanes::abs(y));
  return lanes::above(apart, (Reach<float>::quotient_bits - 1) << 23);
}
inline lanes::LaneSet<double> far_apart(lanes::f64 x, lanes::f64 y) {
  const lanes::i64 apart = lanes::bits(lanes::abs(x)) - lanes::bits(lanes::abs(y));
  return lanes::high_word_above(apart, ((Reach<double>::quotient_bits - 1) << 20) - 1);
}

// x - q y with q an integer next to x / y: between -3/4 y and 3/4 y.
template <class V>
inline V reduce(V x, V y) {
  using T = rounding::ElementOf<V>;
  const V q = rounding::nearest_of_magnitude(x / y);
  if constexpr (lanes::has_fma) {
    return lanes::multiply_add(-q, y, x);
  } else {
    using Integer = typename lanes::Lanes<T>::Integer;
    constexpr Integer high_mask = ~((Integer{1} << Reach<T>::low_bits) - 1);
    const V high = lanes::from_bits(lanes::bits(y) & high_mask);
    return (x - q * high) - q * (y - high);
  }
}

template <class T, class V>
inline lanes::LaneSet<T> beyond_vector_path(V x, V y) {
  return lanes::magnitude_above(x, Operands<T>::last_dividend) |
         lanes::magnitude_outside(y, Operands<T>::first_divisor, Operands<T>::last_divisor) |
         far_apart(x, y);
}

template <class V, class M>
inline V where(M mask, V x) {
  return lanes::from_bits(lanes::bits(x) & mask);
}

// ---- Scalar ---------------------------------------------------------------------------------

// significand * 2^exponent with the sign of x, or the other one.
template <class T>
T compose_signed(uint64_t significand, int exponent, T x, bool opposite = false) {
  using Integer = typename lanes::Lanes<T>::Integer;
  const T magnitude = std::bit_cast<T>(static_cast<Integer>(compose<T>(significand, exponent)));
  return std::copysign(magnitude, std::signbit(x) != opposite ? T{-1} : T{1});
}

template <class T>
T fmod_by_long_division(T x, T y) {
  if (magnitude_bits(x) < magnitude_bits(y)) return x;
  const auto a = Scaled<T>::of(x), b = Scaled<T>::of(y);
  return compose_signed(divide(a, b).rest, b.exponent, x);
}

template <class T>
T remainder_by_long_division(T x, T y) {
  const auto a = Scaled<T>::of(x), b = Scaled<T>::of(y);
  if (a.exponent < b.exponent) {
    const bool above_half = a.exponent == b.exponent - 1 && a.significand > b.significand;
    if (!above_half) return x;
    return compose_signed(2 * b.significand - a.significand, a.exponent, x, true);
  }
  const Division division = divide(a, b);
  const uint64_t twice = 2 * division.rest;
  if (twice > b.significand || (twice == b.significand && division.odd_quotient)) {
    return compose_signed(b.significand - division.rest, b.exponent, x, true);
  }
  return compose_signed(division.rest, b.exponent, x);
}

// ---- Functions ------------------------------------------------------------------------------

template <class T>
struct Fmod : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::M;
  using typename Guarded<T(T, T)>::LaneSet;
  static constexpr Traits traits{.group = 2};

  V core(V x, V y) const {
    const V a = lanes::abs(x), b = lanes::abs(y);
    const M below = a < b;
    const V r = reduce(where(~below, a), b);
    const V rest = r + where(r < T{0}, b);
    return lanes::with_sign(below ? a : rest, x);
  }

  LaneSet special(V x, V y) const { return beyond_vector_path<T>(x, y); }

  Outcome<T> scalar(T x, T y) const {
    if (std::isnan(x) || std::isnan(y)) return {nan_of(x, y)};
    if (magnitude_bits(y) == 0 || std::isinf(x)) return {undefined<T>(), QOR_ERROR_SINGULARITY};
    if (std::isinf(y) || magnitude_bits(x) == 0) return {x};
    return {fmod_by_long_division(x, y)};
  }
};

template <class T>
struct Remainder : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::M;
  using typename Guarded<T(T, T)>::LaneSet;
  static constexpr Traits traits{.group = 2};
  static constexpr T nan_factor = static_cast<T>(1.7);  // any factor quiets a NaN

  V core(V x, V y) const {
    const V a = lanes::abs(x), b = lanes::abs(y), half = b * (T{1} / 2);
    const M below = a <= half;
    const V r = reduce(where(~below, a), b);
    const V rest = r - lanes::with_sign(where(lanes::abs(r) > half, b), r);
    return lanes::from_bits(lanes::bits(below ? a : rest) ^ lanes::sign_bit(x));
  }

  LaneSet special(V x, V y) const { return beyond_vector_path<T>(x, y); }

  Outcome<T> scalar(T x, T y) const {
    if (std::isnan(x)) return {x * nan_factor};
    if (std::isnan(y)) return {y * nan_factor};
    if (magnitude_bits(y) == 0) return {undefined<T>(), QOR_ERROR_DOMAIN};
    if (std::isinf(x)) return {undefined<T>()};
    if (std::isinf(y) || magnitude_bits(x) == 0) return {x};
    return {remainder_by_long_division(x, y)};
  }
};

}  // namespace

QOR_FILL_ROW(s, Remainder, binary, Remainder<float>)
QOR_FILL_ROW(d, Remainder, binary, Remainder<double>)
QOR_FILL_ROW(s, Fmod, binary, Fmod<float>)
QOR_FILL_ROW(d, Fmod, binary, Fmod<double>)

}  // namespace qor::kernels
