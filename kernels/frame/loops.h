// The loops over blocks: the fast one, up to a block with special lanes, and the wide one, over a
// run of blocks that have some.
//
// Each is a function of its own without any call in its loop, so that constants stay in registers
// (no vector register survives a call), and the parts of one are inlined, so that pointers do.
#pragma once

#include <cstdint>

#include "kernels/frame/block.h"

namespace qor::kernels {

template <class F, class Vectors>
inline Inputs<F> load_block(const Vectors& vectors, int64_t i) {
  Inputs<F> x;
  for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load(k, i);
  return x;
}
template <class F, class Vectors>
inline void store_block(const Vectors& vectors, int64_t i, const Outputs<F>& y) {
  for (int k = 0; k < F::outputs; ++k) vectors.store(k, i, y.at[k]);
}

// ---- Fast -----------------------------------------------------------------------------------

// Runs groups of blocks, with one test for all, up to a group with a special lane; returns where it
// stopped.
template <class F, class Vectors>
[[gnu::always_inline]] inline int64_t run_calm_groups(const F& f, const Vectors& vectors, int64_t i,
                                                      int64_t n) {
  constexpr int width = block_width<F>, count = F::traits.group;
  for (; i + count * width <= n; i += count * width) {
    Inputs<F> x[count];
    for (int r = 0; r < count; ++r) x[r] = load_block<F>(vectors, i + r * width);
    auto found = special_lanes(f, x[0]);
    for (int r = 1; r < count; ++r) found = found | special_lanes(f, x[r]);
    if (lanes::lane_bits(found) != 0) [[unlikely]]
      return i;
    Computed<F> block[count];
    uint32_t special = 0;
    for (int r = 0; r < count; ++r) {
      block[r] = compute(f, x[r]);
      special |= block[r].special;
    }
    if (special != 0) [[unlikely]]
      return i;
    for (int r = 0; r < count; ++r) store_block<F>(vectors, i + r * width, block[r].y);
  }
  return i;
}

// The same without tests, block after block.
template <class F, class Vectors>
[[gnu::always_inline]] inline int64_t run_groups(const F& f, const Vectors& vectors, int64_t i,
                                                 int64_t n) {
  constexpr int width = block_width<F>, count = F::traits.group;
  for (; i + count * width <= n; i += count * width) {
    for (int r = 0; r < count; ++r) {
      const auto block = compute(f, load_block<F>(vectors, i + r * width));
      store_block<F>(vectors, i + r * width, block.y);
    }
  }
  return i;
}

// Runs whole blocks from element i on, up to one with a special lane; returns where it stopped.
template <class F, class Vectors>
[[gnu::always_inline]] inline int64_t calm_blocks(const F& f, const Vectors& vectors, int64_t i,
                                                  int64_t n) {
  constexpr int width = block_width<F>;
  // (Loads of strided elements weigh more than a test, and those of a group of light functions want
  // more registers than there are; chains of operations that are too long alone stay together.)
  constexpr bool is_light = F::traits.group > 3;
  if constexpr (F::traits.group > 1 && !(Vectors::is_strided && is_light)) {
    if constexpr (has_special_lanes<F>) {
      i = run_calm_groups(f, vectors, i, n);
    } else {
      i = run_groups(f, vectors, i, n);
    }
  }
  for (; i + width <= n; i += width) {
    const Inputs<F> x = load_block<F>(vectors, i);
    if (special_bits(f, x) != 0) [[unlikely]]
      return i;
    const Computed<F> block = compute(f, x);
    if (block.special != 0) [[unlikely]]
      return i;
    store_block<F>(vectors, i, block.y);
  }
  return i;
}

template <class F, class Vectors>
[[gnu::noinline]] int64_t run_calm_blocks(const F f, const Vectors& given, int64_t i, int64_t n) {
  const Vectors vectors = given.copy();
  return calm_blocks(f, vectors, i, n);
}

// ---- Wide -----------------------------------------------------------------------------------

struct WideRun {
  int64_t i;     // where it stopped
  bool is_left;  // for a block that needs more than registers
};

// Runs blocks in their wide form, until some of them in a row had no special lane. Codes are noted
// where that will do.
template <class F, class Vectors>
[[gnu::noinline]] WideRun run_wide_blocks(const F f, const Vectors& given, int64_t i, int64_t n,
                                          Reports& reports) {
  const Vectors vectors = given.copy();
  constexpr int width = block_width<F>;
  constexpr int calm_enough = 16;
  const bool one_by_one = reports.one_by_one();
  int calm = 0;
  for (; i + width <= n && calm < calm_enough; i += width) {
    const Inputs<F> x = load_block<F>(vectors, i);
    const auto special = special_lanes(f, x);
    const Parted<F> parted = without_nan<F>(x, special);
    Outputs<F> y;
    if (lanes::lane_bits(parted.special) == 0) {
      const Computed<F> block = compute(f, parted.x);
      if (block.special != 0) [[unlikely]]
        return {i, true};
      y = block.y;
      calm = (calm + 1) & -static_cast<int>(lanes::lane_bits(special) == 0);
    } else {
      const auto wide = call_wide(f, parted.x, parted.special);
      const uint32_t left = left_bits<F>(wide);
      const uint32_t coded =
          lanes::lane_bits(wide.domain | wide.pole | wide.overflow | wide.underflow);
      if (left != 0 || (coded != 0 && one_by_one)) [[unlikely]]
        return {i, true};
      if (coded != 0) {
        const CodedLanes by_code = coded_lanes(wide);
        for (int c = 0; c < 4; ++c) {
          if (by_code.at[c] == 0) continue;
          reports.raise<F>(c + 1);
          reports.note(c + 1, by_code.at[c], i);
        }
      }
      y = outputs_of<F>(wide.value);
      calm = 0;
    }
    store_block<F>(vectors, i, with_nan<F>(y, x));
  }
  return {i, false};
}

}  // namespace qor::kernels
