#include "front/cli/histogram.h"

#include <algorithm>
#include <cmath>

#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr double kMostBins = 20;
constexpr double kBarWidth = 50;

// The least of 1, 2, 5, 10, 20, ... times a power of ten that is at least x.
double round_step(double x) {
  const double power = std::pow(10.0, std::floor(std::log10(x)));
  for (const double digit : {1.0, 2.0, 5.0}) {
    if (digit * power >= x) return digit * power;
  }
  return 10 * power;
}

// The lines of a text with one of `more` behind each.
std::string beside(const std::string& text, const std::vector<std::string>& more) {
  const std::vector<std::string> lines = split(text, '\n');
  std::string result;
  for (size_t i = 0; i < more.size(); ++i) {
    result += lines[i] + (more[i].empty() ? "" : "  " + more[i]) + '\n';
  }
  return result;
}

}  // namespace

void Histogram::settle(const void* values, size_t count) {
  double low = number_at(layout_, values, 0), high = low;
  for (size_t i = 1; i < count; ++i) {
    low = std::min(low, number_at(layout_, values, i));
    high = std::max(high, number_at(layout_, values, i));
  }
  least_ = low;
  greatest_ = high;
  whole_ = layout_.element != Element::real64 && layout_.element != Element::real32;
  const double width = high > low ? high - low : std::max(std::fabs(low), 1.0);
  step_ = round_step(width / kMostBins);
  if (whole_) step_ = std::max(step_, 1.0);
  first_ = std::floor(low / step_);
  bins_.resize(static_cast<size_t>(std::floor(high / step_) - first_) + 1);
}

void Histogram::take(double value) {
  ++count_;
  const double distance = value - mean_;
  mean_ += distance / static_cast<double>(count_);
  squares_ += distance * (value - mean_);
  least_ = std::min(least_, value);
  greatest_ = std::max(greatest_, value);
  const double bin = std::floor(value / step_) - first_;
  if (bin < 0) {
    ++below_;
  } else if (bin >= static_cast<double>(bins_.size())) {
    ++above_;
  } else {
    ++bins_[static_cast<size_t>(bin)];
  }
}

void Histogram::add(const void* values, size_t rows) {
  const size_t count = rows * layout_.columns;
  if (count == 0) return;
  if (step_ == 0) settle(values, count);
  for (size_t i = 0; i < count; ++i) take(number_at(layout_, values, i));
}

std::string Histogram::label(size_t bin) const {
  const double low = (first_ + static_cast<double>(bin)) * step_;
  if (whole_ && step_ == 1) return format("%.0f", low);
  return format("%.10g to %.10g", low, low + step_ - (whole_ ? 1 : 0));
}

std::string Histogram::text() const {
  if (count_ == 0) return "no values\n";
  const auto n = static_cast<double>(count_);
  const double deviation = count_ > 1 ? std::sqrt(squares_ / (n - 1)) : 0;
  std::string text = format("%.0f values from %.6g to %.6g, mean %.6g, standard deviation %.6g\n\n",
                            n, least_, greatest_, mean_, deviation);
  const auto most =
      static_cast<double>(std::max({*std::ranges::max_element(bins_), below_, above_}));
  std::vector<std::vector<std::string>> lines;
  TextTable table({"bin", "values", "share"});
  std::vector<std::string> bars = {""};
  const auto line = [&](const std::string& name, uint64_t count) {
    const auto c = static_cast<double>(count);
    table.add({name, format("%.0f", c), format("%.2f %%", 100 * c / n)});
    bars.emplace_back(static_cast<size_t>(std::lround(kBarWidth * c / most)), '#');
  };
  if (below_ != 0) line("below", below_);
  for (size_t bin = 0; bin < bins_.size(); ++bin) line(label(bin), bins_[bin]);
  if (above_ != 0) line("above", above_);
  return text + beside(table.text(), bars);
}

}  // namespace qor::cli
