// A text histogram of values that come in blocks.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "front/cli/values.h"

namespace qor::cli {

// The first block settles the bins: round bounds, one bin for each value where whole numbers are
// few. What lies outside them later is counted below and above.
class Histogram {
 public:
  explicit Histogram(const Layout& layout) : layout_(layout) {}

  void add(const void* values, size_t rows);

  // Count, mean, standard deviation and range; then a line for each bin with its count, its share
  // and a bar.
  std::string text() const;

 private:
  void settle(const void* values, size_t count);
  void take(double value);
  std::string label(size_t bin) const;

  Layout layout_;
  double step_ = 0;   // width of a bin; 0 before the first block
  double first_ = 0;  // lower bound of the first bin, in steps
  bool whole_ = false;
  std::vector<uint64_t> bins_;
  uint64_t below_ = 0, above_ = 0;

  uint64_t count_ = 0;
  double mean_ = 0, squares_ = 0;  // sum of squared distances from the mean
  double least_ = 0, greatest_ = 0;
};

}  // namespace qor::cli
