// The command qor as a person runs it: what goes to which stream, and with which status.

#include <cmath>

#include "front/cli/csv.h"
#include "tests/front/command_fixture.h"

namespace {

using qor::test::Command;
using qor::test::Result;

const std::string kAir = QOR_EXAMPLE_DATA "/airquality.csv";

TEST_F(Command, MapWritesTheValuesAndKeepsMissingOnesMissing) {
  const qor::cli::Csv air = qor::cli::read_csv(kAir);
  const std::vector<double> ozone = qor::cli::numbers(air, 0);
  for (const char* accuracy : {"", " --accuracy la", " --accuracy=ha", " --accuracy ep"}) {
    SCOPED_TRACE(accuracy);
    const Result result = run("map eXP " + kAir + " --columns Wind,Ozone" + accuracy);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    const qor::cli::Csv out = qor::cli::parse_csv(result.out, "out");
    EXPECT_EQ(out.header, (std::vector<std::string>{"Exp(Wind)", "Exp(Ozone)"}));
    const std::vector<double> values = qor::cli::numbers(out, 1);
    ASSERT_EQ(values.size(), 153u);
    for (size_t i = 0; i < values.size(); ++i) {
      if (std::isnan(ozone[i])) {
        EXPECT_EQ(out.rows[i].fields[1], "NA");
      } else {
        EXPECT_NEAR(values[i] / std::exp(ozone[i]), 1.0, 1e-7);
      }
    }
  }
}

TEST_F(Command, MapReportsElementsOnlyWhenAsked) {
  const std::string path = file("x.csv", "a,b\n1,2\n\n1000,-1000\nNA,\n0,710\n");
  const std::string values =
      "Exp(a),Exp(b)\n2.718281828459045,7.38905609893065\ninf,0\nNA,NA\n1,inf\n";
  const Result quiet = run("map exp " + path);
  EXPECT_EQ(quiet.status, 0);
  EXPECT_EQ(quiet.out, values);
  EXPECT_EQ(quiet.err, "");
  const Result loud = run("map exp --errors report -- " + path);
  EXPECT_EQ(loud.status, 0);
  EXPECT_EQ(loud.out, values);
  EXPECT_EQ(
      loud.err,
      "row 2 (line 4), column a: Exp(1000) = inf: code 3, overflow: the result is too large\n"
      "row 2 (line 4), column b: Exp(-1000) = 0: code 4, underflow: the result is denormal"
      " or zero\n"
      "row 4 (line 6), column b: Exp(710) = inf: code 3, overflow: the result is too large\n");
}

TEST_F(Command, MapOfTwoInputsTakesTwoColumns) {
  const std::string path = file("x.csv", "a,b,c\n6,3,x\n1,0,y\nNA,2,z\n");
  const Result result = run("map DIV --errors report --columns a,b " + path);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "\"Div(a,b)\"\n2\ninf\nNA\n");
  EXPECT_EQ(result.err,
            "row 2 (line 3), column a,b: Div(1,0) = inf: code 2, singularity: the function has a"
            " pole here\n");
}

TEST_F(Command, TourShowsEverySection) {
  const Result result = run("tour --plots " + folder_.string());
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  for (const char* text : {"1860 daily closes",
                           "DAX",
                           "336.07",
                           "153 days",
                           "Ln(Ozone)",
                           "nothing",
                           "70 domain, 11 singularity",
                           "MRG32K3A",
                           "when loaded",
                           "overflow",
                           "underflow",
                           "worst ulp",
                           "dExp ",
                           "dLog1p ",
                           "468 months",
                           "316.77",
                           "boils at 356.7 degrees",
                           "iris Petal.Length",
                           "numacc4",
                           "10000000.2"}) {
    EXPECT_NE(result.out.find(text), std::string::npos) << text << " in\n" << result.out;
  }
  for (const char* plot : {"qor_tour_co2.svg", "qor_tour_mercury.svg"}) {
    EXPECT_NE(content(folder_ / plot).find("</svg>"), std::string::npos) << plot;
  }
  // --data takes the place of the search.
  EXPECT_EQ(run("tour --data " QOR_EXAMPLE_DATA " --plots " + folder_.string()).status, 0);
  EXPECT_EQ(run("tour --data " + folder_.string()).status, 2);
}

TEST_F(Command, Help) {
  EXPECT_NE(run("--help").out.find("tour"), std::string::npos);
  const Result map = run("map --help");
  EXPECT_EQ(map.status, 0);
  EXPECT_NE(map.out.find("--columns A,B"), std::string::npos);
  EXPECT_NE(map.out.find("Exp"), std::string::npos);
}

TEST_F(Command, BadInputIsNamedAndNothingIsWritten) {
  const std::string iris = QOR_EXAMPLE_DATA "/iris.csv";
  const std::string empty = file("empty.csv", "");
  const std::string good = file("good.csv", "a,a,b\n1,2,3\n");
  // Text comes late, behind rows that could have been written.
  const std::string text = file("text.csv", "a,b\n1,2\n3,four\n");
  const Refused calls[] = {
      {"", {"a command is missing", "map", "tour"}},
      {"mop", {"\"mop\"", "tour, map, random, fit, stats"}},
      {"map exp /no/such.csv", {"/no/such.csv", "No such file"}},
      {"map exp " + folder_.string(), {folder_.string(), "directory"}},
      {"map exp " + kAir + " --columns Ozone,Rain", {"\"Rain\"", "Ozone, Solar.R, Wind"}},
      {"map exp " + kAir + " --columns ''", {"no column \"\""}},
      {"map exp " + good + " --columns a", {"more than one column", "\"a\""}},
      {"map exp " + iris, {"iris.csv, line 2, column \"Species\": \"setosa\""}},
      {"map exp " + text, {"text.csv, line 3, column \"b\": \"four\""}},
      {"map exp " + empty, {"empty.csv", "empty", "header line"}},
      {"map div " + kAir, {"Div takes two columns, 6 are given", "Ozone, Solar.R"}},
      {"map expo " + kAir, {"\"expo\"", "functions are", "Exp"}},
      {"map exp", {"FILE.csv is missing", "usage: qor map"}},
      {"map exp a.csv b.csv", {"\"b.csv\"", "usage: qor map"}},
      {"map exp " + kAir + " --colour red", {"\"--colour\"", "--columns, --accuracy, --errors"}},
      {"map exp " + kAir + " --accuracy best", {"--accuracy", "\"best\"", "la, ha, ep"}},
      {"map exp " + kAir + " --errors", {"--errors", "missing"}},
      {"map exp " + kAir + " --errors report --errors ignore", {"--errors", "twice"}},
      {"tour --data /no/such", {"/no/such"}},
      {"tour --plots /no/such", {"/no/such/qor_tour_co2.svg"}},
      {"tour Ozone", {"\"Ozone\""}},
  };
  expect_refused(calls);
}

TEST_F(Command, AFullDiskIsNotSuccess) {
  const std::string line = QOR_COMMAND " map exp " + kAir + " >/dev/full 2>/dev/null";
  EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 1);
}

}  // namespace
