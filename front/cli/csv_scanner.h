// Cuts the text of a CSV file into rows of fields.
#pragma once

#include <string>
#include <string_view>

#include "front/cli/csv.h"

namespace qor::cli {

class CsvScanner {
 public:
  // `line`, the file's that the text starts with, and `file` are for messages; a byte order mark is
  // skipped in line 1. Both texts must outlive the scanner.
  CsvScanner(std::string_view text, const std::string& file, size_t line = 1);

  bool next(Csv::Row& row);  // false at the end
  size_t line() const { return line_; }

 private:
  char peek() const { return at_ < text_.size() ? text_[at_] : '\n'; }
  size_t line_end() const;  // its length, 0 when there is none at this position
  void end_line();
  std::string plain_field();
  std::string quoted_field();
  [[noreturn]] void fail(size_t line, const std::string& what) const;

  std::string_view text_;
  const std::string* file_;
  size_t at_ = 0;
  size_t line_;
};

}  // namespace qor::cli
