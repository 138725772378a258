// What arguments off the fast path cost, for every kernel of one input vector.
//
//   bench_special_arguments [--write docs/performance.md] [--levels build/release/levels]
//                           [--only sExp,dLn] [--benchmark_...]
//
// Runs itself on each level's library and prints a line per function and kernel: times divided by
// that of ordinary arguments in the same run, the least of several repetitions each, in turns.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <random>

#include "bench/function_rows.h"
#include "reference/evaluate.h"

namespace {

using qor::bench::LeastTimes;
using qor::bench::number;
using qor::reference::Batch;
using qor::reference::Row;
using qor::tools::PageLine;

constexpr const char* kHead =
    R"(Measured by `bench_special_arguments --write docs/performance.md`. Times of vectors of 1024 elements
in cache, divided by that of ordinary elements (between -20 and 20, with finite results) in the same
run: 1 is no loss. NaN stands for missing values: in 5 % of the elements, evenly strewn, or in all.
Denormal: positive denormals. Large: the uppermost eight binades, positive. Errors are reported to
nobody (the mode's error field is "IGNORE"). Levels: v1, v3, v4 stand for x86-64-v1 and so on.

)";
const PageLine kTitles = {"function", "kernel",       "level",    "5 % NaN",
                          "all NaN",  "all denormal", "all large"};

constexpr size_t kCount = 1024;

// How vectors are made from ordinary elements: the first is these themselves.
template <class T>
struct Mix {
  const char* name;
  T (*element)(T ordinary, std::mt19937_64& random);
};

template <class T>
T positive(std::mt19937_64& random, int first_exponent, int count) {
  const auto exponent = first_exponent + static_cast<int>(random() % static_cast<uint64_t>(count));
  return std::ldexp(1 + std::ldexp(static_cast<T>(random() >> 44), -20), exponent);
}

template <class T>
inline constexpr Mix<T> kMixes[] = {
    {"ordinary", [](T x, std::mt19937_64&) { return x; }},
    {"5 % NaN",
     [](T x, std::mt19937_64& random) {
       return random() % 20 == 0 ? std::numeric_limits<T>::quiet_NaN() : x;
     }},
    {"all NaN", [](T, std::mt19937_64&) { return std::numeric_limits<T>::quiet_NaN(); }},
    {"all denormal",
     [](T, std::mt19937_64& random) {
       constexpr auto format = qor::reference::format_of<T>;
       return positive<T>(random, format.min_exponent - format.digits, format.digits - 1);
     }},
    {"all large",
     [](T, std::mt19937_64& random) {
       return positive<T>(random, qor::reference::format_of<T>.max_exponent - 8, 8);
     }},
};

template <class T>
struct Vectors {
  Batch<T> batch;
  qor::reference::Results<T> results;
  qor::reference::Call<T> call;

  Vectors(const Row<T>& row, const Mix<T>& mix)
      : batch(qor::reference::Arguments<T>(row).ordinary(kCount)) {
    std::mt19937_64 random(23);
    for (T& x : batch.in[0]) x = mix.element(x, random);
    call = qor::reference::call_on(row, batch);
    for (size_t k = 0; k < results.size(); ++k) {
      results[k].resize(kCount * static_cast<size_t>(row.shape.output_parts));
      call.out[k] = results[k].data();
    }
  }
};

template <class T>
std::string name_of(const Row<T>& row, int slot, const Mix<T>& mix) {
  return row.name().append("/").append(std::to_string(slot)).append("/").append(mix.name);
}

template <class T>
void add_row(const Row<T>& row) {
  for (const Mix<T>& mix : kMixes<T>) {
    const auto vectors = std::make_shared<Vectors<T>>(row, mix);
    for (const int slot : row.distinct_slots()) {
      qor::bench::add(name_of(row, slot, mix),
                      [&row, slot, vectors] { row.run(slot, vectors->call); });
    }
  }
}

template <class T>
void print_lines(const Row<T>& row, const std::string& level, const LeastTimes& times) {
  for (const int slot : row.distinct_slots()) {
    PageLine line{row.name(), row.sharing(slot), level};
    const double ordinary = times.of(name_of(row, slot, kMixes<T>[0]));
    for (size_t i = 1; i < std::size(kMixes<T>); ++i) {
      line.push_back(number(times.of(name_of(row, slot, kMixes<T>[i])) / ordinary, "%.2f"));
    }
    std::printf("%s\n", qor::tools::to_text(line).c_str());
  }
}

// Rows of one vector without scalars.
template <class T>
bool is_unary(const Row<T>& row) {
  return row.shape.inputs == 1 && row.shape.scalars == 0;
}

}  // namespace

int main(int count, char** words) {
  return qor::bench::benchmark_rows(
      count, words, {"Special arguments", kHead, kTitles},
      [](const auto& row, const std::string&) {
        if (is_unary(row)) add_row(row);
      },
      [](const auto& row, const std::string& level, const LeastTimes& times) {
        if (is_unary(row)) print_lines(row, level, times);
      });
}
