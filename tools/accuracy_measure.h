// Errors of kernels against the reference, in ulp.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "reference/rows.h"

namespace qor::tools {

struct Measurement {
  double worst = 0.0;
  std::array<double, 6> at{};  // the numbers of the element that shows it
  double sum = 0.0;            // of the errors that are finite
  uint64_t count = 0;

  double mean() const { return count == 0 ? 0.0 : sum / static_cast<double>(count); }
  void add(const Measurement& other);
};

// At the hard arguments and at `count` random ones, the same in every run.
template <class T>
Measurement measure_sample(const reference::Row<T>& row, int slot, uint64_t count);

// At all 2^32 arguments of a function of one float with values in double for each of its outputs,
// on this many threads. Progress goes to standard error when that is a terminal.
Measurement measure_all(const reference::Row<float>& row, int slot, int threads);

}  // namespace qor::tools
