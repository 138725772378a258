#include "front/cli/tour_statistics.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "front/cli/csv.h"
#include "front/cli/summary.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

SummaryFigures describe(const std::string& file, const std::vector<std::string>& names,
                        const Summary::Wanted& wanted) {
  CsvReader csv(file);
  std::vector<size_t> columns;
  columns.reserve(names.size());
  for (const std::string& name : names) columns.push_back(column_index(csv.head(), name));
  Summary summary(columns.size(), wanted);
  ObservationReader reader(csv, columns, std::nullopt);
  constexpr size_t kRows = 512;
  for (Observations block; reader.next(kRows, block);) summary.add(block);
  reader.require_no_missing();
  return summary.figures();
}

// ---- Data sets ------------------------------------------------------------------------------

struct DataSet {
  const char* name;
  std::vector<std::string> columns;
};

std::string described(const std::string& folder) {
  const DataSet sets[] = {{"iris", {"Sepal.Length", "Sepal.Width", "Petal.Length", "Petal.Width"}},
                          {"quakes", {"depth", "mag", "stations"}},
                          {"stackloss", {"Air.Flow", "Water.Temp", "Acid.Conc.", "stack.loss"}},
                          {"airquality", {"Wind", "Temp"}},
                          {"eu_stock_markets", {"DAX", "SMI", "CAC", "FTSE"}}};
  TextTable table({"data", "n", "mean", "deviation", "minimum", "median", "maximum", "skewness",
                   "kurtosis", "r with first"});
  for (const DataSet& set : sets) {
    const SummaryFigures f =
        describe(folder + "/" + set.name + ".csv", set.columns, {false, {0.5}, true, 1});
    for (size_t i = 0; i < set.columns.size(); ++i) {
      const double r = f.covariance[i] / (f.deviation[0] * f.deviation[i]);
      table.add({set.name + (" " + set.columns[i]),
                 format("%lld", static_cast<long long>(f.observations)), format("%.5g", f.mean[i]),
                 format("%.4g", f.deviation[i]), format("%g", f.minimum[i]),
                 format("%g", f.quantiles[i]), format("%g", f.maximum[i]),
                 format("%+.3f", f.skewness[i]), format("%+.3f", f.kurtosis[i]),
                 format("%+.3f", r)});
    }
  }
  return "Summary statistics in one pass over each file\n\n" + table.text() + "\n";
}

// ---- Certified figures ----------------------------------------------------------------------

constexpr double kAllDigits = 15;        // certified
constexpr double kDigitsOfMeans = 14.5;  // at least, in one pass

// Digits in which a value agrees with the certified one: the log relative error. Where powers leave
// a variance below 0, there is no value and no digit.
double digits(double value, double certified) {
  if (std::isnan(value)) return 0;
  const double error = std::fabs(value - certified) / std::fabs(certified);
  return error == 0 ? kAllDigits : std::clamp(-std::log10(error), 0.0, kAllDigits);
}

// Those that the figures of a set agree in, by one method.
struct Digits {
  double mean, deviation;
};

std::string certified(const std::string& folder) {
  const Csv csv = read_csv(folder + "/strd/certified.csv");
  const auto column = [&](const char* name) { return numbers(csv, column_index(csv, name)); };
  const std::vector<double> means = column("mean"), deviations = column("standard_deviation");
  TextTable table({"set", "n", "mean, certified", "one pass", "fast", "deviation, certified",
                   "one pass", "fast"});
  const size_t name = column_index(csv, "dataset"), n = column_index(csv, "n");
  for (size_t i = 0; i < csv.rows(); ++i) {
    const std::string set(csv.cell(i, name).text);
    const std::string file = std::string(folder).append("/strd/").append(set).append(".csv");
    const auto agreed = [&](bool fast) -> Digits {
      const SummaryFigures f = describe(file, {"y"}, {fast, {}, false, 1});
      return {digits(f.mean[0], means[i]), digits(f.deviation[0], deviations[i])};
    };
    const Digits one_pass = agreed(false), fast = agreed(true);
    if (one_pass.mean < kDigitsOfMeans) {
      throw std::runtime_error("the mean of " + set + " is not the certified one");
    }
    table.add({set, std::string(csv.cell(i, n).text), format("%.15g", means[i]),
               format("%.1f", one_pass.mean), format("%.1f", fast.mean),
               format("%.15g", deviations[i]), format("%.1f", one_pass.deviation),
               format("%.1f", fast.deviation)});
  }
  return "Certified data sets: digits, of 15, that agree with the certified ones\n\n" +
         table.text() +
         "\n  One pass keeps nearly all that the data allow: numbers such as 10000000.2 have no "
         "exact"
         "\n  double, which costs their deviation digits by any method. Sums of powers lose them "
         "far"
         "\n  from zero.\n\n";
}

}  // namespace

std::string tour_of_statistics(const std::string& folder) {
  return described(folder) + certified(folder);
}

}  // namespace qor::cli
