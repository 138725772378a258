// Pieces of polynomials to interpolate, and where their results stand.
#pragma once

#include <random>

#include "tests/fitting/api.h"
#include "tests/fitting/reference.h"

namespace qor::test {

// A task of functions with coefficients that are not those of any construction: interpolation reads
// coefficients alone.
template <class Real>
struct Pieces {
  int64_t nx, functions, order;
  std::vector<Real> x, ends, y, c;

  Pieces(int64_t n, int64_t ny, int64_t s_order) : nx(n), functions(ny), order(s_order) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> digit(-8, 8);
    for (int64_t i = 0; i < nx; ++i) x.push_back(Real(0.5) * static_cast<Real>(i) - 2);
    ends = {x.front(), x.back()};
    y.resize(static_cast<size_t>(nx * ny));
    for (int64_t k = 0; k < ny * order * (nx - 1); ++k) {
      c.push_back(static_cast<Real>(digit(random)) / 4);
    }
  }
  // A derivative of a function at s, by the rule of which piece serves it.
  Wide at(int64_t function, int derivative, Real s) const {
    int64_t piece = 0;
    while (piece < nx - 2 && s >= x[static_cast<size_t>(piece + 1)]) ++piece;
    const Real* first = c.data() + (function * (nx - 1) + piece) * order;
    return polynomial_at({first, first + order}, derivative,
                         static_cast<Wide>(s) - x[static_cast<size_t>(piece)]);
  }
};

template <class Real>
std::vector<Real> ascending_sites(const Pieces<Real>& p, int64_t count) {
  std::vector<Real> site;
  const Real first = p.x.front() - 1, last = p.x.back() + 1;
  for (int64_t i = 0; i < count; ++i) {
    site.push_back(first + (last - first) * static_cast<Real>(i) / static_cast<Real>(count));
  }
  return site;
}

inline size_t place(int64_t layout, int64_t i, int64_t f, int64_t d, int64_t nsite, int64_t ny,
                    int64_t nd) {
  const int64_t at = layout == 32    ? (f * nd + d) * nsite + i
                     : layout == 256 ? (i * ny + f) * nd + d
                     : layout == 512 ? (i * nd + d) * ny + f
                                     : (f * nsite + i) * nd + d;
  return static_cast<size_t>(at);
}

}  // namespace qor::test
