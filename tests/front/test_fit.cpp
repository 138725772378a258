// qor fit: what the splines give.

#include "front/cli/csv.h"
#include "front/cli/spline.h"
#include "tests/front/command_fixture.h"

namespace {

using qor::cli::csv_field;

class Fit : public qor::test::Command {
 protected:
  // f at x = 0, 1, 3, 4, 6, 7, with its slopes.
  static void write_points(double (*f)(double), double (*slope)(double)) {
    std::string text = "x,y,slope\n";
    for (const double x : {0.0, 1.0, 3.0, 4.0, 6.0, 7.0}) {
      text += csv_field(x) + "," + csv_field(f(x)) + "," + csv_field(slope(x)) + "\n";
    }
    write("points.csv", text);
  }

  // The table that a call writes, by rows.
  static std::vector<std::vector<double>> table(const std::string& arguments) {
    const qor::test::Result result = shell("qor fit --x x " + arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    const qor::cli::Csv csv = qor::cli::parse_csv(result.out, "out");
    std::vector<std::vector<double>> rows(csv.rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
      for (size_t k = 0; k < csv.header.size(); ++k) {
        rows[i].push_back(number(csv, csv.rows[i], k));
      }
    }
    return rows;
  }
};

double cubic(double x) { return ((0.5 * x - 2) * x + 1) * x + 3; }
double cubic_slope(double x) { return (1.5 * x - 4) * x + 1; }
double parabola(double x) { return (x - 3) * x + 2; }
double parabola_slope(double x) { return 2 * x - 3; }
double line(double x) { return 2 * x - 1; }
double line_slope(double) { return 2; }

TEST_F(Fit, EveryKindGivesTheDataAtThePointsAndItsPolynomialsBetween) {
  struct Kind {
    std::string name;
    double (*f)(double);
    double (*slope)(double);
  };
  const Kind kinds[] = {{"linear", line, line_slope},
                        {"quadratic", parabola, parabola_slope},
                        {"natural --boundary not-a-knot", cubic, cubic_slope},
                        {"hermite --slopes slope", cubic, cubic_slope},
                        {"bessel", parabola, parabola_slope},
                        {"akima", line, line_slope},
                        {"hyman", line, line_slope}};
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(kind.name);
    write_points(kind.f, kind.slope);
    const std::string start = "points.csv --y y --spline " + kind.name;
    for (const auto& row : table(start)) EXPECT_EQ(row[1], kind.f(row[0]));
    const auto rows = table(start + " --at -0.5:7.5:33 --derivatives 1,0");
    ASSERT_EQ(rows.size(), 33u);
    for (size_t i = 0; i < rows.size(); ++i) {
      const double x = -0.5 + 0.25 * static_cast<double>(i);
      EXPECT_EQ(rows[i][0], x);
      EXPECT_NEAR(rows[i][1], kind.f(x), 1e-12);
      EXPECT_NEAR(rows[i][2], kind.slope(x), 1e-12);
    }
  }
}

TEST_F(Fit, BoundariesHoldAtTheEnds) {
  struct Case {
    const char *arguments, *at;
    size_t order;
    double wanted;
  };
  const Case cases[] = {
      {"natural", "0", 2, 0},
      {"natural", "7", 2, 0},
      {"natural --boundary first:-2,1.5", "0", 1, -2},
      {"natural --boundary first:-2,1.5", "7", 1, 1.5},
      {"bessel --boundary second:3,-4", "7", 2, -4},
      {"akima --boundary first-second:5,6", "0", 1, 5},
      {"akima --boundary first-second:5,6", "7", 2, 6},
      {"hyman --boundary second-first:5,6", "0", 2, 5},
      {"hermite --slopes slope --boundary free", "7", 2, 0},
      {"quadratic --boundary midpoint:9", "0.5", 0, 9},
      {"quadratic --boundary first:8,9", "7", 1, 9},
  };
  write_points(cubic, cubic_slope);
  for (const Case& c : cases) {
    const std::string at = c.at, start = "points.csv --y y --derivatives 0,1,2,3 --spline ";
    const auto rows = table(start + c.arguments + " --at " + at + ":" + at + ":1");
    EXPECT_NEAR(rows[0][1 + c.order], c.wanted, 1e-12) << c.arguments;
  }
  // Periodic ends have the same slope, for Hermite the one given at the left.
  write("wave.csv", "x,y,d\n0,1,3\n1,2,0\n2,0,-2\n4,-1,1\n5,1,7\n");
  for (const std::string kind : {"natural", "bessel", "hermite --slopes d", "quadratic"}) {
    const auto ends =
        table("wave.csv --y y --derivatives 1 --at 0:5:2 --boundary periodic --spline " + kind);
    EXPECT_NEAR(ends[0][1], ends[1][1], 1e-12) << kind;
    EXPECT_TRUE(!kind.starts_with("hermite") || ends[0][1] == 3);
  }
}

TEST_F(Fit, IntegralsAreTheDifferencesOfWhatWasDerived) {
  write_points(cubic, cubic_slope);
  const auto csv = qor::cli::parse_csv(
      output("fit points.csv --x x --y y,slope --spline natural --boundary not-a-knot"
             " --integrate 7,0.5"),
      "out");
  EXPECT_NEAR(numbers(csv, 3).at(1), cubic(0.5) - cubic(7), 1e-10);
}

}  // namespace
