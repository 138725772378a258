// MRG32K3A for long calls: lanes a fixed stride apart in the sequence, each going on step by step.
//
// One step has coefficients below 2^21, so that its sums are exact in double precision: half the
// work of the 16-step form, whose products take 64-bit integers. Residues are kept as they come, y
// between -m/2 and m/2, x between -20 and m - 1, and the words put them right; rounding has to be
// to nearest.
#pragma once

#include <array>
#include <cstdint>

#include "streams/generators/wide.h"
#include "streams/modular.h"

namespace qor::streams {

// Four registers of lanes work side by side; a stride is a multiple of the order, three.
inline constexpr int32_t mrg_block = 3072;  // outputs of a round
inline constexpr int mrg_chains = 4;
inline constexpr int32_t mrg_stride = mrg_block / (mrg_chains * wide_lanes);
static_assert(mrg_stride % 3 == 0);

inline constexpr Matrix3 mrg_stride1 = power_mod(mrg_row1, mrg_stride, mrg_m1);
inline constexpr Matrix3 mrg_stride2 = power_mod(mrg_row2, mrg_stride, mrg_m2);
inline constexpr Matrix3 mrg_onward1 = power_mod(mrg_row1, mrg_block - mrg_stride, mrg_m1);
inline constexpr Matrix3 mrg_onward2 = power_mod(mrg_row2, mrg_block - mrg_stride, mrg_m2);

class MrgLanes {
 public:
  // From the state of the generator before the first output.
  MrgLanes(const uint32_t* x, const uint32_t* y) {
    uint32_t next_x[3] = {x[0], x[1], x[2]}, next_y[3] = {y[0], y[1], y[2]};
    for (int lane = 0; lane < mrg_chains * wide_lanes; ++lane) {
      Chain& chain = chains_[lane / wide_lanes];
      for (int k = 0; k < 3; ++k) {
        chain.x[k][lane % wide_lanes] = next_x[k];
        chain.y[k][lane % wide_lanes] = next_y[k];
      }
      multiply_mod(mrg_stride1.data(), next_x, mrg_m1);
      multiply_mod(mrg_stride2.data(), next_y, mrg_m2);
    }
  }

  // The next `mrg_block` words: put(i, words) gets words i, i + mrg_stride, ..., one a lane.
  template <class Put>
  void round(Put put) {
    for (int32_t i = 0; i < mrg_stride; i += 3) {
      for (int c = 0; c < mrg_chains; ++c) {
        auto [x, y] = chains_[c];
        const int32_t at = c * wide_lanes * mrg_stride + i;
        put(at, step(x[0], x[1], y[0], y[2]));
        put(at + 1, step(x[1], x[2], y[1], y[0]));
        put(at + 2, step(x[2], x[0], y[2], y[1]));
        chains_[c] = {{x[0], x[1], x[2]}, {y[0], y[1], y[2]}};
      }
    }
  }

  // Moves all lanes on, from the end of their stretches to the starts of the next.
  void jump() {
    for (Chain& chain : chains_) {
      multiply<mrg_m1, 209>(chain.x, mrg_onward1);
      multiply<mrg_m2, 22853>(chain.y, mrg_onward2);
    }
  }

  // The state after the last output of a round.
  void save(uint32_t* x, uint32_t* y) const {
    const Chain& last = chains_[mrg_chains - 1];
    for (int k = 0; k < 3; ++k) {
      x[k] = static_cast<uint32_t>(words_of(residues<mrg_m1>(last.x[k]))[wide_lanes - 1]);
      y[k] = static_cast<uint32_t>(words_of(residues<mrg_m2>(last.y[k]))[wide_lanes - 1]);
    }
  }

  // Whole numbers below 2^32 as the low halves of 64-bit lanes.
  static Wide words_of(WideReal z) { return reinterpret_cast<Wide>(z + 0x1p52); }

 private:
  struct Chain {
    WideReal x[3], y[3];  // oldest first
  };

  static WideReal where(WideMask condition, double value) {
    return reinterpret_cast<WideReal>(condition & reinterpret_cast<WideMask>(WideReal{} + value));
  }

  // p less a multiple of m: that next to p / m - offset. Quotients stay below 2^22, which leaves
  // them an error below 2^-30.
  template <uint32_t m>
  static WideReal reduced(WideReal p, double offset) {
    constexpr double rounder = 0x1.8p52;
    return p - ((p * (1.0 / m) - offset + rounder) - rounder) * m;
  }

  // Residues below m as those from 0 to m - 1.
  template <uint32_t m>
  static WideReal residues(WideReal x) {
    return x + where(x < 0.0, m);
  }

  // Puts the next values in place of the oldest; returns the words.
  static WideReal step(WideReal& x, WideReal x_middle, WideReal& y, WideReal y_newest) {
    // A little less than a half gives the floor, or one above it where the residue is next to m.
    constexpr double to_floor = 0.5 - 0x1p-28;
    x = reduced<mrg_m1>(x_middle * 1403580.0 - x * 810728.0, to_floor);
    y = reduced<mrg_m2>(y_newest * 527612.0 - y * 1370589.0, 0.0);
    // x - y mod m1: no less than -20 - m2, which m1 makes good.
    return residues<mrg_m1>(x - y - where(y < 0.0, mrg_m2));
  }

  // v = a v mod m in each lane.
  template <uint32_t m, uint64_t fold>
  static void multiply(WideReal* v, const Matrix3& a) {
    constexpr uint64_t low = 0xFFFFFFFF, exponent = 0x4330000000000000;  // of 2^52
    Wide old[3];
    for (int k = 0; k < 3; ++k) old[k] = words_of(residues<m>(v[k])) & low;
    for (size_t i = 0; i < 3; ++i) {
      Wide sum = {};
      for (size_t k = 0; k < 3; ++k)
        sum += reduce_wide<fold>(mul_low(old[k], wide(a[3 * i + k]))) & low;
      v[i] = reinterpret_cast<WideReal>((reduce_wide<fold>(sum) & low) | exponent) - 0x1p52;
    }
  }

  Chain chains_[mrg_chains];
};

}  // namespace qor::streams
