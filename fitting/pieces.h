// From the cell of a site to the polynomial that serves it, and where that polynomial begins.
//
// The outer cells take the first and the last polynomial. A cell number that a caller brings is
// brought into range, so that none reads beyond the arrays.
#pragma once

#include <algorithm>
#include <cstdint>

#include "fitting/partition.h"

namespace qor::fitting {

// The last of `count` pieces that a cell can name.
inline int32_t last_piece(int64_t count) {
  return static_cast<int32_t>(std::min<int64_t>(count - 1, INT32_MAX));
}

// The polynomial of a cell, of `count` polynomials.
inline int32_t piece_of_cell(int32_t cell, int64_t count) {
  const int32_t last = last_piece(count);
  const int32_t piece = cell < 1 ? 0 : cell - 1;
  return piece < last ? piece : last;
}

// Between breakpoints.
template <class Partition>
struct CellPieces {
  Partition x;

  explicit CellPieces(const DFTask& task) : x(task) {}
  int64_t count() const { return x.n - 1; }
  template <class Real>
  int32_t find(Real, int32_t cell) const {
    return piece_of_cell(cell, count());
  }
  template <class Index>
  auto left(Index piece) const {
    return x.x(piece);
  }
  auto width(int64_t piece) const { return x.step(piece); }
};

// Between breakpoints, and one piece more to the right of the last.
template <class Partition>
struct StepPieces : CellPieces<Partition> {
  using CellPieces<Partition>::CellPieces;
  int64_t count() const { return this->x.n; }
  template <class Real>
  int32_t find(Real, int32_t cell) const {
    return piece_of_cell(cell, count());
  }
};

// Between knots: cell c of the partition holds knot c, and the site lies left or right of it.
template <class Real>
struct KnotPieces {
  const Real* knots;
  int64_t n;

  explicit KnotPieces(const DFTask& task) : knots(internal_conditions<Real>(task)), n(task.nx) {}
  int64_t count() const { return n; }
  int32_t find(Real s, int32_t cell) const {
    const int32_t c = cell < 0 ? 0 : std::min(cell, last_piece(n));
    return c > 0 && s < knots[c] ? c - 1 : c;
  }
  Real left(int64_t piece) const { return knots[piece]; }
  Real width(int64_t piece) const { return knots[piece + 1] - knots[piece]; }
};

}  // namespace qor::fitting
