// What the benchmarks share: their command line, a run on each level's library, repetitions that
// take turns.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "tools/levels.h"

namespace qor::bench {

struct Options {
  std::string page, levels = QOR_BUILD_LEVELS, level;  // --write, --levels; of a level's run
  std::vector<std::string> passed_on;                  // to the runs on the levels
};

// `more` are options of the benchmark's own, each with a value.
inline Options parse(int count, char** words,
                     const std::map<std::string, std::string*>& more = {}) {
  Options options;
  std::map<std::string, std::string*> values = more;
  values.insert(
      {{"--write", &options.page}, {"--levels", &options.levels}, {"--level", &options.level}});
  for (int i = 1; i < count; ++i) {
    const auto value = values.find(words[i]);
    if (value != values.end() && i + 1 < count) {
      *value->second = words[++i];
    } else {
      options.passed_on.emplace_back(words[i]);
    }
  }
  return options;
}

// Runs this program on the library of each level; use(level, lines) takes what it printed.
template <class Use>
void run_on_levels(const Options& options, Use use) {
  for (const std::string& level : tools::runnable_levels(options.levels)) {
    std::vector<std::string> arguments = options.passed_on;
    arguments.insert(arguments.end(), {"--level", level});
    use(level, tools::run_on_level(options.levels, level, arguments));
  }
}

inline constexpr int repetitions = 40;
inline constexpr double seconds = 0.0005;  // of a repetition: short, so that some are undisturbed

// Registers what repeats run(call), `call` being what `prepare` makes. Repetitions of different
// benchmarks take turns, so each prepares anew, and begins with a run that is not counted.
template <class Prepare, class Run>
void add(const std::string& name, Prepare prepare, Run run) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [prepare, run](benchmark::State& state) {
                                 const auto call = prepare();
                                 run(call);
                                 for (auto _ : state) {
                                   run(call);
                                   benchmark::ClobberMemory();
                                 }
                               })
      ->MinTime(seconds)
      ->Repetitions(repetitions);
}
template <class Run>
void add(const std::string& name, Run run) {
  add(
      name, [] { return 0; }, [run](int) { run(); });
}

// Runs what is registered, repetitions in turns. `words` are further options of the benchmarks'
// library.
inline void run_registered(const std::vector<std::string>& words,
                           benchmark::BenchmarkReporter& reporter) {
  std::vector<std::string> all{"bench", "--benchmark_enable_random_interleaving=true"};
  all.insert(all.end(), words.begin(), words.end());
  std::vector<char*> arguments;
  for (std::string& word : all) arguments.push_back(word.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  benchmark::RunSpecifiedBenchmarks(&reporter);
}

}  // namespace qor::bench
