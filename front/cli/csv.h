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

struct CsvHead {
  struct Row {
    size_t line = 0;  // where the row starts in the file, from 1
    std::vector<std::string> fields;
  };
  std::string file;  // for messages
  std::vector<std::string> header;
};

struct Csv : CsvHead {
  std::vector<Row> rows;  // each with as many fields as the header
};

Csv read_csv(const std::string& file);
Csv parse_csv(std::string_view text, const std::string& file);

// The position of a column by its name.
size_t column_index(const CsvHead& csv, std::string_view name);

// The value of a cell; a missing one is a quiet NaN.
double number(const CsvHead& csv, const CsvHead::Row& row, size_t column);

// The values of a column, one per row.
std::vector<double> numbers(const Csv& csv, size_t column);

// What readers of rows check. The header is that of the first row, which has no fields when the
// file is empty.
std::vector<std::string> header_of(CsvHead::Row row, const std::string& file);
void check_width(const CsvHead& csv, const CsvHead::Row& row);
[[noreturn]] void refuse_unreadable(const std::string& file);  // for the reason in errno
[[noreturn]] void refuse_cell(const CsvHead& csv, const CsvHead::Row& row, size_t column,
                              std::string_view what);

// A field as it is written: in quotes when it needs them; a number so that it reads back, NaN as
// NA.
std::string csv_field(std::string_view text);
std::string csv_field(double value);

// One line, its end included.
std::string csv_line(std::span<const std::string> fields);

}  // namespace qor::cli
