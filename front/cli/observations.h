// Columns of a CSV file as observations, block by block.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "front/cli/csv_reader.h"

namespace qor::cli {

struct Observations {
  std::vector<double> x;        // observation after observation
  std::vector<double> weights;  // one each, or none at all
  int64_t count = 0;
};

class ObservationReader {
 public:
  // Reads columns of the file, and one of weights where there is one. Refers to the reader.
  ObservationReader(CsvReader& csv, std::vector<size_t> columns, std::optional<size_t> weights);

  // Up to so many more observations; false when there are none. A value that is not finite and a
  // negative weight are InputErrors. Missing cells are taken note of.
  bool next(size_t most, Observations& block);

  // An InputError that names and counts the missing cells that were read, when there are any.
  void require_no_missing() const;
  bool has_missing() const { return missing_cells_ > 0; }

 private:
  struct Missing {
    uint64_t cells = 0;
    std::vector<size_t> lines;  // the first, one more than a message lists
  };

  double value(size_t place);  // of the row at hand

  CsvReader& csv_;
  std::vector<size_t> columns_;  // that of the weights last
  bool weighted_;
  std::vector<Missing> missing_;  // beside columns_
  uint64_t missing_cells_ = 0;
  CsvRow row_;
};

}  // namespace qor::cli
