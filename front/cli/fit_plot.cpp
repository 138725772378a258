#include "front/cli/fit_plot.h"

#include <algorithm>

#include "front/cli/text.h"

namespace qor::cli {
namespace {

// Enough for a curve of many cells at the width of a page; the points join them.
constexpr size_t kSamples = 2000;

std::vector<double> samples(const Range& range) {
  std::vector<double> x(kSamples);
  for (size_t i = 0; i < kSamples; ++i) {
    const double share = static_cast<double>(i) / (kSamples - 1);
    x[i] = (1 - share) * range.low + share * range.high;
  }
  return x;
}

// The sites of --at, or the data.
Range range_of(const FitRequest& request, const Spline& spline) {
  const std::vector<double>& x = request.has_range ? request.sites : spline.points().x;
  return {std::min(x.front(), x.back()), std::max(x.front(), x.back())};
}

}  // namespace

Series data_of(const Spline& spline, const Range& range, std::string name, size_t colour) {
  const Points& points = spline.points();
  Series data{std::move(name), Series::Mark::points, {}, {}, colour};
  for (size_t i = 0; i < points.x.size(); ++i) {
    if (points.x[i] < range.low || points.x[i] > range.high) continue;
    data.x.push_back(points.x[i]);
    data.y.push_back(points.y[i]);
  }
  return data;
}

Series curve_of(const Spline& spline, int64_t order, const Range& range, std::string name,
                size_t colour) {
  std::vector<double> x = samples(range);
  const Series data = data_of(spline, range, "", colour);
  x.insert(x.end(), data.x.begin(), data.x.end());
  std::ranges::sort(x);
  std::vector<double> y = spline.derivative(x, order);
  return {std::move(name), Series::Mark::line, std::move(x), std::move(y), colour};
}

std::string plot_of_fit(const FitRequest& request, std::span<const Spline> splines) {
  std::string title = std::string(request.kind.name) + " spline";
  if (!request.boundary.text.empty()) title += ", boundary " + request.boundary.text;
  Plot plot{title, request.x, {{"Values", {}}, {"First derivative", {}}}};
  for (size_t i = 0; i < splines.size(); ++i) {
    const Spline& spline = splines[i];
    const std::string& name = spline.points().name;
    const Range range = range_of(request, spline);
    plot.panels[0].series.push_back(curve_of(spline, 0, range, name + ", spline", i));
    plot.panels[0].series.push_back(data_of(spline, range, name + ", data", i));
    plot.panels[1].series.push_back(curve_of(spline, 1, range, name + " per " + request.x, i));
  }
  return svg(plot);
}

}  // namespace qor::cli
