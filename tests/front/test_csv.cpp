// Reading and writing CSV: what is accepted, what the messages about the rest name, and files of
// any length, chunk by chunk.

#include <cmath>
#include <limits>

#include "front/cli/csv_reader.h"
#include "front/cli/input_error.h"
#include "tests/front/command_fixture.h"

namespace {

using namespace qor::cli;
using CsvFiles = qor::test::Command;
using Fields = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The line where a row starts, and its fields as they are written.
std::string shown(size_t line, const Fields& fields) {
  Fields written;
  for (const std::string& field : fields) written.push_back(csv_field(field));
  return std::to_string(line) + ":" + csv_line(written);
}

std::string read_whole(const std::string& text) {
  const Csv csv = parse_csv(text, "f.csv");
  std::string all = shown(0, csv.header);
  for (const Csv::Row& row : csv.rows) all += shown(row.line, row.fields);
  return all;
}

// Of the file f.csv.
std::string read_by_chunks(size_t chunk) {
  CsvReader reader("f.csv", chunk);
  std::string all = shown(0, reader.head().header);
  for (Csv::Row row; reader.next(row);) all += shown(row.line, row.fields);
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
  const std::string empty = "f.csv: the file is empty; a header line and rows of data are accepted";
  const std::pair<std::string, std::string> cases[] = {
      {"a,b\n1,2\n", "0:a,b\n2:1,2\n"},
      {"a,b\n1,2", "0:a,b\n2:1,2\n"},
      {"a,b\r\n1,2\r\n", "0:a,b\n2:1,2\n"},
      {"\xEF\xBB\xBF\"a\nb\"\n1\n", "0:\"a\nb\"\n3:1\n"},
      {"a\n1\r2\n", "0:a\n2:\"1\r2\"\n"},
      {"\n\na\n\n1\n\r\n2\n\n", "0:a\n5:1\n7:2\n"},
      {"a,b,c\n,,\n1,,\n", "0:a,b,c\n2:\"\",\"\",\"\"\n3:1,\"\",\"\"\n"},
      {"\"a,b\",\"c\"\"d\"\n\"1\n2\",\"\"\r\n3,4",
       "0:\"a,b\",\"c\"\"d\"\n2:\"1\n2\",\"\"\n4:3,4\n"},
      {"a\n5\"\n6\"\",\n", "f.csv, line 3: 2 fields; 1 are accepted, as in the header"},
      {"a,b\n5\",\"6\"\"\n\"\n", "0:a,b\n2:\"5\"\"\",\"6\"\"\n\"\n"},
      {" a , b \n 1 ,2\n", "0:a,b\n2: 1 ,2\n"},
      {"a,b\n", "0:a,b\n"},
      {"", empty},
      {"\n\r\n", empty},
      {"a,b\n1,2\n3\n", "f.csv, line 3: 1 fields; 2 are accepted, as in the header"},
      {"a,b\n\"1\n\",2\n\n3,4,5\n", "f.csv, line 5: 3 fields; 2 are accepted, as in the header"},
      {"a\n1\n\"2\n3\n", "f.csv, line 3: a quoted field that never ends"},
      {"a,b\n\"1\"2,3\n",
       "f.csv, line 2: text behind the closing quote of a field; a comma or the line's end is"
       " accepted"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(outcome([&] { return read_whole(text); }), expected) << text;
    write("f.csv", text);
    // A byte order mark comes in one chunk.
    for (size_t chunk = text[0] == '\xEF' ? 3 : 1; chunk < text.size() + 2; ++chunk) {
      EXPECT_EQ(outcome([&] { return read_by_chunks(chunk); }), expected)
          << text << " by " << chunk;
    }
  }
}

// A quote that nothing closes does not fill the memory.
TEST_F(CsvFiles, ARowWithoutEndIsRefused) {
  write("f.csv", "a\n1\n\"" + std::string(CsvReader::kMostRow + CsvReader::kChunk, '2'));
  const std::string message = outcome([] { return read_by_chunks(CsvReader::kChunk); });
  EXPECT_EQ(message.find("f.csv, line 3: a row that goes on"), 0u) << message;
}

// The number of a field.
double number_of(const std::string& field) {
  return numbers(parse_csv("a\n1\n" + csv_field(field) + "\n", "f.csv"), 0).at(1);
}

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
  const Fields awkward = {"", "a,b", "\"", "x\r\ny", "\r", "plain", " "};
  for (const std::string& field : awkward) {
    const Fields written = {csv_field(field), csv_field(field)};
    const Csv csv = parse_csv("a,b\n" + csv_line(written), "f.csv");
    EXPECT_EQ(csv.rows.at(0).fields, (Fields{field, field}));
  }
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_EQ(parse_csv(csv_field(mark), "f.csv").header.at(0), mark);
  for (const double value : {0.1, -0.0, 1e300, 5e-324, 1.0 / 3.0, -kInfinity}) {
    const double back = number_of(csv_field(value));
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
  EXPECT_EQ(csv_field(std::nan("")), "NA");
}

}  // namespace
