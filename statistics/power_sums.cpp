// The fast method and the one about given means: sums of powers of the values and of their
// deviations from the means.
//
// A tile is summed by itself, its even and odd observations apart, before it enters the slots:
// rounding grows with the tile's length and the number of tiles, not with their product.

#include <algorithm>

#include "statistics/kernels.h"
#include "statistics/strip.h"

namespace qor::statistics {
namespace {

constexpr int64_t kTile = 128;
constexpr int kChains = 2;  // sums that run side by side

// Sums to form: of powers `first_raw` to 4 at most of x, `raw` of them, and of powers 2 and on of
// x - mean, `central` of them.
struct Powers {
  int first_raw;
  int raw;
  int central;
};

constexpr Powers kFast[] = {{1, 1, 0}, {1, 2, 0}, {1, 3, 0}, {1, 4, 0}};
constexpr Powers kGivenMeans[] = {{2, 0, 1}, {2, 0, 2}, {2, 0, 3}, {2, 3, 3}};

template <class Real>
struct TileSums {
  Real raw[4][register_lanes<Real>];
  Real central[3][register_lanes<Real>];
};

// Adds the powers of one register of values of weight w to the sums of its chain.
template <class Real, bool weighted, Powers powers>
void add_powers(Register<Real> x, Register<Real> mean, Register<Real> w,
                Register<Real> (&raw)[4][kChains], Register<Real> (&central)[3][kChains],
                int chain) {
  using V = Register<Real>;
  if constexpr (powers.raw > 0) {
    V power = weighted ? V(w * x) : x;
    for (int k = 1; k < powers.first_raw; ++k) power *= x;
    for (int k = 0; k < powers.raw; ++k) {
      if (k > 0) power *= x;
      raw[k][chain] += power;
    }
  }
  if constexpr (powers.central > 0) {
    const V d = x - mean;
    V power = weighted ? V(w * d) : d;
    for (int k = 0; k < powers.central; ++k) {
      power *= d;
      central[k][chain] += power;
    }
  }
}

// The sums of one register of variables over a tile. `weights` is null when unweighted.
template <class Real, bool weighted, Powers powers>
[[gnu::always_inline]] inline void sum_tile(const Strip<Real>& strip, int64_t count,
                                            const Real* weights, Register<Real> mean,
                                            TileSums<Real>& sums) {
  using V = Register<Real>;
  V raw[4][kChains]{}, central[3][kChains]{};
  const auto add = [&](int64_t i, int chain) {
    const V w = weighted ? lanes::broadcast(weights[i]) : V{};
    add_powers<Real, weighted, powers>(load(strip.rows + i * strip.stride), mean, w, raw, central,
                                       chain);
  };
  int64_t i = 0;
  for (; i + kChains <= count; i += kChains) {
    for (int chain = 0; chain < kChains; ++chain) add(i + chain, chain);
  }
  if (i < count) add(i, 0);
  for (int k = 0; k < powers.raw; ++k) store(sums.raw[k], V(raw[k][0] + raw[k][1]));
  for (int k = 0; k < powers.central; ++k) store(sums.central[k], V(central[k][0] + central[k][1]));
}

template <class Real>
void add_sums(Real* slot, const Real* sums, int64_t variables) {
  for (int64_t l = 0; l < variables; ++l) slot[l] += sums[l];
}

// Variables j and after, one register of them, of one tile with its weights.
template <class Real, bool by_variable, bool weighted, Powers powers>
[[gnu::always_inline]] inline void take_strip(const Observations<Real>& data, int64_t first,
                                              int64_t count, int64_t j, const Real* weights,
                                              const Moments<Real>& into) {
  constexpr int lanes = register_lanes<Real>;
  alignas(64) Real buffer[kTile * lanes];
  const int64_t variables = std::min<int64_t>(lanes, data.p - j);
  const auto strip = load_strip<Real, by_variable, lanes>(data, first, count, j, variables, buffer);
  Real means[lanes]{};
  if constexpr (powers.central > 0) std::copy_n(into.mean + j, variables, means);
  TileSums<Real> sums;
  sum_tile<Real, weighted, powers>(strip, count, weights, load(means), sums);
  for (int k = 0; k < powers.raw; ++k) {
    const int power = powers.first_raw + k;
    add_sums((power == 1 ? into.mean : into.raw[power - 2]) + j, sums.raw[k], variables);
  }
  for (int k = 0; k < powers.central; ++k) {
    add_sums(into.central[k] + j, sums.central[k], variables);
  }
}

template <class Real, bool by_variable, bool weighted, Powers powers>
void power_sums(const Observations<Real>& data, int64_t first, int64_t end,
                Accumulator<Real>& into) {
  Real scaled[kTile];
  const Real* weights = nullptr;
  for (int64_t count; first < end; first += count) {
    count = std::min(kTile, end - first);
    if constexpr (weighted) {
      weights = data.weights_in_units(first, count, scaled);
    }
    for (int64_t j = 0; j < data.p; j += register_lanes<Real>) {
      take_strip<Real, by_variable, weighted, powers>(data, first, count, j, weights, into.moments);
    }
    if constexpr (weighted) {
      for (int64_t i = 0; i < count; ++i) {
        const double w = weights[i];
        into.weight.sum += w;
        into.weight.squares += w * w;
      }
    } else {
      into.weight.sum += static_cast<double>(count);
      into.weight.squares += static_cast<double>(count);
    }
  }
}

template <class Real, bool by_variable, bool weighted>
constexpr Kernel<Real> kFastKernels[] = {
    power_sums<Real, by_variable, weighted, kFast[0]>,
    power_sums<Real, by_variable, weighted, kFast[1]>,
    power_sums<Real, by_variable, weighted, kFast[2]>,
    power_sums<Real, by_variable, weighted, kFast[3]>,
};
template <class Real, bool by_variable, bool weighted>
constexpr Kernel<Real> kGivenMeansKernels[] = {
    power_sums<Real, by_variable, weighted, kGivenMeans[0]>,
    power_sums<Real, by_variable, weighted, kGivenMeans[1]>,
    power_sums<Real, by_variable, weighted, kGivenMeans[2]>,
    power_sums<Real, by_variable, weighted, kGivenMeans[3]>,
};

}  // namespace

template <class Real>
Kernel<Real> fast_kernel(bool by_variable, bool weighted, int order) {
  if (by_variable) {
    return weighted ? kFastKernels<Real, true, true>[order]
                    : kFastKernels<Real, true, false>[order];
  }
  return weighted ? kFastKernels<Real, false, true>[order]
                  : kFastKernels<Real, false, false>[order];
}

template <class Real>
Kernel<Real> given_means_kernel(bool by_variable, bool weighted, int order) {
  if (by_variable) {
    return weighted ? kGivenMeansKernels<Real, true, true>[order]
                    : kGivenMeansKernels<Real, true, false>[order];
  }
  return weighted ? kGivenMeansKernels<Real, false, true>[order]
                  : kGivenMeansKernels<Real, false, false>[order];
}

template Kernel<double> fast_kernel<double>(bool, bool, int);
template Kernel<float> fast_kernel<float>(bool, bool, int);
template Kernel<double> given_means_kernel<double>(bool, bool, int);
template Kernel<float> given_means_kernel<float>(bool, bool, int);

}  // namespace qor::statistics
