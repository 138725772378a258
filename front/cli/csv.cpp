#include "front/cli/csv.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "front/cli/csv_reader.h"
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
  const auto value = parse_number(text);
  if (value || !is_missing(trimmed(text))) return value;
  return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

void Csv::add(const CsvRow& row) {
  if (ends_.empty()) ends_.push_back(0);
  for (const std::string_view field : row.fields) {
    text_ += field;
    ends_.push_back(text_.size());
  }
  lines_.push_back(row.line);
}

CsvCell Csv::cell(size_t row, size_t column) const {
  const size_t* const end = &ends_[row * header.size() + column + 1];
  return {lines_[row], column, std::string_view(text_).substr(end[-1], end[0] - end[-1])};
}

Csv read_csv(const std::string& file) {
  CsvReader reader(file);
  Csv csv(reader.head());
  for (CsvRow row; reader.next(row);) csv.add(row);
  return csv;
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

void refuse_cell(const CsvHead& csv, const CsvCell& cell, std::string_view what) {
  throw InputError(csv.file + ", line " + std::to_string(cell.line) + ", column " +
                   quoted(csv.header[cell.column]) + ": " + quoted(cell.text) + std::string(what));
}

double number(const CsvHead& csv, const CsvCell& cell) {
  const auto value = parse_field(cell.text);
  if (!value) {
    refuse_cell(csv, cell,
                " is not a number that a double holds; numbers, NA and empty fields are accepted");
  }
  return *value;
}

std::vector<double> numbers(const Csv& csv, size_t column) {
  std::vector<double> values(csv.rows());
  for (size_t row = 0; row < values.size(); ++row) {
    values[row] = number(csv, csv.cell(row, column));
  }
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
