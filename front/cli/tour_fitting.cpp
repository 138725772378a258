#include "front/cli/tour_fitting.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>

#include "front/cli/csv.h"
#include "front/cli/fit_plot.h"
#include "front/cli/functions.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

using Values = std::vector<double>;

Points read_points(const std::string& file, const char* x, const char* y) {
  const Csv csv = read_csv(file);
  return {y, numbers(csv, column_index(csv, x)), numbers(csv, column_index(csv, y)), {}};
}

Spline fitted(const char* kind, const char* boundary, Points points) {
  const SplineKind& spline = spline_kind(kind);
  return {spline, parse_boundary(spline, boundary), std::move(points)};
}

double at(const Spline& spline, double x, int64_t order = 0) {
  return spline.derivative({&x, 1}, order)[0];
}

// The plot as a file of the output, and the line that names it.
std::string add_plot(const Plot& plot, const std::filesystem::path& path, Output& output) {
  output.files.push_back({"--plots", path, svg(plot)});
  return "\n  plot     " + path.string() + "\n\n";
}

// ---- Carbon dioxide -------------------------------------------------------------------------

// Means over whole years, by integrals, at the middle of each.
Points yearly_means(const Spline& monthly) {
  Points means{"trend of ppm", {}, {}, {}};
  const Values& time = monthly.points().x;
  for (double year = std::ceil(time.front()); year + 1 <= time.back(); ++year) {
    means.x.push_back(year + 0.5);
    means.y.push_back(monthly.integral(year, year + 1));
  }
  return means;
}

// Largest minus smallest difference from the trend between two times.
double swing(const Spline& monthly, const Spline& trend, double from, double to) {
  Values time;
  constexpr int kSteps = 365;
  for (int day = 0; day <= kSteps; ++day) time.push_back(from + (to - from) * day / kSteps);
  Values difference = monthly.values(time);
  const Values level = trend.values(time);
  std::ranges::transform(difference, level, difference.begin(), std::minus<>());
  const auto [low, high] = std::ranges::minmax(difference);
  return high - low;
}

std::string carbon_dioxide(const std::string& folder, const std::filesystem::path& plots,
                           Output& output) {
  const Spline monthly =
      fitted("natural", "not-a-knot", read_points(folder + "/co2.csv", "year", "ppm"));
  const Spline trend = fitted("natural", "not-a-knot", yearly_means(monthly));
  const Values& time = monthly.points().x;
  TextTable table({"year", "mean, ppm", "growth, ppm a year", "seasonal swing, ppm"});
  for (double year = 1960; year + 1 <= time.back(); year += 5) {
    table.add({format("%.0f", year), format("%.2f", monthly.integral(year, year + 1)),
               format("%+.2f", at(trend, year + 0.5, 1)),
               format("%.2f", swing(monthly, trend, year, year + 1))});
  }
  const Range all{time.front(), time.back()};
  const Range years{trend.points().x.front(), trend.points().x.back()};
  const Plot plot{
      "Carbon dioxide at Mauna Loa",
      "year",
      {{"Carbon dioxide, ppm",
        {curve_of(monthly, 0, all, "spline", 0), data_of(monthly, all, "data", 0),
         curve_of(trend, 0, years, "trend", 1)}},
       {"First derivative", {curve_of(monthly, 1, all, "ppm a year", 0)}},
       {"First derivative of the trend", {curve_of(trend, 1, years, "ppm a year", 1)}}}};
  return format("Carbon dioxide, %zu months: a natural spline\n\n", time.size()) + table.text() +
         "\n  Means are integrals over the year, growth the derivative of a spline through "
         "them.\n" +
         add_plot(plot, plots / kCarbonDioxidePlot, output);
}

// ---- Mercury --------------------------------------------------------------------------------

constexpr double kGasConstant = 8.314462618e-3;  // kJ / (mol K)
constexpr double kZeroCelsius = 273.15;          // K
constexpr double kAtmosphere = 760;              // mmHg

Values logarithms(const Values& x) { return (*find_function("Ln"))({&x, 1}); }

std::string mercury(const std::string& folder, const std::filesystem::path& plots, Output& output) {
  Points points = read_points(folder + "/pressure.csv", "temperature", "pressure");
  points.y = logarithms(points.y);
  points.name = "ln pressure";
  const Spline inverse = fitted("hyman", "", {"temperature", points.y, points.x, {}});
  const Spline spline = fitted("natural", "not-a-knot", std::move(points));
  TextTable table({"degrees C", "pressure, mmHg", "heat of vaporisation, kJ/mol"});
  for (const double celsius : {25.0, 100.0, 150.0, 250.0, 350.0}) {
    const double kelvin = celsius + kZeroCelsius;
    table.add({format("%.0f", celsius), format("%.4g", std::exp(at(spline, celsius))),
               format("%.1f", kGasConstant * kelvin * kelvin * at(spline, celsius, 1))});
  }
  const Range all{spline.points().x.front(), spline.points().x.back()};
  const Plot plot{"Vapour pressure of mercury",
                  "temperature, degrees C",
                  {{"ln(pressure / mmHg)",
                    {curve_of(spline, 0, all, "spline", 0), data_of(spline, all, "data", 0)}},
                   {"First derivative", {curve_of(spline, 1, all, "per degree C", 0)}}}};
  return format("Mercury's vapour pressure, %zu points: a natural spline through its logarithm\n\n",
                spline.points().x.size()) +
         table.text() +
         format(
             "\n  The heat is R T^2 times the derivative (Clausius and Clapeyron). Exchanging the"
             " axes,\n  mercury boils at %.1f degrees C.\n",
             at(inverse, logarithms({kAtmosphere})[0])) +
         add_plot(plot, plots / kMercuryPlot, output);
}

}  // namespace

std::string tour_fitting(const std::string& folder, const std::filesystem::path& plots,
                         Output& output) {
  std::string text = carbon_dioxide(folder, plots, output);
  return text += mercury(folder, plots, output);
}

}  // namespace qor::cli
