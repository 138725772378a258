// Random streams against their peers, in the same run.
//
//   bench_streams [--write docs/performance.md] [--levels build/release/levels] [--benchmark_...]
//
// Runs itself on each level's library and prints a line per generator and output: times of peers
// divided by ours, the least of several repetitions each, in turns.

#include "qor/streams.h"

#include <cstdlib>
#include <memory>
#include <random>

#include "bench/least_times.h"
#include "bench/run_levels.h"
#include "tools/section.h"

#if __has_include(<gsl/gsl_rng.h>)
#include <gsl/gsl_rng.h>
#define QOR_HAS_GSL 1
#endif
#if __has_include(<boost/random/mersenne_twister.hpp>)
#include <boost/random/mersenne_twister.hpp>
#define QOR_HAS_BOOST 1
#endif

namespace {

using qor::bench::add;
using qor::bench::LeastTimes;
using qor::bench::number;

constexpr const char* kHead =
    R"(Written by `bench_streams --write docs/performance.md`. Ratios of times per value, peer to ours, in
one run: above 1 this library is faster. Arrays of 10^6 values, filled by one call of ours and by a
loop over the peer's; the least of several repetitions, taken in turns. A word of WH is four numbers.

- scalar: our own generator in calls of eight values, which stay below every block form.
- store: a plain store of as many bytes, divided into our time: how many times as long a fill takes.

A dash: no such peer here. Levels: v1, v3, v4 stand for x86-64-v1 and so on.

| generator | output | level | GSL cmrg | GSL mt19937 | std mt19937 | Boost mt19937 | scalar | store |
|---|---|---|---|---|---|---|---|---|
)";
constexpr const char* kServices = R"(
Nanoseconds that a stream costs to make and delete, and to move on by 2^62 outputs:

| generator | level | create and delete | skip-ahead |
|---|---|---|---|
)";

constexpr int32_t kCount = 1'000'000;
constexpr int32_t kScalarCall = 8;

struct Named {
  const char* name;
  int32_t brng;
};
constexpr Named kGenerators[] = {{"MCG31M1", QOR_BRNG_MCG31M1},
                                 {"R250", QOR_BRNG_R250},
                                 {"MRG32K3A", QOR_BRNG_MRG32K3A},
                                 {"MCG59", QOR_BRNG_MCG59},
                                 {"WH", QOR_BRNG_WH}};
constexpr const char* kOutputs[] = {"word", "double"};
constexpr const char* kPeers[] = {"GSL cmrg", "GSL mt19937", "std mt19937", "Boost mt19937"};

StreamState* new_stream(int32_t brng) {
  const uint32_t seed = 7777777;
  StreamState* stream = nullptr;
  if (__ostNewStreamEx(&stream, brng, 1, &seed) != 0) std::abort();
  return stream;
}

// The array that all fill; a word has up to 16 bytes.
void* array() {
  static std::vector<uint32_t> numbers(4 * size_t{kCount}, 1);
  return numbers.data();
}

// fill(n, r) draws n values to r; `step` of them a call.
template <class Value, class Fill>
void add_fill(const std::string& name, int32_t step, Fill fill) {
  add(name, [=] {
    auto* r = static_cast<Value*>(array());
    for (int32_t i = 0; i < kCount; i += step) fill(std::min(step, kCount - i), r + i);
  });
}

struct Word128 {
  uint32_t x[4];
};

void add_ours(const Named& g) {
  BrngProperties row;
  if (__ostGetBrngProperties(g.brng, &row) != 0) std::abort();
  StreamState* const stream = new_stream(g.brng);  // lives as long as the program
  for (const int32_t step : {kCount, kScalarCall}) {
    const std::string form = step == kCount ? "" : "/scalar";
    const std::string word = std::string(g.name) + "/word" + form;
    const auto fill = [=](int32_t n, void* r) { row.iBRng(stream, n, r); };
    add_fill<double>(std::string(g.name) + "/double" + form, step,
                     [=](int32_t n, double* r) { row.dBRng(stream, n, r, 0, 1); });
    if (row.wordBytes == 4) add_fill<uint32_t>(word, step, fill);
    if (row.wordBytes == 8) add_fill<uint64_t>(word, step, fill);
    if (row.wordBytes == 16) add_fill<Word128>(word, step, fill);
  }
  add(std::string(g.name) + "/create", [=] {
    StreamState* made = new_stream(g.brng);
    benchmark::DoNotOptimize(made);
    __ostDeleteStream(&made);
  });
  if (__ostSkipAheadStream(stream, 0) == 0) {
    add(std::string(g.name) + "/skip", [=] { __ostSkipAheadStream(stream, uint64_t{1} << 62); });
  }
}

// next(): a word; real(): a double between 0 and 1.
template <class Next, class Real>
void add_peer(const std::string& name, Next next, Real real) {
  add_fill<uint32_t>(name + "/word", kCount, [=](int32_t n, uint32_t* r) {
    for (int32_t i = 0; i < n; ++i) r[i] = static_cast<uint32_t>(next());
  });
  add_fill<double>(name + "/double", kCount, [=](int32_t n, double* r) {
    for (int32_t i = 0; i < n; ++i) r[i] = real();
  });
}

template <class Engine>
void add_engine(const std::string& name) {
  const auto engine = std::make_shared<Engine>(7777777);
  Engine* const e = engine.get();
  add_peer(
      name, [engine, e] { return (*e)(); },
      [engine, e] { return static_cast<double>((*e)()) * 0x1p-32; });
}

#ifdef QOR_HAS_GSL
void add_gsl(const std::string& name, const gsl_rng_type* type) {
  gsl_rng* const rng = gsl_rng_alloc(type);  // lives as long as the program
  add_peer(
      name, [rng] { return gsl_rng_get(rng); }, [rng] { return gsl_rng_uniform(rng); });
}
#endif

void add_all() {
  for (const Named& g : kGenerators) add_ours(g);
  for (const size_t bytes : {4, 8, 16}) {
    add("store/" + std::to_string(bytes), [=] {
      auto* r = static_cast<double*>(array());
      for (size_t i = 0; i < kCount * bytes / sizeof(double); ++i) r[i] = 0.5;
    });
  }
  add_engine<std::mt19937>("std mt19937");
#ifdef QOR_HAS_BOOST
  add_engine<boost::random::mt19937>("Boost mt19937");
#endif
#ifdef QOR_HAS_GSL
  add_gsl("GSL mt19937", gsl_rng_mt19937);
  add_gsl("GSL cmrg", gsl_rng_cmrg);
#endif
}

// ---- Lines --------------------------------------------------------------------------------------

std::string cell(const std::string& text) { return " " + text + " |"; }

size_t bytes_of(const Named& g, const std::string& output) {
  BrngProperties row;
  if (output == "double" || __ostGetBrngProperties(g.brng, &row) != 0) return sizeof(double);
  return static_cast<size_t>(row.wordBytes);
}

void print_lines(const std::string& level, const LeastTimes& times) {
  for (const Named& g : kGenerators) {
    for (const std::string output : kOutputs) {
      const std::string name = std::string(g.name) + "/" + output;
      const double ours = times.of(name);
      std::string line = "|" + cell(g.name) + cell(output) + cell(level);
      for (const std::string peer : kPeers)
        line += cell(number(times.of(peer + "/" + output) / ours, "%.1f"));
      line += cell(number(times.of(name + "/scalar") / ours, "%.1f"));
      line += cell(number(ours / times.of("store/" + std::to_string(bytes_of(g, output))), "%.1f"));
      std::printf("%s\n", line.c_str());
    }
    const std::string name = g.name;
    std::printf("services |%s\n",
                (cell(name) + cell(level) + cell(number(times.of(name + "/create"), "%.0f")) +
                 cell(number(times.of(name + "/skip"), "%.0f")))
                    .c_str());
  }
}

void run_level(const qor::bench::Options& options) {
  add_all();
  LeastTimes times;
  qor::bench::run_registered(options.passed_on, times);
  print_lines(options.level, times);
}

}  // namespace

int main(int count, char** words) {
  const qor::bench::Options options = qor::bench::parse(count, words);
  if (!options.level.empty()) {
    run_level(options);
    return 0;
  }
  const std::string mark = "services ";
  std::string outputs = kHead, services = kServices;
  qor::bench::run_on_levels(options, [&](const std::string&, const auto& lines) {
    for (const std::string& line : lines) {
      const bool service = line.starts_with(mark);
      (service ? services : outputs) += (service ? line.substr(mark.size()) : line) + "\n";
    }
  });
  std::printf("%s%s", outputs.c_str(), services.c_str());
  if (!options.page.empty()) {
    qor::tools::write_section(options.page, "Random streams", outputs + services);
  }
  return 0;
}
