// qor stats: moments, extremes, quantiles and covariances of columns of a CSV file of any length.

#include <algorithm>

#include "front/cli/commands.h"
#include "front/cli/input_error.h"
#include "front/cli/numbers_given.h"
#include "front/cli/progress.h"
#include "front/cli/stats_report.h"
#include "front/cli/text.h"
#include "front/cli/threads_given.h"

namespace qor::cli {
namespace {

constexpr size_t kBlockValues = size_t{1} << 21;                  // in memory at a time, at most
constexpr size_t kLeastRows = 1024, kMostRows = size_t{1} << 16;  // of a block

std::vector<double> orders_of(const Arguments& arguments) {
  std::vector<double> orders;
  if (!arguments.has("--quantiles")) return orders;
  if (arguments.has("--weights")) {
    refuse_value("--quantiles", arguments.option("--quantiles", ""),
                 "a call without --weights, which quantiles do not take,");
  }
  for (const std::string& word : trimmed_parts(arguments.option("--quantiles", ""))) {
    orders.push_back(number_between("--quantiles", word, 0, 1, false));
  }
  return orders;
}

struct Columns {
  std::vector<size_t> described;
  std::optional<size_t> weights;
};

// Those named, or all but the weights.
Columns columns_of(const CsvHead& csv, const Arguments& arguments) {
  Columns columns;
  if (arguments.has("--weights")) {
    columns.weights = column_index(csv, arguments.option("--weights", ""));
  }
  if (arguments.has("--columns")) {
    for (const std::string& name : trimmed_parts(arguments.option("--columns", ""))) {
      columns.described.push_back(column_index(csv, name));
    }
    return columns;
  }
  for (size_t i = 0; i < csv.header.size(); ++i) {
    if (i != columns.weights) columns.described.push_back(i);
  }
  if (columns.described.empty()) {
    throw InputError(csv.file + ": no column is left beside the weights " +
                     quoted(arguments.option("--weights", "")) + "; one more is accepted");
  }
  return columns;
}

// Reads all of the file.
SummaryFigures describe(CsvReader& csv, const Columns& columns, const Summary::Wanted& wanted) {
  Summary summary(columns.described.size(), wanted);
  ObservationReader reader(csv, columns.described, columns.weights);
  const size_t rows = std::clamp(kBlockValues / columns.described.size(), kLeastRows, kMostRows);
  const uint64_t bytes = csv.total_bytes();
  Progress progress(bytes, bytes > 0, "bytes");
  for (Observations block; reader.next(rows, block);) {
    // Once a cell is missing, the rest is read for what else is.
    if (!reader.has_missing()) summary.add(block);
    progress.update(csv.bytes());
  }
  reader.require_no_missing();
  return summary.figures();
}

void run(const Arguments& arguments, Output& output) {
  const Summary::Wanted wanted{arguments.option("--method", "one-pass") == "fast",
                               orders_of(arguments), arguments.has("--covariance"),
                               threads_given("--threads", arguments.option("--threads", "1"))};
  const std::string& file = arguments.operands[0];
  CsvReader csv(file);
  const Columns columns = columns_of(csv.head(), arguments);
  StatsReport report{file, arguments.option("--weights", ""), {}, wanted, {}};
  for (const size_t column : columns.described) {
    report.columns.push_back(csv.head().header[column]);
  }
  report.figures = describe(csv, columns, wanted);
  if (report.figures.observations == 0) {
    throw InputError(file + ": no row of data; at least one is accepted");
  }
  if (columns.weights && report.figures.weight == 0) {
    throw InputError(file + ", column " + quoted(report.weights) +
                     ": all weights are 0; at least one above it is accepted");
  }
  const std::string form = arguments.option("--format", "table");
  output.out = form == "csv" ? csv_of(report) : form == "json" ? json_of(report) : table_of(report);
}

std::string more_help() {
  return format(
      "The file is read block by block, and may be larger than memory. Missing cells (empty, NA) "
      "are"
      "\ncounted and named; there are no statistics until they are excluded or filled."
      "\nThe standard deviation and covariances divide by W - W2/W, W the sum of the weights and W2"
      "\nof their squares: n - 1 without weights. Kurtosis is the excess over the normal's;"
      "\nvariation is deviation by mean. What the data do not determine is NA (null in JSON)."
      "\none-pass keeps its digits for data far from zero; fast adds powers, and suits data around"
      "\nit. A quantile of order q is the value at place q (n - 1), rounded, of the n sorted ones,"
      "\noff by at most %g n places, or by less than one. In CSV an empty line comes before the"
      "\ncovariances."
      "\n",
      Summary::kQuantileError);
}

}  // namespace

const Command stats_command = {
    .name = "stats",
    .summary = "describes columns of a CSV file of any length: moments, quantiles, covariances",
    .operands = {{"FILE.csv", FileUse::read}},
    .options = {{"--columns", "A,B", "columns to describe; all but the weights when not given"},
                {"--weights", "COL", "column of the observations' weights"},
                {"--method",
                 "one-pass|fast",
                 "of moments and covariances; one-pass when not given",
                 {"one-pass", "fast"}},
                {"--quantiles", "0.05,0.5", "orders of quantiles, from 0 to 1"},
                {"--covariance", "", "the matrix of covariances too"},
                {"--format",
                 "table|csv|json",
                 "what to write; table when not given",
                 {"table", "csv", "json"}},
                {"--threads", "N", "how many to use; 1 when not given"}},
    .run = run,
    .more_help = more_help,
};

}  // namespace qor::cli
