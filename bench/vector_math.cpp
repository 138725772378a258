// Every kernel of the row list against every peer found, in the same run.
//
//   bench_vector_math [--write docs/performance.md] [--levels build/release/levels]
//                     [--only sExp,dLn] [--benchmark_...]
//
// Runs itself on each level's library and prints a line per function and kernel: times of peers
// divided by ours, the least of several repetitions each, in turns.

#include "qor/vector_math.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/function_rows.h"
#include "bench/vector_math/peers.h"
#include "reference/evaluate.h"

namespace {

using qor::bench::add;
using qor::bench::LeastTimes;
using qor::bench::number;
using qor::reference::Call;
using qor::reference::Row;
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
  qor::reference::Batch<T> batch;
  qor::reference::Results<T> results;
  Call<T> call;

  explicit Vectors(const Row<T>& row) : batch(qor::reference::Arguments<T>(row).ordinary(kCount)) {
    call = qor::reference::call_on(row, batch);
    for (size_t k = 0; k < results.size(); ++k) {
      results[k].resize(kCount * static_cast<size_t>(row.shape.output_parts));
      call.out[k] = results[k].data();
    }
  }
};

// Names of benchmarks: the function, the slot, and who runs.
template <class T>
std::string stem_of(const Row<T>& row, int slot) {
  return row.name().append("/").append(std::to_string(slot)).append("/");
}

// Vectors too long for the caches: the same memory for all kernels and for the copy that moves as
// many bytes, since what lies where decides more than the arithmetic.
template <class T>
struct LongVectors {
  std::vector<T> in = std::vector<T>(2 * kLong), out = std::vector<T>(2 * kLong);

  // Arguments of the short vectors over and over.
  Call<T> call_like(const Call<T>& model, int inputs) {
    Call<T> call = model;
    call.n = static_cast<int32_t>(kLong);
    for (size_t k = 0; k < static_cast<size_t>(inputs); ++k) {
      for (size_t i = 0; i < kLong; ++i) in[k * kLong + i] = model.in[k][i % kCount];
      call.in[k] = &in[k * kLong];
    }
    call.out[0] = out.data();
    return call;
  }
};

template <class T>
void add_long(const Row<T>& row, int slot, const std::shared_ptr<Vectors<T>>& vectors) {
  static LongVectors<T> memory;
  const std::string stem = stem_of(row, slot);
  const auto prepare = [&row, vectors] {
    return memory.call_like(vectors->call, row.shape.inputs);
  };
  add(stem + "long", prepare, [&row, slot](const Call<T>& call) { row.run(slot, call); });
  add(stem + "copy", prepare, [&row](const Call<T>&) {
    const size_t moved = kLong * static_cast<size_t>(row.shape.inputs + row.shape.outputs) / 2;
    std::memcpy(memory.out.data(), memory.in.data(), moved * sizeof(T));
  });
}

template <class T>
void add_row(const Row<T>& row, const std::string& level) {
  auto vectors = std::make_shared<Vectors<T>>(row);
  const auto peers = qor::bench::peers_of(row, level);
  for (int slot : row.distinct_slots()) {
    const std::string stem = stem_of(row, slot);
    const auto all = [vectors] { return vectors->call; };
    const auto first = [vectors] {
      Call<T> call = vectors->call;
      call.n = 1;
      return call;
    };
    const auto ours = [&row, slot](const Call<T>& call) { row.run(slot, call); };
    add(stem + "ours", all, ours);
    add(stem + "one", first, ours);
    bool plain = false;
    for (const auto& peer : peers) {
      add(stem + peer.library, all, peer.run);
      plain = plain || peer.library == "compiler";
    }
    if (plain) add_long(row, slot, vectors);
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

}  // namespace

int main(int count, char** words) {
  return qor::bench::benchmark_rows(
      count, words, {"Vector math", kHead, kTitles},
      [](const auto& row, const std::string& level) { add_row(row, level); },
      [](const auto& row, const std::string& level, const LeastTimes& times) {
        print_lines(row, level, times);
      });
}
