// Reading and writing CSV: what is accepted, and what the messages about the rest name.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "front/cli/csv.h"
#include "front/cli/input_error.h"

namespace {

using namespace qor::cli;
using Fields = std::vector<std::string>;

TEST(Csv, Forms) {
  struct Case {
    const char *name, *text;
    Fields header;
    std::vector<Fields> rows;
  };
  const Case cases[] = {
      {"plain", "a,b\n1,2\n", {"a", "b"}, {{"1", "2"}}},
      {"no end of the last line", "a,b\n1,2", {"a", "b"}, {{"1", "2"}}},
      {"CRLF", "a,b\r\n1,2\r\n", {"a", "b"}, {{"1", "2"}}},
      {"byte order mark",
       "\xEF\xBB\xBF"
       "a\n1\n",
       {"a"},
       {{"1"}}},
      {"blank lines", "\n\na\n\n1\n\r\n2\n\n", {"a"}, {{"1"}, {"2"}}},
      {"empty fields", "a,b,c\n,,\n1,,\n", {"a", "b", "c"}, {{"", "", ""}, {"1", "", ""}}},
      {"quotes", "\"a,b\",\"c\"\"d\"\n\"1\n2\",\"\"\n", {"a,b", "c\"d"}, {{"1\n2", ""}}},
      {"quote inside a plain field", "a\n5\"\n", {"a"}, {{"5\""}}},
      {"blanks round names go, in fields stay", " a , b \n 1 ,2\n", {"a", "b"}, {{" 1 ", "2"}}},
      {"header alone", "a,b\n", {"a", "b"}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Csv csv = parse_csv(c.text, "f.csv");
    EXPECT_EQ(csv.header, c.header);
    ASSERT_EQ(csv.rows.size(), c.rows.size());
    for (size_t i = 0; i < c.rows.size(); ++i) EXPECT_EQ(csv.rows[i].fields, c.rows[i]);
  }
}

TEST(Csv, RefusalsNameThePlace) {
  struct Case {
    const char *text, *message;
  };
  const Case cases[] = {
      {"", "f.csv: the file is empty"},
      {"\n\r\n", "f.csv: the file is empty"},
      {"a,b\n1,2\n3\n", "f.csv, line 3: 1 fields; 2 are accepted"},
      {"a,b\n\"1\n\",2\n\n3,4,5\n", "f.csv, line 5: 3 fields"},
      {"a\n1\n\"2\n3\n", "f.csv, line 3: a quoted field that never ends"},
      {"a,b\n\"1\"2,3\n", "f.csv, line 2: text behind the closing quote"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    try {
      parse_csv(c.text, "f.csv");
      ADD_FAILURE() << "accepted";
    } catch (const InputError& error) {
      EXPECT_NE(std::string(error.what()).find(c.message), std::string::npos) << error.what();
    }
  }
}

TEST(Csv, Numbers) {
  const Csv csv =
      parse_csv("x\n1\n -2.5e3\t\n+7\n2e-04\n\"8\"\ninf\nNA\n\"\"\nnan\n na \n", "f.csv");
  const std::vector<double> values = numbers(csv, 0);
  const std::vector<double> expected = {1,      -2500, 7,
                                        0.0002, 8,     std::numeric_limits<double>::infinity()};
  ASSERT_EQ(values.size(), expected.size() + 4);
  for (size_t i = 0; i < values.size(); ++i) {
    if (i < expected.size()) {
      EXPECT_EQ(values[i], expected[i]) << i;
    } else {
      EXPECT_TRUE(std::isnan(values[i])) << i;
    }
  }
  for (const char* text :
       {"12a", "1 2", "0x10", "--1", "+-1", "+", "1e999", "one", "nan(1)", "1,5"}) {
    const Csv bad = parse_csv(csv_field("a") + "\n1\n" + csv_field(text) + "\n", "f.csv");
    try {
      numbers(bad, 0);
      ADD_FAILURE() << text << " accepted";
    } catch (const InputError& error) {
      EXPECT_EQ(
          std::string(error.what()).find("f.csv, line 3, column \"a\": \"" + std::string(text)), 0u)
          << error.what();
    }
  }
}

TEST(Csv, WhatIsWrittenReadsBack) {
  const Fields awkward = {"", "a,b", "\"", "x\r\ny", "\xEF\xBB\xBF", "plain", " "};
  Fields fields;
  for (const std::string& field : awkward) fields.push_back(csv_field(field));
  const Csv csv = parse_csv("1,2,3,4,5,6,7\n" + csv_line(fields), "f.csv");
  EXPECT_EQ(csv.rows.at(0).fields, awkward);

  const double doubles[] = {0.1,    -0.0,      1e300,
                            5e-324, 1.0 / 3.0, -std::numeric_limits<double>::infinity()};
  for (const double value : doubles) {
    const Csv one = parse_csv("a\n" + csv_field(value) + "\n", "f.csv");
    const double back = numbers(one, 0)[0];
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
  EXPECT_EQ(csv_field(std::nan("")), "NA");
}

}  // namespace
