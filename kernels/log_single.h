// The vector paths of the logarithms in single, without a table: log_b(x) for normal x > 0.
//
// x = 2^e m, m in [split, 2 split) around 1, r = m - 1 exact; log_b(x) = e log_b(2) + log_b(1 + r),
// the second by a polynomial whose leading term is exact (slope r) or fused.
#pragma once

#include <bit>
#include <cstdint>

#include "kernels/kernel_frame.h"
#include "kernels/lanes.h"
#include "kernels/log_constants.h"
#include "kernels/log_limits.h"
#include "kernels/log_polynomial.h"

namespace qor::kernels::log_single {

using lanes::all;
using lanes::f32;
using lanes::i32;
using lanes::image;
using lanes::multiply_add;
using lanes::u32;

// x = 2^exponent (1 + r)
struct Reduced {
  i32 exponent;
  f32 r;
};

template <int32_t split>
inline Reduced reduce(f32 x) {
  const i32 above_split = image(x) - split;
  const f32 m = lanes::from_image((above_split & 0x7FFFFF) + split);
  return {above_split >> 23, m - 1.0f};
}

inline f32 to_float(i32 x) { return __builtin_convertvector(x, f32); }

// ln 2 in two parts; an exponent times the first is exact.
inline constexpr float two_high = 0x1.62e4p-1f;
inline constexpr float two_low = 0x1.7f7d1cp-20f;

// (ln(1 + r) - r) / r^2, r in [-1/3, 1/3]
inline constexpr float ln_polynomial[] = {-0.5f,           0x1.555506p-2f,  -0x1.fffef0p-3f,
                                          0x1.99d028p-3f,  -0x1.559dccp-3f, 0x1.1ed718p-3f,
                                          -0x1.f3113cp-4f, 0x1.1e66bap-3f,  -0x1.080584p-3f};

// Lanes that are not positive normal numbers.
inline lanes::Doubt<float> care(f32 x) {
  const auto moved = std::bit_cast<i32>(std::bit_cast<u32>(x) + limits::slog::offset);
  return lanes::above(moved, limits::slog::last_image);
}

}  // namespace qor::kernels::log_single
