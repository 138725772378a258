// The search methods: each finds the cells of a block of sites.
//
// The cell of a site is the number of breakpoints at or below it, but for the last breakpoint,
// which belongs to the cell on its left. What a method makes of a NaN is told with it; it is always
// a number from 0 to n.
#pragma once

#include <algorithm>
#include <cstdint>

#include "fitting/search_uniform.h"

namespace qor::fitting {

template <class Real>
using UserSearch = int (*)(const int64_t*, const Real*, int64_t*, int64_t*, void*, void*);

// The cell of s, from a guess between 0 and n, by steps of one.
template <class Real>
inline int32_t walk_to_cell(int32_t n, const Real* x, Real s, int32_t cell) {
  while (cell < n && s >= x[cell]) ++cell;
  while (cell > 0 && x[cell - 1] > s) --cell;
  return cell;
}

// A NaN keeps its estimate, n.
template <class Real>
void search_quasi_uniform(int64_t nx, const Real* x, int64_t nsite, const Real* site, Real step,
                          int32_t* cell) {
  const int32_t n = cell_count(nx);
  const Real first = x[0], last = x[n - 1];
  for (int64_t i = 0; i < nsite; ++i) {
    const Real s = site[i];
    const int32_t guess = std::min(whole_steps(n, first, step, s) + 1, n);
    cell[i] = s == last ? n - 1 : walk_to_cell(n, x, s, guess);
  }
}

// The first breakpoint behind `from` that is above s, where x[from] <= s < x[n-1]: steps that
// double, then bisection, so that the cost grows with the logarithm of the distance.
template <class Real>
inline int32_t gallop(int32_t n, const Real* x, Real s, int32_t from) {
  int32_t low = from, stride = 1;
  while (stride < n - 1 - low && x[low + stride] <= s) {
    low += stride;
    stride += stride;
  }
  int32_t high = std::min(stride, n - 1 - low) + low;
  while (low + 1 < high) {
    const int32_t middle = low + (high - low) / 2;
    (x[middle] > s ? high : low) = middle;
  }
  return high;
}

// Cells of the sites from *i on while groups of them advance by few cells. The sites ascend and
// none lies left of the partition; c is the cell of the one before.
template <class Real>
inline int32_t merge_groups(int32_t n, const Real* x, int64_t nsite, const Real* site, int64_t* i,
                            int32_t c, int32_t* cell) {
  for (; *i + site_group <= nsite && c + few_cells < n; *i += site_group) {
    const Real* above = x + c;
    const Real end = site[*i + site_group - 1];
    if (end < above[0]) {
      std::fill_n(cell + *i, site_group, c);
      continue;
    }
    if (!(end < above[few_cells])) break;
    merge_group(above, site + *i, c, cell + *i);
    for (int32_t k = 0; k < few_cells; ++k) c += static_cast<int32_t>(end >= above[k]);
  }
  return c;
}

// NaN does not ascend.
template <class Real>
bool ascends_from(Real first, int64_t nsite, const Real* site) {
  using V = typename lanes::Lanes<Real>::V;
  constexpr int64_t kLanes = lanes::Lanes<Real>::count;
  if (nsite < 1 || !(site[0] >= first)) return false;
  auto ascends = V{} == V{};
  int64_t i = 1;
  for (; i + kLanes <= nsite; i += kLanes) {
    ascends &= lanes::load(site + i - 1) <= lanes::load(site + i);
  }
  bool all = lanes::lane_bits(ascends) == lanes::first_lanes(kLanes);
  for (; i < nsite; ++i) all = all && site[i - 1] <= site[i];
  return all;
}

// Ascending sites. `last_cell` carries the cell of the last site from block to block. A site below
// the one before it, and a NaN, gets the cell of that.
template <class Real>
void search_sorted(int64_t nx, const Real* x, int64_t nsite, const Real* site, int32_t* last_cell,
                   int32_t* cell) {
  const int32_t n = cell_count(nx);
  const Real first = x[0], last = x[n - 1];
  const bool merges = ascends_from(first, nsite, site);
  int32_t c = std::clamp(*last_cell, 0, n), before = c;
  for (int64_t i = 0; i < nsite; ++i) {
    if (merges && c - before <= few_cells) c = merge_groups(n, x, nsite, site, &i, c, cell);
    if (i == nsite) break;
    before = c;
    const Real s = site[i];
    if (s == last) {
      cell[i] = n - 1;
      continue;
    }
    if (s < first) {
      c = 0;
    } else if (s > last) {
      c = n;
    } else if (c < n && s >= x[c]) {
      c = gallop(n, x, s, c);
    }
    cell[i] = c;
  }
  *last_cell = c;
}

// The cell that bisection down to a window of `width`, every comparison being false, leaves.
inline int32_t nan_cell(int32_t high, int32_t width) {
  int32_t low = 0;
  while (low < high - width) low += (high - low) / 2;
  return low;
}

// Sites in any order: bisection without branches, a group of sites together, so that their loads
// overlap. `of_nan` is the answer for a NaN.
template <class Real>
void search_any(int64_t nx, const Real* x, int64_t nsite, const Real* site, int32_t of_nan,
                int32_t* cell) {
  constexpr int64_t kGroup = 16;
  const int32_t n = cell_count(nx);
  const Real last = x[n - 1];
  for (int64_t first = 0; first < nsite; first += kGroup) {
    const int64_t count = std::min(kGroup, nsite - first);
    Real s[kGroup];
    int32_t low[kGroup] = {};
    for (int64_t j = 0; j < kGroup; ++j) s[j] = site[first + std::min(j, count - 1)];
    for (int32_t length = n; length > 1;) {
      const int32_t half = length / 2;
      for (int64_t j = 0; j < kGroup; ++j) {
        low[j] += half & -static_cast<int32_t>(x[low[j] + half] <= s[j]);
      }
      length -= half;
    }
    for (int64_t j = 0; j < count; ++j) {
      int32_t found = low[j] + static_cast<int32_t>(x[low[j]] <= s[j]);
      found = s[j] == last ? n - 1 : found;
      cell[first + j] = s[j] == s[j] ? found : of_nan;
    }
  }
}

template <class Real>
void search_hybrid(int64_t nx, const Real* x, int64_t nsite, const Real* site, int32_t* cell) {
  constexpr int32_t kWindow = 100;
  search_any(nx, x, nsite, site, nan_cell(cell_count(nx), kWindow), cell);
}

template <class Real>
void search_peak(int64_t nx, const Real* x, int64_t nsite, const Real* site, int32_t* cell) {
  constexpr int32_t kWindow = 40;
  const int32_t n = cell_count(nx);
  search_any(nx, x, nsite, site, nan_cell(n - 1, kWindow), cell);
}

// The user's search, block by block; correct(count, sites, guesses, flags, cells) answers for the
// sites without a flag. Returns a negative status at once, without the block's cells, else the last
// positive one other than CELLS_FINAL.
inline constexpr int64_t search_block = 2048;

template <class Real, class Correct>
int search_by_user(int64_t nsite, const Real* site, UserSearch<Real> search, void* params,
                   int32_t* cell, Correct correct) {
  int64_t found[search_block], flag[search_block];
  int result = QOR_DF_OK;
  for (int64_t first = 0; first < nsite; first += search_block) {
    const int64_t count = std::min(search_block, nsite - first);
    std::fill_n(found, count, 0);
    std::fill_n(flag, count, 0);
    const int status = search(&count, site + first, found, flag, params, nullptr);
    if (status < 0) return status;
    const bool final = status == QOR_DF_CELLS_FINAL;
    if (!final) correct(count, site + first, found, flag, cell + first);
    for (int64_t i = 0; i < count; ++i) {
      const bool keep = final || flag[i] != 0;
      cell[first + i] = keep ? static_cast<int32_t>(found[i]) : cell[first + i];
    }
    if (!final && status != 0) result = status;
  }
  return result;
}

template <class Real>
int search_user_defined(int64_t nx, const Real* x, int64_t nsite, const Real* site,
                        UserSearch<Real> search, void* params, int32_t* cell) {
  const int32_t n = cell_count(nx);
  const Real last = x[n - 1];
  return search_by_user(
      nsite, site, search, params, cell,
      [=](int64_t count, const Real* s, const int64_t* guess, const int64_t* flag, int32_t* out) {
        for (int64_t i = 0; i < count; ++i) {
          if (flag[i] != 0) continue;
          const auto from = static_cast<int32_t>(std::clamp<int64_t>(guess[i], 0, n));
          out[i] = s[i] == last ? n - 1 : walk_to_cell(n, x, s[i], from);
        }
      });
}

template <class Real>
int search_uniform_user_defined(int64_t nx, const Real* x, int64_t nsite, const Real* site,
                                Real step, UserSearch<Real> search, void* params, int32_t* cell) {
  const UniformCells<Real> cells(nx, x, step);
  return search_by_user(nsite, site, search, params, cell,
                        [&](int64_t count, const Real* s, const int64_t*, const int64_t*,
                            int32_t* out) { cells.find(count, s, out); });
}

}  // namespace qor::fitting
