// Search of a uniform partition, whose two ends x holds.
#pragma once

#include <algorithm>
#include <cstdint>

#include "fitting/uniform_cells.h"

namespace qor::fitting {

template <class Real>
void search_uniform(int64_t nx, const Real* x, int64_t nsite, const Real* site, Real step,
                    int32_t* cell) {
  UniformCells<Real>(nx, x, step).find(nsite, site, cell);
}

// Groups of sites that are said to ascend, many to a cell: what lies between a site and the end of
// its cell is of that cell, and as far as few cells comparisons tell. A group that does not keep
// the promise is searched like any other.
template <class Real>
void search_uniform_groups(const UniformCells<Real>& cells, int64_t groups, const Real* site,
                           int32_t* cell) {
  using Lanes = CellLanes<Real>;
  Real low = site[0], high;
  int32_t c = cells.find(low);
  Real right = cells.right_of(c);
  for (; groups > 0; --groups, low = high, site += site_group, cell += site_group) {
    high = site[site_group - 1];
    auto between = typename Lanes::Mask{} == typename Lanes::Mask{};
    for (int64_t j = 0; j < site_group; j += Lanes::count) {
      const typename Lanes::Sites s = lanes::load(site + j);
      between &= (s >= lanes::broadcast(low)) & (s <= lanes::broadcast(high));
    }
    const bool ascends = lanes::lane_bits(between) == lanes::first_lanes(Lanes::count);
    if (ascends && high < right) {
      std::fill_n(cell, site_group, c);
      continue;
    }
    if (ascends && high < cells.right_of(c + few_cells)) {
      Real above[few_cells];
      for (int32_t k = 0; k < few_cells; ++k) above[k] = cells.x.x(c + k);
      merge_group(above, site, c, cell);
      for (int32_t k = 0; k < few_cells; ++k) c += static_cast<int32_t>(high >= above[k]);
    } else {
      cells.find(site_group, site, cell);
      c = cell[site_group - 1];
    }
    right = cells.right_of(c);
  }
}

// Sites that are said to ascend.
template <class Real>
void search_uniform_sorted(int64_t nx, const Real* x, int64_t nsite, const Real* site, Real step,
                           int32_t* cell) {
  // Fewer sites to a cell are searched one by one: the more a register holds the less that costs.
  constexpr bool is_double = sizeof(Real) == sizeof(double);
  constexpr Real kMany = is_double ? 16 : CellLanes<Real>::count < 8 ? 32 : 128;
  const UniformCells<Real> cells(nx, x, step);
  const int64_t groups = nsite / site_group, count = groups * site_group;
  const Real width = static_cast<Real>(count) / kMany * step;
  if (groups > 0 && site[count - 1] - site[0] <= width) {
    search_uniform_groups(cells, groups, site, cell);
    cells.find(nsite - count, site + count, cell + count);
  } else {
    cells.find(nsite, site, cell);
  }
}

}  // namespace qor::fitting
