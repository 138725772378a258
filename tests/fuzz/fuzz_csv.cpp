// Any bytes read as CSV, however they are cut, give what a plain reading of the grammar gives; rows
// that are written again read the same.

#include <algorithm>
#include <cmath>
#include <optional>

#include "front/cli/csv_reader.h"
#include "front/cli/input_error.h"
#include "front/cli/text.h"
#include "tests/fuzz/memory_file.h"

namespace {

using namespace qor::cli;
using namespace qor::fuzz;

struct Row {
  size_t line;
  std::vector<std::string> fields;
  bool operator==(const Row&) const = default;
};
using Rows = std::vector<Row>;  // the header is the first, at line 0

size_t line_end(std::string_view text) {
  return text.starts_with('\n') ? 1 : text.starts_with("\r\n") ? 2 : 0;
}

// Takes the content of a field in quotes off the front of the text, behind the opening one; false
// when nothing closes it.
bool take_quoted(std::string_view& text, std::string& field) {
  for (; !text.empty(); text.remove_prefix(1)) {
    if (text[0] == '"') {
      text.remove_prefix(1);
      if (!text.starts_with('"')) return true;
    }
    field += text[0];
  }
  return false;
}

// Takes a row off the front of the text; false when it is malformed.
bool take_row(std::string_view& text, Row& row) {
  for (;; text.remove_prefix(1)) {
    std::string& field = row.fields.emplace_back();
    const auto ended = [&] { return text.empty() || text[0] == ',' || line_end(text) > 0; };
    if (text.starts_with('"')) {
      text.remove_prefix(1);
      if (!take_quoted(text, field) || !ended()) return false;
    }
    for (; !ended(); text.remove_prefix(1)) field += text[0];
    if (!text.starts_with(',')) return true;
  }
}

// The rows of a whole text; none when it is refused.
std::optional<Rows> plain_reading(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  Rows rows;
  for (size_t line = 1; !text.empty();) {
    const std::string_view before = text;
    if (line_end(text) == 0) {
      Row& row = rows.emplace_back(Row{line, {}});
      if (!take_row(text, row) || row.fields.size() != rows[0].fields.size()) return std::nullopt;
    }
    text.remove_prefix(line_end(text));
    const std::string_view taken = before.substr(0, before.size() - text.size());
    line += static_cast<size_t>(std::ranges::count(taken, '\n'));
  }
  if (rows.empty()) return std::nullopt;
  rows[0].line = 0;
  for (std::string& name : rows[0].fields) name = std::string(trimmed(name));
  return rows;
}

// The same from the command's reader, so many bytes at a time.
std::optional<Rows> read_in_chunks(std::string_view text, size_t chunk) {
  try {
    CsvReader reader(file_of(text.data(), text.size()), chunk);
    Rows rows{{0, reader.head().header}};
    for (CsvRow row; reader.next(row);) {
      rows.push_back({row.line, {row.fields.begin(), row.fields.end()}});
    }
    return rows;
  } catch (const InputError&) {
    return std::nullopt;
  }
}

std::string written(const Rows& rows) {
  std::string text;
  for (const Row& row : rows) {
    std::vector<std::string> line;
    for (const std::string& field : row.fields) line.push_back(csv_field(field));
    text += csv_line(line);
  }
  return text;
}

// A number is written so that it reads back.
void check_number(const std::string& field) {
  const CsvHead head{"f", {"a"}};
  try {
    const double value = number(head, {1, 0, field});
    const double back = number(head, {1, 0, csv_field(value)});
    require(back == value || (std::isnan(back) && std::isnan(value)));
  } catch (const InputError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::optional<Rows> rows = plain_reading(text);
  for (const size_t chunk : {size_t{1}, 2 + size % 9, size + 1}) {
    require(read_in_chunks(text, chunk) == rows);
  }
  if (!rows) return 0;
  const std::optional<Rows> again = plain_reading(written(*rows));
  require(again && again->size() == rows->size());
  for (size_t i = 0; i < rows->size(); ++i) {
    require((*again)[i].fields == (*rows)[i].fields);
    for (const std::string& field : (*rows)[i].fields) check_number(field);
  }
  return 0;
}
