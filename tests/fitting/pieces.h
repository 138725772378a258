// Functions of pieces to interpolate and to integrate: a task of them, and what it should give, in
// extended precision.
#pragma once

#include <algorithm>
#include <random>

#include "tests/fitting/api.h"
#include "tests/fitting/reference.h"

namespace qor::test {

// Polynomials whose coefficients are not those of any construction, since interpolation and
// integration read coefficients alone; of order 0, step functions.
template <class Real>
struct Pieces {
  int64_t nx, functions, order, type;
  bool uniform, interleaved, on_knots;
  std::vector<Real> x, ends, knots, y, c;
  Task<Real> task;

  Pieces(int64_t n, int64_t ny, int64_t s_order, int64_t s_type = 0, int64_t xhint = 1,
         int32_t int_width = 1)
      : nx(n),
        functions(ny),
        order(s_order),
        type(s_type),
        uniform(xhint == 4),
        interleaved(order == 0 && uniform),
        on_knots(order == 3 && type == 1),
        x(breakpoints(n, uniform)),
        ends({x.front(), x.back()}),
        knots(x),
        y(digits(n * ny)),
        c(digits(n * ny * std::max<int64_t>(order, 1))),
        task(n, uniform ? ends.data() : x.data(), xhint, ny, y.data(), interleaved ? 32 : 0,
             int_width) {
    for (size_t i = 1; i < x.size(); ++i) knots[i] = (x[i - 1] + x[i]) / 2;
    knots.push_back(x.back());
    EXPECT_EQ(task.spline(order, type, order == 0 ? nullptr : c.data(), 0, nullptr,
                          on_knots ? 1 : 0, on_knots ? knots.data() : nullptr),
              QOR_DF_OK);
  }

  // A derivative of a function at s. A step function that is continuous from the left has its own
  // value at a breakpoint.
  Wide at(int64_t function, int derivative, Real s) const {
    int64_t p = 0;
    while (p + 1 < pieces() && s >= left(p + 1)) ++p;
    if (order == 0 && derivative == 0 && s == left(p)) return value(function, p);
    return polynomial_at(piece(function, p), derivative, static_cast<Wide>(s) - left(p));
  }

  // By the pieces that lie between the limits, of which the outer ones have no end.
  Wide integral(int64_t function, Real l, Real u) const {
    if (u < l) return -integral(function, u, l);
    Wide sum = 0;
    for (int64_t p = 0; p < pieces(); ++p) {
      const Wide from = p == 0 ? l : std::max(l, left(p));
      const Wide to = p + 1 == pieces() ? u : std::min(u, left(p + 1));
      if (from >= to) continue;
      const auto polynomial = piece(function, p);
      sum += primitive_at(polynomial, to - left(p)) - primitive_at(polynomial, from - left(p));
    }
    return sum;
  }

  // From a unit left of the partition to a unit right of it.
  std::vector<Real> ascending_sites(int64_t count) const {
    std::vector<Real> site;
    const Real first = x.front() - 1, length = x.back() + 1 - first;
    for (int64_t i = 0; i < count; ++i) {
      site.push_back(first + length * static_cast<Real>(i) / static_cast<Real>(count));
    }
    return site;
  }

 private:
  static std::vector<Real> breakpoints(int64_t n, bool uniform) {
    std::vector<Real> x;
    for (int64_t i = 0; i < n; ++i) {
      x.push_back(static_cast<Real>(i) / 2 - 2 + static_cast<Real>(uniform ? 0 : i % 3) / 16);
    }
    return x;
  }
  static std::vector<Real> digits(int64_t count) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> digit(-8, 8);
    std::vector<Real> v;
    for (int64_t i = 0; i < count; ++i) v.push_back(static_cast<Real>(digit(random)) / 4);
    return v;
  }
  int64_t pieces() const { return order == 0 || on_knots ? nx : nx - 1; }
  Real left(int64_t p) const { return (on_knots ? knots : x)[static_cast<size_t>(p)]; }
  Real value(int64_t function, int64_t i) const {
    return y[static_cast<size_t>(interleaved ? i * functions + function : function * nx + i)];
  }
  std::vector<Wide> piece(int64_t function, int64_t p) const {
    if (order == 0) return {value(function, type == 8 ? std::min(p + 1, nx - 1) : p)};
    const Real* first = c.data() + (function * pieces() + p) * order;
    return {first, first + order};
  }
};

// All kinds of functions that have pieces, one and several, on both forms of partitions.
template <class Real, class Check>
void for_all_pieces(Check check) {
  for (const auto& [order, type] :
       {std::pair{2, 0}, {3, 0}, {3, 1}, {4, 5}, {5, 0}, {7, 0}, {0, 7}, {0, 8}}) {
    for (const int64_t xhint : {1, 4}) {
      for (const int64_t functions : {1, 3}) {
        SCOPED_TRACE(testing::Message() << order << " " << type << " " << xhint);
        check(Pieces<Real>(14, functions, order, type, xhint));
      }
    }
  }
}

// Where a result stands.
inline size_t place(int64_t layout, int64_t i, int64_t f, int64_t d, int64_t nsite, int64_t ny,
                    int64_t nd) {
  const int64_t at = layout == 32    ? (f * nd + d) * nsite + i
                     : layout == 256 ? (i * ny + f) * nd + d
                     : layout == 512 ? (i * nd + d) * ny + f
                                     : (f * nsite + i) * nd + d;
  return static_cast<size_t>(at);
}

// A user's search that fails.
template <class Real>
int fail_search(const int64_t*, const Real*, int64_t*, int64_t*, void*, void*) {
  return -55;
}

}  // namespace qor::test
