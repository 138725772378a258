// qor map: a vector function applied to columns of a CSV file.

#include <algorithm>

#include "front/cli/commands.h"
#include "front/cli/csv.h"
#include "front/cli/functions.h"
#include "front/cli/input_error.h"
#include "front/cli/text.h"
#include "front/cpp/qor.hpp"

namespace qor::cli {
namespace {

std::string names_of_functions() {
  std::vector<std::string> names;
  for (const Function& function : functions()) names.push_back(function.name);
  return joined(names);
}

const Function& function_named(const std::string& name) {
  const Function* function = find_function(name);
  if (function == nullptr) {
    throw InputError("no function " + quoted(name) + "; the functions are " + names_of_functions());
  }
  return *function;
}

// The accuracy field asked for; 0, which keeps the mode's, when none is.
uint32_t accuracy_of(const Arguments& arguments) {
  const std::string accuracy = arguments.option("--accuracy", "");
  if (accuracy == "la") return QOR_MODE_LA;
  if (accuracy == "ha") return QOR_MODE_HA;
  return accuracy == "ep" ? QOR_MODE_EP : 0;
}

// The columns to work on: those named, or all.
std::vector<size_t> columns_of(const Csv& csv, const Arguments& arguments) {
  std::vector<size_t> columns;
  if (arguments.has("--columns")) {
    for (const std::string& name : split(arguments.option("--columns", ""), ',')) {
      columns.push_back(column_index(csv, trimmed(name)));
    }
  } else {
    for (size_t i = 0; i < csv.header.size(); ++i) columns.push_back(i);
  }
  return columns;
}

// One result: the function applied to a column, or to a pair of columns.
struct Result {
  std::string columns;  // names of the inputs
  std::vector<double> values;
  std::vector<ErrorContext> reports;
};

Result evaluate(const Function& function, const Csv& csv, std::span<const size_t> columns) {
  Result result;
  std::vector<std::vector<double>> inputs;
  for (const size_t column : columns) {
    result.columns += (inputs.empty() ? "" : ",") + csv.header[column];
    inputs.push_back(numbers(csv, column));
  }
  Reports reports;
  result.values = function(inputs);
  result.reports = reports.list();
  return result;
}

std::vector<Result> evaluate_all(const Function& function, const Csv& csv,
                                 std::span<const size_t> columns) {
  std::vector<Result> results;
  for (; columns.size() >= function.inputs(); columns = columns.subspan(function.inputs())) {
    results.push_back(evaluate(function, csv, columns.first(function.inputs())));
  }
  return results;
}

std::string csv_of(const Function& function, std::span<const Result> results, size_t rows) {
  std::vector<std::string> fields;
  for (const Result& result : results) {
    fields.push_back(csv_field(function.name + "(" + result.columns + ")"));
  }
  std::string text = csv_line(fields);
  for (size_t row = 0; row < rows; ++row) {
    std::ranges::transform(results, fields.begin(),
                           [&](const Result& result) { return csv_field(result.values[row]); });
    text += csv_line(fields);
  }
  return text;
}

std::string describe(const Function& function, const Csv& csv, const Result& result,
                     const ErrorContext& report) {
  const std::string arguments = function.inputs() == 1
                                    ? csv_field(report.arg1)
                                    : csv_field(report.arg1) + "," + csv_field(report.arg2);
  return format("row %d (line %zu), column %s: %s(%s) = %s: code %d, %s\n", report.index + 1,
                csv.line(static_cast<size_t>(report.index)), result.columns.c_str(),
                function.name.c_str(), arguments.c_str(), shortest(report.result1).c_str(),
                report.code, std::string(meaning(report.code)).c_str());
}

void run(const Arguments& arguments, Output& output) {
  const Function& function = function_named(arguments.operands[0]);
  const Csv csv = read_csv(arguments.operands[1]);
  const std::vector<size_t> columns = columns_of(csv, arguments);
  if (function.inputs() == 2 && columns.size() != 2) {
    throw InputError(function.name + " takes two columns, " + std::to_string(columns.size()) +
                     " are given; name two with --columns, of " + joined(csv.header));
  }
  const ModeScope mode(accuracy_of(arguments));
  const std::vector<Result> results = evaluate_all(function, csv, columns);
  output.out = csv_of(function, results, csv.rows());
  if (arguments.option("--errors", "ignore") == "ignore") return;
  for (const Result& result : results) {
    for (const ErrorContext& report : result.reports) {
      output.err += describe(function, csv, result, report);
    }
  }
}

std::string more_help() {
  return "Missing values (empty, NA) go in as NaN, and NaN comes out as NA. A function of two "
         "inputs\n"
         "takes two columns.\n"
         "Functions, upper and lower case alike: " +
         names_of_functions() + "\n";
}

}  // namespace

const Command map_command = {
    .name = "map",
    .summary = "applies a function to columns of a CSV file and writes CSV",
    .operands = {{"FUNCTION"}, {"FILE.csv", FileUse::read}},
    .options = {{"--columns", "A,B", "columns to work on; all when not given"},
                {"--accuracy",
                 "la|ha|ep",
                 "accuracy of the kernels; ha (or what QOR_ARK_MODE says) when not given",
                 {"la", "ha", "ep"}},
                {"--errors",
                 "ignore|report",
                 "report: a line on standard error for each element without a plain result",
                 {"ignore", "report"}}},
    .run = run,
    .more_help = more_help,
};

}  // namespace qor::cli
