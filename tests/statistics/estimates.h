// All estimates of Basic, by name, with the arrays that take them and their exact values.
#pragma once

#include <string>
#include <vector>

#include "tests/statistics/api.h"
#include "tests/statistics/exact.h"

namespace qor::test {

inline constexpr uint64_t kFast = QOR_SS_METHOD_FAST, kOnePass = QOR_SS_METHOD_ONE_PASS,
                          kGiven = QOR_SS_METHOD_GIVEN_MEANS, kSums = QOR_SS_METHOD_FROM_SUMS;

// Observations in rows, whatever layout they are handed over in.
template <class Real>
struct Sample {
  int64_t n, p;
  std::vector<Real> rows;     // n * p
  std::vector<Real> weights;  // n, or none

  Real at(int64_t i, int64_t j) const { return rows[static_cast<size_t>(i * p + j)]; }
  double weight(int64_t i) const {
    return weights.empty() ? 1 : double{weights[static_cast<size_t>(i)]};
  }
  // The data in the order of a storage word.
  std::vector<Real> stored(int64_t storage) const {
    std::vector<Real> x = rows;
    if (storage == QOR_SS_BY_VARIABLE) {
      for (int64_t i = 0; i < n; ++i) {
        for (int64_t j = 0; j < p; ++j) x[static_cast<size_t>(j * n + i)] = at(i, j);
      }
    }
    return x;
  }
  Sample part(int64_t first, int64_t end) const {
    const auto cut = [](const std::vector<Real>& from, int64_t begin, int64_t stop) {
      return std::vector<Real>(from.data() + begin, from.data() + stop);
    };
    Sample result{end - first, p, cut(rows, first * p, end * p), {}};
    if (!weights.empty()) result.weights = cut(weights, first, end);
    return result;
  }
};

// Quarters from 0 to 3 with a little of everything: exact in both precisions.
template <class Real>
Sample<Real> small_sample(int64_t n, int64_t p, bool weighted) {
  Sample<Real> sample{n, p, {}, {}};
  uint32_t state = 12345;
  const auto next = [&state](uint32_t below) {
    state = state * 1664525u + 1013904223u;
    return (state >> 8) % below;
  };
  for (int64_t i = 0; i < n * p; ++i) sample.rows.push_back(static_cast<Real>(next(13)) / 4);
  for (int64_t i = 0; weighted && i < n; ++i) {
    sample.weights.push_back(static_cast<Real>(next(9)) / 4);
  }
  return sample;
}

struct EstimateRow {
  const char* name;
  uint64_t bit;
  int64_t code;
};

// Those with one value per variable, in the order of Results::vectors.
inline constexpr EstimateRow vector_estimates[] = {
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
};
inline constexpr int vector_count = std::size(vector_estimates);

struct MatrixRow {
  const char* name;
  uint64_t bit;
  int64_t code, storage_code;
};
inline constexpr MatrixRow matrix_estimates[] = {
    {"covariance", QOR_SS_ESTIMATE_COVARIANCE, QOR_SS_COV, QOR_SS_COV_STORAGE},
    {"correlation", QOR_SS_ESTIMATE_CORRELATION, QOR_SS_COR, QOR_SS_COR_STORAGE},
    {"cross-product", QOR_SS_ESTIMATE_CP, QOR_SS_CP, QOR_SS_CP_STORAGE},
};
inline constexpr int matrix_count = std::size(matrix_estimates);

inline uint64_t all_estimates() {
  uint64_t mask = 0;
  for (const EstimateRow& row : vector_estimates) mask |= row.bit;
  for (const MatrixRow& row : matrix_estimates) mask |= row.bit;
  return mask;
}

// An exact value, and the size of what was added up for it, which its error is measured by.
struct Value {
  double exact, size;
};

// All by name: vectors[e][j], matrices[e][j * p + k].
struct Values {
  std::vector<std::vector<Value>> vectors, matrices;
};

// `means`: null for the sample's own, else the given ones. Exact for small data; the plain formulas
// in long double for large.
template <class Real>
Values exact_values(const Sample<Real>& sample, const Real* means = nullptr);
template <class Real>
Values plain_values(const Sample<Real>& sample, const Real* means = nullptr);

// Where estimates go: all filled with `untouched` at first.
template <class Real>
struct Results {
  static constexpr Real untouched = Real(-7777);
  std::vector<std::vector<Real>> vectors, matrices;
  Real weights[2] = {0, 0};

  explicit Results(int64_t p)
      : vectors(vector_count, std::vector<Real>(static_cast<size_t>(p), untouched)),
        matrices(matrix_count, std::vector<Real>(static_cast<size_t>(p * p), untouched)) {}

  // Registers all arrays, matrices in a storage each.
  void attach(Task<Real>& task, int64_t matrix_storage) {
    for (int e = 0; e < vector_count; ++e) {
      task.set(vector_estimates[e].code, vectors[static_cast<size_t>(e)].data());
    }
    for (int e = 0; e < matrix_count; ++e) {
      task.set(matrix_estimates[e].code, matrices[static_cast<size_t>(e)].data());
      task.set_number(matrix_estimates[e].storage_code, matrix_storage);
    }
  }
  std::vector<Real>& of(int64_t code) {
    for (int e = 0; e < vector_count; ++e) {
      if (vector_estimates[e].code == code) return vectors[static_cast<size_t>(e)];
    }
    for (int e = 0; e < matrix_count; ++e) {
      if (matrix_estimates[e].code == code) return matrices[static_cast<size_t>(e)];
    }
    ADD_FAILURE() << "no estimate has the code " << code;
    return vectors[0];
  }
};

// Compares the estimates of `mask` with their values: errors up to `ulps` units of each one's size.
template <class Real>
void expect_near(const Results<Real>& results, const Values& values, uint64_t mask, int64_t p,
                 int64_t matrix_storage, double ulps);

// Place of element (j, k) in a matrix of a storage word.
inline int64_t place(int64_t storage, int64_t p, int64_t j, int64_t k) {
  const int64_t low = std::min(j, k), high = std::max(j, k);
  if (storage == QOR_SS_MATRIX_LOWER) return high * (high + 1) / 2 + low;
  if (storage == QOR_SS_MATRIX_UPPER) {
    int64_t at = high - low;
    for (int64_t row = 0; row < low; ++row) at += p - row;
    return at;
  }
  return j * p + k;
}

}  // namespace qor::test
