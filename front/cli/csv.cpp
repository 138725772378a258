#include "front/cli/csv.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <system_error>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Cuts the text into rows of fields.
class Scanner {
 public:
  Scanner(std::string_view text, const std::string& file) : text_(text), file_(file) {
    if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
  }

  // Reads the next row; false at the end.
  bool next(Csv::Row& row) {
    while (at_ < text_.size() && line_end() > 0) end_line();
    if (at_ == text_.size()) return false;
    row = {line_, {}};
    for (;;) {
      row.fields.push_back(peek() == '"' ? quoted_field() : plain_field());
      if (peek() != ',') break;
      ++at_;
    }
    end_line();
    return true;
  }

 private:
  char peek() const { return at_ < text_.size() ? text_[at_] : '\n'; }

  // Length of the line end at this position, 0 when there is none.
  size_t line_end() const {
    if (text_.substr(at_, 1) == "\n") return 1;
    return text_.substr(at_, 2) == "\r\n" ? 2 : 0;
  }

  void end_line() {
    at_ += line_end();
    ++line_;
  }

  std::string plain_field() {
    const size_t start = at_;
    while (at_ < text_.size() && text_[at_] != ',' && line_end() == 0) ++at_;
    return std::string(text_.substr(start, at_ - start));
  }

  std::string quoted_field() {
    const size_t opened = line_;
    std::string field;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '\n') ++line_;
      if (text_[at_] == '"') {
        if (text_.substr(at_, 2) != "\"\"") break;
        ++at_;
      }
      field += text_[at_];
    }
    if (at_ == text_.size()) fail(opened, "a quoted field that never ends");
    ++at_;
    if (at_ < text_.size() && text_[at_] != ',' && line_end() == 0) {
      fail(line_,
           "text behind the closing quote of a field; a comma or the line's end is accepted");
    }
    return field;
  }

  [[noreturn]] void fail(size_t line, const std::string& what) const {
    throw InputError(file_ + ", line " + std::to_string(line) + ": " + what);
  }

  std::string_view text_;
  const std::string& file_;
  size_t at_ = 0;
  size_t line_ = 1;
};

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
  Scanner scanner(text, file);
  Csv csv;
  csv.file = file;
  Csv::Row row;
  if (!scanner.next(row)) {
    throw InputError(file + ": the file is empty; a header line and rows of data are accepted");
  }
  csv.header = std::move(row.fields);
  for (std::string& name : csv.header) name = std::string(trimmed(name));
  while (scanner.next(row)) {
    if (row.fields.size() != csv.header.size()) {
      throw InputError(file + ", line " + std::to_string(row.line) + ": " +
                       std::to_string(row.fields.size()) + " fields; " +
                       std::to_string(csv.header.size()) + " are accepted, as in the header");
    }
    csv.rows.push_back(std::move(row));
  }
  return csv;
}

Csv read_csv(const std::string& file) {
  const auto refuse = [&] {
    const int reason = errno;
    throw InputError(file + ": " + std::generic_category().message(reason) +
                     "; a CSV file that can be read is accepted");
  };
  std::ifstream in(file, std::ios::binary);
  if (!in) refuse();
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(in), {});
  } catch (const std::ios_base::failure&) {
    refuse();
  }
  return parse_csv(text, file);
}

size_t column_index(const Csv& csv, std::string_view name) {
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

std::vector<double> numbers(const Csv& csv, size_t column) {
  std::vector<double> values(csv.rows.size());
  for (size_t i = 0; i < values.size(); ++i) {
    const Csv::Row& row = csv.rows[i];
    const auto value = parse_field(row.fields[column]);
    if (!value) {
      throw InputError(csv.file + ", line " + std::to_string(row.line) + ", column " +
                       quoted(csv.header[column]) + ": " + quoted(row.fields[column]) +
                       " is not a number that a double holds; numbers, NA and empty fields are"
                       " accepted");
    }
    values[i] = *value;
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
