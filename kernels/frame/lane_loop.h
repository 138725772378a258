// The lane loop and its masked tail; the walk over elements of functions without a vector path.
#pragma once

#include <cstdint>

#include "kernels/frame/side_path.h"

namespace qor::kernels {

// Lanes of a block that need care, as bits.
template <class F>
inline uint32_t special_lanes(const F& f, const Inputs<F>& x) {
  if constexpr (has_side_path<F>) {
    return lanes::lane_bits(special_of(f, x));
  } else {
    return 0;
  }
}

// Runs groups of F::registers blocks, with one test of care for all, up to a group with a lane that
// needs care; returns where it stopped. For functions of a few instructions, where the test weighs,
// and for those whose chain of operations is too long for the processor to see the next block.
template <class F, class Vectors>
inline int64_t run_calm_groups(const F& f, const Vectors& vectors, int64_t i, int64_t n) {
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  constexpr int group = F::registers * width;
  for (; i + group <= n; i += group) {
    Inputs<F> x[F::registers];
    for (int r = 0; r < F::registers; ++r) {
      for (int k = 0; k < F::inputs; ++k) x[r].at[k] = vectors.load(k, i + r * width);
    }
    auto found = special_of(f, x[0]);
    for (int r = 1; r < F::registers; ++r) found = found | special_of(f, x[r]);
    if (lanes::lane_bits(found) != 0) [[unlikely]]
      return i;
    Computed<F> block[F::registers];
    uint32_t special = 0;
    for (int r = 0; r < F::registers; ++r) {
      block[r] = compute(f, x[r]);
      special |= block[r].special;
    }
    if (special != 0) [[unlikely]]
      return i;
    for (int r = 0; r < F::registers; ++r) {
      for (int k = 0; k < F::outputs; ++k) vectors.store(k, i + r * width, block[r].y.at[k]);
    }
  }
  return i;
}

// Runs whole blocks from element i on, up to one with a lane that needs care; returns where it
// stopped. A function of its own without any call in its loop, so that constants stay in registers
// (no vector register survives a call).
template <class F, class Vectors>
[[gnu::noinline]] int64_t run_calm_blocks(const F f, const Vectors& given, int64_t i, int64_t n) {
  const Vectors vectors = given;
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  if constexpr (requires { F::registers; }) i = run_calm_groups(f, vectors, i, n);
  for (; i + width <= n; i += width) {
    Inputs<F> x;
    for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load(k, i);
    if (special_lanes(f, x) != 0) [[unlikely]]
      return i;
    const Computed<F> block = compute(f, x);
    if (block.special != 0) [[unlikely]]
      return i;
    for (int k = 0; k < F::outputs; ++k) vectors.store(k, i, block.y.at[k]);
  }
  return i;
}

// Never inlined: its arithmetic stays between the environment's steps.
template <class F, class Vectors>
[[gnu::noinline]] void run_lanes(const F f, const Vectors& given, int64_t n, uint32_t mode) {
  const Vectors vectors = given;
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  int64_t i = 0;
  for (; i + width <= n; i += width) {
    i = run_calm_blocks<F, Vectors>(f, vectors, i, n);
    if (i + width > n) break;
    if constexpr (has_side_path<F>) {
      Inputs<F> x;
      for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load(k, i);
      const Outputs<F> y = special_block(f, vectors, i, x, special_lanes(f, x), mode);
      for (int k = 0; k < F::outputs; ++k) vectors.store(k, i, y.at[k]);
    }
  }
  if (i >= n) return;
  const int left = static_cast<int>(n - i);
  Inputs<F> x;
  for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load_first(k, i, left);
  const uint32_t special = special_lanes(f, x);
  const Outputs<F> y = [&] {
    if constexpr (has_side_path<F>) {
      if (special == 0) {
        const Computed<F> block = compute(f, x);
        if (block.special == 0) [[likely]]
          return block.y;
      }
      return special_block(f, vectors, i, x, special, mode);
    } else {
      return compute(f, x).y;
    }
  }();
  for (int k = 0; k < F::outputs; ++k) vectors.store_first(k, i, left, y.at[k]);
}

// ---- Walk -----------------------------------------------------------------------------------

// The elements one by one, for a function of one input and output without a vector path.
template <class F, class Vectors>
[[gnu::noinline]] void run_elements(const F f, const Vectors& given, int64_t n) {
  const Vectors vectors = given;
  for (int64_t i = 0; i < n; ++i) {
    const int32_t code = f.evaluate(vectors.argument(0, i), vectors.element(0, i));
    if (code != QOR_ERROR_NONE) [[unlikely]]
      vectors.report(code, i);
  }
}

// The x87 flags that a walk is certain to raise: its first element tells.
template <class F, class Vectors>
inline uint16_t x87_flags_to_be_raised(const F& f, const Vectors& vectors, int64_t n) {
  if constexpr (requires { &F::raises_x87_inexact; }) {
    if (n > 0 && f.raises_x87_inexact(vectors.argument(0, 0))) return x87_inexact;
  }
  return 0;
}

template <Environment environment, class F, class Vectors>
inline void run(const F& f, const Vectors& vectors, int64_t n) {
  FpEnvSave save;
  [[maybe_unused]] const uint32_t mode =
      enter<environment>(save, x87_flags_to_be_raised(f, vectors, n));
  if constexpr (requires { &F::evaluate; }) {
    run_elements<F, Vectors>(f, vectors, n);
  } else {
    run_lanes<F, Vectors>(f, vectors, n, mode);
  }
  leave(save);
}

}  // namespace qor::kernels
