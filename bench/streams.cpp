// Random streams beside their peers, in one run: words and uniform doubles per second, what a
// stream costs to make, and skip-ahead. After the run, ratios to the peers are printed.
//
// Run with LD_LIBRARY_PATH=build/<preset>/levels/<level> to pin the level.

#include "qor/streams.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if __has_include(<gsl/gsl_rng.h>)
#include <gsl/gsl_rng.h>
#define QOR_HAS_GSL 1
#endif
#if __has_include(<boost/random/mersenne_twister.hpp>)
#include <boost/random/mersenne_twister.hpp>
#define QOR_HAS_BOOST 1
#endif

namespace {

constexpr int32_t kCount = 1'000'000;

struct Named {
  const char* name;
  int32_t brng;
};
constexpr Named kGenerators[] = {{"MCG31M1", QOR_BRNG_MCG31M1},
                                 {"R250", QOR_BRNG_R250},
                                 {"MRG32K3A", QOR_BRNG_MRG32K3A},
                                 {"MCG59", QOR_BRNG_MCG59},
                                 {"WH", QOR_BRNG_WH}};

StreamState* new_stream(int32_t brng) {
  const uint32_t seed = 7777777;
  StreamState* stream = nullptr;
  if (__ostNewStreamEx(&stream, brng, 1, &seed) != 0) std::abort();
  return stream;
}

// fill(n, r) draws n values; `step` of them a call.
template <class Value, class Fill>
void time_fill(benchmark::State& state, int32_t step, Fill fill) {
  std::vector<Value> r(kCount);
  for (auto _ : state) {
    for (int32_t i = 0; i < kCount; i += step) fill(std::min(step, kCount - i), r.data() + i);
    benchmark::DoNotOptimize(r.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}

struct Word128 {
  uint32_t x[4];
};

void register_ours() {
  for (const Named& g : kGenerators) {
    BrngProperties row;
    if (__ostGetBrngProperties(g.brng, &row) != 0) continue;
    // A call of 8 outputs stays below every block form.
    for (int32_t step : {kCount, 8}) {
      const std::string form = step == kCount ? "" : "/scalar";
      const std::string name = std::string("ours/") + g.name;
      benchmark::RegisterBenchmark((name + "/double" + form).c_str(), [=](benchmark::State& s) {
        StreamState* stream = new_stream(g.brng);
        time_fill<double>(s, step, [&](int32_t n, double* r) { row.dBRng(stream, n, r, 0, 1); });
        __ostDeleteStream(&stream);
      });
      benchmark::RegisterBenchmark((name + "/word" + form).c_str(), [=](benchmark::State& s) {
        StreamState* stream = new_stream(g.brng);
        const auto fill = [&](int32_t n, void* r) { row.iBRng(stream, n, r); };
        if (row.wordBytes == 4) time_fill<uint32_t>(s, step, fill);
        if (row.wordBytes == 8) time_fill<uint64_t>(s, step, fill);
        if (row.wordBytes == 16) time_fill<Word128>(s, step, fill);
        __ostDeleteStream(&stream);
      });
    }
  }
}

void register_store() {
  benchmark::RegisterBenchmark("store/double", [](benchmark::State& s) {
    time_fill<double>(s, kCount, [](int32_t n, double* r) {
      for (int32_t i = 0; i < n; ++i) r[i] = 0.5;
    });
  });
}

template <class Engine>
void register_engine(const std::string& name) {
  benchmark::RegisterBenchmark((name + "/word").c_str(), [](benchmark::State& s) {
    Engine engine(7777777);
    time_fill<uint32_t>(s, kCount, [&](int32_t n, uint32_t* r) {
      for (int32_t i = 0; i < n; ++i) r[i] = static_cast<uint32_t>(engine());
    });
  });
  benchmark::RegisterBenchmark((name + "/double").c_str(), [](benchmark::State& s) {
    Engine engine(7777777);
    time_fill<double>(s, kCount, [&](int32_t n, double* r) {
      for (int32_t i = 0; i < n; ++i) r[i] = static_cast<double>(engine()) * 0x1p-32;
    });
  });
}

#ifdef QOR_HAS_GSL
void register_gsl(const std::string& name, const gsl_rng_type* type) {
  benchmark::RegisterBenchmark((name + "/word").c_str(), [=](benchmark::State& s) {
    const std::unique_ptr<gsl_rng, void (*)(gsl_rng*)> rng(gsl_rng_alloc(type), gsl_rng_free);
    time_fill<uint32_t>(s, kCount, [&](int32_t n, uint32_t* r) {
      for (int32_t i = 0; i < n; ++i) r[i] = static_cast<uint32_t>(gsl_rng_get(rng.get()));
    });
  });
  benchmark::RegisterBenchmark((name + "/double").c_str(), [=](benchmark::State& s) {
    const std::unique_ptr<gsl_rng, void (*)(gsl_rng*)> rng(gsl_rng_alloc(type), gsl_rng_free);
    time_fill<double>(s, kCount, [&](int32_t n, double* r) {
      for (int32_t i = 0; i < n; ++i) r[i] = gsl_rng_uniform(rng.get());
    });
  });
}
#endif

void register_services() {
  for (const Named& g : kGenerators) {
    benchmark::RegisterBenchmark((std::string("create+delete/") + g.name).c_str(),
                                 [=](benchmark::State& s) {
                                   for (auto _ : s) {
                                     StreamState* stream = new_stream(g.brng);
                                     benchmark::DoNotOptimize(stream);
                                     __ostDeleteStream(&stream);
                                   }
                                 });
    if (g.brng == QOR_BRNG_R250) continue;
    for (const uint64_t skip : {uint64_t{1} << 62, ~uint64_t{0}}) {
      const std::string count = skip == ~uint64_t{0} ? "2^64-1" : "2^62";
      benchmark::RegisterBenchmark(("skip " + count + "/" + g.name).c_str(),
                                   [=](benchmark::State& s) {
                                     StreamState* stream = new_stream(g.brng);
                                     for (auto _ : s) __ostSkipAheadStream(stream, skip);
                                     __ostDeleteStream(&stream);
                                   });
    }
  }
}

// Keeps the time per iteration of every run for the ratios.
class Collector : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) times[run.benchmark_name()] = run.GetAdjustedRealTime();
  }
  std::map<std::string, double> times;
};

void print_ratio(const std::map<std::string, double>& times, const std::string& slow,
                 const std::string& fast) {
  const auto a = times.find(slow), b = times.find(fast);
  if (a == times.end() || b == times.end()) return;
  std::printf("%-22s / %-22s %6.2f\n", slow.c_str(), fast.c_str(), a->second / b->second);
}

void print_ratios(const std::map<std::string, double>& times) {
  std::printf("\nTime ratios: how many times as long the first takes\n");
  for (const Named& g : kGenerators) {
    for (const std::string& output : {std::string("word"), std::string("double")}) {
      const std::string ours = std::string("ours/") + g.name + "/" + output;
      for (const char* peer : {"gsl cmrg/", "gsl mt19937/", "std mt19937/", "boost mt19937/"})
        print_ratio(times, peer + output, ours);
      print_ratio(times, ours + "/scalar", ours);
    }
    print_ratio(times, std::string("ours/") + g.name + "/double", "store/double");
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  register_store();
  register_ours();
  register_engine<std::mt19937>("std mt19937");
#ifdef QOR_HAS_BOOST
  register_engine<boost::random::mt19937>("boost mt19937");
#endif
#ifdef QOR_HAS_GSL
  register_gsl("gsl mt19937", gsl_rng_mt19937);
  register_gsl("gsl cmrg", gsl_rng_cmrg);
#endif
  register_services();
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  print_ratios(collector.times);
  return 0;
}
