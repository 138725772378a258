// Splines as a plot: data and curves above, first derivatives below.
#pragma once

#include <span>

#include "front/cli/fit_request.h"
#include "front/cli/plot.h"

namespace qor::cli {

struct Range {
  double low, high;
};

// The spline's points within the range.
Series data_of(const Spline& spline, const Range& range, std::string name, size_t colour);

// A derivative (0 is the spline itself) over the range.
Series curve_of(const Spline& spline, int64_t order, const Range& range, std::string name,
                size_t colour);

std::string plot_of_fit(const FitRequest& request, std::span<const Spline> splines);

}  // namespace qor::cli
