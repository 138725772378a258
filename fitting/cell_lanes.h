// Sites that are looked at together and their cells, 32-bit numbers: registers, and groups of few
// registers.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "kernels/lanes.h"

namespace qor::fitting {

template <class Real>
struct CellLanes {
  using Lanes = lanes::Lanes<Real>;
  using Sites = typename Lanes::V;
  using Mask = typename Lanes::M;
  using Cells [[gnu::vector_size(Lanes::count * sizeof(int32_t))]] = int32_t;
  static constexpr int count = Lanes::count;

  // From 0 to `most`; of a NaN `most`.
  static Sites clamped(Sites v, Real most) {
    return lanes::maximum(lanes::minimum(v, lanes::broadcast(most)), Sites{});
  }
  // Toward 0, of what an int32_t holds.
  static Sites truncated(Sites v) {
    if constexpr (lanes::has_round) {
      return lanes::round_to<lanes::Direction::to_zero>(v);
    } else {
      return real(whole(v));
    }
  }
  static Cells whole(Sites v) { return __builtin_convertvector(v, Cells); }
  static Sites real(Cells c) { return __builtin_convertvector(c, Sites); }

  // A mask, or a sum of masks, in 32 bits.
  static Cells narrow(Mask m) {
    if constexpr (sizeof(Real) == sizeof(int32_t)) {
      return std::bit_cast<Cells>(m);
    } else {
      const auto words = std::bit_cast<lanes::i32>(m);
      return [&]<int... lane>(std::integer_sequence<int, lane...>) {
        return __builtin_shufflevector(words, words, 2 * lane...);
      }
      (std::make_integer_sequence<int, count>{});
    }
  }

  // The first of them, fewer than all.
  static void store_first(int32_t* to, int number, Cells c) {
    int32_t cell[count];
    __builtin_memcpy(cell, &c, sizeof cell);
    const int32_t* from = cell;
    for (int part = count / 2; part > 0; part /= 2) {
      if ((number & part) == 0) continue;
      __builtin_memcpy(to, from, static_cast<size_t>(part) * sizeof(int32_t));
      to += part;
      from += part;
    }
  }
};

// Sites that are looked at together.
inline constexpr int64_t site_group = 16;

// Breakpoints that a group of sites is compared with.
inline constexpr int32_t few_cells = 4;

// The cells of a group: c and the number of breakpoints from x[c] on, among few, that are not above
// the site. Free of branches.
template <class Real>
inline void merge_group(const Real* above, const Real* site, int32_t c, int32_t* cell) {
  using Lanes = CellLanes<Real>;
  for (int64_t j = 0; j < site_group; j += Lanes::count) {
    const typename Lanes::Sites s = lanes::load(site + j);
    // A comparison that holds is -1 in its lane.
    const typename Lanes::Mask steps =
        (s >= lanes::broadcast(above[0])) + (s >= lanes::broadcast(above[1])) +
        (s >= lanes::broadcast(above[2])) + (s >= lanes::broadcast(above[3]));
    const typename Lanes::Cells cells = c - Lanes::narrow(steps);
    __builtin_memcpy(cell + j, &cells, sizeof cells);
  }
}

}  // namespace qor::fitting
