// Any bytes read as CSV are either refused with a message or give rows that, written again, read
// the same; and read row by row, a few bytes at a time, they give the same rows.

#include <cmath>

#include "front/cli/csv.h"
#include "front/cli/csv_reader.h"
#include "front/cli/input_error.h"
#include "tests/fuzz/memory_file.h"

namespace {

using namespace qor::cli;
using namespace qor::fuzz;

std::string written(const std::vector<std::string>& fields) {
  std::vector<std::string> line;
  for (const std::string& field : fields) line.push_back(csv_field(field));
  return csv_line(line);
}

void check(const Csv& csv) {
  std::string text = written(csv.header);
  for (const Csv::Row& row : csv.rows) text += written(row.fields);
  const Csv again = parse_csv(text, "again");
  require(again.header == csv.header && again.rows.size() == csv.rows.size());
  for (size_t i = 0; i < csv.rows.size(); ++i) require(again.rows[i].fields == csv.rows[i].fields);
  for (size_t column = 0; column < csv.header.size(); ++column) {
    try {
      for (const double value : numbers(csv, column)) {
        const Csv one = parse_csv("a\n" + csv_field(value) + "\n", "one");
        const double back = numbers(one, 0)[0];
        require(back == value || (std::isnan(back) && std::isnan(value)));
      }
    } catch (const InputError&) {
    }
  }
}

// The rows of a text that is read in chunks; whether it is accepted.
bool read_in_chunks(std::string_view text, size_t chunk, std::vector<Csv::Row>& rows) {
  try {
    CsvReader reader(file_of(text.data(), text.size()), chunk);
    for (Csv::Row row; reader.next(row);) rows.push_back(row);
  } catch (const InputError&) {
    return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::vector<Csv::Row> rows;
  const bool accepted = read_in_chunks(text, 1 + size % 9, rows);
  Csv csv;
  try {
    csv = parse_csv(std::string(text), "fuzz");
  } catch (const InputError&) {
    require(!accepted);
    return 0;
  }
  require(accepted && rows.size() == csv.rows.size());
  for (size_t i = 0; i < rows.size(); ++i) require(rows[i].fields == csv.rows[i].fields);
  check(csv);
  return 0;
}
