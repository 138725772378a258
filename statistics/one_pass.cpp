// The one pass method: mean and central sums brought up to date observation by observation
// (Welford, 1962; Terriberry, 2008, for the higher ones).
//
// Observations go in tiles. A tile starts from nothing, so that its running weights, and for unit
// weights all factors that depend on them, are the same in each; it is then merged into the moments
// by the pairwise formulas. Rounding thus grows with the root of the tile's length and of the
// number of tiles, not of the number of observations.

#include <algorithm>
#include <limits>

#include "services/scratch.h"
#include "statistics/kernels.h"
#include "statistics/strip.h"

namespace qor::statistics {
namespace {

constexpr int64_t kTile = 64;

// What an observation of weight w, coming after a weight of W in its tile, does to the slots. All
// but three are free of the weights' unit; these are w times what is.
template <class Real>
struct Factors {
  Real keep[kTile];       // W / (W + w): what remains of a moment
  Real take[kTile];       // w / (W + w)
  Real square[kTile];     // to c2: of d^2
  Real cube[kTile];       // to c3: of d^3
  Real cube_c2[kTile];    // of c2 d
  Real fourth[kTile];     // to c4: of d^4
  Real fourth_c2[kTile];  // of c2 d^2
  Real fourth_c3[kTile];  // of c3 d
  Weight weight;          // of the whole tile

  template <bool has_higher>
  void set(int64_t i, double before, double w) {
    const double after = before + w;
    const bool none = after == 0;  // no weight yet: the slots stay empty
    const double inverse = 1 / (none ? 1 : after), r = none ? 0 : inverse;
    const double u = none ? 1 : before * r, a = w * r;
    keep[i] = static_cast<Real>(u);
    take[i] = static_cast<Real>(a);
    square[i] = static_cast<Real>(w * u);
    if constexpr (!has_higher) return;
    cube[i] = static_cast<Real>(w * u * ((before - w) * r));
    cube_c2[i] = static_cast<Real>(3 * a);
    fourth[i] = static_cast<Real>(w * u * (u * u - u * a + a * a));
    fourth_c2[i] = static_cast<Real>(6 * a * a);
    fourth_c3[i] = static_cast<Real>(4 * a);
  }

  template <bool has_higher>
  void set_unit_weights(int64_t count) {
    for (int64_t i = 0; i < count; ++i) set<has_higher>(i, static_cast<double>(i), 1);
  }

  template <bool has_higher>
  void set_weights(const Real* weights, int64_t count) {
    double before[kTile], sum = 0, squares = 0;
    for (int64_t i = 0; i < count; ++i) {
      const double w = weights[i];
      before[i] = sum;
      sum += w;
      squares += w * w;
    }
    for (int64_t i = 0; i < count; ++i) set<has_higher>(i, before[i], weights[i]);
    weight = {sum, squares};
  }
};

// The deviations of a tile and their products with its square factors, in rows of `stride`; and the
// distance of the tile's mean from that of all before it.
template <class Real>
struct Deviations {
  int64_t stride;
  Real* plain;
  Real* scaled;
  Real* shift;
};

template <class Real>
int64_t deviation_stride(int64_t p) {
  constexpr int64_t lanes = 2 * register_lanes<Real>;
  return (p + lanes - 1) / lanes * lanes;
}

template <class Real, int registers>
struct TileMoments {
  static constexpr int lanes = registers * register_lanes<Real>;
  Real mean[lanes];
  Real raw[3][lanes];
  Real central[3][lanes];

  Moments<Real> view() {
    return {mean, {raw[0], raw[1], raw[2]}, {central[0], central[1], central[2]}};
  }
};

// What the values of a tile count from: its first ones, but 0 in place of infinities, NaNs and
// values so large that a difference could overflow.
template <class Real>
Register<Real> origin(Register<Real> first) {
  using Lanes = lanes::Lanes<Real>;
  constexpr Real least = std::numeric_limits<Real>::epsilon() / 8;
  const Real limit = std::numeric_limits<Real>::max() * least;  // below half an ulp of the largest
  const auto small = (first < lanes::broadcast(limit)) & (first > lanes::broadcast(-limit));
  return lanes::from_bits(lanes::bits(first) & typename Lanes::I(small));
}

// The moments of a tile's strip.
template <class Real, int row, bool matrix, int registers>
[[gnu::always_inline]] inline void run_tile(const Strip<Real>& strip, int64_t count,
                                            const Factors<Real>& factors,
                                            const Deviations<Real>& deviations, int64_t j,
                                            TileMoments<Real, registers>& tile) {
  using V = Register<Real>;
  using lanes::broadcast;
  constexpr Order order = one_pass_orders[row];
  V mean[registers]{}, raw[3][registers]{}, central[3][registers]{}, from[registers];
  for (int g = 0; g < registers; ++g) {
    from[g] = origin<Real>(load(strip.rows + g * register_lanes<Real>));
  }
  for (int64_t i = 0; i < count; ++i) {
    const V keep = broadcast(factors.keep[i]), take = broadcast(factors.take[i]);
    for (int g = 0; g < registers; ++g) {
      const V x = load(strip.rows + i * strip.stride + g * register_lanes<Real>);
      const V y = x - from[g];
      const V d = y - mean[g];
      const V square = d * d;
      if constexpr (matrix) {
        const int64_t at = i * deviations.stride + j + g * register_lanes<Real>;
        store(deviations.plain + at, d);
        store(deviations.scaled + at, broadcast(factors.square[i]) * d);
      }
      if constexpr (order.central > 2) {
        central[2][g] += broadcast(factors.fourth[i]) * (square * square) +
                         broadcast(factors.fourth_c2[i]) * central[0][g] * square -
                         broadcast(factors.fourth_c3[i]) * central[1][g] * d;
        central[1][g] += broadcast(factors.cube[i]) * (square * d) -
                         broadcast(factors.cube_c2[i]) * central[0][g] * d;
      }
      if constexpr (order.central > 0) central[0][g] += broadcast(factors.square[i]) * square;
      mean[g] = keep * mean[g] + take * y;
      V power = x;
      for (int k = 0; k + 1 < order.raw; ++k) {
        power *= x;
        raw[k][g] = keep * raw[k][g] + take * power;
      }
    }
  }
  for (int g = 0; g < registers; ++g) {
    const int at = g * register_lanes<Real>;
    store(tile.mean + at, V(from[g] + mean[g]));
    for (int k = 0; k + 1 < order.raw; ++k) store(tile.raw[k] + at, raw[k][g]);
    for (int k = 0; k < order.central; ++k) store(tile.central[k] + at, central[k][g]);
  }
}

// Variables j and after, `registers` registers of them, of one tile.
template <class Real, bool by_variable, int row, bool matrix, int registers>
[[gnu::always_inline]] inline void take_strip(const Observations<Real>& data, int64_t first,
                                              int64_t count, int64_t j,
                                              const Factors<Real>& factors,
                                              const Shares<Real>& shares,
                                              const Deviations<Real>& deviations,
                                              const Moments<Real>& into) {
  constexpr int lanes = registers * register_lanes<Real>;
  alignas(64) Real buffer[kTile * lanes];
  const int64_t variables = std::min<int64_t>(lanes, data.p - j);
  const auto strip = load_strip<Real, by_variable, lanes>(data, first, count, j, variables, buffer);
  TileMoments<Real, registers> tile;
  run_tile<Real, row, matrix>(strip, count, factors, deviations, j, tile);
  const Moments<Real> slots = into.from(j);
  if constexpr (matrix) {
    for (int64_t l = 0; l < variables; ++l) {
      deviations.shift[j + l] = shares.has_no_first ? Real{0} : tile.mean[l] - slots.mean[l];
    }
  }
  merge(slots, tile.view(), variables, one_pass_orders[row], shares);
}

// Adds the products of a tile's deviations to the matrix: `rows` rows of it from k on, the columns
// up to the diagonal.
template <class Real, int rows>
void take_products(const Deviations<Real>& d, int64_t count, int64_t k, int64_t p, Real factor,
                   Real* cross) {
  using V = Register<Real>;
  constexpr int lanes = register_lanes<Real>;
  for (int64_t j = 0; j < k + rows; j += lanes) {
    V sum[rows]{};
    for (int64_t i = 0; i < count; ++i) {
      const V scaled = load(d.scaled + i * d.stride + j);
      for (int r = 0; r < rows; ++r) {
        sum[r] += scaled * lanes::broadcast(d.plain[i * d.stride + k + r]);
      }
    }
    for (int r = 0; r < rows; ++r) {
      Real products[lanes];
      store(products, sum[r]);
      const int64_t columns = std::min<int64_t>(lanes, k + r + 1 - j);
      for (int64_t l = 0; l < columns; ++l) {
        cross[(k + r) * p + j + l] += products[l] + factor * d.shift[j + l] * d.shift[k + r];
      }
    }
  }
}

template <class Real>
void take_matrix(const Deviations<Real>& deviations, int64_t count, int64_t p, Real factor,
                 Real* cross) {
  constexpr int rows = 4;
  int64_t k = 0;
  for (; k + rows <= p; k += rows) {
    take_products<Real, rows>(deviations, count, k, p, factor, cross);
  }
  for (; k < p; ++k) take_products<Real, 1>(deviations, count, k, p, factor, cross);
}

template <class Real, bool by_variable, bool weighted, int row, bool matrix>
void one_pass(const Observations<Real>& data, int64_t first, int64_t end, Accumulator<Real>& into) {
  constexpr int wide = row < 2 ? 2 : 1;  // more accumulators than that leave the registers
  constexpr int64_t lanes = register_lanes<Real>;
  constexpr bool has_higher = one_pass_orders[row].central > 1;
  Factors<Real> factors;
  Real scaled[kTile];
  if constexpr (!weighted) {
    factors.template set_unit_weights<has_higher>(std::min(kTile, end - first));
  }
  Deviations<Real> deviations{};
  if constexpr (matrix) {
    const int64_t block = kTile * deviation_stride<Real>(data.p);
    deviations = {deviation_stride<Real>(data.p), into.work, into.work + block,
                  into.work + 2 * block};
  }
  for (int64_t count; first < end; first += count) {
    count = std::min(kTile, end - first);
    if constexpr (weighted) {
      const Real* weights = data.weights_in_units(first, count, scaled);
      factors.template set_weights<has_higher>(weights, count);
    } else {
      factors.weight = {static_cast<double>(count), static_cast<double>(count)};
    }
    const Shares<Real> shares(into.weight.sum, factors.weight.sum);
    int64_t j = 0;
    for (; data.p - j > lanes * (wide - 1); j += lanes * wide) {
      take_strip<Real, by_variable, row, matrix, wide>(data, first, count, j, factors, shares,
                                                       deviations, into.moments);
    }
    if (j < data.p) {
      take_strip<Real, by_variable, row, matrix, 1>(data, first, count, j, factors, shares,
                                                    deviations, into.moments);
    }
    if constexpr (matrix) take_matrix(deviations, count, data.p, shares.product, into.cross);
    into.weight.sum += factors.weight.sum;
    into.weight.squares += factors.weight.squares;
  }
}

// [layout][weighted][order][matrix]
template <class Real, bool by_variable, bool weighted>
constexpr Kernel<Real> kByOrder[4][2] = {
    {one_pass<Real, by_variable, weighted, 0, false>,
     one_pass<Real, by_variable, weighted, 0, true>},
    {one_pass<Real, by_variable, weighted, 1, false>,
     one_pass<Real, by_variable, weighted, 1, true>},
    {one_pass<Real, by_variable, weighted, 2, false>,
     one_pass<Real, by_variable, weighted, 2, true>},
    {one_pass<Real, by_variable, weighted, 3, false>,
     one_pass<Real, by_variable, weighted, 3, true>},
};

}  // namespace

template <class Real>
Kernel<Real> one_pass_kernel(bool by_variable, bool weighted, int order, bool matrix) {
  if (by_variable) {
    return weighted ? kByOrder<Real, true, true>[order][matrix]
                    : kByOrder<Real, true, false>[order][matrix];
  }
  return weighted ? kByOrder<Real, false, true>[order][matrix]
                  : kByOrder<Real, false, false>[order][matrix];
}

template <class Real>
int64_t one_pass_work(int64_t p) {
  return services::counted_product(2 * kTile + 1, deviation_stride<Real>(p));
}

template Kernel<double> one_pass_kernel<double>(bool, bool, int, bool);
template Kernel<float> one_pass_kernel<float>(bool, bool, int, bool);
template int64_t one_pass_work<double>(int64_t);
template int64_t one_pass_work<float>(int64_t);

}  // namespace qor::statistics
