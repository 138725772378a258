// CSV: a header line, then rows of as many fields.
//
// Lines end in LF or CRLF; a field may stand in double quotes, a quote inside them doubled, and may
// then hold commas and line ends. Blank lines and a byte order mark are skipped. In a number column
// an empty field, NA and NaN (in any case) are missing values. Errors are InputErrors that name the
// file, line, column and value.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qor::cli {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct CsvCell {
  size_t line, column;
  std::string_view text;
};

// A row as it is read. The texts stay until the next one is read.
struct CsvRow {
  size_t line = 0;  // where it starts in the file, from 1
  std::vector<std::string_view> fields;

  CsvCell cell(size_t column) const { return {line, column, fields[column]}; }
};

struct CsvHead {
  std::string file;  // for messages
  std::vector<std::string> header;
};

// A file in memory, each row with as many fields as the header.
class Csv : public CsvHead {
 public:
  explicit Csv(CsvHead head) : CsvHead(std::move(head)) {}
  void add(const CsvRow& row);

  size_t rows() const { return lines_.size(); }
  size_t line(size_t row) const { return lines_[row]; }
  CsvCell cell(size_t row, size_t column) const;

 private:
  std::string text_;           // of all cells, row by row
  std::vector<size_t> ends_;   // of the cells in it, in front of them a 0
  std::vector<size_t> lines_;  // where the rows start in the file
};

Csv read_csv(const std::string& file);

// The position of a column by its name.
size_t column_index(const CsvHead& csv, std::string_view name);

// The value of a cell; a missing one is a quiet NaN.
double number(const CsvHead& csv, const CsvCell& cell);

// The values of a column, one per row.
std::vector<double> numbers(const Csv& csv, size_t column);

[[noreturn]] void refuse_cell(const CsvHead& csv, const CsvCell& cell, std::string_view what);

// A field as it is written: in quotes when it needs them; a number so that it reads back, NaN as
// NA.
std::string csv_field(std::string_view text);
std::string csv_field(double value);

// One line, its end included.
std::string csv_line(std::span<const std::string> fields);

}  // namespace qor::cli
