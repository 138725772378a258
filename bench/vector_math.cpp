// Every kernel of the row list against every peer found, in the same run.
//
//   bench_vector_math [--write docs/performance.md] [--only sExp,dLn] [--levels
//   build/release/levels]
//                     [--benchmark_...]
//
// Runs itself on each level's library and prints a line per function and kernel: times of peers
// divided by ours, the least of several repetitions each, in turns.

#include "qor/vector_math.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

#include "bench/least_times.h"
#include "bench/vector_math/peers.h"
#include "tests/support/evaluate.h"
#include "tools/levels.h"
#include "tools/page.h"

namespace {

using qor::bench::add;
using qor::bench::LeastTimes;
using qor::bench::number;
using qor::test::Call;
using qor::test::Row;
using qor::tools::PageLine;

constexpr const char* kHead =
    R"(Measured by `bench_vector_math --write docs/performance.md`. Ratios of times, peer to ours, in one
run: above 1 this library is faster. Vectors of 1024 ordinary elements (between -20 and 20, with
finite results) in cache, contiguous; the least of several repetitions, taken in turns.

- libm: the C library's scalar function in a loop. libmvec: its 4-ulp vector function of the level.
- SLEEF: its 1-ulp vector function of the level (half an ulp, or exact, where that is all there is).
- compiler: a plain loop of the operator or function, vectorised for the level.
- copy: a plain copy of the same bytes, vectors of 2^20 elements, for functions with a plain loop.
- one element: nanoseconds of a call with n = 1, environment steps included.

A dash: no such peer here. Levels: v1, v3, v4 stand for x86-64-v1 and so on.

)";
const PageLine kTitles = {"function", "kernel",   "level", "libm",       "libmvec",
                          "SLEEF",    "compiler", "copy",  "one element"};

constexpr size_t kCount = 1024;
constexpr size_t kLong = size_t{1} << 20;

// Vectors that a benchmark works on; they live as long as the program.
template <class T>
struct Vectors {
  qor::test::Batch<T> batch;
  qor::test::Results<T> results;
  Call<T> call;

  Vectors(const Row<T>& row, size_t count) : batch(qor::test::Arguments<T>(row).ordinary(kCount)) {
    for (auto& numbers : batch.in) {
      const size_t size = numbers.size() / kCount * count;
      for (size_t i = numbers.size(); i < size; ++i) numbers.push_back(numbers[i - kCount]);
    }
    call = qor::test::call_on(row, batch);
    for (size_t k = 0; k < results.size(); ++k) {
      results[k].resize(count * static_cast<size_t>(row.shape.output_parts));
      call.out[k] = results[k].data();
    }
  }
};

// Names of benchmarks: the function, the slot, and who runs.
template <class T>
std::string stem_of(const Row<T>& row, int slot) {
  return row.name().append("/").append(std::to_string(slot)).append("/");
}

// Vectors too long for the caches, against a copy that moves as many bytes.
template <class T>
void add_long(const Row<T>& row, int slot) {
  auto vectors = std::make_shared<Vectors<T>>(row, kLong);
  const std::string stem = stem_of(row, slot);
  add(stem + "long", [&row, slot, vectors] { row.run(slot, vectors->call); });
  add(stem + "copy", [&row, vectors] {
    const size_t moved = kLong * static_cast<size_t>(row.shape.inputs + row.shape.outputs) / 2;
    static std::vector<T> from(2 * kLong), to(2 * kLong);
    std::memcpy(to.data(), from.data(), moved * sizeof(T));
  });
}

template <class T>
void add_row(const Row<T>& row, const std::string& level) {
  auto vectors = std::make_shared<Vectors<T>>(row, kCount);
  const auto peers = qor::bench::peers_of(row, level);
  for (int slot : row.distinct_slots()) {
    const std::string stem = stem_of(row, slot);
    add(stem + "ours", [&row, slot, vectors] { row.run(slot, vectors->call); });
    Call<T> single = vectors->call;
    single.n = 1;
    add(stem + "one", [&row, slot, single, vectors] { row.run(slot, single); });
    bool plain = false;
    for (const auto& peer : peers) {
      add(stem + peer.library, [peer, vectors] { peer.run(vectors->call); });
      plain = plain || peer.library == "compiler";
    }
    if (plain) add_long(row, slot);
  }
}

template <class T>
void print_lines(const Row<T>& row, const std::string& level, const LeastTimes& times) {
  for (int slot : row.distinct_slots()) {
    const std::string stem = stem_of(row, slot);
    PageLine line{row.name(), row.sharing(slot), level};
    for (const char* library : qor::bench::peer_libraries) {
      line.push_back(number(times.of(stem + library) / times.of(stem + "ours"), "%.2f"));
    }
    const double in_memory = times.of(stem + "long");
    line.push_back(number(in_memory == 0 ? 0 : times.of(stem + "copy") / in_memory, "%.2f"));
    line.push_back(number(times.of(stem + "one"), "%.1f"));
    std::printf("%s\n", qor::tools::to_text(line).c_str());
  }
}

struct Options {
  std::vector<std::string> only, passed_on;
  std::string page, levels = QOR_BUILD_LEVELS, level;
};

Options parse(int count, char** words) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    const bool has_value = i + 1 < count;
    if (has_value && word == "--write") {
      options.page = words[++i];
    } else if (has_value && word == "--levels") {
      options.levels = words[++i];
    } else if (has_value && word == "--level") {
      options.level = words[++i];
    } else {
      options.passed_on.push_back(word);
      if (has_value && word == "--only") {
        std::istringstream names(options.passed_on.emplace_back(words[++i]));
        for (std::string name; std::getline(names, name, ',');) options.only.push_back(name);
      }
    }
  }
  return options;
}

void run_level(const Options& options) {
  std::vector<std::string> words{"bench_vector_math",
                                 "--benchmark_enable_random_interleaving=true"};
  for (const std::string& word : options.passed_on) {
    if (word.starts_with("--benchmark")) words.push_back(word);
  }
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  const auto for_all = [&](auto action) {
    for (const auto& any : qor::test::rows()) {
      std::visit(
          [&](const auto& row) {
            if (options.only.empty() || std::ranges::count(options.only, row.name()) != 0) {
              action(row);
            }
          },
          any);
    }
  };
  for_all([&](const auto& row) { add_row(row, options.level); });
  LeastTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  for_all([&](const auto& row) { print_lines(row, options.level, times); });
}

}  // namespace

int main(int count, char** words) {
  const Options options = parse(count, words);
  if (!options.level.empty()) {
    run_level(options);
    return 0;
  }
  std::vector<PageLine> lines;
  std::printf("%s\n", qor::tools::to_text(kTitles).c_str());
  for (const std::string& level : qor::tools::runnable_levels(options.levels)) {
    std::vector<std::string> arguments = options.passed_on;
    arguments.insert(arguments.end(), {"--level", level});
    for (const std::string& text : qor::tools::run_on_level(options.levels, level, arguments)) {
      std::printf("%s\n", text.c_str());
      lines.push_back(qor::tools::from_text(text));
    }
  }
  if (options.page.empty()) return 0;
  qor::tools::write_page(options.page, "Vector math", kHead, kTitles, lines,
                         [](const PageLine&, const PageLine&) { return true; });
  return 0;
}
