// Reading CSV files of any length, chunk by chunk.

#include "front/cli/csv_reader.h"
#include "front/cli/input_error.h"
#include "tests/front/command_fixture.h"

namespace {

using namespace qor::cli;
using Reader = qor::test::Command;

std::string shown(const Csv::Row& row) {
  return std::to_string(row.line) + ":" + csv_line(row.fields);
}

// Rows and lines are those of the reader of whole files, wherever the text is cut.
TEST_F(Reader, RowsDoNotDependOnTheChunks) {
  const std::string text =
      "\xEF\xBB\xBF\n a ,\"b\nc\"\r\n1,2\n\n\r\n\"3\n\"\"x\"\"\n\",5\"6\n\"\",\n\n7,8";
  const std::string path = file("x.csv", text);
  const Csv whole = parse_csv(text, path);
  for (size_t chunk = 1; chunk < text.size() + 2; ++chunk) {
    SCOPED_TRACE(chunk);
    CsvReader reader(path, chunk);
    EXPECT_EQ(reader.head().header, whole.header);
    EXPECT_EQ(reader.total_bytes(), text.size());
    Csv::Row row;
    for (const Csv::Row& expected : whole.rows) {
      ASSERT_TRUE(reader.next(row));
      EXPECT_EQ(shown(row), shown(expected));
    }
    EXPECT_FALSE(reader.next(row));
    EXPECT_EQ(reader.bytes(), text.size());
  }
}

// A quote that nothing closes does not fill the memory.
TEST_F(Reader, ARowWithoutEndIsRefused) {
  std::string text = "a\n1\n\"";
  text.append(CsvReader::kMostRow + CsvReader::kChunk, '2');
  CsvReader reader(file("x.csv", text));
  Csv::Row row;
  EXPECT_TRUE(reader.next(row));
  try {
    reader.next(row);
    FAIL();
  } catch (const InputError& error) {
    EXPECT_NE(std::string(error.what()).find("x.csv, line 3: a row that goes on"),
              std::string::npos);
  }
}

}  // namespace
