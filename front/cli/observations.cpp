#include "front/cli/observations.h"

#include <cmath>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {

ObservationReader::ObservationReader(CsvReader& csv, std::vector<size_t> columns,
                                     std::optional<size_t> weights)
    : csv_(csv), columns_(std::move(columns)), weighted_(weights.has_value()) {
  if (weights) columns_.push_back(*weights);
  missing_.resize(columns_.size());
}

bool ObservationReader::next(size_t most, Observations& block) {
  const size_t variables = columns_.size() - (weighted_ ? 1 : 0);
  block = {std::move(block.x), std::move(block.weights), 0};
  block.x.clear();
  block.weights.clear();
  while (static_cast<size_t>(block.count) < most && csv_.next(row_)) {
    for (size_t i = 0; i < variables; ++i) block.x.push_back(value(i));
    if (weighted_) {
      const double weight = value(variables);
      if (weight < 0) {
        refuse_cell(csv_.head(), row_.cell(columns_.back()),
                    "; weights of at least 0 are accepted");
      }
      block.weights.push_back(weight);
    }
    ++block.count;
  }
  return block.count > 0;
}

double ObservationReader::value(size_t place) {
  const CsvCell cell = row_.cell(columns_[place]);
  const double value = number(csv_.head(), cell);
  if (std::isnan(value)) {
    Missing& missing = missing_[place];
    if (missing.lines.size() <= kMostLines) missing.lines.push_back(row_.line);
    ++missing.cells;
    ++missing_cells_;
  } else if (std::isinf(value)) {
    refuse_cell(csv_.head(), cell, "; finite numbers are accepted");
  }
  return value;
}

void ObservationReader::require_no_missing() const {
  if (missing_cells_ == 0) return;
  std::string text = csv_.head().file + ": " + std::to_string(missing_cells_) +
                     (missing_cells_ == 1 ? " missing cell:" : " missing cells:");
  for (size_t i = 0; i < columns_.size(); ++i) {
    const Missing& missing = missing_[i];
    if (missing.cells == 0) continue;
    text += "\n  column " + quoted(csv_.head().header[columns_[i]]) + ": " +
            std::to_string(missing.cells) + ", " + list_of_lines(missing.lines);
  }
  throw InputError(text +
                   "\nMissing cells must be excluded or filled: leave their rows out of the file or"
                   " their columns out of --columns, or put numbers in their places.");
}

}  // namespace qor::cli
