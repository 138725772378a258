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

// The cell of a site that lies inside the partition, by comparisons alone: breakpoints may hardly
// differ, or not at all. Bisection within a window around breakpoint `low`, which doubles until its
// ends lie on both sides of s.
template <class Real>
[[gnu::noinline]] int32_t cell_by_bisection(UniformPartition<Real> x, int32_t n, Real s,
                                            int64_t low) {
  int64_t high = low + 1;
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

// Registers of sites. A site is put among the `count` breakpoints around its quotient by comparing
// it with all of them; a comparison with the end decides for what lies behind that.
template <class Real, int count>
struct UniformWindow {
  using Lanes = CellLanes<Real>;

  UniformPartition<Real> x;
  Real origin, last;  // of the quotients that name a window's first breakpoint; the last such

  UniformWindow(const UniformPartition<Real>& partition, int32_t n)
      : x(partition),
        origin(x.first + x.h * (Real{count} / 2 - 1)),
        last(static_cast<Real>(n - 1 - count)) {}

  typename Lanes::Cells find(typename Lanes::Sites s) const {
    const auto first = Lanes::truncated(Lanes::clamped((s - origin) * x.inverse, last));
    // A comparison that holds is -1 in its lane.
    auto left = (s <= x.end) + (s < x.at(first));
    for (int k = 1; k < count; ++k) left += s < x.at(first + static_cast<Real>(k));
    return Lanes::whole(first) + (count + 1) + Lanes::narrow(left);
  }

  // Whether every site is among its window's breakpoints, or next to them. With u the unit roundoff
  // and m the largest breakpoint, breakpoints are off by at most u n steps and u m, and quotients
  // by 3 u n steps and, with an origin between breakpoints, u m; directed rounding doubles all
  // that. Sites behind the end are to be behind the last window.
  bool holds() const {
    using Limits = std::numeric_limits<Real>;
    const Real largest = std::max(std::abs(x.first), std::abs(x.end));
    const Real off = Limits::epsilon() * (2 * static_cast<Real>(x.n) * x.h + largest / count);
    const Real most = x.h * (count * Real{31} / 64);
    return (2 * off < most || (off < most && rounds_to_nearest())) && x.h >= Limits::min() &&
           last >= 0 && (x.end - origin) * x.inverse >= last &&
           x.at(last + static_cast<Real>(count - 1)) <= x.end;
  }
  bool rounds_to_nearest() const {
    const Real sliver = x.h * std::numeric_limits<Real>::epsilon() / 8;
    return x.h + sliver == x.h && x.h - sliver == x.h;
  }
};

template <class Real>
struct UniformCells {
  using Lanes = CellLanes<Real>;
  using Sites = typename Lanes::Sites;
  using Cells = typename Lanes::Cells;

  UniformPartition<Real> x;
  int32_t n;

  UniformCells(int64_t nx, const Real* ends, Real step) : x(nx, ends, step), n(cell_count(nx)) {}

  // A NaN has cell n.
  int32_t find(Real s) const {
    if (s < x.first) return 0;
    if (!(s < x.end)) return s == x.end ? n - 1 : n;
    const int32_t k = whole_steps(n - 2, x.first, x.h, s);
    const bool inside = x.x(k) <= s && (k == n - 2 || s < x.x(k + 1));
    return inside ? k + 1 : cell_by_bisection(x, n, s, k);
  }
  [[gnu::always_inline]] void find(int64_t nsite, const Real* site, int32_t* cell) const {
    if (nsite == 1) {
      *cell = find(*site);
      return;
    }
    const UniformWindow<Real, 1> near(x, n);
    const UniformWindow<Real, 2> wide(x, n);
    if (near.holds()) {
      by_registers(nsite, site, cell, [&](Sites s) { return near.find(s); });
    } else if (wide.holds()) {
      by_registers(nsite, site, cell, [&](Sites s) { return wide.find(s); });
    } else {
      by_registers(nsite, site, cell, [&](Sites s) { return checked(s, wide.find(s)); });
    }
  }

  // A site of cell c, and those from it up to but without this, lie in that cell.
  Real right_of(int32_t c) const {
    if (c >= n - 1) return c == n - 1 ? x.end : -std::numeric_limits<Real>::infinity();
    return std::min(x.x(c), x.end);
  }

  // Of several registers the last may overlap the one before it.
  template <class Find>
  static void by_registers(int64_t nsite, const Real* site, int32_t* cell, Find cells_of) {
    if (nsite < Lanes::count) {
      if (nsite <= 0) return;
      const int count = static_cast<int>(nsite);
      return Lanes::store_first(cell, count, cells_of(lanes::load_first(site, count, Real{0})));
    }
    const auto find_register = [&](int64_t i) {
      const Cells found = cells_of(lanes::load(site + i));
      __builtin_memcpy(cell + i, &found, sizeof found);
    };
    for (int64_t i = 0; i + Lanes::count < nsite; i += Lanes::count) find_register(i);
    find_register(nsite - Lanes::count);
  }

  // Cells that may be wrong, though most are right.
  Cells checked(Sites s, Cells found) const {
    const Sites right = x.at(Lanes::real(found)), left = x.at(Lanes::real(found - 1));
    const auto good = (left <= s) & (s < right) & (s < x.end);
    if (lanes::lane_bits(good) == lanes::first_lanes(Lanes::count)) return found;
    int32_t cell[Lanes::count];
    for (int lane = 0; lane < Lanes::count; ++lane) cell[lane] = find(s[lane]);
    __builtin_memcpy(&found, cell, sizeof found);
    return found;
  }
};

}  // namespace qor::fitting
