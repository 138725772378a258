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

struct Csv {
  struct Row {
    size_t line;  // where the row starts in the file, from 1
    std::vector<std::string> fields;
  };
  std::string file;  // for messages
  std::vector<std::string> header;
  std::vector<Row> rows;  // each with as many fields as the header
};

Csv read_csv(const std::string& file);
Csv parse_csv(std::string_view text, const std::string& file);

// The position of a column by its name.
size_t column_index(const Csv& csv, std::string_view name);

// The values of a column, one per row; missing ones are quiet NaN.
std::vector<double> numbers(const Csv& csv, size_t column);

// A field as it is written: in quotes when it needs them; a number so that it reads back, NaN as
// NA.
std::string csv_field(std::string_view text);
std::string csv_field(double value);

// One line, its end included.
std::string csv_line(std::span<const std::string> fields);

}  // namespace qor::cli
