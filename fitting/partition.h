// The two forms of a partition behind one set of names: x(i), and of cell i its step, its inverse
// step and the slope of a rise over it (a uniform partition has its one inverse step at hand).
//
// weight(i) and weight_span(i, j) are the step and the distance from x(i) to x(j) up to a factor
// that the whole partition shares: equations that are homogeneous in the steps use them, and on a
// uniform partition they are small whole numbers.
#pragma once

#include <cstdint>

#include "fitting/task.h"

namespace qor::fitting {

template <class Real>
Real mean_step(Real first, Real last, int64_t n) {
  return (last - first) / static_cast<Real>(n - 1);
}

template <class Real>
struct Breakpoints {
  static constexpr bool uniform = false;
  const Real* values;
  int64_t n;

  explicit Breakpoints(const DFTask& task) : values(partition_of<Real>(task)), n(task.nx) {}

  Real x(int64_t i) const { return values[i]; }
  Real last() const { return values[n - 1]; }
  Real step(int64_t i) const { return values[i + 1] - values[i]; }
  Real inverse_step(int64_t i) const { return 1 / step(i); }
  Real slope(Real rise, int64_t i) const { return rise / step(i); }
  Real weight(int64_t i) const { return step(i); }
  Real weight_span(int64_t i, int64_t j) const { return values[j] - values[i]; }
};

template <class Real>
struct UniformPartition {
  static constexpr bool uniform = true;
  Real first, end, h, inverse;
  int64_t n;

  UniformPartition(int64_t nx, const Real* ends, Real step)
      : first(ends[0]), end(ends[1]), h(step), inverse(1 / step), n(nx) {}
  explicit UniformPartition(const DFTask& task)
      : UniformPartition(
            task.nx, partition_of<Real>(task),
            mean_step(partition_of<Real>(task)[0], partition_of<Real>(task)[1], task.nx)) {}

  // A 32-bit index converts to a real in vectors at every level.
  template <class Index>
  Real x(Index i) const {
    return at(static_cast<Real>(i));
  }
  // Of a real, or of a register of them.
  template <class Value>
  Value at(Value i) const {
    return i * h + first;
  }
  Real last() const { return end; }
  Real step(int64_t) const { return h; }
  Real inverse_step(int64_t) const { return inverse; }
  Real slope(Real rise, int64_t) const { return rise * inverse; }
  Real weight(int64_t) const { return 1; }
  Real weight_span(int64_t i, int64_t j) const { return static_cast<Real>(j - i); }
};

}  // namespace qor::fitting
