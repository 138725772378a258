// Reading and writing CSV: what is accepted, what the messages about the rest name, and files of
// any length, chunk by chunk.

#include <cmath>
#include <limits>

#include "front/cli/csv_reader.h"
#include "front/cli/input_error.h"
#include "front/cli/text.h"
#include "tests/front/command_fixture.h"

namespace {

using namespace qor::cli;
using CsvFiles = qor::test::Command;
using Fields = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string shown(const auto& fields) {
  Fields written;
  for (const auto& field : fields) written.push_back(csv_field(std::string_view(field)));
  return csv_line(written);
}

// Of the file f.csv: the header, then the rows, each with the line where it starts.
std::string read_whole() {
  const Csv csv = read_csv("f.csv");
  std::string all = shown(csv.header);
  for (size_t row = 0; row < csv.rows(); ++row) {
    Fields fields;
    for (size_t i = 0; i < csv.header.size(); ++i) fields.emplace_back(csv.cell(row, i).text);
    all += std::to_string(csv.line(row)) + ":" + shown(fields);
  }
  return all;
}

std::string read_by_chunks(size_t chunk) {
  CsvReader reader("f.csv", chunk);
  std::string all = shown(reader.head().header);
  for (CsvRow row; reader.next(row);) all += std::to_string(row.line) + ":" + shown(row.fields);
  EXPECT_EQ(reader.bytes(), reader.total_bytes());
  return all;
}

// What the reading gives, or the message.
std::string outcome(const auto& reading) {
  try {
    return reading();
  } catch (const InputError& error) {
    return error.what();
  }
}

TEST_F(CsvFiles, Forms) {
  const std::string mark = "\xEF\xBB\xBF", behind = "; a comma or the line's end is accepted";
  const std::string empty = "f.csv: the file is empty; a header line and rows of data are accepted";
  const std::pair<std::string, std::string> cases[] = {
      {"a,b\n1,2\n", "a,b\n2:1,2\n"},
      {"a,b\n1,2", "a,b\n2:1,2\n"},
      {"a,b\r\n1,2\r\n", "a,b\n2:1,2\n"},
      {"a\r\n\r\n\"1\"\r\n\r", "a\n3:1\n4:\"\r\"\n"},
      {"a\n1\r2\n", "a\n2:\"1\r2\"\n"},
      {"a\n\r1\n2\r", "a\n2:\"\r1\"\n3:\"2\r\"\n"},
      {"\n\na\n\n1\n\r\n2\n\n", "a\n5:1\n7:2\n"},
      {"a,b,c\n,,\n1,,\n", "a,b,c\n2:\"\",\"\",\"\"\n3:1,\"\",\"\"\n"},
      {"a,b\n1,", "a,b\n2:1,\"\"\n"},
      {"\"a,b\",\"c\"\"d\"\n\"1\n2\",\"\"\r\n3,4", "\"a,b\",\"c\"\"d\"\n2:\"1\n2\",\"\"\n4:3,4\n"},
      {"a,b\n\"\"\"\"\"\",\"\"\"1\"\"\"", "a,b\n2:\"\"\"\"\"\",\"\"\"1\"\"\"\n"},
      {"a\n5\"\n6\"\",\n", "f.csv, line 3: 2 fields; 1 are accepted, as in the header"},
      {"a,b\n5\",\"6\"\"\n\"\n", "a,b\n2:\"5\"\"\",\"6\"\"\n\"\n"},
      {" a , b \n 1 ,2\n", "a,b\n2: 1 ,2\n"},
      {"a,b\n", "a,b\n"},
      {"", empty},
      {"\n\r\n", empty},
      {mark, empty},
      {mark + "\"a\nb\"\n1\n", "\"a\nb\"\n3:1\n"},
      {mark + mark + "\n\"" + mark + "\"\n", "\"" + mark + "\"\n2:\"" + mark + "\"\n"},
      {mark.substr(0, 2), mark.substr(0, 2) + "\n"},
      {mark.substr(0, 2) + "a\n" + mark + "\"\n\"\n\"\n",
       mark.substr(0, 2) + "a\n2:\"" + mark + "\"\"\"\n3:\"\n\"\n"},
      {"a,b\n1,2\n3\n", "f.csv, line 3: 1 fields; 2 are accepted, as in the header"},
      {"a,b\n\"1\n\",2\n\n3,4,5\n", "f.csv, line 5: 3 fields; 2 are accepted, as in the header"},
      {"a\n1\n\"2\n3\n", "f.csv, line 3: a quoted field that never ends"},
      {"a,b\n\"1\n\",\"\"\"", "f.csv, line 3: a quoted field that never ends"},
      {"a,b\n\"1\"2,3\n", "f.csv, line 2: text behind the closing quote of a field" + behind},
      {"a\n\"1\n\"\r", "f.csv, line 3: text behind the closing quote of a field" + behind},
  };
  for (const auto& [text, expected] : cases) {
    write("f.csv", text);
    EXPECT_EQ(outcome(read_whole), expected) << text;
    for (size_t chunk = 1; chunk < text.size() + 2; ++chunk) {
      EXPECT_EQ(outcome([&] { return read_by_chunks(chunk); }), expected)
          << text << " by " << chunk;
    }
  }
}

// A quote that nothing closes does not fill the memory; where a row is too long does not depend on
// the chunks.
TEST_F(CsvFiles, ARowWithoutEndIsRefused) {
  const std::string most(CsvScanner::kMostRow - 3, '2');  // in quotes, its line ended
  write("f.csv", "a\n1\n\"" + most + "\"\n\"" + most + "2\"\n");
  for (const size_t chunk : {CsvReader::kChunk, 3 * CsvScanner::kMostRow}) {
    CsvReader reader("f.csv", chunk);
    CsvRow row;
    EXPECT_TRUE(reader.next(row) && reader.next(row));
    EXPECT_EQ(row.fields.at(0), most);
    const std::string message = outcome([&] { return std::to_string(reader.next(row)); });
    EXPECT_EQ(message.find("f.csv, line 4: a row that goes on"), 0u) << message;
  }
}

// The number of a field.
double number_of(const std::string& field) { return number({"f.csv", {"a"}}, {3, 0, field}); }

TEST_F(CsvFiles, Numbers) {
  const std::pair<const char*, double> cases[] = {
      {"1", 1}, {" -2.5e3\t", -2500}, {"+7", 7}, {"2e-04", 0.0002}, {" inf", kInfinity}};
  for (const auto& [text, value] : cases) EXPECT_EQ(number_of(text), value) << text;
  for (const char* text : {"NA", "", "nan", " na "}) EXPECT_TRUE(std::isnan(number_of(text)));
  for (const std::string text :
       {"12a", "1 2", "0x10", "--1", "+-1", "+", "1e999", "one", "nan(1)", "1,5"}) {
    const auto reading = [&] { return "read as " + std::to_string(number_of(text)); };
    EXPECT_EQ(outcome(reading).find("f.csv, line 3, column \"a\": \"" + text + "\" is not"), 0u)
        << outcome(reading);
  }
}

TEST_F(CsvFiles, WhatIsWrittenReadsBack) {
  const Fields awkward = {"", "a,b", "\"", "x\r\ny", "\r", "plain", " ", "\xEF\xBB\xBF"};
  for (const std::string& field : awkward) {
    const Fields written = {csv_field(field), csv_field(field)};
    const Csv csv = table_of(csv_line(written) + csv_line(written));
    EXPECT_EQ(csv.header, (Fields{std::string(trimmed(field)), std::string(trimmed(field))}));
    EXPECT_EQ(csv.cell(0, 0).text, field);
    EXPECT_EQ(csv.cell(0, 1).text, field);
  }
  for (const double value : {0.1, -0.0, 1e300, 5e-324, 1.0 / 3.0, -kInfinity}) {
    const double back = number_of(csv_field(value));
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
  EXPECT_EQ(csv_field(std::nan("")), "NA");
}

}  // namespace
