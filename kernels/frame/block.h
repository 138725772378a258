// The computation of a block, and what becomes of its special lanes.
#pragma once

#include <bit>
#include <cstdint>

#include "kernels/frame/reports.h"
#include "kernels/frame/vectors.h"

namespace qor::kernels {

template <class F>
inline constexpr int block_width = lanes::Lanes<typename F::Real>::count;

template <class F>
struct Outputs {
  typename F::Y at[F::outputs];
};
template <class F>
inline Outputs<F> outputs_of(const Registers<typename F::Value>& y) {
  if constexpr (F::outputs == 2) {
    return {y.first, y.second};
  } else {
    return {y};
  }
}

// A block's results, and the lanes that its core could not do, as bits.
template <class F>
struct Computed {
  Outputs<F> y;
  uint32_t special = 0;
};

template <class F>
inline Computed<F> compute(const F& f, const Inputs<F>& x) {
  const auto y = call_core(f, x);
  if constexpr (core_checks<F>) {
    return {outputs_of<F>(y.value), lanes::lane_bits(y.special)};
  } else {
    return {outputs_of<F>(y)};
  }
}

// Lanes that are special by their input.
template <class F>
inline auto special_lanes(const F& f, const Inputs<F>& x) {
  if constexpr (F::traits.found_by_core) {
    return typename F::LaneSet{};
  } else {
    return with_inputs<F>(x, [&](const auto&... at) { return f.special(at...); });
  }
}
// The same as bits; none in a form that has none.
template <class F>
inline uint32_t special_bits(const F& f, const Inputs<F>& x) {
  if constexpr (has_special_lanes<F>) {
    return lanes::lane_bits(special_lanes(f, x));
  } else {
    return 0;
  }
}

template <class F>
inline uint32_t left_bits(const WideAnswer<F>& wide) {
  if constexpr (wide_leaves_lanes<F>) {
    return lanes::lane_bits(wide.left);
  } else {
    return 0;
  }
}

// A block without its NaN, where the function lets them pass: the stand-in is in their place.
template <class F>
struct Parted {
  Inputs<F> x;
  typename F::LaneSet special;
};
template <class F>
inline typename F::LaneSet nan_lanes(const Inputs<F>& x) {
  static_assert(F::inputs <= 2);
  return lanes::unordered(x.at[0], x.at[F::inputs - 1]);
}
template <class F>
inline Parted<F> without_nan(const Inputs<F>& x, typename F::LaneSet special) {
  if constexpr (F::traits.nan_passes) {
    const auto nan = nan_lanes<F>(x);
    Inputs<F> numbers;
    for (int k = 0; k < F::inputs; ++k) numbers.at[k] = lanes::select(nan, stand_in<F>, x.at[k]);
    return {numbers, special.without(nan)};
  } else {
    return {x, special};
  }
}
// The results, with the NaN of the inputs (of two the first).
template <class F>
inline Outputs<F> with_nan(Outputs<F> y, const Inputs<F>& x) {
  if constexpr (F::traits.nan_passes) {
    for (auto& at : y.at) {
      for (int k = 0; k < F::inputs; ++k) {
        at = lanes::pass_through(at, x.at[k], lanes::unordered(x.at[k], x.at[k]));
      }
    }
  }
  return y;
}

// ---- Lanes with a code, and lanes left to the scalar routine --------------------------------

// The lanes of a block that have a code, by code, as bits.
struct CodedLanes {
  uint32_t at[4] = {};  // codes 1 to 4

  uint32_t any() const { return at[0] | at[1] | at[2] | at[3]; }
  int32_t code_of(int lane) const {
    for (int c = 0; c < 4; ++c) {
      if ((at[c] >> lane & 1) != 0) return c + 1;
    }
    return QOR_ERROR_NONE;
  }
};
template <class Answer>
inline CodedLanes coded_lanes(const Answer& wide) {
  return {{lanes::lane_bits(wide.domain), lanes::lane_bits(wide.pole),
           lanes::lane_bits(wide.overflow), lanes::lane_bits(wide.underflow)}};
}

// A block computed in registers, as far as that goes.
template <class F>
struct Attempt {
  Outputs<F> y;
  uint32_t left;  // lanes without a result yet
  CodedLanes coded;
};

template <class F>
inline Attempt<F> attempt(const F& f, Inputs<F> x, uint32_t used) {
  if constexpr (F::form == Form::tiered) {
    const Parted<F> parted = without_nan<F>(x, special_lanes(f, x));
    const auto wide = call_wide(f, parted.x, parted.special);
    return {with_nan<F>(outputs_of<F>(wide.value), x), left_bits<F>(wide) & used,
            coded_lanes(wide)};
  } else {
    // Special lanes hold the stand-in, so that they raise no stray flag.
    const uint32_t special = special_bits(f, x);
    for (uint32_t rest = special; rest != 0; rest &= rest - 1) {
      const auto any = Element<typename F::Input>::stand_in(stand_in<F>);
      for (auto& in : x.at) {
        Element<typename F::Input>::set_lane(in, std::countr_zero(rest),
                                             Element<typename F::Input>::lane(any, 0));
      }
    }
    const Computed<F> block = compute(f, x);
    return {block.y, (special | block.special) & used, {}};
  }
}

// Runs the scalar routine on a lane; returns its code.
template <class F>
int32_t run_scalar(const F& f, const Inputs<F>& x, Outputs<F>& y, int lane) {
  if constexpr (HasScalar<F>) {
    const auto outcome = with_inputs<F>(x, [&](const auto&... at) {
      return f.scalar(Element<typename F::Input>::lane(at, lane)...);
    });
    if constexpr (F::outputs == 2) {
      Element<typename F::Output>::set_lane(y.at[0], lane, outcome.value.first);
      Element<typename F::Output>::set_lane(y.at[1], lane, outcome.value.second);
    } else {
      Element<typename F::Output>::set_lane(y.at[0], lane, outcome.value);
    }
    return outcome.code;
  } else {
    return QOR_ERROR_NONE;  // no lane is left
  }
}

// A block with special lanes, from element i on, of which the lanes `used` count: in ascending
// order, lanes that are left take the scalar routine, and lanes with a code are stored and reported
// where that counts, and read back: the report may change them. (By reference g++ 12 drops the load
// of x before the call.)
template <class F, class Vectors>
[[gnu::cold, gnu::noinline]] Outputs<F> special_block(const F& f, const Vectors& vectors, int64_t i,
                                                      Inputs<F> x, uint32_t used,
                                                      Reports& reports) {
  auto [y, left, coded] = attempt(f, x, used);
  for (uint32_t rest = left | (coded.any() & used); rest != 0; rest &= rest - 1) {
    const int lane = std::countr_zero(rest);
    const bool is_left = (left >> lane & 1) != 0;
    const int32_t code = is_left ? run_scalar(f, x, y, lane) : coded.code_of(lane);
    if (!is_left) reports.raise<F>(code);
    if (code == QOR_ERROR_NONE) continue;
    if (!reports.one_by_one()) {
      reports.note(code, uint32_t{1} << lane, i);
      continue;
    }
    using Out = Element<typename F::Output>;
    for (int k = 0; k < F::outputs; ++k) vectors.element(k, i + lane) = Out::lane(y.at[k], lane);
    vectors.report(code, i + lane);
    for (int k = 0; k < F::outputs; ++k) Out::set_lane(y.at[k], lane, vectors.element(k, i + lane));
  }
  return y;
}

}  // namespace qor::kernels
