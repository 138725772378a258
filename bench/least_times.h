// The least time of each benchmark of a run: machines and their load differ, the least differs
// least.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace qor::bench {

// Keeps the least time of each benchmark, in nanoseconds an iteration.
class LeastTimes : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const std::string name = run.run_name.function_name;
      const double time = run.GetAdjustedRealTime();
      const auto [entry, fresh] = least_.emplace(name, time);
      if (!fresh) entry->second = std::min(entry->second, time);
    }
  }
  // 0 when there is no such benchmark.
  double of(const std::string& name) const {
    const auto found = least_.find(name);
    return found == least_.end() ? 0.0 : found->second;
  }

 private:
  std::map<std::string, double> least_;
};

// As a page has it; a dash where there is no such time.
inline std::string number(double x, const char* format) {
  if (!(x > 0) || x > 1e300) return "–";
  char text[32];
  std::snprintf(text, sizeof text, format, x);
  return text;
}

}  // namespace qor::bench
