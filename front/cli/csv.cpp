#include "front/cli/csv.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <system_error>

#include "front/cli/csv_scanner.h"
#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

bool is_missing(std::string_view text) {
  const std::string lower = lower_case(text);
  return lower.empty() || lower == "na" || lower == "nan";
}

// The number of a field, NaN when it is missing; none when the text is no number.
std::optional<double> parse_field(std::string_view text) {
  if (is_missing(trimmed(text))) return std::numeric_limits<double>::quiet_NaN();
  return parse_number(text);
}

}  // namespace

Csv parse_csv(std::string_view text, const std::string& file) {
  CsvScanner scanner(text, file);
  Csv csv;
  csv.file = file;
  Csv::Row row;
  if (!scanner.next(row)) row.fields.clear();
  csv.header = header_of(std::move(row), file);
  while (scanner.next(row)) {
    check_width(csv, row);
    csv.rows.push_back(std::move(row));
  }
  return csv;
}

void refuse_unreadable(const std::string& file) {
  const int reason = errno;
  throw InputError(file + ": " + std::generic_category().message(reason) +
                   "; a CSV file that can be read is accepted");
}

Csv read_csv(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) refuse_unreadable(file);
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(in), {});
  } catch (const std::ios_base::failure&) {
    refuse_unreadable(file);
  }
  return parse_csv(text, file);
}

std::vector<std::string> header_of(CsvHead::Row row, const std::string& file) {
  if (row.fields.empty()) {
    throw InputError(file + ": the file is empty; a header line and rows of data are accepted");
  }
  for (std::string& name : row.fields) name = std::string(trimmed(name));
  return std::move(row.fields);
}

void check_width(const CsvHead& csv, const CsvHead::Row& row) {
  if (row.fields.size() == csv.header.size()) return;
  throw InputError(csv.file + ", line " + std::to_string(row.line) + ": " +
                   std::to_string(row.fields.size()) + " fields; " +
                   std::to_string(csv.header.size()) + " are accepted, as in the header");
}

size_t column_index(const CsvHead& csv, std::string_view name) {
  const auto found = std::find(csv.header.begin(), csv.header.end(), name);
  if (found == csv.header.end()) {
    throw InputError(csv.file + ": no column " + quoted(name) + "; the columns are " +
                     joined(csv.header));
  }
  if (std::find(found + 1, csv.header.end(), name) != csv.header.end()) {
    throw InputError(csv.file + ": more than one column is named " + quoted(name));
  }
  return static_cast<size_t>(found - csv.header.begin());
}

void refuse_cell(const CsvHead& csv, const CsvHead::Row& row, size_t column,
                 std::string_view what) {
  throw InputError(csv.file + ", line " + std::to_string(row.line) + ", column " +
                   quoted(csv.header[column]) + ": " + quoted(row.fields[column]) +
                   std::string(what));
}

double number(const CsvHead& csv, const CsvHead::Row& row, size_t column) {
  const auto value = parse_field(row.fields[column]);
  if (!value) {
    refuse_cell(csv, row, column,
                " is not a number that a double holds; numbers, NA and empty fields are accepted");
  }
  return *value;
}

std::vector<double> numbers(const Csv& csv, size_t column) {
  std::vector<double> values(csv.rows.size());
  std::ranges::transform(csv.rows, values.begin(),
                         [&](const Csv::Row& row) { return number(csv, row, column); });
  return values;
}

std::string csv_field(std::string_view text) {
  // Unquoted, an empty field alone in its row would be a blank line, and a leading byte order mark
  // could be taken for the file's.
  const bool plain = !text.empty() && !text.starts_with(kByteOrderMark) &&
                     text.find_first_of(",\"\r\n") == std::string_view::npos;
  if (plain) return std::string(text);
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + '"';
}

std::string csv_field(double value) { return std::isnan(value) ? "NA" : shortest(value); }

std::string csv_line(std::span<const std::string> fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (&field != fields.data()) line += ',';
    line += field;
  }
  return line + '\n';
}

}  // namespace qor::cli
