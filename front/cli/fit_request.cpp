#include "front/cli/fit_request.h"

#include <algorithm>
#include <cmath>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr int64_t kMostSites = 100'000'000;
constexpr int64_t kHighestOrder = 3;

[[noreturn]] void refuse(const char* option, const std::string& text, const std::string& accepted) {
  throw InputError(std::string(option) + ": " + quoted(text) + "; " + accepted);
}

// So many finite numbers; empty when the text is something else.
std::vector<double> finite_numbers(const std::string& text, char separator, size_t count) {
  std::vector<double> values;
  for (const std::string& word : split(text, separator)) {
    const auto value = parse_number(word);
    if (!value || !std::isfinite(*value)) return {};
    values.push_back(*value);
  }
  if (values.size() != count) values.clear();
  return values;
}

std::vector<double> range_of_sites(const std::string& text) {
  const std::vector<double> range = finite_numbers(text, ':', 3);
  const double count = range.empty() ? 0 : range[2];
  if (!(count >= 1 && count <= kMostSites && count == std::floor(count))) {
    refuse("--at", text,
           format("A:B:N is accepted, N sites from A to B, N from 1 to %lld",
                  static_cast<long long>(kMostSites)));
  }
  std::vector<double> sites(static_cast<size_t>(count));
  const double last = count - 1;
  for (size_t i = 0; i < sites.size(); ++i) {
    const double share = last == 0 ? 0 : static_cast<double>(i) / last;
    sites[i] = (1 - share) * range[0] + share * range[1];
  }
  return sites;
}

// The column of the name of x, or the only one.
std::vector<double> file_of_sites(const std::string& file, const std::string& x) {
  const Csv csv = read_csv(file);
  return numbers(csv, csv.header.size() == 1 ? 0 : column_index(csv, x));
}

std::vector<int64_t> derivative_orders(const std::string& text) {
  std::vector<int64_t> orders;
  for (const std::string& word : split(text, ',')) {
    const auto order = parse_number(word);
    if (!order || !(*order >= 0 && *order <= kHighestOrder) || *order != std::floor(*order)) {
      refuse("--derivatives", text, "orders 0, 1, 2 and 3 are accepted, as 0,1,2");
    }
    orders.push_back(static_cast<int64_t>(*order));
  }
  std::ranges::sort(orders);
  if (std::ranges::adjacent_find(orders) != orders.end()) {
    refuse("--derivatives", text, "each order is accepted once");
  }
  return orders;
}

// ---- Columns --------------------------------------------------------------------------------

void require_finite(const Csv& csv, size_t row, const std::string& column, double value) {
  if (std::isfinite(value)) return;
  throw InputError(csv.file + format(", line %zu, column ", csv.line(row)) + quoted(column) + ": " +
                   shortest(value) + "; finite numbers are accepted");
}

struct ColumnNames {
  std::string x, y, slopes;  // slopes may be empty
};

// The rows that have all values; x must increase over them.
Points points_of(const Csv& csv, const ColumnNames& names, std::string& notes) {
  const auto column = [&](const std::string& name) {
    return numbers(csv, column_index(csv, name));
  };
  const std::vector<double> x = column(names.x), y = column(names.y);
  const bool with_slopes = !names.slopes.empty();
  const std::vector<double> slopes = with_slopes ? column(names.slopes) : y;
  Points points{names.y, {}, {}, {}};
  std::vector<size_t> left_out;
  for (size_t i = 0; i < x.size(); ++i) {
    if (std::isnan(x[i]) || std::isnan(y[i]) || std::isnan(slopes[i])) {
      left_out.push_back(csv.line(i));
      continue;
    }
    require_finite(csv, i, names.x, x[i]);
    require_finite(csv, i, names.y, y[i]);
    if (with_slopes) require_finite(csv, i, names.slopes, slopes[i]);
    if (!points.x.empty() && !(x[i] > points.x.back())) {
      throw InputError(csv.file + format(", line %zu, column ", csv.line(i)) + quoted(names.x) +
                       ": " + shortest(x[i]) + " is not above " + shortest(points.x.back()) +
                       " before it; increasing values are accepted");
    }
    points.x.push_back(x[i]);
    points.y.push_back(y[i]);
    if (with_slopes) points.slopes.push_back(slopes[i]);
  }
  if (!left_out.empty()) {
    notes += format("%s: %zu of %zu rows have a missing value and are left out of the fit: ",
                    names.y.c_str(), left_out.size(), x.size()) +
             list_of_lines(left_out) + "\n";
  }
  return points;
}

std::vector<Points> read_columns(const Arguments& arguments, const Csv& csv, bool hermite,
                                 std::string& notes) {
  const std::string slopes = arguments.option("--slopes", "");
  if (arguments.has("--slopes") != hermite) {
    throw InputError(hermite ? "--slopes is missing; hermite takes a column of first derivatives"
                               " for each --y column"
                             : "--slopes: " + quoted(slopes) +
                                   "; only --spline hermite takes first derivatives");
  }
  const std::vector<std::string> names = trimmed_parts(arguments.option("--y", ""));
  const std::vector<std::string> of_slopes = trimmed_parts(slopes);
  if (hermite && of_slopes.size() != names.size()) {
    refuse("--slopes", slopes, format("%zu columns are accepted, as of --y", names.size()));
  }
  std::vector<Points> columns;
  columns.reserve(names.size());
  for (size_t i = 0; i < names.size(); ++i) {
    columns.push_back(points_of(
        csv, {arguments.option("--x", ""), names[i], hermite ? of_slopes[i] : ""}, notes));
  }
  return columns;
}

}  // namespace

FitRequest read_fit_request(const Arguments& arguments, std::string& notes) {
  const SplineKind& kind = spline_kind(arguments.option("--spline", ""));
  if (arguments.has("--at") && arguments.has("--at-file")) {
    throw InputError("--at-file: " + quoted(arguments.option("--at-file", "")) +
                     "; either --at or --at-file is accepted");
  }
  FitRequest request{.kind = kind,
                     .boundary = parse_boundary(kind, arguments.option("--boundary", "")),
                     .x = arguments.option("--x", ""),
                     .columns = {},
                     .sites = {},
                     .has_range = arguments.has("--at"),
                     .orders = derivative_orders(arguments.option("--derivatives", "0")),
                     .limits = std::nullopt};
  const bool asks_for_sites =
      request.has_range || arguments.has("--at-file") || arguments.has("--derivatives");
  if (arguments.has("--integrate")) {
    const std::string text = arguments.option("--integrate", "");
    const std::vector<double> limits = finite_numbers(text, ',', 2);
    if (limits.empty())
      refuse("--integrate", text, "A,B is accepted, the limits as finite numbers");
    request.limits = {limits[0], limits[1]};
    if (!asks_for_sites) request.orders.clear();
  }
  const Csv csv = read_csv(arguments.operands[0]);
  request.columns = read_columns(arguments, csv, kind.name == "hermite", notes);
  if (request.has_range) {
    request.sites = range_of_sites(arguments.option("--at", ""));
  } else if (arguments.has("--at-file")) {
    request.sites = file_of_sites(arguments.option("--at-file", ""), request.x);
  } else {
    request.sites = numbers(csv, column_index(csv, request.x));
  }
  return request;
}

}  // namespace qor::cli
