#include "front/cli/stats_report.h"

#include <cmath>

#include "front/cli/csv.h"
#include "front/cli/json.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

struct Figure {
  const char *heading, *key;  // in tables; in CSV and JSON
  const std::vector<double> SummaryFigures::*values;
};

constexpr Figure kFigures[] = {
    {"mean", "mean", &SummaryFigures::mean},
    {"deviation", "standard_deviation", &SummaryFigures::deviation},
    {"minimum", "minimum", &SummaryFigures::minimum},
    {"maximum", "maximum", &SummaryFigures::maximum},
    {"skewness", "skewness", &SummaryFigures::skewness},
    {"kurtosis", "kurtosis", &SummaryFigures::kurtosis},
    {"variation", "variation", &SummaryFigures::variation},
};

const char* method_name(const StatsReport& report) {
  return report.wanted.fast ? "fast" : "one-pass";
}

double quantile(const StatsReport& report, size_t column, size_t order) {
  return report.figures.quantiles[column * report.wanted.quantile_orders.size() + order];
}

double covariance(const StatsReport& report, size_t row, size_t column) {
  return report.figures.covariance[row * report.columns.size() + column];
}

// ---- Table ----------------------------------------------------------------------------------

std::string cell(double value) { return std::isnan(value) ? "NA" : format("%.9g", value); }

std::string heading_of_table(const StatsReport& report) {
  std::string text = report.file + format(": %lld observations",
                                          static_cast<long long>(report.figures.observations));
  if (!report.weights.empty()) {
    text += ", weights " + report.weights + " of sum " + cell(report.figures.weight);
  }
  return text + ", method " + method_name(report) + "\n\n";
}

std::string table_of_quantiles(const StatsReport& report) {
  std::vector<std::string> line{"quantiles"};
  for (const double order : report.wanted.quantile_orders) line.push_back(shortest(order));
  TextTable table(line);
  for (size_t i = 0; i < report.columns.size(); ++i) {
    line = {report.columns[i]};
    for (size_t k = 0; k < report.wanted.quantile_orders.size(); ++k) {
      line.push_back(cell(quantile(report, i, k)));
    }
    table.add(line);
  }
  const double places =
      std::floor(Summary::kQuantileError * static_cast<double>(report.figures.observations));
  return "\n" + table.text() +
         (places < 1 ? ""
                     : format("\n  Quantiles are at most %.0f places off in the order of values.\n",
                              places));
}

std::string table_of_covariances(const StatsReport& report) {
  std::vector<std::string> line{"covariance"};
  line.insert(line.end(), report.columns.begin(), report.columns.end());
  TextTable table(line);
  for (size_t i = 0; i < report.columns.size(); ++i) {
    line = {report.columns[i]};
    for (size_t j = 0; j < report.columns.size(); ++j) {
      line.push_back(cell(covariance(report, i, j)));
    }
    table.add(line);
  }
  return "\n" + table.text();
}

}  // namespace

std::string table_of(const StatsReport& report) {
  std::vector<std::string> line{"column"};
  for (const Figure& figure : kFigures) line.emplace_back(figure.heading);
  TextTable table(line);
  for (size_t i = 0; i < report.columns.size(); ++i) {
    line = {report.columns[i]};
    for (const Figure& figure : kFigures) line.push_back(cell((report.figures.*figure.values)[i]));
    table.add(line);
  }
  std::string text = heading_of_table(report) + table.text();
  if (!report.wanted.quantile_orders.empty()) text += table_of_quantiles(report);
  return report.wanted.covariance ? text + table_of_covariances(report) : text;
}

// ---- CSV ------------------------------------------------------------------------------------

std::string csv_of(const StatsReport& report) {
  std::vector<std::string> line{"column", "observations"};
  if (!report.weights.empty()) line.emplace_back("weight");
  for (const Figure& figure : kFigures) line.emplace_back(figure.key);
  for (const double order : report.wanted.quantile_orders) line.push_back("q" + shortest(order));
  std::string text = csv_line(line);
  for (size_t i = 0; i < report.columns.size(); ++i) {
    line = {csv_field(std::string_view(report.columns[i])),
            std::to_string(report.figures.observations)};
    if (!report.weights.empty()) line.push_back(csv_field(report.figures.weight));
    for (const Figure& figure : kFigures) {
      line.push_back(csv_field((report.figures.*figure.values)[i]));
    }
    for (size_t k = 0; k < report.wanted.quantile_orders.size(); ++k) {
      line.push_back(csv_field(quantile(report, i, k)));
    }
    text += csv_line(line);
  }
  if (!report.wanted.covariance) return text;
  line = {"covariance"};
  for (const std::string& name : report.columns) line.push_back(csv_field(std::string_view(name)));
  text += "\n" + csv_line(line);
  for (size_t i = 0; i < report.columns.size(); ++i) {
    line = {csv_field(std::string_view(report.columns[i]))};
    for (size_t j = 0; j < report.columns.size(); ++j) {
      line.push_back(csv_field(covariance(report, i, j)));
    }
    text += csv_line(line);
  }
  return text;
}

// ---- JSON -----------------------------------------------------------------------------------

namespace {

std::string json_of_column(const StatsReport& report, size_t i) {
  std::string text = "    {\"name\": " + json_text(report.columns[i]);
  for (const Figure& figure : kFigures) {
    text +=
        std::string(", \"") + figure.key + "\": " + json_number((report.figures.*figure.values)[i]);
  }
  const auto& orders = report.wanted.quantile_orders;
  if (!orders.empty()) {
    text +=
        ",\n     \"quantiles\": " +
        json_numbers(std::span(report.figures.quantiles).subspan(i * orders.size(), orders.size()));
  }
  return text + "}";
}

std::string json_of_covariances(const StatsReport& report) {
  const size_t p = report.columns.size();
  std::string text = ",\n  \"covariance\": [\n";
  for (size_t i = 0; i < p; ++i) {
    text += "    " + json_numbers(std::span(report.figures.covariance).subspan(i * p, p)) +
            (i + 1 < p ? ",\n" : "\n");
  }
  return text + "  ]";
}

}  // namespace

std::string json_of(const StatsReport& report) {
  std::string text =
      "{\n  \"file\": " + json_text(report.file) +
      format(",\n  \"observations\": %lld", static_cast<long long>(report.figures.observations));
  if (!report.weights.empty()) {
    text += ",\n  \"weights\": " + json_text(report.weights) +
            ",\n  \"weight\": " + json_number(report.figures.weight);
  }
  text += std::string(",\n  \"method\": \"") + method_name(report) + "\"";
  if (!report.wanted.quantile_orders.empty()) {
    text += ",\n  \"quantile_orders\": " + json_numbers(report.wanted.quantile_orders) +
            ",\n  \"quantile_error\": " + json_number(Summary::kQuantileError);
  }
  text += ",\n  \"columns\": [\n";
  for (size_t i = 0; i < report.columns.size(); ++i) {
    text += json_of_column(report, i) + (i + 1 < report.columns.size() ? ",\n" : "\n");
  }
  text += "  ]";
  return text + (report.wanted.covariance ? json_of_covariances(report) : "") + "\n}\n";
}

}  // namespace qor::cli
