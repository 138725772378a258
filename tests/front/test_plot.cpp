// Plots: round ticks, well-formed SVG, nothing over anything else.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <regex>

#include "front/cli/plot.h"

namespace {

using qor::cli::Panel;
using qor::cli::Plot;
using qor::cli::round_ticks;
using qor::cli::Series;
using qor::cli::svg;
using qor::cli::Ticks;

TEST(Plot, TicksStandAtRoundNumbers) {
  struct Case {
    double low, high;
    int wanted;
    std::vector<std::string> labels;
  };
  const Case cases[] = {
      {0, 10, 5, {"0", "2", "4", "6", "8", "10"}},
      {-0.31, 0.29, 6, {"-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2"}},
      {1958.4, 1998.5, 8, {"1960", "1965", "1970", "1975", "1980", "1985", "1990", "1995"}},
      {0.0012, 0.0019, 4, {"0.0012", "0.0014", "0.0016", "0.0018"}},
      {-3e9, 2e9, 5, {"-3e+09", "-2e+09", "-1e+09", "0", "1e+09", "2e+09"}},
      {1e-9, 5e-9, 4, {"1e-09", "2e-09", "3e-09", "4e-09", "5e-09"}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(round_ticks(c.low, c.high, c.wanted).labels, c.labels) << c.low << " " << c.high;
  }
}

TEST(Plot, TicksOfAnyIntervalAreFewAndInside) {
  const double most = std::numeric_limits<double>::max();
  const std::pair<double, double> intervals[] = {
      {-most, most}, {1, std::nextafter(1, 2)}, {0, 1e-300}, {1e300, 1.001e300}, {-1e-5, 1e8}};
  for (const auto& [low, high] : intervals) {
    const Ticks ticks = round_ticks(low, high, 6);
    EXPECT_GE(ticks.values.size(), 1u) << low << " " << high;
    EXPECT_LE(ticks.values.size(), 20u) << low << " " << high;
    for (const double value : ticks.values) EXPECT_TRUE(value >= low && value <= high) << value;
  }
}

Plot crowded() {
  Plot plot{"A title with <angles> & \"quotes\"", "x", {{"Values", {}}, {"Derivative", {}}}};
  for (size_t i = 0; i < 9; ++i) {
    const std::string name = "series number " + std::to_string(i) + ", quite long";
    const double y = static_cast<double>(i);
    plot.panels[0].series.push_back({name, Series::Mark::line, {0, 1, 2}, {y, y + 1, y}, i});
    plot.panels[0].series.push_back({name, Series::Mark::points, {0, 1, 2}, {y, y + 1, y}, i});
    plot.panels[1].series.push_back({name, Series::Mark::line, {0, 1, 2}, {1e5, -1e5, y}, i});
  }
  return plot;
}

struct Box {
  double left, right, top, bottom;
  std::string text;
};

// Letters of 12 pixels are narrower than this on average.
std::vector<Box> texts_of(const std::string& page) {
  const std::regex form("<text x=\"([-0-9.]+)\" y=\"([-0-9.]+)\" ([^>]*)>([^<]*)</text>");
  std::vector<Box> boxes;
  for (std::sregex_iterator i(page.begin(), page.end(), form), end; i != end; ++i) {
    const std::string attributes = (*i)[3], text = (*i)[4];
    const double x = std::stod((*i)[1]), y = std::stod((*i)[2]);
    const double width = 6.6 * static_cast<double>(text.size());
    const bool ends = attributes.find("\"end\"") != std::string::npos;
    const bool middle = attributes.find("\"middle\"") != std::string::npos;
    const double left = ends ? x - width : middle ? x - width / 2 : x;
    boxes.push_back({left, left + width, y - 10, y + 3, text});
  }
  return boxes;
}

TEST(Plot, NoTextLiesOverAnotherOrOutside) {
  const std::vector<Box> boxes = texts_of(svg(crowded()));
  ASSERT_GT(boxes.size(), 30u);
  for (size_t i = 0; i < boxes.size(); ++i) {
    const Box& a = boxes[i];
    EXPECT_TRUE(a.left >= 0 && a.right <= 960) << a.text;
    for (size_t j = 0; j < i; ++j) {
      const Box& b = boxes[j];
      EXPECT_TRUE(a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top)
          << a.text << " over " << b.text;
    }
  }
}

// Every element that opens closes, in order.
bool well_formed(const std::string& page) {
  const std::regex tag("<(/?)([a-z]+)[^<>]*?(/?)>");
  std::vector<std::string> open;
  for (std::sregex_iterator i(page.begin(), page.end(), tag), end; i != end; ++i) {
    if ((*i)[1].length() > 0) {
      if (open.empty() || open.back() != (*i)[2]) return false;
      open.pop_back();
    } else if ((*i)[3].length() == 0) {
      open.push_back((*i)[2]);
    }
  }
  return open.empty();
}

TEST(Plot, IsWellFormedWhateverTheData) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double most = std::numeric_limits<double>::max();
  EXPECT_TRUE(well_formed(svg(crowded())));
  EXPECT_NE(svg(crowded()).find("A title with &lt;angles&gt; &amp; "), std::string::npos);
  const std::vector<std::vector<double>> values = {
      {}, {1}, {nan, nan}, {inf, -inf, 3}, {-most, most}, {0, 0, 0}, {5e-324, 0}};
  for (const std::vector<double>& y : values) {
    std::vector<double> x;
    for (size_t i = 0; i < y.size(); ++i) x.push_back(static_cast<double>(i));
    const std::string page =
        svg({"t",
             "x",
             {{"p", {{"l", Series::Mark::line, x, y, 0}, {"d", Series::Mark::points, x, y, 1}}}}});
    EXPECT_TRUE(well_formed(page));
    EXPECT_EQ(page.find("nan"), std::string::npos);
    EXPECT_EQ(page.find("inf"), std::string::npos);
  }
}

TEST(Plot, AGapBreaksTheLine) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::string page =
      svg({"t", "x", {{"p", {{"l", Series::Mark::line, {0, 1, 2, 3, 4}, {1, 2, nan, 2, 1}, 0}}}}});
  const std::regex broken("<path d=\"M[-0-9. ]+L[-0-9. ]+M[-0-9. ]+L[-0-9. ]+\"");
  EXPECT_TRUE(std::regex_search(page, broken)) << page;
}

}  // namespace
