// How a run finds its units: a guess from the first observations, and, should what it gathers show
// that this was a bad one, a look at all of them.

#include "statistics/units.h"

#include <algorithm>
#include <limits>

#include "statistics/cross_product.h"
#include "statistics/outcome.h"

namespace qor::statistics {
namespace {

// Exponent of a variable's largest magnitude in a unit of its own: the powers of what is largest
// and those of the smallest deviation from it are then both far from the ends of the range.
constexpr int32_t kLargest = 8;
// Exponents of a first weight whose unit stays 1, and of sums of weights for which no other unit is
// looked for.
constexpr int32_t kUsualWeight = 16, kLeastWeight = -20, kMostWeight = 48;
// Observations that the guess looks at, where there are so many: fewer are soon run again.
constexpr int64_t kFirst = 16, kFewestToGuess = 1024;
constexpr int64_t kTile = 128;

// ---- What the data are like --------------------------------------------------------------------

// The values of a variable among the observations looked at. Those without weight count for
// nothing, but a run in units of 1 raises them to powers too.
template <class Real>
struct Extent {
  Real largest = 0;     // magnitude; infinite when one is no number
  Real weightless = 0;  // the same of finite values without weight
  Real first = 0;
  bool any = false, varies = false;

  // Observations first to end - 1.
  void take(const Observations<Real>& data, int64_t j, int64_t first_row, int64_t end) {
    const int64_t step = data.observation_stride();
    const Real* values = data.variable(j);
    for (int64_t i = first_row; i < end; ++i) take(values[i * step], data.has_weight(i));
  }
  void take(Real value, bool has_weight) {
    const Real magnitude =
        std::isfinite(value) ? std::abs(value) : std::numeric_limits<Real>::infinity();
    if (!has_weight) {
      if (std::isfinite(magnitude)) weightless = std::max(weightless, magnitude);
      return;
    }
    if (!any) first = value;
    any = true;
    varies |= value != first;
    largest = std::max(largest, magnitude);
  }
};

// The exponent of the numbers behind the state in the caller's arrays, and of means that are given.
template <class Real>
int32_t state_exponent(const Run<Real>& run, int64_t j) {
  int32_t largest = no_exponent;
  const auto take = [&largest](Real value, int32_t weight_unit, int power) {
    const int32_t exponent = exponent_of(std::abs(value));
    if (exponent != no_exponent) largest = std::max(largest, (exponent - weight_unit) / power + 1);
  };
  if (run.request.method == Method::given_means) {
    for (const Real* means :
         {reals<Real>(run.task.mean), saved_means<Real>(run.task, run.data.p)}) {
      if (means != nullptr) take(means[j], 0, 1);
    }
  }
  if (run.is_fresh()) return largest;
  const int32_t weight = weight_unit(run.before.sum);
  for (int s = 0; s < slot_count; ++s) {
    bool is_moment;
    const Real* state =
        in_use(run.order, s) ? start_array<Real>(run.task, run.request, s, is_moment) : nullptr;
    if (state != nullptr) take(state[j], is_moment ? 0 : weight, slot_fields[s].power);
  }
  if (run.matrix) {
    const int field = holder_field(run.request);
    const auto holder = matrix_of<Real>(run.task, field);
    const int64_t place = element_place(holder.form, run.data.p, j, j);
    take(holder.data[place], field == field_cp ? weight : 0, 2);
  }
  return largest;
}

// ---- What variables ask for ---------------------------------------------------------------------

// A variable in a run that is looked at afterwards.
template <class Real>
struct Look {
  Outcome outcome;
  Extent<Real> extent = {};

  // Whether more observations can change what the variable asks for.
  bool is_open(const Room<Real>& room, int32_t unit) const {
    if (outcome == Outcome::good) return false;
    if (outcome == Outcome::beyond) return std::isfinite(extent.largest);
    return exponent_of(extent.largest) - unit < room.least_value;
  }
};

// What a variable asks for once it has been looked at.
struct Demand {
  int32_t unit;
  bool another_run;
};

template <class Real>
Demand demand_of(const Run<Real>& run, const Room<Real>& room, int64_t j, const Look<Real>& look) {
  const Extent<Real>& extent = look.extent;
  const int32_t unit = run.units.of(j);
  if (look.outcome == Outcome::good) return {unit, false};
  const int32_t state = state_exponent(run, j),
                exponent = std::max(exponent_of(extent.largest), state);
  const bool hidden = look.outcome == Outcome::beyond && run.data.scale == nullptr &&
                      exponent_of(extent.weightless) > room.most;
  // The data themselves, or nothing to scale.
  if (!std::isfinite(extent.largest) || exponent == no_exponent) return {unit, hidden};
  const bool varies = extent.varies || state != no_exponent;
  const int32_t least = varies ? room.least_value : room.least_deviation;
  if (exponent - unit >= least && exponent - unit <= room.most) return {unit, hidden};
  const int32_t own = room.possible_unit(exponent - kLargest);
  return {own, hidden || own != unit};
}

// The unit that the sum of weights asks for: that of the largest, when it is far off.
template <class Real>
int32_t demanded_weight_unit(const Run<Real>& run) {
  const Weight weight = run.gathered().weight;
  const int32_t exponent = exponent_of(weight.sum);
  if (exponent >= kLeastWeight && exponent <= kMostWeight && std::isfinite(weight.squares)) {
    return run.units.weight;
  }
  double largest = std::max(run.before.sum, run.data.weights == nullptr ? 1.0 : 0.0);
  for (int64_t i = 0; run.data.weights != nullptr && i < run.data.n; ++i) {
    const double w = std::abs(run.data.weights[i]);
    if (w > largest && std::isfinite(w)) largest = w;
  }
  const int32_t own = exponent_of(largest);
  return own == no_exponent ? run.units.weight : Room<Real>::possible_unit(own);
}

// ---- Setting the units -------------------------------------------------------------------------

// unit(j) for all variables.
template <class Real, class Unit>
void set_units(Run<Real>& run, WorkMemory& memory, Unit unit) {
  int32_t* exponents = memory.take<int32_t>(run.data.p);
  Real* scale = memory.take<Real>(run.data.p);
  if (memory.failed()) return;
  for (int64_t j = 0; j < run.data.p; ++j) {
    exponents[j] = unit(j);
    scale[j] = std::ldexp(Real{1}, -exponents[j]);
  }
  run.units.exponents = exponents;
  run.data.scale = scale;
}

template <class Real>
void set_weight_unit(Run<Real>& run, int32_t unit) {
  run.units.weight = unit;
  run.data.weight_scale = std::ldexp(Real{1}, -unit);
}

// Looks at all observations, as far as it takes.
template <class Real>
void look_at_observations(const Run<Real>& run, const Room<Real>& room, Look<Real>* looks) {
  bool open = true;
  for (int64_t first = 0; first < run.data.n && open; first += kTile) {
    const int64_t end = std::min(first + kTile, run.data.n);
    open = false;
    for (int64_t j = 0; j < run.data.p; ++j) {
      if (!looks[j].is_open(room, run.units.of(j))) continue;
      looks[j].extent.take(run.data, j, first, end);
      open = true;
    }
  }
}

}  // namespace

template <class Real>
void choose_units(Run<Real>& run, WorkMemory& memory) {
  const Observations<Real>& data = run.data;
  int64_t& first = run.first_row;
  while (first < data.n && !data.has_weight(first)) ++first;
  if (data.weights != nullptr && first < data.n) {
    const int32_t unit = exponent_of(std::abs(data.weights[first]));
    const bool usual = unit == no_exponent || std::abs(unit) <= kUsualWeight;
    if (!usual) set_weight_unit(run, Room<Real>::possible_unit(unit));
  }
  if (data.n < kFewestToGuess) return;
  const Room<Real> room = room_of(run);
  const auto guess = [&](int64_t j) {
    Extent<Real> extent;
    if (data.takes_part(j)) extent.take(data, j, first, std::min(first + kFirst, data.n));
    const int32_t exponent = std::max(exponent_of(extent.largest), state_exponent(run, j));
    const bool usual = exponent >= room.least_deviation && exponent <= room.most;
    return exponent == no_exponent || usual ? 0 : room.possible_unit(exponent - kLargest);
  };
  bool any = false;
  for (int64_t j = 0; j < data.p && !any; ++j) any = guess(j) != 0;
  if (any) set_units(run, memory, guess);
}

template <class Real>
bool change_units(Run<Real>& run, WorkMemory& memory) {
  if (!(run.gathered().weight.sum > 0)) return false;
  const int64_t p = run.data.p;
  const int32_t weight = demanded_weight_unit(run);
  const bool another_weight = weight != run.units.weight;
  const Room<Real> room = room_of(run);
  const Judge<Real> outcome(run, room);
  if (!another_weight && outcome.all_are_good()) return false;
  auto* looks = memory.take<Look<Real>>(p);
  if (memory.failed()) return true;
  for (int64_t j = 0; j < p; ++j) looks[j] = {outcome(j)};
  look_at_observations(run, room, looks);
  const auto demand = [&](int64_t j) { return demand_of(run, room, j, looks[j]); };
  bool another_unit = false;
  for (int64_t j = 0; j < p; ++j) another_unit |= demand(j).another_run;
  const auto unit = [&](int64_t j) { return demand(j).unit; };
  if (another_unit) set_units(run, memory, unit);
  set_weight_unit(run, weight);
  return another_weight || another_unit;
}

template void choose_units<double>(Run<double>&, WorkMemory&);
template void choose_units<float>(Run<float>&, WorkMemory&);
template bool change_units<double>(Run<double>&, WorkMemory&);
template bool change_units<float>(Run<float>&, WorkMemory&);

}  // namespace qor::statistics
