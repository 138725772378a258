// All estimates of Basic, by name, with the arrays that take them and their values by definition.
#pragma once

#include <algorithm>
#include <vector>

#include "tests/statistics/api.h"
#include "tests/support/teams.h"

namespace qor::test {

inline constexpr uint64_t kFast = QOR_SS_METHOD_FAST, kOnePass = QOR_SS_METHOD_ONE_PASS,
                          kGiven = QOR_SS_METHOD_GIVEN_MEANS, kSums = QOR_SS_METHOD_FROM_SUMS;
inline const std::vector<uint64_t> kMethods = {kOnePass, kFast, kGiven};
inline const std::vector<int64_t> kLayouts = {QOR_SS_BY_VARIABLE, QOR_SS_BY_OBSERVATION};
inline const std::vector<int64_t> kStorages = {QOR_SS_MATRIX_FULL, QOR_SS_MATRIX_LOWER,
                                               QOR_SS_MATRIX_UPPER};

// Observations in rows, whatever layout they are handed over in.
template <class Real>
struct Sample {
  int64_t n, p;
  std::vector<Real> rows;          // n * p
  std::vector<Real> weights = {};  // n, or none
  Real unit = 1;                   // of given means

  Real at(int64_t i, int64_t j) const { return rows[static_cast<size_t>(i * p + j)]; }
  Real weight(int64_t i) const { return weights.empty() ? 1 : weights[static_cast<size_t>(i)]; }
  // Observations first to end - 1 in the order of a storage word.
  std::vector<Real> stored(int64_t first, int64_t end, int64_t storage) const {
    std::vector<Real> x(rows.data() + first * p, rows.data() + end * p);
    for (int64_t j = 0; storage == QOR_SS_BY_VARIABLE && j < p; ++j) {
      for (int64_t i = first; i < end; ++i) {
        x[static_cast<size_t>(j * (end - first) + i - first)] = at(i, j);
      }
    }
    return x;
  }
};

// Quarters from 0 to 3 with a little of everything: exact in both precisions.
template <class Real>
Sample<Real> small_sample(int64_t n, int64_t p, bool weighted) {
  Sample<Real> sample{n, p, {}};
  uint32_t state = 12345;
  const auto next = [&state](uint32_t below) {
    state = state * 1664525u + 1013904223u;
    return static_cast<Real>((state >> 8) % below) / 4;
  };
  for (int64_t i = 0; i < n * p; ++i) sample.rows.push_back(next(13));
  for (int64_t i = 0; weighted && i < n; ++i) sample.weights.push_back(next(9));
  return sample;
}

struct Estimate {
  const char* name;
  uint64_t bit;
  int64_t code;
  int64_t storage_code = 0;  // of a matrix; else there is one value per variable

  bool is_matrix() const { return storage_code != 0; }
  size_t values(int64_t p) const { return static_cast<size_t>(is_matrix() ? p * p : p); }
  // Where element (j, k) of a matrix in a storage stands, or the value of variable j.
  size_t place(int64_t storage, int64_t p, int64_t j, int64_t k) const {
    const int64_t low = std::min(j, k), high = std::max(j, k);
    if (!is_matrix()) return static_cast<size_t>(j);
    if (storage == QOR_SS_MATRIX_LOWER) return static_cast<size_t>(high * (high + 1) / 2 + low);
    if (storage == QOR_SS_MATRIX_FULL) return static_cast<size_t>(j * p + k);
    return static_cast<size_t>(low * p - low * (low - 1) / 2 + high - low);
  }
};

inline constexpr Estimate estimates[] = {
    {"mean", QOR_SS_ESTIMATE_MEAN, QOR_SS_MEAN},
    {"raw moment 2", QOR_SS_ESTIMATE_RAW_2, QOR_SS_RAW_2},
    {"raw moment 3", QOR_SS_ESTIMATE_RAW_3, QOR_SS_RAW_3},
    {"raw moment 4", QOR_SS_ESTIMATE_RAW_4, QOR_SS_RAW_4},
    {"central moment 2", QOR_SS_ESTIMATE_CENTRAL_2, QOR_SS_CENTRAL_2},
    {"central moment 3", QOR_SS_ESTIMATE_CENTRAL_3, QOR_SS_CENTRAL_3},
    {"central moment 4", QOR_SS_ESTIMATE_CENTRAL_4, QOR_SS_CENTRAL_4},
    {"sum", QOR_SS_ESTIMATE_SUM, QOR_SS_SUM},
    {"raw sum 2", QOR_SS_ESTIMATE_RAW_SUM_2, QOR_SS_RAW_SUM_2},
    {"raw sum 3", QOR_SS_ESTIMATE_RAW_SUM_3, QOR_SS_RAW_SUM_3},
    {"raw sum 4", QOR_SS_ESTIMATE_RAW_SUM_4, QOR_SS_RAW_SUM_4},
    {"central sum 2", QOR_SS_ESTIMATE_CENTRAL_SUM_2, QOR_SS_CENTRAL_SUM_2},
    {"central sum 3", QOR_SS_ESTIMATE_CENTRAL_SUM_3, QOR_SS_CENTRAL_SUM_3},
    {"central sum 4", QOR_SS_ESTIMATE_CENTRAL_SUM_4, QOR_SS_CENTRAL_SUM_4},
    {"kurtosis", QOR_SS_ESTIMATE_KURTOSIS, QOR_SS_KURTOSIS},
    {"skewness", QOR_SS_ESTIMATE_SKEWNESS, QOR_SS_SKEWNESS},
    {"variation", QOR_SS_ESTIMATE_VARIATION, QOR_SS_VARIATION},
    {"covariance", QOR_SS_ESTIMATE_COVARIANCE, QOR_SS_COV, QOR_SS_COV_STORAGE},
    {"correlation", QOR_SS_ESTIMATE_CORRELATION, QOR_SS_COR, QOR_SS_COR_STORAGE},
    {"cross-product", QOR_SS_ESTIMATE_CP, QOR_SS_CP, QOR_SS_CP_STORAGE},
};
inline constexpr size_t estimate_count = std::size(estimates);

// Masks: what one value per variable or a matrix holds, and the sums, which others are made of.
inline constexpr uint64_t kVectors = 0xFE0003FF, kAll = kVectors | 0x100003000,
                          kSumBits = 0xFE000000 | QOR_SS_ESTIMATE_CP;

// Where estimates go, in their order: all filled with `untouched` at first.
template <class Real>
struct Results {
  static constexpr Real untouched = Real(-7777);
  std::vector<std::vector<Real>> arrays;
  std::vector<Real> weights = {0, 0};

  explicit Results(int64_t p) {
    for (const Estimate& e : estimates) arrays.emplace_back(e.values(p), untouched);
  }
  // Registers all arrays, matrices in a storage each.
  void attach(Task<Real>& task, int64_t storage) {
    for (size_t e = 0; e < estimate_count; ++e) {
      task.set(estimates[e].code, arrays[e].data());
      if (estimates[e].is_matrix()) task.set_number(estimates[e].storage_code, storage);
    }
    task.set(QOR_SS_ACCUMULATED_WEIGHTS, weights.data());
  }
  std::vector<Real>& of(int64_t code) {
    const auto at = std::find_if(std::begin(estimates), std::end(estimates),
                                 [code](const Estimate& e) { return e.code == code; });
    return arrays[static_cast<size_t>(at - estimates)];
  }
  bool operator==(const Results&) const = default;
};

// The means of kGiven.
template <class Real>
std::vector<Real> given_means(int64_t p, Real unit = 1) {
  std::vector<Real> means;
  for (int64_t j = 0; j < p; ++j) means.push_back(unit * static_cast<Real>(2 + j % 3) / 4);
  return means;
}

// How a sample is handed over.
struct Asked {
  uint64_t method = kOnePass, mask = kAll;
  int64_t layout = QOR_SS_BY_OBSERVATION, storage = QOR_SS_MATRIX_FULL;
  std::vector<int64_t> cuts = {};  // where blocks before the last end
  bool wide = false;
  const void* indices = nullptr;
  const ThreadHook* hook = nullptr;
};

// The estimates of a sample, block by block, from the state in `results` on.
template <class Real>
Results<Real> go_on(const Sample<Real>& s, Asked asked, Results<Real> results) {
  Task<Real> task(s.p, s.n, asked.layout, s.rows.data(), nullptr, asked.wide);
  results.attach(task, asked.storage);
  task.record().indices = asked.indices;
  asked.cuts.push_back(s.n);
  int64_t first = 0;
  for (const int64_t end : asked.cuts) {
    const auto x = s.stored(first, end, asked.layout);
    task.set(QOR_SS_X, x.data());
    task.set_number(QOR_SS_N, end - first);
    if (!s.weights.empty()) task.set(QOR_SS_WEIGHTS, s.weights.data() + first);
    EXPECT_EQ(Api<Real>::basic(task, asked.mask, asked.method, asked.hook), QOR_SS_OK);
    first = end;
  }
  return results;
}
template <class Real>
Results<Real> compute(const Sample<Real>& s, const Asked& asked) {
  Results<Real> results(s.p);
  if (asked.method == kGiven) results.of(QOR_SS_MEAN) = given_means<Real>(s.p, s.unit);
  return go_on(s, asked, results);
}

// A value by definition, and the size of what was added up for it, which its error is measured by.
struct Value {
  double exact, size;
};

// Of all estimates in their order: element (j, k) of a matrix at j * p + k.
using Values = std::vector<std::vector<Value>>;
template <class Real>
Values exact_values(const Sample<Real>& sample, uint64_t method);

// Compares the estimates asked for with their values: errors up to `ulps` units of each one's size.
template <class Real>
void expect_near(const Results<Real>& results, const Values& values, const Asked& asked,
                 double ulps);

// ---- Teams of threads --------------------------------------------------------------------------

inline int64_t offered_threads = 1;
inline int64_t last_team_size = 0;  // of a team that told it

inline void run_team_and_tell_its_size(int64_t threads, void* context, qor_team_routine routine) {
  last_team_size = threads;
  run_members<run_in_order>(threads, context, routine);
}

// A hook that offers so many threads; the last one made tells how many all of them offer.
inline ThreadHook team_hook(int64_t threads, TeamRunner run) {
  offered_threads = threads;
  return {nullptr, nullptr, run, nullptr, [] { return offered_threads; }};
}

}  // namespace qor::test
