// Plots: round ticks, well-formed SVG, nothing over anything else. Histograms of text: round bins.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <regex>

#include "front/cli/histogram.h"
#include "front/cli/plot.h"
#include "front/cli/progress.h"
#include "front/cli/text.h"

namespace {

using namespace qor::cli;

constexpr double kMost = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

TEST(Plot, TicksStandAtRoundNumbers) {
  struct Case {
    double low, high;
    int wanted;
    std::string labels;
  };
  const Case cases[] = {
      {0, 10, 5, "0, 2, 4, 6, 8, 10"},
      {-0.31, 0.29, 6, "-0.3, -0.2, -0.1, 0.0, 0.1, 0.2"},
      {1958.4, 1998.5, 8, "1960, 1965, 1970, 1975, 1980, 1985, 1990, 1995"},
      {0.0012, 0.0019, 4, "0.0012, 0.0014, 0.0016, 0.0018"},
      {-3e9, 2e9, 5, "-3e+09, -2e+09, -1e+09, 0, 1e+09, 2e+09"},
      {1e-9, 5e-9, 4, "1e-09, 2e-09, 3e-09, 4e-09, 5e-09"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(joined(round_ticks(c.low, c.high, c.wanted).labels), c.labels);
  }
}

TEST(Plot, TicksOfAnyIntervalAreFewAndInside) {
  const std::pair<double, double> intervals[] = {
      {-kMost, kMost}, {1, std::nextafter(1, 2)}, {0, 1e-300}, {1e300, 1.001e300}, {-1e-5, 1e8}};
  for (const auto& [low, high] : intervals) {
    const Ticks ticks = round_ticks(low, high, 6);
    EXPECT_TRUE(ticks.values.size() >= 1 && ticks.values.size() <= 20) << low << " " << high;
    for (const double value : ticks.values) EXPECT_TRUE(value >= low && value <= high) << value;
  }
}

std::string crowded() {
  Plot plot{"A title with <angles> & \"quotes\"", "x", {{"Values", {}}, {"Derivative", {}}}};
  for (size_t i = 0; i < 9; ++i) {
    const std::string name = "series number " + std::to_string(i) + ", quite long";
    const double y = static_cast<double>(i);
    for (const auto mark : {Series::Mark::line, Series::Mark::points}) {
      plot.panels[0].series.push_back({name, mark, {0, 1, 2}, {y, y + 1, y}, i});
    }
    plot.panels[1].series.push_back({name, Series::Mark::line, {0, 1, 2}, {1e5, -1e5, y}, i});
  }
  return svg(plot);
}

// The same values as a line and as points.
std::string page_of(const std::vector<double>& y) {
  std::vector<double> x;
  for (size_t i = 0; i < y.size(); ++i) x.push_back(static_cast<double>(i));
  const Series line{"l", Series::Mark::line, x, y, 0}, points{"d", Series::Mark::points, x, y, 1};
  return svg({"t", "x", {{"p", {line, points}}}});
}

struct Box {
  double left, right, top, bottom;
};

// Where the texts stand. Letters of 12 pixels are narrower than this on average.
std::vector<Box> texts_of(const std::string& page) {
  const std::regex form("<text x=\"([-0-9.]+)\" y=\"([-0-9.]+)\" ([^>]*)>([^<]*)</text>");
  std::vector<Box> boxes;
  for (std::sregex_iterator i(page.begin(), page.end(), form), end; i != end; ++i) {
    const std::string attributes = (*i)[3];
    const double x = std::stod((*i)[1]), y = std::stod((*i)[2]);
    const double width = 6.6 * static_cast<double>((*i)[4].length());
    const bool ends = attributes.find("\"end\"") != std::string::npos;
    const bool middle = attributes.find("\"middle\"") != std::string::npos;
    const double left = ends ? x - width : middle ? x - width / 2 : x;
    boxes.push_back({left, left + width, y - 10, y + 3});
  }
  return boxes;
}

TEST(Plot, NoTextLiesOverAnotherOrOutside) {
  const std::vector<Box> boxes = texts_of(crowded());
  ASSERT_GT(boxes.size(), 30u);
  for (size_t i = 0; i < boxes.size(); ++i) {
    const Box& a = boxes[i];
    EXPECT_TRUE(a.left >= 0 && a.right <= 960) << "text " << i;
    for (size_t j = 0; j < i; ++j) {
      const Box& b = boxes[j];
      EXPECT_TRUE(a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top)
          << "text " << i << " over " << j;
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
  EXPECT_TRUE(well_formed(crowded()));
  EXPECT_NE(crowded().find("A title with &lt;angles&gt; &amp; "), std::string::npos);
  const std::vector<double> values[] = {
      {}, {1}, {kNan, kNan}, {kInfinity, -kInfinity, 3}, {-kMost, kMost}, {0, 0, 0}, {5e-324, 0}};
  for (const std::vector<double>& y : values) {
    const std::string page = page_of(y);
    EXPECT_TRUE(well_formed(page));
    EXPECT_EQ(page.find("nan"), std::string::npos);
    EXPECT_EQ(page.find("inf"), std::string::npos);
  }
}

TEST(Plot, AGapBreaksTheLine) {
  const std::string page = page_of({1, 2, kNan, 2, 1});
  const std::regex broken("<path d=\"M[-0-9. ]+L[-0-9. ]+M[-0-9. ]+L[-0-9. ]+\"");
  EXPECT_TRUE(std::regex_search(page, broken)) << page;
}

// ---- Histograms -----------------------------------------------------------------------------

TEST(Histograms, BinsAreRoundAndWhatComesLaterIsCounted) {
  Histogram histogram({Element::real64, 1});
  const double first[] = {-0.5, 1, 5.5, 9.9}, later[] = {5.4, -2, 10, 11, 5.3};
  histogram.add(first, std::size(first));
  histogram.add(later, std::size(later));
  EXPECT_EQ(histogram.text(),
            "9 values from -2 to 11, mean 5.06667, standard deviation 4.75289\n\n"
            "  bin      values    share\n"
            "  below         1  11.11 %  #################\n"
            "  -1 to 0       1  11.11 %  #################\n"
            "  0 to 1        0   0.00 %\n"
            "  1 to 2        1  11.11 %  #################\n"
            "  2 to 3        0   0.00 %\n"
            "  3 to 4        0   0.00 %\n"
            "  4 to 5        0   0.00 %\n"
            "  5 to 6        3  33.33 %  ##################################################\n"
            "  6 to 7        0   0.00 %\n"
            "  7 to 8        0   0.00 %\n"
            "  8 to 9        0   0.00 %\n"
            "  9 to 10       1  11.11 %  #################\n"
            "  above         2  22.22 %  #################################\n");
}

TEST(Progress, TellsWhatIsLeft) {
  EXPECT_EQ(progress_line(250, 1000, 3), " 25 %  250 of 1000 values, 9 s left");
}

}  // namespace
