// qor fit: splines through columns of a CSV file; their values, derivatives, integrals and plot.

#include <algorithm>

#include "front/cli/commands.h"
#include "front/cli/fit_plot.h"
#include "front/cli/fit_request.h"
#include "front/cli/json.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

// What the splines give: of column i, values[i][k] holds derivative orders[k] at all sites.
struct Fit {
  const FitRequest& request;
  std::vector<Spline> splines;
  std::vector<std::vector<std::vector<double>>> values;
  std::vector<double> integrals;
};

Fit fit(const FitRequest& request) {
  Fit result{request, {}, {}, {}};
  for (const Points& points : request.columns) {
    const Spline& spline = result.splines.emplace_back(request.kind, request.boundary, points);
    auto& values = result.values.emplace_back();
    for (const int64_t order : request.orders) {
      values.push_back(spline.derivative(request.sites, order));
    }
    if (request.limits) {
      result.integrals.push_back(spline.integral(request.limits->first, request.limits->second));
    }
  }
  return result;
}

// Sites that the end polynomials answer for.
std::string note_on_outside(const FitRequest& request, const Points& points) {
  const double first = points.x.front(), last = points.x.back();
  const auto outside =
      request.orders.empty()
          ? 0
          : std::ranges::count_if(request.sites, [&](double s) { return s < first || s > last; });
  if (outside == 0) return "";
  return format(
      "%s: %td of %zu sites lie outside the data, %s to %s; the polynomials at the ends "
      "go on there\n",
      points.name.c_str(), outside, request.sites.size(), shortest(first).c_str(),
      shortest(last).c_str());
}

// ---- CSV ------------------------------------------------------------------------------------

std::string csv_of_values(const Fit& fit) {
  const FitRequest& request = fit.request;
  std::vector<std::string> fields{csv_field(std::string_view(request.x))};
  for (const Points& points : request.columns) {
    for (const int64_t order : request.orders) {
      fields.push_back(csv_field(points.name + std::string(static_cast<size_t>(order), '\'')));
    }
  }
  std::string text = csv_line(fields);
  for (size_t i = 0; i < request.sites.size(); ++i) {
    fields = {csv_field(request.sites[i])};
    for (const auto& column : fit.values) {
      for (const auto& results : column) fields.push_back(csv_field(results[i]));
    }
    text += csv_line(fields);
  }
  return text;
}

std::string csv_of_integrals(const Fit& fit, const std::pair<double, double>& limits) {
  const std::string header[] = {"column", "from", "to", "integral"};
  std::string text = csv_line(header);
  for (size_t i = 0; i < fit.integrals.size(); ++i) {
    const std::string fields[] = {csv_field(std::string_view(fit.request.columns[i].name)),
                                  csv_field(limits.first), csv_field(limits.second),
                                  csv_field(fit.integrals[i])};
    text += csv_line(fields);
  }
  return text;
}

// Both tables have a header line; an empty line stands between them.
std::string csv_of(const Fit& fit) {
  const FitRequest& request = fit.request;
  std::string text = request.orders.empty() ? "" : csv_of_values(fit);
  if (!text.empty() && request.limits) text += "\n";
  return request.limits ? text + csv_of_integrals(fit, *request.limits) : text;
}

// ---- JSON -----------------------------------------------------------------------------------

std::string json_of_column(const Fit& fit, size_t i) {
  const FitRequest& request = fit.request;
  std::string text = "    {\"name\": " + json_text(request.columns[i].name) +
                     format(", \"points\": %zu", request.columns[i].x.size());
  for (size_t k = 0; k < request.orders.size(); ++k) {
    text += format(",\n     \"derivative_%d\": ", static_cast<int>(request.orders[k])) +
            json_numbers(fit.values[i][k]);
  }
  if (request.limits) text += ",\n     \"integral\": " + json_number(fit.integrals[i]);
  return text + "}";
}

std::string json_of(const Fit& fit) {
  const FitRequest& request = fit.request;
  std::string text =
      "{\n  \"x\": " + json_text(request.x) + ",\n  \"spline\": " + json_text(request.kind.name);
  if (!request.boundary.text.empty()) {
    text += ",\n  \"boundary\": " + json_text(request.boundary.text);
  }
  if (!request.orders.empty()) text += ",\n  \"sites\": " + json_numbers(request.sites);
  if (request.limits) {
    const double limits[] = {request.limits->first, request.limits->second};
    text += ",\n  \"limits\": " + json_numbers(limits);
  }
  text += ",\n  \"columns\": [\n";
  for (size_t i = 0; i < request.columns.size(); ++i) {
    text += json_of_column(fit, i) + (i + 1 < request.columns.size() ? ",\n" : "\n");
  }
  return text + "  ]\n}\n";
}

// ---- Command --------------------------------------------------------------------------------

void run(const Arguments& arguments, Output& output) {
  const FitRequest request = read_fit_request(arguments, output.err);
  const Fit result = fit(request);
  for (const Points& points : request.columns) output.err += note_on_outside(request, points);
  output.out = arguments.option("--format", "csv") == "csv" ? csv_of(result) : json_of(result);
  if (arguments.has("--plot")) {
    output.files.push_back(
        {"--plot", arguments.option("--plot", ""), plot_of_fit(request, result.splines)});
  }
}

std::vector<std::string> names_of_kinds() {
  std::vector<std::string> names;
  for (const SplineKind& kind : spline_kinds()) names.emplace_back(kind.name);
  return names;
}

std::string more_help() {
  std::string text =
      "Rows with a missing value (empty, NA) are left out of the fit, and named. --x must increase."
      "\nWithout --at and --at-file the sites are all values of --x; --integrate alone writes"
      "\nintegrals alone. In CSV an empty line separates values and integrals; y' is a derivative."
      "\n\nBoundary conditions that --spline natural takes: " +
      boundaries_of(spline_kind("natural")) +
      ".\nThe others take them too, linear none of them; hermite also takes slopes (the first and"
      "\nlast of --slopes), akima none (estimated), quadratic midpoint:VALUE (the value half way to"
      "\nthe second point). When none is given:";
  for (const SplineKind& kind : spline_kinds()) {
    if (!kind.boundary.empty()) {
      text += " " + std::string(kind.name) + " " + std::string(kind.boundary) + ",";
    }
  }
  text.back() = '.';
  return text + "\n";
}

}  // namespace

const Command fit_command = {
    .name = "fit",
    .summary = "fits splines to columns of a CSV file; writes values, derivatives and integrals",
    .operands = {{"FILE.csv", FileUse::read}},
    .options = {{"--x", "COL", "column of the breakpoints", {}, true},
                {"--y", "COL[,COL]", "columns to fit", {}, true},
                {"--spline", "KIND", "linear, quadratic, natural, hermite, bessel, akima or hyman",
                 names_of_kinds(), true},
                {"--boundary", "B", "condition at the ends, as free or first:0,1; see below"},
                {"--slopes", "COL[,COL]", "hermite's first derivatives, a column for each of --y"},
                {"--at", "A:B:N", "evaluate at N sites from A to B"},
                {.name = "--at-file",
                 .value = "F",
                 .help = "evaluate at a CSV file's column of the name of --x, or its one",
                 .use = FileUse::read},
                {"--derivatives", "0,1,2",
                 "orders to evaluate, 0 (the value) to 3; 0 when not given"},
                {"--integrate", "A,B", "integrate from A to B"},
                {"--format", "csv|json", "what to write; csv when not given", {"csv", "json"}},
                {.name = "--plot",
                 .value = "OUT.svg",
                 .help = "write a plot of data, curves and first derivatives",
                 .use = FileUse::written}},
    .run = run,
    .more_help = more_help,
};

}  // namespace qor::cli
