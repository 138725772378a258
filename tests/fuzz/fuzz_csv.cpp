// Any bytes read as CSV are either refused with a message or give rows that, written again, read
// the same.

#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "front/cli/csv.h"
#include "front/cli/input_error.h"

namespace {

using namespace qor::cli;

void require(bool condition) {
  if (!condition) std::abort();
}

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Csv csv;
  try {
    csv = parse_csv({reinterpret_cast<const char*>(data), size}, "fuzz");
  } catch (const InputError&) {
    return 0;
  }
  check(csv);
  return 0;
}
