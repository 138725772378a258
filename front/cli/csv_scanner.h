// Cuts the text of a CSV file into rows, where it lies.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "front/cli/csv.h"

namespace qor::cli {

// The rows follow from the bytes of the file alone, however it is cut: what bytes yet to come could
// change is not decided before they are there.
class CsvScanner {
 public:
  static constexpr size_t kMostRow = size_t{1} << 26;  // bytes, the line's end included

  explicit CsvScanner(const std::string& file) : file_(&file) {}  // for messages; must stay

  // Takes the next row off the front of the text, with what is skipped before it, and gives its
  // fields as views into the text (where a quote in quotes becomes a single one). False when the
  // text ends before the row does: to go on, what is left of it and more is needed. `whole`: there
  // is no more.
  bool next(std::span<char>& text, bool whole, CsvRow& row);

 private:
  struct Extent {
    size_t bytes, lines;
  };

  bool skip_to_row(std::span<char>& text, bool whole);
  Extent scan(std::string_view text, bool whole, CsvRow& row);
  size_t quoted_field(std::string_view text, size_t at, bool whole, CsvRow& row, size_t& lines);
  [[noreturn]] void fail(size_t line, const std::string& what) const;

  const std::string* file_;
  bool at_start_ = true;         // of the file, where the byte order mark may be
  size_t line_ = 1;              // at the front of the text
  std::vector<size_t> doubled_;  // fields of the row that have doubled quotes
};

}  // namespace qor::cli
