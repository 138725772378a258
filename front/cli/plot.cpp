#include "front/cli/plot.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr double kWidth = 960, kMargin = 24, kFirstPanel = 340, kPanel = 200;
constexpr double kTitle = 40, kLegendLine = 22, kBelowPanel = 14, kAxis = 52, kLetter = 7.2;

// A palette that colour-blind readers can tell apart (Okabe and Ito, 2008).
constexpr const char* kPalette[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                    "#e69f00", "#56b4e9", "#000000"};

const char* colour_of(const Series& series) {
  return kPalette[series.colour % std::size(kPalette)];
}

double width_of(const std::string& text) { return kLetter * static_cast<double>(text.size()); }

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return result;
}

std::string text_at(double x, double y, const char* attributes, const std::string& text) {
  return format("<text x=\"%.1f\" y=\"%.1f\" %s>", x, y, attributes) + escaped(text) + "</text>\n";
}

std::string line_from(double x, double y, double to_x, double to_y, const char* colour) {
  return format("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"%s\"/>\n", x, y,
                to_x, to_y, colour);
}

// An interval of data and the pixels that it takes.
struct Scale {
  double low, high, from, to;

  double operator()(double value) const {
    return from + (value / 2 - low / 2) / (high / 2 - low / 2) * (to - from);
  }
};

struct Interval {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void add(const std::vector<double>& values) {
    for (const double value : values) {
      if (!std::isfinite(value)) continue;
      low = std::min(low, value);
      high = std::max(high, value);
    }
  }
  // With a little room on both sides; something sensible for no value and for one.
  Interval padded(double share) const {
    if (low > high) return {0, 1};
    const double half = high / 2 - low / 2;
    const double room = half > 0 ? 2 * share * half : low == 0 ? 1 : std::fabs(low) / 10;
    constexpr double kMost = std::numeric_limits<double>::max();
    return {std::max(low - room, -kMost), std::min(high + room, kMost)};
  }
};

// A panel with its place on the page.
struct Placed {
  const Panel& panel;
  Scale x, y;
  Ticks x_ticks, y_ticks;
};

std::string axes(const Placed& p, bool with_x_labels) {
  std::string result;
  for (size_t i = 0; i < p.y_ticks.values.size(); ++i) {
    const double at = p.y(p.y_ticks.values[i]);
    result += line_from(p.x.from, at, p.x.to, at, "#e4e4e4");
    result += text_at(p.x.from - 8, at + 4, "text-anchor=\"end\"", p.y_ticks.labels[i]);
  }
  for (size_t i = 0; i < p.x_ticks.values.size(); ++i) {
    const double at = p.x(p.x_ticks.values[i]);
    result += line_from(at, p.y.from, at, p.y.to, "#e4e4e4");
    result += line_from(at, p.y.from, at, p.y.from + 5, "#444444");
    if (with_x_labels) {
      result += text_at(at, p.y.from + 20, "text-anchor=\"middle\"", p.x_ticks.labels[i]);
    }
  }
  return result + format(
                      "<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"none\""
                      " stroke=\"#444444\"/>\n",
                      p.x.from, p.y.to, p.x.to - p.x.from, p.y.from - p.y.to);
}

std::string line_of(const Series& series, const Placed& p) {
  std::string path;
  bool pen_down = false;
  for (size_t i = 0; i < series.x.size(); ++i) {
    const bool finite = std::isfinite(series.x[i]) && std::isfinite(series.y[i]);
    if (finite) {
      path += format("%c%.2f %.2f", pen_down ? 'L' : 'M', p.x(series.x[i]), p.y(series.y[i]));
    }
    pen_down = finite;
  }
  return "<path d=\"" + path + "\" fill=\"none\" stroke=\"" + colour_of(series) +
         "\" stroke-width=\"1.4\" stroke-linejoin=\"round\"/>\n";
}

// Many points are drawn smaller.
double radius_of(const Series& series) {
  return std::clamp(60.0 / std::sqrt(1.0 + static_cast<double>(series.x.size())), 1.5, 4.0);
}

std::string points_of(const Series& series, const Placed& p) {
  std::string result =
      format("<g fill=\"white\" stroke=\"%s\" stroke-width=\"1.1\">\n", colour_of(series));
  for (size_t i = 0; i < series.x.size(); ++i) {
    if (!std::isfinite(series.x[i]) || !std::isfinite(series.y[i])) continue;
    result += format("<circle cx=\"%.2f\" cy=\"%.2f\" r=\"%.1f\"/>\n", p.x(series.x[i]),
                     p.y(series.y[i]), radius_of(series));
  }
  return result + "</g>\n";
}

// Legend entries of a panel behind its title, in lines that fit the width. Writes nothing when
// `into` is null; returns the lines.
int legend(const Panel& panel, double left, double top, std::string* into) {
  constexpr double kSample = 26, kGap = 22;
  double x = left + width_of(panel.title) + kGap;
  int lines = 1;
  for (const Series& series : panel.series) {
    const double width = kSample + width_of(series.name);
    if (x + width > kWidth - kMargin && x > left) {
      x = left;
      ++lines;
    }
    if (into != nullptr) {
      const double y = top + kLegendLine * lines - 8;
      *into +=
          series.mark == Series::Mark::line
              ? format("<path d=\"M%.1f %.1fh18\" stroke=\"%s\" stroke-width=\"2\"/>\n", x, y - 4,
                       colour_of(series))
              : format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3.5\" fill=\"white\" stroke=\"%s\"/>\n",
                       x + 9, y - 4, colour_of(series));
      *into += text_at(x + kSample - 2, y, "", series.name);
    }
    x += width + kGap;
  }
  return lines;
}

std::string drawn(const Placed& p, double top, bool with_x_labels) {
  std::string result = axes(p, with_x_labels);
  for (const Series& series : p.panel.series) {
    result += series.mark == Series::Mark::line ? line_of(series, p) : points_of(series, p);
  }
  result += text_at(p.x.from, top + kLegendLine - 8, "font-weight=\"bold\"", p.panel.title);
  legend(p.panel, p.x.from, top, &result);
  return result;
}

}  // namespace

Ticks round_ticks(double low, double high, int wanted) {
  const double raw = (high / 2 - low / 2) / wanted * 2;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  double step = power;
  for (const double factor : {2.0, 5.0, 10.0}) {
    // Nearer to the wanted distance, by ratio.
    if (factor * power * (step / raw) <= raw) step = factor * power;
  }
  Ticks ticks;
  const double most = std::max(std::fabs(low), std::fabs(high));
  const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
  const bool plain = most < 1e7 && decimals <= 6;
  const int digits = static_cast<int>(std::ceil(std::log10(most / step) + 1e-9)) + 1;
  // The first multiple by number, so that each tick is one rounding away from its true place.
  for (double k = std::ceil(low / step); k * step <= high; ++k) {
    const double value = k == 0 ? 0 : std::clamp(k * step, low, high);
    ticks.values.push_back(value);
    ticks.labels.push_back(
        plain ? format("%.*f", decimals, value)
              : shortest(std::strtod(format("%.*g", digits, value).c_str(), nullptr)));
    if (k + 1 == k) break;
  }
  return ticks;
}

std::string svg(const Plot& plot) {
  Interval x_range;
  std::vector<Interval> y_ranges;
  std::vector<Ticks> y_ticks;
  double widest = 0;
  for (const Panel& panel : plot.panels) {
    Interval range;
    for (const Series& series : panel.series) {
      x_range.add(series.x);
      range.add(series.y);
    }
    y_ranges.push_back(range.padded(0.05));
    y_ticks.push_back(
        round_ticks(y_ranges.back().low, y_ranges.back().high, y_ticks.empty() ? 7 : 5));
    for (const std::string& label : y_ticks.back().labels) {
      widest = std::max(widest, width_of(label));
    }
  }
  x_range = x_range.padded(0.015);
  const double left = kMargin + widest + 8;
  const Scale x{x_range.low, x_range.high, left, kWidth - kMargin};
  const Ticks x_ticks = round_ticks(x_range.low, x_range.high, 9);
  std::string body;
  double top = kTitle;
  for (size_t i = 0; i < plot.panels.size(); ++i) {
    const Panel& panel = plot.panels[i];
    const double above = kLegendLine * legend(panel, left, top, nullptr);
    const double bottom = top + above + (i == 0 ? kFirstPanel : kPanel);
    const Scale y{y_ranges[i].low, y_ranges[i].high, bottom, top + above};
    const bool last = i + 1 == plot.panels.size();
    body += drawn({panel, x, y, x_ticks, y_ticks[i]}, top, last);
    top = bottom + (last ? kAxis : kBelowPanel);
  }
  body += text_at((left + kWidth - kMargin) / 2, top - 10, "text-anchor=\"middle\"", plot.x_label);
  return format(
             "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\""
             " viewBox=\"0 0 %.0f %.0f\" font-family=\"DejaVu Sans, Helvetica, Arial, sans-serif\""
             " font-size=\"12\" fill=\"#222222\">\n"
             "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
             kWidth, top, kWidth, top) +
         text_at(left, 26, "font-size=\"16\" font-weight=\"bold\"", plot.title) + body + "</svg>\n";
}

}  // namespace qor::cli
