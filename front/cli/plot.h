// Plots as SVG: panels one below the other over one x axis, each with series of points and lines.
//
// Ticks stand at round numbers; legends stand above their panel, so that nothing lies over the
// data. Values that are not finite are left out, and break a line.
#pragma once

#include <string>
#include <vector>

namespace qor::cli {

struct Series {
  enum class Mark { points, line };
  std::string name;
  Mark mark;
  std::vector<double> x, y;
  size_t colour;  // position in the palette, which repeats
};

struct Panel {
  std::string title;
  std::vector<Series> series;
};

struct Plot {
  std::string title, x_label;
  std::vector<Panel> panels;
};

std::string svg(const Plot& plot);

// Positions of ticks and the text at them.
struct Ticks {
  std::vector<double> values;
  std::vector<std::string> labels;
};

// Multiples of 1, 2 or 5 times a power of ten from low to high, about `wanted` of them, at least
// two; low < high, both finite.
Ticks round_ticks(double low, double high, int wanted);

}  // namespace qor::cli
