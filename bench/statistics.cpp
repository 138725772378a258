// Moments and covariance side by side with a bare dsyrk, GSL, Eigen, Armadillo and NumPy, one
// thread; and what a second thread gives.
//
//   OPENBLAS_NUM_THREADS=1 OMP_NUM_THREADS=2 LD_LIBRARY_PATH=build/release/levels/v3
//   bench_statistics [--write FILE]
//
// prints a table of times relative to ours, or writes it as a section of the document.

#include "qor/statistics.h"

#include <gsl/gsl_statistics.h>

#include <Eigen/Dense>
#include <algorithm>
#include <armadillo>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "front/team/team.h"
#include "statistics/blas.h"
#include "tools/section.h"

namespace {

using Call = std::function<void()>;
using Calls = std::map<std::string, Call>;
using Times = std::map<std::string, double>;

// The least time of 25 calls of each, in seconds, taken in turns.
Times best(const Calls& calls) {
  Times least;
  for (int i = 0; i < 25; ++i) {
    for (const auto& [name, call] : calls) {
      const auto start = std::chrono::steady_clock::now();
      call();
      const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
      const auto found = least.try_emplace(name, time.count()).first;
      found->second = std::min(found->second, time.count());
    }
  }
  return least;
}

// One set of data in one layout, and everything that is done with it.
struct Workload {
  int32_t n, p, storage, full = QOR_SS_MATRIX_FULL;
  std::vector<double> x, vectors, matrix;
  SsTask* task = nullptr;

  Workload(int32_t observations, int32_t variables, bool rows)
      : n(observations),
        p(variables),
        storage(rows ? QOR_SS_BY_OBSERVATION : QOR_SS_BY_VARIABLE),
        x(static_cast<size_t>(n) * static_cast<size_t>(p)),
        vectors(static_cast<size_t>(9 * p)),
        matrix(static_cast<size_t>(p * p)) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> unit(0, 1);
    std::generate(x.begin(), x.end(), [&] { return unit(random); });
    const auto vector = [this](int k) { return vectors.data() + k * p; };
    __ostdSSNewTask(&task, &p, &n, &storage, x.data(), nullptr, nullptr, 0);
    __ostdSSEditMoments(task, vector(0), vector(1), vector(2), vector(3), vector(4), vector(5),
                        vector(6));
    __ostdSSEditTask(task, QOR_SS_KURTOSIS, vector(7));
    __ostdSSEditTask(task, QOR_SS_SKEWNESS, vector(8));
    __ostdSSEditCovCor(task, vector(0), matrix.data(), &full, nullptr, nullptr);
  }
  ~Workload() { __ostSSDeleteTask(&task); }
  Workload(const Workload&) = delete;
  Workload& operator=(const Workload&) = delete;

  bool rows() const { return storage == QOR_SS_BY_OBSERVATION; }
  Call basic(uint64_t estimates, uint64_t method, const ThreadHook* team) {
    return [=, this] { _ostdSSBasic(task, estimates, method, team); };
  }
  // Each variable with its stride.
  void for_variables(const std::function<void(const double*, size_t, size_t)>& use) const {
    for (int32_t j = 0; j < p; ++j) {
      const size_t first = static_cast<size_t>(j) * static_cast<size_t>(rows() ? 1 : n);
      use(x.data() + first, static_cast<size_t>(rows() ? p : 1), static_cast<size_t>(n));
    }
  }
};

volatile double kept;  // results that nothing else uses

using ColumnMap = Eigen::Map<const Eigen::MatrixXd>;

Calls variance_peers(const Workload& w) {
  Calls peers;
  peers["GSL"] = [&w] {
    w.for_variables([](const double* x, size_t stride, size_t n) {
      kept = gsl_stats_variance_m(x, stride, n, gsl_stats_mean(x, stride, n));
    });
  };
  // Column by column, a matrix of observations in rows is p by n.
  const arma::mat a(const_cast<double*>(w.x.data()), static_cast<arma::uword>(w.rows() ? w.p : w.n),
                    static_cast<arma::uword>(w.rows() ? w.n : w.p), false, true);
  const arma::uword along = w.rows() ? 1 : 0;
  peers["Armadillo"] = [a, along] {
    const arma::mat mean = arma::mean(a, along), variance = arma::var(a, 0, along);
    kept = mean(0) + variance(0);
  };
  peers["Eigen"] = [&w] {
    const ColumnMap x(w.x.data(), w.rows() ? w.p : w.n, w.rows() ? w.n : w.p);
    if (w.rows()) {
      const Eigen::VectorXd mean = x.rowwise().mean();
      kept = ((x.colwise() - mean).rowwise().squaredNorm() / (w.n - 1)).sum();
    } else {
      const Eigen::RowVectorXd mean = x.colwise().mean();
      kept = ((x.rowwise() - mean).colwise().squaredNorm() / (w.n - 1)).sum();
    }
  };
  return peers;
}

Calls moment_peers(const Workload& w) {
  return {{"GSL", [&w] {
             w.for_variables([](const double* x, size_t stride, size_t n) {
               const double mean = gsl_stats_mean(x, stride, n),
                            deviation = gsl_stats_sd_m(x, stride, n, mean);
               kept = gsl_stats_skew_m_sd(x, stride, n, mean, deviation) +
                      gsl_stats_kurtosis_m_sd(x, stride, n, mean, deviation);
             });
           }}};
}

Calls covariance_peers(Workload& w) {
  Calls peers;
  peers["dsyrk"] = [&w] {
    const double one = 1, zero = 0;
    dsyrk_("u", w.rows() ? "n" : "t", &w.p, &w.n, &one, w.x.data(), w.rows() ? &w.p : &w.n, &zero,
           w.matrix.data(), &w.p, 1, 1);
  };
  const arma::mat a(w.x.data(), static_cast<arma::uword>(w.rows() ? w.p : w.n),
                    static_cast<arma::uword>(w.rows() ? w.n : w.p), false, true);
  const bool rows = w.rows();
  peers["Armadillo"] = [a, rows] {
    const arma::mat cov = rows ? arma::mat(arma::cov(a.t())) : arma::mat(arma::cov(a));
    kept = cov(0);
  };
  peers["Eigen"] = [&w] {
    const ColumnMap x(w.x.data(), w.rows() ? w.p : w.n, w.rows() ? w.n : w.p);
    Eigen::MatrixXd d = x;
    if (w.rows()) {
      d.colwise() -= Eigen::VectorXd(x.rowwise().mean());
      kept = Eigen::MatrixXd(d * d.transpose())(0, 0);
    } else {
      d.rowwise() -= Eigen::RowVectorXd(x.colwise().mean());
      kept = Eigen::MatrixXd(d.transpose() * d)(0, 0);
    }
  };
  return peers;
}

// Seconds by case, from NumPy where Python has it.
Times numpy_times() {
  Times times;
  FILE* lines = popen("/usr/bin/python3 " QOR_SOURCE "/bench/statistics_numpy.py", "r");
  if (lines == nullptr) return times;
  char name[100];
  double seconds;
  while (std::fscanf(lines, "%99s %lf", name, &seconds) == 2) times[name] = seconds;
  pclose(lines);
  return times;
}

constexpr const char* kPeers[] = {"dsyrk", "GSL", "Eigen", "Armadillo", "NumPy"};

// A line of the table: our time per element, that of one thread as a multiple of that of two, and
// each peer's as a multiple of ours.
std::string table_line(const std::string& title, const std::string& method, double elements,
                       const Times& times) {
  const double own = times.at(method);
  char text[64];
  std::snprintf(text, sizeof text, " | %.2f | %.1f", own / elements * 1e9,
                own / times.at(method + " in a team"));
  std::string line = "| " + title + " | " + method + text;
  for (const char* peer : kPeers) {
    const auto time = times.find(peer);
    std::snprintf(text, sizeof text, " | %.1f", time == times.end() ? 0 : time->second / own);
    line += time == times.end() ? " | " : text;
  }
  return line + " |\n";
}

constexpr std::pair<const char*, uint64_t> kMethods[] = {{"fast", QOR_SS_METHOD_FAST},
                                                         {"one pass", QOR_SS_METHOD_ONE_PASS}};

std::string measure(const Times& numpy) {
  constexpr uint64_t kVariance = QOR_SS_ESTIMATE_MEAN | QOR_SS_ESTIMATE_CENTRAL_2,
                     kMoments = QOR_SS_ESTIMATE_KURTOSIS | QOR_SS_ESTIMATE_SKEWNESS,
                     kCovariance = QOR_SS_ESTIMATE_COVARIANCE;
  std::string text;
  for (const auto& [n, p] : {std::pair{200000, 16}, std::pair{1000000, 4}}) {
    for (const bool rows : {true, false}) {
      Workload w(n, p, rows);
      const std::string size = std::to_string(n) + "x" + std::to_string(p),
                        layout = rows ? "rows" : "columns";
      const double elements = static_cast<double>(n) * p;
      const auto lines = [&](const char* name, uint64_t estimates, Calls calls) {
        for (const auto& [method, word] : kMethods) {
          calls[method] = w.basic(estimates, word, nullptr);
          calls[std::string(method) + " in a team"] = w.basic(estimates, word, qor_team_openmp());
        }
        Times times = best(calls);
        const auto found = numpy.find(size + "/" + layout + "/" + name);
        if (found != numpy.end()) times["NumPy"] = found->second;
        const std::string title = std::string(name) + ", " + size + ", " + layout;
        for (const auto& [method, word] : kMethods) {
          text += table_line(title, method, elements, times);
        }
      };
      lines("variance", kVariance, variance_peers(w));
      lines("moments", kMoments, moment_peers(w));
      lines("covariance", kCovariance, covariance_peers(w));
    }
  }
  return text;
}

constexpr const char* kHead =
    R"(Written by `bench_statistics --write docs/performance.md` at x86-64-v3. Double precision, one
thread, the least of 25 calls, taken in turns: our time in nanoseconds per element, and the times
of others as multiples of it; under `2 threads`, our time of one thread as a multiple of that of a
team of two. Rows: observation after observation; columns: variable after variable. `variance` is
mean and variance, `moments` all to order four with skewness and kurtosis, `covariance` the full
matrix; `dsyrk` is the bare product of the data. The one pass method keeps the digits that the others
lose to cancellation.

)";

}  // namespace

int main(int count, char** arguments) {
  const bool write = count == 3 && std::strcmp(arguments[1], "--write") == 0;
  if (count != 1 && !write) {
    std::fprintf(stderr, "bench_statistics: the only option is --write FILE\n");
    return 2;
  }
  std::string text = kHead;
  text +=
      "| estimate, data | method | ns | 2 threads | dsyrk | GSL | Eigen | Armadillo | NumPy |\n";
  text += "|---|---|---|---|---|---|---|---|---|\n";
  text += measure(numpy_times());
  if (write) {
    qor::tools::write_section(arguments[2], "Summary statistics", text);
  } else {
    std::fputs(text.c_str(), stdout);
  }
  return 0;
}
