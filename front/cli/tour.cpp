// qor tour: the library at work on real data, what its error machinery sees, how fast and how
// accurate its kernels are here.

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <numeric>

#include "front/cli/commands.h"
#include "front/cli/csv.h"
#include "front/cli/data_folder.h"
#include "front/cli/functions.h"
#include "front/cli/kernel_figures.h"
#include "front/cli/text.h"
#include "front/cli/tour_fitting.h"
#include "front/cli/tour_statistics.h"
#include "front/cli/tour_streams.h"
#include "front/cpp/qor.hpp"

namespace qor::cli {
namespace {

using Values = std::vector<double>;

// A function of the library on one vector.
Values call(const char* name, const Values& x) {
  const Function* function = find_function(name);
  if (function == nullptr) throw std::runtime_error("the library has no " + std::string(name));
  return (*function)({&x, 1});
}

double call(const char* name, double x) { return call(name, Values{x})[0]; }

// ---- Markets --------------------------------------------------------------------------------

constexpr double kTradingDays = 260.0;  // a year has in the data

double mean(const Values& x) {
  return std::accumulate(x.begin(), x.end(), 0.0) / static_cast<double>(x.size());
}

double standard_deviation(const Values& x) {
  const double m = mean(x);
  double squares = 0.0;
  for (const double value : x) squares += (value - m) * (value - m);
  return std::sqrt(squares / static_cast<double>(x.size() - 1));
}

double largest_difference(const Values& x, const Values& y) {
  double largest = 0.0;
  for (size_t i = 0; i < x.size(); ++i) largest = std::max(largest, std::fabs(x[i] - y[i]));
  return largest;
}

std::string percent(double fraction) { return format("%+.2f %%", 100.0 * fraction); }

// The line of an index; `round_trip` becomes the largest error of Log1p after Expm1 so far.
std::vector<std::string> index_line(const Csv& closes, const char* name, double& round_trip) {
  const Values logarithms = call("Ln", numbers(closes, column_index(closes, name)));
  Values returns(logarithms.size() - 1);
  std::transform(logarithms.begin() + 1, logarithms.end(), logarithms.begin(), returns.begin(),
                 std::minus<>());
  const Values changes = call("Expm1", returns);
  round_trip = std::max(round_trip, largest_difference(call("Log1p", changes), returns));
  const auto [worst, best] = std::ranges::minmax(changes);
  return {name,
          format("%.3f %%", 100.0 * mean(returns)),
          percent(call("Expm1", kTradingDays * mean(returns))),
          format("%.1f %%", 100.0 * std::sqrt(kTradingDays) * standard_deviation(returns)),
          percent(worst),
          percent(best),
          format("%.2f", 100.0 * call("Exp", logarithms.back() - logarithms.front()))};
}

std::string markets(const std::string& folder) {
  const Csv closes = read_csv(folder + "/eu_stock_markets.csv");
  const Values time = numbers(closes, column_index(closes, "time"));
  double round_trip = 0.0;
  TextTable table({"index", "log return a day", "growth a year", "volatility a year", "worst day",
                   "best day", "100 became"});
  for (const char* name : {"DAX", "SMI", "CAC", "FTSE"}) {
    table.add(index_line(closes, name, round_trip));
  }
  return format("Four stock indices, %zu daily closes, %.1f to %.1f\n\n", closes.rows(),
                time.front(), time.back()) +
         table.text() +
         format(
             "\n  Log returns by Ln, changes by Expm1, growth by Exp; Log1p leads back from the"
             " changes to\n  the log returns within %.1e.\n\n",
             round_trip);
}

// ---- Errors ---------------------------------------------------------------------------------

// The reports counted by their code, as "2 singularity, 71 domain".
std::string counted(const Reports& reports) {
  constexpr std::array names{"domain", "singularity", "overflow", "underflow"};
  std::string text;
  for (int32_t code = QOR_ERROR_DOMAIN; code <= QOR_ERROR_UNDERFLOW; ++code) {
    const auto count = std::ranges::count(reports.list(), code, &ErrorContext::code);
    if (count == 0) continue;
    text +=
        (text.empty() ? "" : ", ") + format("%td ", count) + names[static_cast<size_t>(code - 1)];
  }
  return text.empty() ? "nothing" : text;
}

// The first report with the day it is about.
std::string first(const Csv& days, const Reports& reports) {
  if (reports.list().empty()) return "";
  const ErrorContext& report = reports.list().front();
  const auto cell = [&](const char* name) {
    const size_t row = static_cast<size_t>(report.index);
    return std::string(days.cell(row, column_index(days, name)).text);
  };
  return cell("Month") + "/" + cell("Day") +
         format(": %g -> %s", report.arg1, shortest(report.result1).c_str());
}

double median(Values x) {
  std::ranges::sort(x);
  return (x[(x.size() - 1) / 2] + x[x.size() / 2]) / 2.0;
}

std::string errors(const std::string& folder) {
  const Csv days = read_csv(folder + "/airquality.csv");
  const Values ozone = numbers(days, column_index(days, "Ozone"));
  const Values radiation = numbers(days, column_index(days, "Solar.R"));
  Values above_median = numbers(days, column_index(days, "Wind"));
  const double calm = median(above_median);
  for (double& value : above_median) value -= calm;
  Values negative = radiation;
  for (double& value : negative) value = -value;

  struct Case {
    const char *function, *argument;
    const Values& values;
  };
  const Case cases[] = {{"Ln", "Ozone", ozone},
                        {"Ln", "Solar.R", radiation},
                        {"Ln", "Wind - median", above_median},
                        {"Exp10", "Solar.R", radiation},
                        {"Exp10", "-Solar.R", negative}};
  TextTable table({"call", "missing", "reported", "the first, by month/day"});
  for (const Case& c : cases) {
    Reports reports;
    call(c.function, c.values);
    const auto missing = std::ranges::count_if(c.values, [](double v) { return std::isnan(v); });
    table.add({format("%s(%s)", c.function, c.argument), format("%td", missing), counted(reports),
               first(days, reports)});
  }
  return format("What the error machinery saw on New York's air, %zu days of 1973\n\n",
                days.rows()) +
         table.text() +
         "\n  A missing value is a quiet NaN: it passes through, and nothing is reported.\n\n";
}

// ---- Kernels --------------------------------------------------------------------------------

std::string kernels() {
  TextTable table({"kernel", "arguments", "ns/element", "libm", "times faster", "worst ulp"});
  for (const KernelFigures& figures : measure_kernels()) {
    table.add({"d" + figures.function, format("%g to %g", figures.low, figures.high),
               format("%.2f", figures.ns), format("%.2f", figures.libm_ns),
               format("%.1f", figures.libm_ns / figures.ns), format("%.3f", figures.ulp)});
  }
  return "Speed and accuracy here and now: 1,024 elements in cache against libm's functions in a"
         " loop;\nworst of 20,000 arguments against extended precision\n\n" +
         table.text();
}

std::string folder_of_data(const Arguments& arguments) {
  return arguments.has("--data") ? arguments.option("--data", "") : data_folder();
}

// The plots, and all that may be read.
std::vector<NamedFile> files(const Arguments& arguments) {
  namespace fs = std::filesystem;
  std::vector<NamedFile> all;
  for (const char* plot : {kCarbonDioxidePlot, kMercuryPlot}) {
    all.push_back({"--plots", fs::path(arguments.option("--plots", "")) / plot, FileUse::written});
  }
  const fs::path data = folder_of_data(arguments);
  for (const fs::path& folder : {data, data / "strd"}) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
      if (entry.path().extension() != ".csv") continue;
      all.push_back({"--data", entry.path(), FileUse::read});
    }
  }
  return all;
}

void run(const Arguments& arguments, Output& output) {
  const std::string folder = folder_of_data(arguments);
  const std::string plots = arguments.option("--plots", "");
  output.out = "qor_ark_base " QOR_VERSION "\n  library  " + library_file() + "\n  data     " +
               folder + "\n\n" + markets(folder) + errors(folder) +
               tour_fitting(folder, plots, output) + tour_of_statistics(folder) +
               tour_of_streams() + kernels();
}

}  // namespace

const Command tour_command = {
    .name = "tour",
    .summary = "shows the library at work on the example data",
    .operands = {},
    .options = {{"--data", "FOLDER",
                 "where the example data is, when it is not where it was"
                 " installed"},
                {"--plots", "FOLDER", "where to write plots; the current folder when not given"}},
    .run = run,
    .more_files = files,
};

}  // namespace qor::cli
