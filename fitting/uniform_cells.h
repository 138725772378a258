// Cells of a uniform partition.
//
// Its breakpoints are those that all of the library computes, but for the last one, which is the
// right end as given: j * step + first, rounded twice, so that the quotient (s - first) / step says
// only about where s lies among them. What it leaves open, a comparison with a breakpoint decides.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "fitting/cell_lanes.h"
#include "fitting/partition.h"

namespace qor::fitting {

// Cells have 32 bits, so that breakpoints beyond their range are out of reach. The limit is a
// float.
inline constexpr int32_t most_cells = INT32_MAX - 127;
inline int32_t cell_count(int64_t nx) {
  return static_cast<int32_t>(std::min<int64_t>(nx, most_cells));
}

// The quotient of a site and a step as a whole number from 0 to n, whatever they are; of a NaN n.
template <class Real>
inline int32_t whole_steps(int32_t n, Real first, Real step, Real s) {
  const Real limit = static_cast<Real>(n);
  const Real steps = (s - first) / step;
  return static_cast<int32_t>(steps < limit ? (steps > 0 ? steps : 0) : limit);
}

template <class Real>
struct UniformCells {
  using Lanes = CellLanes<Real>;
  using Sites = typename Lanes::Sites;
  using Cells = typename Lanes::Cells;

  UniformPartition<Real> x;
  int32_t n;
  Real last;    // of the breakpoints that a quotient can name
  Real origin;  // half a step before the first one
  bool quotients_hold;

  UniformCells(int64_t nx, const Real* ends, Real step)
      : x(nx, ends, step),
        n(cell_count(nx)),
        last(static_cast<Real>(n - 2)),
        origin(x.first - x.h / 2),
        quotients_hold(do_quotients_hold()) {}

  // A NaN has cell n.
  int32_t find(Real s) const {
    return quotients_hold ? by_quotients(lanes::broadcast(s))[0] : by_comparisons(s);
  }
  void find(int64_t nsite, const Real* site, int32_t* cell) const {
    if (quotients_hold) {
      by_registers(nsite, site, cell, [this](Sites s) { return by_quotients(s); });
    } else {
      by_registers(nsite, site, cell, [this](Sites s) { return checked(s); });
    }
  }

  // A site of cell c, and those from it up to but without this, lie in that cell.
  Real right_of(int32_t c) const {
    if (c >= n - 1) return c == n - 1 ? x.end : -std::numeric_limits<Real>::infinity();
    return std::min(x.x(c), x.end);
  }

  template <class Find>
  void by_registers(int64_t nsite, const Real* site, int32_t* cell, Find cells_of) const {
    int64_t i = 0;
    for (; i + Lanes::count <= nsite; i += Lanes::count) {
      const Cells found = cells_of(lanes::load(site + i));
      __builtin_memcpy(cell + i, &found, sizeof found);
    }
    const auto rest = static_cast<int>(nsite - i);
    if (rest <= 0) return;
    const Cells found = cells_of(lanes::load_first(site + i, rest, x.first));
    __builtin_memcpy(cell + i, &found, static_cast<size_t>(rest) * sizeof(int32_t));
  }

  // The breakpoint nearest to s by its quotient is, where quotients hold, less than a step away, so
  // that one comparison with it decides. The one with the end decides for what lies behind that.
  Cells by_quotients(Sites s) const {
    const Sites nearest = Lanes::truncated(Lanes::clamped((s - origin) / x.h, last));
    // A comparison that holds is -1 in its lane.
    const auto left = (s < x.at(nearest)) + (s <= x.end);
    return Lanes::whole(nearest) + 2 + Lanes::narrow(left);
  }

  // Where quotients do not hold, most of them are right all the same.
  Cells checked(Sites s) const {
    Cells found = by_quotients(s);
    const Sites right = x.at(Lanes::real(found)), left = x.at(Lanes::real(found - 1));
    const auto good = (left <= s) & (s < right) & (s < x.end);
    if (lanes::lane_bits(good) == lanes::first_lanes(Lanes::count)) return found;
    int32_t cell[Lanes::count];
    for (int lane = 0; lane < Lanes::count; ++lane) cell[lane] = by_comparisons(s[lane]);
    __builtin_memcpy(&found, cell, sizeof found);
    return found;
  }

  // Breakpoints that hardly differ, or do not: bisection within a window around the quotient, which
  // doubles until its ends lie on both sides of s.
  [[gnu::noinline]] int32_t by_comparisons(Real s) const {
    if (s < x.first) return 0;
    if (!(s < x.end)) return s == x.end ? n - 1 : n;
    int64_t low = std::min(whole_steps(n, x.first, x.h, s), n - 2), high = low + 1;
    for (int64_t reach = 1; low > 0 && x.x(low) > s; reach += reach) {
      high = low;
      low = std::max<int64_t>(low - reach, 0);
    }
    for (int64_t reach = 1; high < n - 1 && x.x(high) <= s; reach += reach) {
      low = high;
      high = std::min<int64_t>(high + reach, n - 1);
    }
    while (low + 1 < high) {
      const int64_t middle = (low + high) / 2;
      (x.x(middle) > s ? high : low) = middle;
    }
    return static_cast<int32_t>(high);
  }

  // Whether quotients and breakpoints are together less than half a step off. With u the unit
  // roundoff and m the largest breakpoint, a quotient is off by at most 4 u n + u m / step, a
  // breakpoint by u n + u m / step, and n is at most 2 m / step + 1. That makes 12 u m / step,
  // which is below 0.2 here, and below 0.4 should the caller round in one direction. The end is to
  // be near the breakpoint that it stands for.
  bool do_quotients_hold() const {
    const Real largest = std::max(std::abs(x.first), std::abs(x.end));
    const bool distinct = x.h > 32 * std::numeric_limits<Real>::epsilon() * largest;
    return distinct && std::abs(x.x(n - 1) - x.end) < x.h / 16;
  }
};

}  // namespace qor::fitting
