// Pack and unpack by increment against the compiler's plain strided loop, in the same run.
//
//   bench_pack [--write docs/performance.md] [--levels build/release/levels] [--benchmark_...]
//
// Runs itself on each level's library and prints a line per function and increment.

#include <cstring>

#include "bench/least_times.h"
#include "qor/vector_math.h"
#include "tools/levels.h"
#include "tools/section.h"

namespace {

using qor::bench::LeastTimes;
using qor::bench::number;

constexpr const char* kHead =
    R"(Written by `bench_pack --write docs/performance.md`. Times of a plain loop, `y[i] = a[i * inca]` or
`y[i * incy] = a[i]`, divided by ours: above 1 this library is faster. 1024 elements in cache; the
least of several repetitions, taken in turns.

| function | level | increment 2 | 3 | 7 | -1 |
|---|---|---|---|---|---|
)";

constexpr int64_t kCount = 1024;
constexpr int64_t kIncrements[] = {2, 3, 7, -1};
constexpr int32_t k64Bits = 0;  // the flag of 64-bit counts and increments
constexpr int kRepetitions = 60;
constexpr double kSeconds = 0.0003;

template <class T>
using Pack = void (*)(int64_t n, const T* a, int64_t inca, T* y, int32_t flag);
template <class T>
using Unpack = void (*)(int64_t n, const T* a, T* y, int64_t incy, int32_t flag);

template <class T>
[[gnu::noinline]] void plain_pack(int64_t n, const T* a, int64_t inca, T* __restrict__ y) {
  for (int64_t i = 0; i < n; ++i) y[i] = a[i * inca];
}
template <class T>
[[gnu::noinline]] void plain_unpack(int64_t n, const T* a, T* __restrict__ y, int64_t incy) {
  for (int64_t i = 0; i < n; ++i) y[i * incy] = a[i];
}

template <class Run>
void add(const std::string& name, Run run) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [run](benchmark::State& state) {
                                 for (auto _ : state) {
                                   run();
                                   benchmark::ClobberMemory();
                                 }
                               })
      ->MinTime(kSeconds)
      ->Repetitions(kRepetitions);
}

std::string name_of(const std::string& function, int64_t increment, const char* who) {
  return function + "/" + std::to_string(increment) + "/" + who;
}

// The vectors of a type: a dense one, and one that holds 1024 elements at any of the increments.
template <class T>
T* dense() {
  static std::vector<T> elements(kCount);
  return elements.data();
}
template <class T>
T* spread(int64_t increment) {
  static std::vector<T> elements(kCount * 7);
  return elements.data() + (increment < 0 ? kCount - 1 : 0);
}

template <class T>
void add_type(const std::string& letter, Pack<T> pack, Unpack<T> unpack) {
  for (const int64_t inc : kIncrements) {
    T* const y = dense<T>();
    T* const a = spread<T>(inc);
    add(name_of(letter + "PackI", inc, "ours"), [=] { pack(kCount, a, inc, y, k64Bits); });
    add(name_of(letter + "PackI", inc, "plain"), [=] { plain_pack(kCount, a, inc, y); });
    add(name_of(letter + "UnpackI", inc, "ours"), [=] { unpack(kCount, y, a, inc, k64Bits); });
    add(name_of(letter + "UnpackI", inc, "plain"), [=] { plain_unpack(kCount, y, a, inc); });
  }
}

void run_level(int count, char** words, const std::string& level) {
  benchmark::Initialize(&count, words);
  add_type("s", qor_ark_kernel_sPackI_ttab[1], qor_ark_kernel_sUnpackI_ttab[1]);
  add_type("d", qor_ark_kernel_dPackI_ttab[1], qor_ark_kernel_dUnpackI_ttab[1]);
  add_type("c", qor_ark_kernel_cPackI_ttab[1], qor_ark_kernel_cUnpackI_ttab[1]);
  add_type("z", qor_ark_kernel_zPackI_ttab[1], qor_ark_kernel_zUnpackI_ttab[1]);
  LeastTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  for (const char* letter : {"s", "d", "c", "z"}) {
    for (const char* base : {"PackI", "UnpackI"}) {
      const std::string function = std::string(letter) + base;
      std::printf("| %s | %s |", function.c_str(), level.c_str());
      for (const int64_t inc : kIncrements) {
        const double ratio =
            times.of(name_of(function, inc, "plain")) / times.of(name_of(function, inc, "ours"));
        std::printf(" %s |", number(ratio, "%.2f").c_str());
      }
      std::printf("\n");
    }
  }
}

}  // namespace

int main(int count, char** words) {
  std::string page, levels = QOR_BUILD_LEVELS;
  std::vector<char*> passed_on{words[0]};
  for (int i = 1; i < count; ++i) {
    if (i + 1 < count && std::strcmp(words[i], "--write") == 0) {
      page = words[++i];
    } else if (i + 1 < count && std::strcmp(words[i], "--levels") == 0) {
      levels = words[++i];
    } else if (i + 1 < count && std::strcmp(words[i], "--level") == 0) {
      run_level(static_cast<int>(passed_on.size()), passed_on.data(), words[i + 1]);
      return 0;
    } else {
      passed_on.push_back(words[i]);
    }
  }
  std::string text = kHead;
  for (const std::string& level : qor::tools::runnable_levels(levels)) {
    std::vector<std::string> arguments(passed_on.begin() + 1, passed_on.end());
    arguments.insert(arguments.end(),
                     {"--benchmark_enable_random_interleaving=true", "--level", level});
    for (const std::string& line : qor::tools::run_on_level(levels, level, arguments)) {
      std::printf("%s\n", line.c_str());
      text.append(line).append("\n");
    }
  }
  if (!page.empty()) qor::tools::write_section(page, "Pack and unpack", text);
  return 0;
}
