// Data fitting side by side with GSL and Boost.Math, and with SciPy where Python has it:
// construction, evaluation, integration, and how the cost of a site grows with the cells.
//
//   bench_fitting [--write docs/performance.md] [--levels build/release/levels] [--python python3]
//                 [--benchmark_filter=...]
//
// Runs itself on each level's library. The least time of several repetitions counts, taken in
// turns.

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "bench/fitting/cases.h"
#include "bench/run_levels.h"
#include "tools/section.h"

namespace {

// Nanoseconds per point or site, by case and library.
using Times = std::map<std::string, std::map<std::string, double>>;

constexpr const char* kHead =
    R"(Measured by `bench_fitting --write docs/performance.md`. The third column is this library's time in
nanoseconds per point, site or integral; the others are times of peers divided by it, in one run:
above 1 this library is faster. GSL searches with its accelerator, Boost.Math's spline is the uniform
cubic B-spline, SciPy's is `CubicSpline`. Values go to and from arrays in memory; 1e6 sites do not
fit the second-level cache.

)";

constexpr const char* kGrowthHead = R"(
Growth with the number of cells: nanoseconds per site, 1e5 random sites. A uniform partition costs
one division a site, bisection a step for each doubling; beyond 1e5 cells both pay for memory that
no cache holds.

)";

constexpr const char* kGrowth = "growth, ";

class LeastTimes : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      std::istringstream name(run.benchmark_name());
      std::string what, library;
      std::getline(name, what, '/');
      std::getline(name, library, '/');
      const double time = 1e9 / run.counters.at("items_per_second").value;
      const auto [place, fresh] = times[what].try_emplace(library, time);
      if (!fresh) place->second = std::min(place->second, time);
    }
  }
  Times times;
};

// Lines of "case|library|nanoseconds".
void add_lines(const std::vector<std::string>& lines, Times& times) {
  for (const std::string& line : lines) {
    std::istringstream text(line);
    std::string what, library, time;
    std::getline(text, what, '|');
    std::getline(text, library, '|');
    if (std::getline(text, time)) times[what][library] = std::stod(time);
  }
}

void run_level(const std::vector<std::string>& passed_on) {
  std::vector<std::string> words{"--benchmark_repetitions=5", "--benchmark_min_time=0.02"};
  words.insert(words.end(), passed_on.begin(), passed_on.end());
  qor::bench::register_cases();
  LeastTimes least;
  qor::bench::run_registered(words, least);
  for (const auto& [what, libraries] : least.times) {
    for (const auto& [library, time] : libraries) {
      std::printf("%s|%s|%.4g\n", what.c_str(), library.c_str(), time);
    }
  }
}

// SciPy's times; none when Python does not have it.
std::vector<std::string> scipy_lines(const std::string& python) {
  const std::string command = python + " " + QOR_SOURCE "/bench/fitting_scipy.py";
  std::FILE* pipe = popen(command.c_str(), "r");
  std::vector<std::string> lines;
  if (pipe == nullptr) return lines;
  char line[256];
  while (std::fgets(line, sizeof line, pipe) != nullptr) lines.emplace_back(line);
  pclose(pipe);
  return lines;
}

std::string number(const char* form, double value) {
  char text[32];
  std::snprintf(text, sizeof text, form, value);
  return text;
}

std::string ratio(const std::map<std::string, double>& times, const char* library) {
  const auto found = times.find(library);
  return found == times.end() ? "-" : number("%.2f", found->second / times.at("qor"));
}

std::string comparison(const std::map<std::string, Times>& levels) {
  std::string text = "| case | level | ns | GSL | Boost | SciPy |\n|---|---|---|---|---|---|\n";
  for (const auto& [what, unused] : levels.begin()->second) {
    if (what.starts_with(kGrowth)) continue;
    for (const auto& [level, times] : levels) {
      const auto found = times.find(what);
      if (found == times.end() || !found->second.contains("qor")) continue;
      text += "| " + what + " | " + level + " | " + number("%.3g", found->second.at("qor"));
      for (const char* peer : {"gsl", "boost", "scipy"}) text += " | " + ratio(found->second, peer);
      text += " |\n";
    }
  }
  return text;
}

std::string growth(const std::map<std::string, Times>& levels) {
  std::string text =
      "| search | level | 1e2 cells | 1e3 | 1e4 | 1e5 | 1e6 | 1e7 "
      "|\n|---|---|---|---|---|---|---|---|\n";
  for (const std::string method : {"bisection", "uniform partition"}) {
    for (const auto& [level, times] : levels) {
      text += "| " + method + " | " + level;
      for (int power = 2; power <= 7; ++power) {
        const auto found = times.find(kGrowth + method + ", 1e" + std::to_string(power) + " cells");
        text += " | " + (found == times.end() ? "-" : number("%.3g", found->second.at("qor")));
      }
      text += " |\n";
    }
  }
  return text;
}

}  // namespace

int main(int count, char** words) {
  std::string python = "python3";
  const qor::bench::Options options = qor::bench::parse(count, words, {{"--python", &python}});
  if (!options.level.empty()) {
    run_level(options.passed_on);
    return 0;
  }
  std::map<std::string, Times> levels;
  const std::vector<std::string> scipy = scipy_lines(python);
  qor::bench::run_on_levels(options, [&](const std::string& level, const auto& lines) {
    add_lines(lines, levels[level]);
    add_lines(scipy, levels[level]);
  });
  if (levels.empty()) return 0;
  const std::string text = kHead + comparison(levels) + kGrowthHead + growth(levels);
  std::fputs(text.c_str(), stdout);
  if (!options.page.empty()) qor::tools::write_section(options.page, "Fitting", text);
  return 0;
}
