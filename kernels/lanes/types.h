// The instruction level, and the register types that it gives.
#pragma once

#include <cstdint>

namespace qor::lanes {

#if defined(__AVX512F__) && defined(__AVX512DQ__)
#define QOR_LANES_512 1
inline constexpr int register_bytes = 64;
#elif defined(__AVX2__) && defined(__FMA__)
#define QOR_LANES_256 1
inline constexpr int register_bytes = 32;
#else
inline constexpr int register_bytes = 16;
#endif

// Whether multiply_add rounds once.
#if defined(__FMA__)
inline constexpr bool has_fma = true;
#else
inline constexpr bool has_fma = false;
#endif

using f32 [[gnu::vector_size(register_bytes)]] = float;
using f64 [[gnu::vector_size(register_bytes)]] = double;
using i32 [[gnu::vector_size(register_bytes)]] = int32_t;
using u32 [[gnu::vector_size(register_bytes)]] = uint32_t;
using i64 [[gnu::vector_size(register_bytes)]] = int64_t;
using u64 [[gnu::vector_size(register_bytes)]] = uint64_t;

// The types that go with an element type: register V, integer bits I and U, lane mask M (all ones
// or all zeros per lane), count of lanes.
template <class T>
struct Lanes;

template <>
struct Lanes<float> {
  using V = f32;
  using I = i32;
  using U = u32;
  using M = decltype(f32{} < f32{});
  using Integer = int32_t;
  static constexpr int count = register_bytes / 4;
};

template <>
struct Lanes<double> {
  using V = f64;
  using I = i64;
  using U = u64;
  using M = decltype(f64{} < f64{});
  using Integer = int64_t;
  static constexpr int count = register_bytes / 8;
};

// A pair of registers: two inputs, two outputs, or high and low parts.
template <class V>
struct Two {
  V first, second;
};

}  // namespace qor::lanes
