// Tiles of observations as rows of registers, whichever way the data lie: the kernels' arithmetic,
// and so its bits, is the same for both layouts.
#pragma once

#include <algorithm>
#include <cstring>

#include "kernels/lanes.h"
#include "statistics/view.h"

namespace qor::statistics {

template <class Real>
inline constexpr int register_lanes = lanes::Lanes<Real>::count;

template <class Real>
using Register = typename lanes::Lanes<Real>::V;

template <class Real>
Register<Real> load(const Real* from) {
  Register<Real> v;
  std::memcpy(&v, from, sizeof v);
  return v;
}
template <class Real>
void store(Real* to, Register<Real> v) {
  std::memcpy(to, &v, sizeof v);
}

// Some variables of a tile: row i of the tile begins at rows + i * stride.
template <class Real>
struct Strip {
  const Real* rows;
  int64_t stride;
};

// The first `count` values of a row in `row_lanes` lanes, the others 0.
template <class Real, int row_lanes>
void copy_row(const Real* from, int64_t count, Real* to) {
  constexpr int width = register_lanes<Real>;
  for (int l = 0; l < row_lanes; l += width) {
    const int64_t left = count - l;
    if (left >= width) {
      store(to + l, load(from + l));
    } else {
      store(to + l, left > 0 ? lanes::load_first(from + l, static_cast<int>(left), Real{0})
                             : Register<Real>{});
    }
  }
}

// Variables j to j + variables - 1 of `count` observations from `first` on, in rows of `lanes`
// values; lanes beyond the variables are 0. `buffer` has room for count * lanes values, and is used
// when the rows do not lie so in the data.
template <class Real, bool by_variable, int lanes>
Strip<Real> load_values(const Observations<Real>& data, int64_t first, int64_t count, int64_t j,
                        int64_t variables, Real* buffer) {
  if constexpr (by_variable) {
    if (variables < lanes) std::fill_n(buffer, count * lanes, Real{0});
    for (int64_t l = 0; l < variables; ++l) {
      const Real* column = data.x + (j + l) * data.n + first;
      for (int64_t i = 0; i < count; ++i) buffer[i * lanes + l] = column[i];
    }
  } else {
    const Real* rows = data.x + first * data.p + j;
    if (variables == lanes) return {rows, data.p};
    for (int64_t i = 0; i < count; ++i)
      copy_row<Real, lanes>(rows + i * data.p, variables, buffer + i * lanes);
  }
  return {buffer, lanes};
}

// The same in the units of a run that has a scale.
template <class Real, bool by_variable, int lanes>
[[gnu::noinline]] Strip<Real> load_in_units(const Observations<Real>& data, int64_t first,
                                            int64_t count, int64_t j, int64_t variables,
                                            Real* buffer) {
  const auto values =
      load_values<Real, by_variable, lanes>(data, first, count, j, variables, buffer);
  for (int64_t i = 0; i < count; ++i) {
    for (int64_t l = 0; l < variables; ++l) {
      const Real value = values.rows[i * values.stride + l];
      buffer[i * lanes + l] = data.in_units(value, first + i, j + l);
    }
  }
  return {buffer, lanes};
}

// The same in the units of the run.
template <class Real, bool by_variable, int lanes>
Strip<Real> load_strip(const Observations<Real>& data, int64_t first, int64_t count, int64_t j,
                       int64_t variables, Real* buffer) {
  if (data.scale != nullptr) {
    return load_in_units<Real, by_variable, lanes>(data, first, count, j, variables, buffer);
  }
  return load_values<Real, by_variable, lanes>(data, first, count, j, variables, buffer);
}

}  // namespace qor::statistics
