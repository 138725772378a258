// Bits, signs and broadcasts.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <utility>

#include "kernels/lanes/types.h"

namespace qor::lanes {

inline i32 bits(f32 x) { return std::bit_cast<i32>(x); }
inline i64 bits(f64 x) { return std::bit_cast<i64>(x); }
inline f32 from_bits(i32 bits) { return std::bit_cast<f32>(bits); }
inline f64 from_bits(i64 bits) { return std::bit_cast<f64>(bits); }

// A value in every lane.
template <class T>
inline typename Lanes<T>::V broadcast(T x) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return typename Lanes<T>::V{(static_cast<void>(lane), x)...};
  }
  (std::make_integer_sequence<int, Lanes<T>::count>{});
}

// Shifted as unsigned bits.
inline i32 shift_right(i32 x, int by) { return std::bit_cast<i32>(std::bit_cast<u32>(x) >> by); }
inline i64 shift_right(i64 x, int by) { return std::bit_cast<i64>(std::bit_cast<u64>(x) >> by); }

inline f32 abs(f32 x) { return from_bits(bits(x) & 0x7FFFFFFF); }
inline f64 abs(f64 x) { return from_bits(bits(x) & 0x7FFFFFFFFFFFFFFF); }

// The sign bit alone, and a magnitude (or any value without a sign) with that of `sign`.
inline i32 sign_bit(f32 x) { return bits(x) & std::numeric_limits<int32_t>::min(); }
inline i64 sign_bit(f64 x) { return bits(x) & std::numeric_limits<int64_t>::min(); }
inline f32 with_sign(f32 magnitude, f32 sign) {
  return from_bits(bits(magnitude) | sign_bit(sign));
}
inline f64 with_sign(f64 magnitude, f64 sign) {
  return from_bits(bits(magnitude) | sign_bit(sign));
}

}  // namespace qor::lanes
