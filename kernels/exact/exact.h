// Exact arithmetic: values as unevaluated sums of two numbers, in registers and in scalars alike.
//
// V is a register of the level or float or double; u is 2^-53 (2^-24). Rounding is to nearest, and
// nothing here overflows or has lost bits below the smallest normal number: kernels see to that by
// their special lanes. Where a result is not exact, its relative error is given to first order in
// u, for operands whose parts are those of one rounding: |low| <= u |high|.
//
// Sources. Dekker, A floating-point technique for extending the available precision, 1971. Knuth,
// The Art of Computer Programming 2, 1969, section 4.2.2. Joldes, Muller, Popescu, Tight and
// rigorous error bounds for basic building blocks of double-word arithmetic, 2017. Lefevre, Louvet,
// Muller, Picot, Rideau, Accurate calculation of Euclidean norms using double-word arithmetic,
// 2023.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "kernels/lanes.h"

namespace qor::kernels::exact {

// high + low.
template <class V>
struct Sum {
  V high, low;
};

template <class V>
inline constexpr bool is_single = std::is_same_v<V, float> || std::is_same_v<V, lanes::f32>;
template <class V>
using Element = std::conditional_t<is_single<V>, float, double>;

// ---- Parts of one number --------------------------------------------------------------------

// x without its last `dropped` bits.
template <int dropped, class V>
inline V leading(V x) {
  using Integer = std::conditional_t<is_single<V>, int32_t, int64_t>;
  constexpr auto mask = static_cast<Integer>(-(int64_t{1} << dropped));
  if constexpr (std::is_floating_point_v<V>) {
    return std::bit_cast<V>(std::bit_cast<Integer>(x) & mask);
  } else {
    return lanes::from_bits(lanes::bits(x) & mask);
  }
}

// x rounded to as many bits, a half away from zero.
template <int dropped, class V>
inline V nearest_leading(V x) {
  using Integer = std::conditional_t<is_single<V>, int32_t, int64_t>;
  constexpr Integer half = Integer{1} << (dropped - 1);
  if constexpr (std::is_floating_point_v<V>) {
    return leading<dropped>(std::bit_cast<V>(std::bit_cast<Integer>(x) + half));
  } else {
    return leading<dropped>(lanes::from_bits(lanes::bits(x) + half));
  }
}

// ---- Sums and products of two numbers -------------------------------------------------------

// a + b, exact for |a| >= |b| or a = 0 (Dekker).
template <class V>
inline Sum<V> fast_two_sum(V a, V b) {
  const V sum = a + b;
  return {sum, b - (sum - a)};
}

// a + b, exact (Knuth).
template <class V>
inline Sum<V> two_sum(V a, V b) {
  const V sum = a + b, of_b = sum - a;
  return {sum, (a - (sum - of_b)) + (b - of_b)};
}

// a b + c rounded once; for levels with the instruction.
template <class V>
inline V fused(V a, V b, V c) {
  static_assert(lanes::has_fma && sizeof(V) != 0);
  if constexpr (std::is_floating_point_v<V>) {
    return std::fma(a, b, c);
  } else {
    return lanes::multiply_add(a, b, c);
  }
}

// a b, exact. Without fused multiply-add by halves (Dekker), |a| and |b| below 2^996 (2^115).
template <class V>
inline Sum<V> two_product(V a, V b) {
  const V product = a * b;
  if constexpr (lanes::has_fma) {
    return {product, fused(a, b, -product)};
  } else {
    using T = Element<V>;
    constexpr T splitter = (1 << (std::numeric_limits<T>::digits + 1) / 2) + 1;
    const auto upper_half = [](V x) {
      const V scaled = x * splitter;
      return scaled - (scaled - x);
    };
    const V a_high = upper_half(a), b_high = upper_half(b);
    const V a_low = a - a_high, b_low = b - b_high;
    const V rest = ((a_high * b_high - product) + a_high * b_low) + a_low * b_high;
    return {product, rest + a_low * b_low};
  }
}

// x^2: fused exact; otherwise the first part, of x without `dropped` bits, exact with as many bits
// as that leaves twice, and the second within 2 u of itself.
template <int dropped, class V>
inline Sum<V> square(V x) {
  if constexpr (lanes::has_fma) {
    return two_product(x, x);
  } else {
    const V high = leading<dropped>(x);
    return {high * high, (x - high) * (x + high)};
  }
}

// s - g^2, g nearly the root of s; but for a rounding in its last bits exact. `dropped` is half of
// the bits.
template <int dropped, class V>
inline V minus_square(V s, V g) {
  if constexpr (lanes::has_fma) {
    return fused(-g, g, s);
  } else {
    const Sum<V> parts = square<dropped>(g);
    return (s - parts.high) - parts.low;
  }
}

// ---- Arithmetic in two parts ----------------------------------------------------------------

// x + y to 3 u^2 (Joldes and others, algorithm 6).
template <class V>
inline Sum<V> add(Sum<V> x, Sum<V> y) {
  const Sum<V> high = two_sum(x.high, y.high), low = two_sum(x.low, y.low);
  const Sum<V> sum = fast_two_sum(high.high, high.low + low.high);
  return fast_two_sum(sum.high, low.low + sum.low);
}

// x y to 5 u^2 (their algorithm 11, where products are not fused one by one).
template <class V>
inline Sum<V> multiply(Sum<V> x, Sum<V> y) {
  const Sum<V> product = two_product(x.high, y.high);
  return fast_two_sum(product.high, product.low + (x.high * y.low + x.low * y.high));
}

// x / y to 15 u^2 (their algorithm 17).
template <class V>
inline Sum<V> divide(Sum<V> x, Sum<V> y) {
  const V quotient = x.high / y.high;
  const Sum<V> product = two_product(quotient, y.high);
  const V missing = (x.high - product.high) - product.low;
  return fast_two_sum(quotient, (missing + (x.low - quotient * y.low)) / y.high);
}

// The root of x to 25/8 u^2, x above 0 (Lefevre and others).
template <class V>
inline Sum<V> square_root(Sum<V> x) {
  const V root = [&] {
    if constexpr (std::is_floating_point_v<V>) {
      return std::sqrt(x.high);
    } else {
      return lanes::sqrt(x.high);
    }
  }();
  const Sum<V> square = two_product(root, root);
  const V missing = (x.high - square.high) - square.low;
  return fast_two_sum(root, (missing + x.low) / (root + root));
}

}  // namespace qor::kernels::exact
