// qor fit: what the splines give, how it is written, and what is refused.

#include "front/cli/csv.h"
#include "front/cli/spline.h"
#include "tests/front/command_fixture.h"

namespace {

using qor::test::Result;

class Fit : public qor::test::Command {
 protected:
  // f at x = 0, 1, 3, 4, 6, 7, with its slopes.
  std::string sampled(double (*f)(double), double (*slope)(double)) const {
    std::string text = "x,y,slope\n";
    for (const double x : {0.0, 1.0, 3.0, 4.0, 6.0, 7.0}) {
      const std::string fields[] = {qor::cli::csv_field(x), qor::cli::csv_field(f(x)),
                                    qor::cli::csv_field(slope(x))};
      text += qor::cli::csv_line(fields);
    }
    return file("points.csv", text);
  }

  // The table that a call writes.
  qor::cli::Csv table(const std::string& arguments) const {
    const Result result = run("fit " + arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return qor::cli::parse_csv(result.out, "out");
  }

  // The first row's numbers.
  std::vector<double> row(const std::string& arguments) const {
    const qor::cli::Csv csv = table(arguments);
    std::vector<double> values;
    for (size_t i = 0; i < csv.header.size(); ++i) {
      values.push_back(qor::cli::numbers(csv, i).at(0));
    }
    return values;
  }
};

double cubic(double x) { return ((0.5 * x - 2) * x + 1) * x + 3; }
double cubic_slope(double x) { return (1.5 * x - 4) * x + 1; }
double parabola(double x) { return (x - 3) * x + 2; }
double parabola_slope(double x) { return 2 * x - 3; }

TEST_F(Fit, EveryKindGivesTheDataAtThePointsAndItsPolynomialsBetween) {
  struct Kind {
    std::string name;
    double (*f)(double);
    double (*slope)(double);
  };
  const Kind kinds[] = {{"linear", [](double x) { return 2 * x - 1; }, [](double) { return 2.0; }},
                        {"quadratic", parabola, parabola_slope},
                        {"natural --boundary not-a-knot", cubic, cubic_slope},
                        {"hermite --slopes slope", cubic, cubic_slope},
                        {"bessel", parabola, parabola_slope},
                        {"akima", [](double x) { return 4 - x; }, [](double) { return -1.0; }},
                        {"hyman", [](double x) { return x; }, [](double) { return 1.0; }}};
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(kind.name);
    const std::string start =
        sampled(kind.f, kind.slope) + " --x x --y y --spline " + kind.name + " ";
    for (const auto& fields : table(start).rows) {
      EXPECT_EQ(std::stod(fields.fields[1]), kind.f(std::stod(fields.fields[0])));
    }
    const qor::cli::Csv csv = table(start + "--at -0.5:7.5:33 --derivatives 1,0");
    EXPECT_EQ(csv.header, (std::vector<std::string>{"x", "y", "y'"}));
    ASSERT_EQ(csv.rows.size(), 33u);
    for (size_t i = 0; i < csv.rows.size(); ++i) {
      const double x = -0.5 + 0.25 * static_cast<double>(i);
      EXPECT_EQ(std::stod(csv.rows[i].fields[0]), x);
      EXPECT_NEAR(std::stod(csv.rows[i].fields[1]), kind.f(x), 1e-12);
      EXPECT_NEAR(std::stod(csv.rows[i].fields[2]), kind.slope(x), 1e-12);
    }
  }
}

TEST_F(Fit, BoundariesHoldAtTheEnds) {
  const std::string start = sampled(cubic, cubic_slope) + " --x x --y y --derivatives 0,1,2,3 ";
  struct Case {
    std::string arguments;
    double at;
    size_t order;
    double wanted;
  };
  const Case cases[] = {
      {"--spline natural", 0, 2, 0},
      {"--spline natural", 7, 2, 0},
      {"--spline natural --boundary first:-2,1.5", 0, 1, -2},
      {"--spline natural --boundary first:-2,1.5", 7, 1, 1.5},
      {"--spline bessel --boundary second:3,-4", 7, 2, -4},
      {"--spline akima --boundary first-second:5,6", 0, 1, 5},
      {"--spline akima --boundary first-second:5,6", 7, 2, 6},
      {"--spline hyman --boundary second-first:5,6", 0, 2, 5},
      {"--spline hermite --slopes slope --boundary free", 7, 2, 0},
      {"--spline quadratic --boundary midpoint:9", 0.5, 0, 9},
      {"--spline quadratic --boundary first:8,9", 7, 1, 9},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments);
    const std::string x = std::to_string(c.at);
    EXPECT_NEAR(row(start + c.arguments + " --at " + x + ":" + x + ":1")[1 + c.order], c.wanted,
                1e-12);
  }
  // Periodic ends have the same slope, for Hermite the one given at the left.
  const std::string wave = file("wave.csv", "x,y,d\n0,1,3\n1,2,0\n2,0,-2\n4,-1,1\n5,1,7\n");
  for (const char* kind : {"natural", "bessel", "hermite --slopes d", "quadratic"}) {
    SCOPED_TRACE(kind);
    const qor::cli::Csv ends = table(wave + " --x x --y y --derivatives 1 --at 0:5:2 --boundary" +
                                     " periodic --spline " + kind);
    EXPECT_NEAR(std::stod(ends.rows[0].fields[1]), std::stod(ends.rows[1].fields[1]), 1e-12);
  }
}

TEST_F(Fit, IntegralsStandAloneOrBehindTheValues) {
  const std::string start =
      sampled(cubic, cubic_slope) + " --x x --y y,slope --spline natural --boundary not-a-knot ";
  const qor::cli::Csv alone = table(start + "--integrate 7,0.5");
  EXPECT_EQ(alone.header, (std::vector<std::string>{"column", "from", "to", "integral"}));
  ASSERT_EQ(alone.rows.size(), 2u);
  EXPECT_EQ(alone.rows[1].fields[0], "slope");
  EXPECT_NEAR(std::stod(alone.rows[1].fields[3]), cubic(0.5) - cubic(7), 1e-10);
  const Result both = run("fit " + start + "--at 1:2:2 --integrate 0.5,7");
  const size_t cut = both.out.find("\n\ncolumn,from,to,integral\ny,0.5,7,");
  ASSERT_NE(cut, std::string::npos) << both.out;
  EXPECT_EQ(both.out.substr(0, both.out.find('\n')), "x,y,slope");
}

TEST_F(Fit, JsonHoldsTheSame) {
  const std::string path = file("a.csv", "x,\"say \"\"y\"\"\"\n0,0\n1,2\n3,6\nNA,1\n");
  const Result result = run("fit " + path +
                            " --x x --y 'say \"y\"' --spline linear --format json"
                            " --derivatives 0,1 --integrate 0,3");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, R"({
  "x": "x",
  "spline": "linear",
  "sites": [0, 1, 3, null],
  "limits": [0, 3],
  "columns": [
    {"name": "say \"y\"", "points": 3,
     "derivative_0": [0, 2, 6, null],
     "derivative_1": [2, 2, 2, 2],
     "integral": 9}
  ]
}
)");
}

TEST_F(Fit, MissingValuesAreLeftOutAndNamedPerColumn) {
  const std::string path =
      file("gaps.csv", "t,a,b\n0,0,5\n1,NA,5\n\n2,4,\n,9,9\n4,8,5\n6,12,5\n8,16,5\n");
  const Result result = run("fit " + path + " --x t --y a,b --spline linear");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "t,a,b\n0,0,5\n1,2,5\n2,4,5\nNA,NA,NA\n4,8,5\n6,12,5\n8,16,5\n");
  EXPECT_EQ(result.err,
            "a: 2 of 7 rows have a missing value and are left out of the fit: lines 3, 6\n"
            "b: 2 of 7 rows have a missing value and are left out of the fit: lines 5, 6\n");
}

TEST_F(Fit, SitesComeFromAFile) {
  const std::string path = file("p.csv", "x,y\n0,0\n2,4\n");
  const std::string start = path + " --x x --y y --spline linear --at-file ";
  const Result one = run("fit " + start + file("one.csv", "any\n1\nNA\n-1\n3\n"));
  EXPECT_EQ(one.out, "x,y\n1,2\nNA,NA\n-1,-2\n3,6\n");
  EXPECT_EQ(one.err,
            "y: 2 of 4 sites lie outside the data, 0 to 2; the polynomials at the ends go on"
            " there\n");
  EXPECT_EQ(run("fit " + start + file("two.csv", "y,x\n7,1\n")).out, "x,y\n1,2\n");
  const Result neither = run("fit " + start + file("three.csv", "a,b\n7,1\n"));
  EXPECT_EQ(neither.status, 2);
  EXPECT_NE(neither.err.find("no column \"x\""), std::string::npos) << neither.err;
}

TEST_F(Fit, BadInputIsNamedAndNothingIsWritten) {
  const std::string good = file("good.csv", "x,y,d\n0,1,1\n1,2,0\n2,4,1\n3,0,1\n4,2,1\n");
  const std::string back = file("back.csv", "x,y\n0,1\n2,2\n1,4\n");
  const std::string twice = file("twice.csv", "x,y\n0,1\n2,2\n2,4\n");
  const std::string endless = file("endless.csv", "x,y\n0,1\n2,inf\n3,4\n");
  const std::string few = file("few.csv", "x,y\n0,1\n1,2\n");
  const std::string natural = "fit " + good + " --x x --y y --spline natural ";
  const Refused calls[] = {
      {"fit " + good + " --x x --y y", {"--spline is missing", "usage: qor fit FILE.csv --x COL"}},
      {"fit " + good + " --x x --spline natural", {"--y is missing"}},
      {"fit " + good + " --x x --y y --spline b", {"--spline", "\"b\"", "linear, quadratic"}},
      {"fit " + good + " --x t --y y --spline linear", {"no column \"t\"", "x, y, d"}},
      {"fit " + back + " --x x --y y --spline linear",
       {"back.csv, line 4, column \"x\": 1 is not above 2", "increasing"}},
      {"fit " + twice + " --x x --y y --spline linear", {"line 4", "2 is not above 2"}},
      {"fit " + endless + " --x x --y y --spline linear",
       {"line 3, column \"y\": inf", "finite numbers"}},
      {"fit " + few + " --x x --y y --spline akima", {"y: 2 points", "akima", "at least 5"}},
      {natural + "--boundary tied", {"--boundary", "\"tied\"", "not-a-knot, free, periodic"}},
      {natural + "--boundary first:1", {"\"first:1\"", "first:LEFT,RIGHT"}},
      {natural + "--boundary free:", {"\"free:\""}},
      {natural + "--boundary second:1,x", {"\"second:1,x\""}},
      {natural + "--boundary none", {"\"none\"", "natural takes"}},
      {natural + "--boundary periodic", {"begins with 1 and ends with 2"}},
      {"fit " + good + " --x x --y y --spline linear --boundary free", {"linear", "none at all"}},
      {"fit " + good + " --x x --y y --spline hermite", {"--slopes is missing"}},
      {"fit " + good + " --x x --y y,y --slopes d --spline hermite", {"\"d\"", "2 columns"}},
      {natural + "--slopes d", {"--slopes", "\"d\"", "only --spline hermite"}},
      {natural + "--at 0:1", {"--at", "\"0:1\"", "A:B:N"}},
      {natural + "--at 0:1:0", {"\"0:1:0\"", "N from 1 to"}},
      {natural + "--at 0:1:2.5", {"\"0:1:2.5\""}},
      {natural + "--at 0:inf:2", {"\"0:inf:2\""}},
      {natural + "--at 0:1:2 --at-file x", {"--at-file", "either"}},
      {natural + "--derivatives 0,4", {"--derivatives", "\"0,4\"", "0, 1, 2 and 3"}},
      {natural + "--derivatives 1,1", {"\"1,1\"", "once"}},
      {natural + "--derivatives ''", {"--derivatives"}},
      {natural + "--integrate 0", {"--integrate", "\"0\"", "A,B"}},
      {natural + "--integrate 0,NA", {"\"0,NA\""}},
      {natural + "--format xml", {"--format", "csv, json"}},
      {natural + "--plot /no/such/p.svg", {"/no/such/p.svg", "No such file"}},
  };
  expect_refused(calls);
}

TEST_F(Fit, ABadCallWritesNoPlot) {
  const std::string plot = folder_ / "plot.svg";
  const std::string start = sampled(cubic, cubic_slope) + " --x x --y y --spline natural --plot ";
  EXPECT_EQ(run("fit " + start + plot + " --at 1").status, 2);
  EXPECT_FALSE(qor::test::fs::exists(plot));
  EXPECT_EQ(run("fit " + start + plot + " --at 1:5:3").status, 0);
  const std::string svg = content(plot);
  // The plot covers the range asked for, which holds three of the six points, and the legend.
  size_t circles = 0;
  for (size_t at = 0; (at = svg.find("<circle", at)) != std::string::npos; ++at) ++circles;
  EXPECT_EQ(circles, 3u + 1u);
  for (const char* text : {">y, spline<", ">y, data<", ">y per x<", "natural spline"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
}

}  // namespace
