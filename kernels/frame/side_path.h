// The computation of a block, and the side path of its lanes that need care.
#pragma once

#include <bit>
#include <cstdint>

#include "kernels/frame/vectors.h"

namespace qor::kernels {

// A block's results, and the lanes that its core could not do, as bits.
template <class F>
struct Computed {
  Outputs<F> y;
  uint32_t special = 0;
};

template <class F>
inline Computed<F> compute(const F& f, const Inputs<F>& x) {
  const auto y = [&] {
    if constexpr (F::inputs == 1) {
      return f.core(x.at[0]);
    } else {
      return f.core(x.at[0], x.at[1]);
    }
  }();
  if constexpr (F::outputs == 2) {
    return {{y.first, y.second}};
  } else if constexpr (requires { y.special; }) {
    return {{y.value}, lanes::lane_bits(y.special)};
  } else {
    return {{y}};
  }
}

template <class F>
inline constexpr bool has_side_path = requires {
  &F::special;
};

template <class F>
inline auto special_of(const F& f, const Inputs<F>& x) {
  if constexpr (F::inputs == 1) {
    return f.special(x.at[0]);
  } else {
    return f.special(x.at[0], x.at[1]);
  }
}

// ---- Side path ------------------------------------------------------------------------------

// Registers spilled to memory, a row each.
template <class T, int count>
struct alignas(64) LaneBuffer {
  static constexpr int width = lanes::Lanes<T>::count;
  T at[count][width];

  explicit LaneBuffer(const Block<T, count>& block) {
    for (int k = 0; k < count; ++k) lanes::store(at[k], block.at[k]);
  }
  Block<T, count> block() const {
    Block<T, count> loaded;
    for (int k = 0; k < count; ++k) loaded.at[k] = lanes::load(at[k]);
    return loaded;
  }
};

// Runs the scalar routine on a lane of the buffers; returns its code.
template <class F>
int32_t run_scalar(const F& f, const LaneBuffer<typename F::Real, F::inputs>& x,
                   LaneBuffer<typename F::Real, F::outputs>& y, int lane) {
  const auto outcome = [&] {
    if constexpr (F::inputs == 1) {
      return f.scalar(x.at[0][lane]);
    } else {
      return f.scalar(x.at[0][lane], x.at[1][lane]);
    }
  }();
  if constexpr (F::outputs == 1) {
    y.at[0][lane] = outcome.value;
  } else {
    y.at[0][lane] = outcome.first;
    y.at[1][lane] = outcome.second;
  }
  return outcome.code;
}

// Takes the lanes out of `special` whose values a few selects can give when nobody is to hear of
// them (the error field is NOERR alone), for functions with `settle(x, y)`: it changes y and
// returns the mask of the lanes done.
template <class F>
uint32_t settle_lanes(const F& f, uint32_t mode, const Inputs<F>& x, Outputs<F>& y,
                      uint32_t special) {
  if constexpr (requires { &F::settle; }) {
    if ((mode & QOR_MODE_ERRORS) == QOR_MODE_ERRORS_NOERR) {
      return special & ~lanes::lane_bits(f.settle(x.at[0], y.at[0]));
    }
  }
  return special;
}

// A block with lanes that need care, from element i on: the others take the vector path (where
// these hold the stand_in, so that they raise no stray flag), these the scalar routine in ascending
// order. A lane with a code is stored and reported at once, and read back: the report may change
// it.
template <class F, class Vectors>
[[gnu::cold, gnu::noinline]] Outputs<F> special_block(const F& f, const Vectors& vectors, int64_t i,
                                                      Inputs<F> x, uint32_t special,
                                                      uint32_t mode) {
  const LaneBuffer<typename F::Real, F::inputs> arguments(x);
  LaneBuffer<typename F::Real, F::inputs> calm(x);
  for (uint32_t rest = special; rest != 0; rest &= rest - 1) {
    for (auto& row : calm.at) row[std::countr_zero(rest)] = F::stand_in;
  }
  auto [y, more] = compute(f, calm.block());
  special |= more;
  special = settle_lanes(f, mode, x, y, special);
  LaneBuffer<typename F::Real, F::outputs> results(y);
  for (uint32_t rest = special; rest != 0; rest &= rest - 1) {
    const int lane = std::countr_zero(rest);
    const int32_t code = run_scalar(f, arguments, results, lane);
    if (code == QOR_ERROR_NONE) continue;
    for (int k = 0; k < F::outputs; ++k) vectors.element(k, i + lane) = results.at[k][lane];
    vectors.report(code, i + lane);
    for (int k = 0; k < F::outputs; ++k) results.at[k][lane] = vectors.element(k, i + lane);
  }
  return results.block();
}

}  // namespace qor::kernels
