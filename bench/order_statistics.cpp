// Order statistics side by side with the algorithms of the standard library, level by level, in one
// run each: ratios of least times, for times on a shared machine mean little.
//
//   bench_order_statistics [--levels build/release/levels] [--write docs/performance.md]
//
// Five quantiles by std::nth_element are what a careful user writes, and what NumPy does: on a copy
// of each variable, each element selected among those behind the last.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/run_levels.h"
#include "qor/statistics.h"
#include "reference/statistics_entries.h"
#include "tools/section.h"

namespace {

using qor::reference::Api;

constexpr double kOrders[] = {0.05, 0.25, 0.5, 0.75, 0.95};
constexpr int64_t kOrderCount = std::size(kOrders);

// Keeps the compiler from leaving a measured read out.
volatile uint64_t sink;

template <class Function>
double least_time(Function function, int repetitions) {
  double least = 1e30;
  for (int k = 0; k < repetitions; ++k) {
    const auto start = std::chrono::steady_clock::now();
    function();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    least = std::min(least, time.count());
  }
  return least;
}

template <class Real>
const char* precision() {
  return sizeof(Real) == 8 ? "double" : "single";
}

// Normal variates of p variables, and a task over them.
template <class Real>
struct Workload {
  int64_t p, n, storage, orders = kOrderCount, one = 1;
  std::vector<Real> x, output, order, quantiles, min, max;
  Real epsilon = 0;
  SsTask* task = nullptr;

  Workload(int64_t variables, int64_t observations, bool by_variable)
      : p(variables),
        n(observations),
        storage(by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION),
        output(static_cast<size_t>(p * n)),
        order(std::begin(kOrders), std::end(kOrders)),
        quantiles(static_cast<size_t>(p * kOrderCount)),
        min(static_cast<size_t>(p)),
        max(static_cast<size_t>(p)) {
    std::mt19937_64 bits(1);
    std::normal_distribution<double> normal;
    for (int64_t i = 0; i < p * n; ++i) x.push_back(static_cast<Real>(normal(bits)));
    Api<Real>::new_task(&task, &p, &n, &storage, x.data(), nullptr, nullptr, 1);
    Api<Real>::edit_quantiles(task, &orders, order.data(), quantiles.data(), nullptr, nullptr);
    Api<Real>::edit(task, QOR_SS_SORTED_OUTPUT, output.data());
    __ostiSSEditTask(task, QOR_SS_SORTED_OUTPUT_STORAGE, &storage);
    Api<Real>::edit(task, QOR_SS_MIN, min.data());
    Api<Real>::edit(task, QOR_SS_MAX, max.data());
    Api<Real>::edit_stream(task, &orders, order.data(), quantiles.data(), &one, &epsilon);
  }
  ~Workload() { __ostSSDeleteTask(&task); }
  Workload(const Workload&) = delete;
  Workload& operator=(const Workload&) = delete;

  bool by_variable() const { return storage == QOR_SS_BY_VARIABLE; }
  std::string shape() const {
    std::string text = std::to_string(n);
    if (p > 1)
      text += " x " + std::to_string(p) + (by_variable() ? " by variable" : " by observation");
    return text;
  }
  void copy_variable(int64_t j, std::vector<Real>& values) const {
    values.resize(static_cast<size_t>(n));
    for (int64_t i = 0; i < n; ++i) {
      values[static_cast<size_t>(i)] =
          x[static_cast<size_t>(by_variable() ? j * n + i : i * p + j)];
    }
  }
};

void print_line(const std::string& what, const std::string& level, double ours, int64_t elements,
                const char* peer, double theirs) {
  std::printf("| %s | %s | %.2f | %s | %.2f |\n", what.c_str(), level.c_str(),
              1e9 * ours / static_cast<double>(elements), peer, theirs / ours);
}

template <class Real>
void sorting(const std::string& level, int64_t n) {
  Workload<Real> w(1, n, true);
  const int repetitions = static_cast<int>(std::clamp<int64_t>(20000000 / n, 3, 200));
  std::vector<Real> copy;
  const double theirs = least_time(
      [&] {
        copy = w.x;
        std::sort(copy.begin(), copy.end());
      },
      repetitions);
  const double ours =
      least_time([&] { Api<Real>::sort(w.task, 0, QOR_SS_METHOD_SORT, nullptr); }, repetitions);
  print_line(std::string("sort, ") + precision<Real>() + ", " + w.shape(), level, ours, n,
             "`std::sort`", theirs);
}

template <class Real>
void five_quantiles(const std::string& level, int64_t p, int64_t n, bool by_variable) {
  Workload<Real> w(p, n, by_variable);
  const int repetitions = static_cast<int>(std::clamp<int64_t>(20000000 / (n * p), 5, 100));
  std::vector<Real> copy;
  const auto select = [&] {
    for (int64_t j = 0; j < p; ++j) {
      w.copy_variable(j, copy);
      auto first = copy.begin();
      for (const double q : kOrders) {
        const auto at = copy.begin() + static_cast<int64_t>(q * static_cast<double>(n - 1));
        std::nth_element(first, at, copy.end());
        first = at + 1;
        sink = static_cast<uint64_t>(*std::min_element(first, copy.end()) > *at);
      }
    }
  };
  const double theirs = least_time(select, repetitions);
  const auto ours = least_time(
      [&] { Api<Real>::quantiles(w.task, QOR_SS_ESTIMATE_QUANTILES, QOR_SS_METHOD_FAST, nullptr); },
      repetitions);
  print_line(std::string("five quantiles, ") + precision<Real>() + ", " + w.shape(), level, ours,
             n * p, "`std::nth_element`", theirs);
}

// Reading alone, as the limit of what a pass over the data can be.
template <class Real>
void extremes(const std::string& level, int64_t p, int64_t n, bool by_variable) {
  Workload<Real> w(p, n, by_variable);
  const int repetitions = static_cast<int>(std::clamp<int64_t>(200000000 / (n * p), 10, 1000));
  const auto* words = reinterpret_cast<const char*>(w.x.data());
  const size_t count = w.x.size() * sizeof(Real) / sizeof(uint64_t);
  const auto read = [&] {
    uint64_t all[8] = {};
    for (size_t i = 0; i + 8 <= count; i += 8) {
      uint64_t word[8];
      std::memcpy(word, words + i * sizeof(uint64_t), sizeof word);
      for (int k = 0; k < 8; ++k) all[k] |= word[k];
    }
    sink = std::accumulate(all, all + 8, uint64_t{0});
  };
  const double reading = least_time(read, repetitions);
  const double ours = least_time(
      [&] {
        Api<Real>::min_max(w.task, QOR_SS_ESTIMATE_MIN | QOR_SS_ESTIMATE_MAX, QOR_SS_METHOD_FAST,
                           nullptr);
      },
      repetitions);
  print_line(std::string("minimum and maximum, ") + precision<Real>() + ", " + w.shape(), level,
             ours, n * p, "reading the data", reading);
}

template <class Real>
void streaming(const std::string& level, int64_t n, double epsilon) {
  Workload<Real> w(1, n, true);
  w.epsilon = static_cast<Real>(epsilon);
  std::vector<Real> copy;
  const double theirs = least_time(
      [&] {
        copy = w.x;
        std::sort(copy.begin(), copy.end());
      },
      5);
  const double ours = least_time(
      [&] {
        Api<Real>::stream_quantiles(w.task, 0, QOR_SS_METHOD_STREAM_ANSWER, nullptr);
        __ostSQuantilesFreeBuffers(w.task);
      },
      5);
  char name[64];
  std::snprintf(name, sizeof name, "streaming quantiles, %s, error %g, ", precision<Real>(),
                epsilon);
  print_line(name + w.shape(), level, ours, n, "`std::sort`", theirs);
}

void run_level(const std::string& level) {
  for (const int64_t n : {10000, 100000, 1000000, 10000000}) sorting<double>(level, n);
  sorting<float>(level, 1000000);
  five_quantiles<double>(level, 1, 1000000, true);
  five_quantiles<double>(level, 16, 200000, true);
  five_quantiles<double>(level, 16, 200000, false);
  five_quantiles<float>(level, 1, 1000000, true);
  for (const bool by_variable : {true, false}) {
    extremes<double>(level, 16, 200000, by_variable);
    extremes<double>(level, 4, 1000000, by_variable);
  }
  extremes<float>(level, 4, 1000000, false);
  for (const double epsilon : {0.01, 0.0001}) streaming<double>(level, 1000000, epsilon);
}

constexpr const char* kHead =
    "Written by `bench_order_statistics`: nanoseconds an element, and how many times longer the "
    "peer\n"
    "takes, on one thread. The peer of minimum and maximum is a loop that only reads the data.\n\n"
    "| what | level | ns | peer | ratio |\n"
    "|---|---|---|---|---|\n";

}  // namespace

int main(int count, char** words) {
  const qor::bench::Options options = qor::bench::parse(count, words);
  if (!options.level.empty()) {
    run_level(options.level);
    return 0;
  }
  std::string text = kHead;
  qor::bench::run_on_levels(options, [&](const std::string&, const auto& lines) {
    for (const std::string& line : lines) text += line + "\n";
  });
  std::fputs(text.c_str(), stdout);
  if (!options.page.empty()) qor::tools::write_section(options.page, "Order statistics", text);
  return 0;
}
