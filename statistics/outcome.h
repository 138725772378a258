// Whether what a run has gathered can be relied on: nothing has left the range of the reals on the
// way, and nothing has lost digits at its lower end.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "kernels/lanes.h"
#include "kernels/scalar/bits.h"
#include "statistics/run.h"
#include "statistics/slots.h"

namespace qor::statistics {

inline constexpr int32_t no_exponent = std::numeric_limits<int32_t>::min() / 2;

// The exponent of a magnitude, no_exponent for 0 and what is no number.
inline int32_t exponent_of(double magnitude) {
  if (!(magnitude > 0) || !std::isfinite(magnitude)) return no_exponent;
  constexpr double least = std::numeric_limits<double>::min();
  return magnitude >= least ? static_cast<int32_t>(std::bit_cast<uint64_t>(magnitude) >> 52) - 1023
                            : std::ilogb(magnitude);
}

// What a run that raises magnitudes to a power, and adds up so many, has room for: exponents that
// keep it inside the range with some bits to spare.
template <class Real>
struct Room {
  using Limits = std::numeric_limits<Real>;
  static constexpr int32_t spare = 8;
  int32_t least_deviation;
  int32_t least_value;  // of values that vary, by a unit in the last place perhaps
  int32_t most;

  Room(int32_t power, int32_t count_bits)
      : least_deviation((Limits::min_exponent + Limits::digits + spare) / power),
        least_value(least_deviation + (power > 1 ? Limits::digits : 0)),
        most((Limits::max_exponent - count_bits - spare) / power) {}

  // The nearest unit that a normal number turns values into.
  static int32_t possible_unit(int32_t exponent) {
    return std::clamp<int32_t>(exponent, 2 - Limits::max_exponent, Limits::max_exponent - 2);
  }
};

template <class Real>
Room<Real> room_of(const Run<Real>& run) {
  const int32_t count_bits = exponent_of(static_cast<double>(run.data.n)) + 1,
                weight =
                    run.members == nullptr ? no_exponent : exponent_of(run.gathered().weight.sum);
  const int power = std::max(
      {run.order.raw, run.order.central + (run.order.central > 0 ? 1 : 0), run.matrix ? 2 : 1});
  return {power, std::max(count_bits, weight + 1)};
}

enum class Outcome { good, small, beyond };

// Tells the outcomes of variables from what a run has gathered.
template <class Real>
struct Judge {
  const Run<Real>& run;
  const Real* gathered[slot_count];  // slots that must be finite
  int count = 0;
  // What must not be small either: raw moment 2, the central sum, the matrix; else the mean.
  const Real *raw = nullptr, *central = nullptr, *cross, *mean = nullptr;
  Real least, least_square, least_sum, least_value;
  const Real* first_values = nullptr;  // of all variables, where these stand in a row

  Judge(const Run<Real>& of, const Room<Real>& room)
      : run(of),
        cross(of.matrix ? of.gathered().cross : nullptr),
        least(kernels::power_of_two<Real>(room.least_deviation)),
        least_square(least * least),
        least_sum(static_cast<Real>(least_square * of.gathered().weight.sum)),
        least_value(kernels::power_of_two<Real>(room.least_value)) {
    const Moments<Real>& moments = run.gathered().moments;
    const bool given = run.request.method == Method::given_means;
    for (int s = given ? 1 : 0; s < slot_count; ++s) {
      if (in_use(run.order, s)) gathered[count++] = slot(moments, s);
    }
    if (run.order.raw > 1) raw = moments.raw[0];
    if (run.order.central > 0) central = moments.central[0];
    if (raw == nullptr && central == nullptr && cross == nullptr) mean = moments.mean;
    const Observations<Real>& data = run.data;
    if (data.variable_stride() == 1 && data.scale == nullptr && run.first_row < data.n) {
      first_values = data.x + run.first_row * data.observation_stride();
    }
  }

  Real sum_of_squares(int64_t j) const { return cross[j * (run.data.p + 1)]; }
  bool is_finite(int64_t j) const {
    bool all = cross == nullptr || std::isfinite(sum_of_squares(j));
    for (int k = 0; k < count; ++k) all &= std::isfinite(gathered[k][j]);
    return all;
  }
  bool is_small(int64_t j) const {
    return (raw != nullptr && !(raw[j] >= least_square)) ||
           (central != nullptr && !(central[j] >= least_sum)) ||
           (cross != nullptr && !(std::abs(sum_of_squares(j)) >= least_sum)) ||
           (mean != nullptr && !(std::abs(mean[j]) >= least));
  }
  // What seems small varies little, or not at all, when the first value is not.
  bool begins_large(int64_t j) const {
    if (run.first_row == run.data.n) return false;
    const Real value = run.data.variable(j)[run.first_row * run.data.observation_stride()];
    return std::abs(run.data.scale == nullptr ? value : value * run.data.scale[j]) >= least_value;
  }
  // Variables j and after, a register of them, told at a glance: it may fail to see that they are
  // good.
  bool seem_good(int64_t j) const {
    using Lanes = lanes::Lanes<Real>;
    const auto magnitude = [](typename Lanes::V v) { return lanes::maximum(v, -v); };
    typename Lanes::V none{};  // of finite numbers
    typename Lanes::M small{}, large{};
    for (int k = 0; k < count; ++k) {
      const auto v = lanes::load(gathered[k] + j);
      none += v - v;
    }
    if (raw != nullptr) small |= ~(lanes::load(raw + j) >= lanes::broadcast(least_square));
    if (central != nullptr) small |= ~(lanes::load(central + j) >= lanes::broadcast(least_sum));
    if (mean != nullptr) small |= ~(magnitude(lanes::load(mean + j)) >= lanes::broadcast(least));
    if (cross != nullptr) {
      const auto sums = lanes::load_strided(cross + j * (run.data.p + 1), run.data.p + 1);
      none += sums - sums;
      small |= ~(magnitude(sums) >= lanes::broadcast(least_sum));
    }
    if (first_values != nullptr) {
      large = magnitude(lanes::load(first_values + j)) >= lanes::broadcast(least_value);
    }
    return lanes::lane_bits((none == none) & (~small | large)) == lanes::first_lanes(Lanes::count);
  }
  Outcome operator()(int64_t j) const {
    if (!run.data.takes_part(j)) return Outcome::good;
    if (!is_finite(j)) return Outcome::beyond;
    return is_small(j) && !begins_large(j) ? Outcome::small : Outcome::good;
  }
  bool all_are_good() const {
    constexpr int64_t kLanes = lanes::Lanes<Real>::count;
    for (int64_t j = 0, end; j < run.data.p; j = end) {
      end = std::min(j + kLanes, run.data.p);
      if (end - j == kLanes && seem_good(j)) continue;
      for (; j < end; ++j) {
        if ((*this)(j) != Outcome::good) return false;
      }
    }
    return true;
  }
};

}  // namespace qor::statistics
