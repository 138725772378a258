// Data in orders that sorting and selection may find hard.
#pragma once

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <random>
#include <vector>

#include "qor/statistics.h"

namespace qor::test {

enum class Pattern {
  random,
  sorted,
  reversed,
  organ_pipe,
  zigzag,
  constant,
  few_values,
  narrow,      // many equal leading bits, in long runs
  outlier,     // narrow, and one value far away
  periodic,    // repeats every 16 elements
  misleading,  // other values where selection takes its sample
  last
};

inline std::ostream& operator<<(std::ostream& out, Pattern pattern) {
  return out << "pattern " << static_cast<int>(pattern);
}

inline std::vector<Pattern> all_patterns() {
  std::vector<Pattern> all;
  for (int k = 0; k < static_cast<int>(Pattern::last); ++k) all.push_back(static_cast<Pattern>(k));
  return all;
}

template <class Real>
std::vector<Real> pattern_data(Pattern pattern, int64_t n, uint64_t seed = 1) {
  std::mt19937_64 bits(seed);
  std::normal_distribution<double> normal;
  std::vector<Real> x;
  for (int64_t i = 0; i < n; ++i) {
    const auto place = static_cast<double>(i);
    const auto from_end = static_cast<double>(n - i);
    double value = normal(bits);
    if (pattern == Pattern::sorted) value = place;
    if (pattern == Pattern::reversed) value = from_end;
    if (pattern == Pattern::organ_pipe) value = std::min(place, from_end);
    if (pattern == Pattern::zigzag) value = i % 2 == 0 ? place : -place;
    if (pattern == Pattern::constant) value = 7;
    if (pattern == Pattern::few_values) value = std::floor(2 * value);
    if (pattern == Pattern::narrow) value = 1 + 1e-9 * value;
    if (pattern == Pattern::outlier) value = i == n / 3 ? -1e30 : 1.7e9 + value;
    if (pattern == Pattern::periodic) value = static_cast<double>(i % 16) + 1e-3 * value;
    const auto sampled = static_cast<int64_t>((static_cast<uint32_t>(i / 16) * 0x9E3779B9u) >> 28);
    if (pattern == Pattern::misleading && i % 16 == sampled) value = i / 16 % 2 == 0 ? 1000 : 1001;
    x.push_back(static_cast<Real>(value));
  }
  return x;
}

// Every seventh element becomes a value that is not like others.
template <class Real>
void add_specials(std::vector<Real>& x) {
  using Limits = std::numeric_limits<Real>;
  const Real infinity = Limits::infinity(), nan = Limits::quiet_NaN(), tiny = Limits::denorm_min(),
             most = Limits::max();
  const Real specials[] = {0, -Real(0), infinity, -infinity, nan, -nan, tiny, -tiny, most, -most};
  for (size_t i = 0; i < x.size(); i += 7) x[i] = specials[i / 7 % std::size(specials)];
}

// The total order: NaNs at the ends by their sign, -0 before +0.
template <class Real>
std::vector<Real> in_order(std::vector<Real> x) {
  std::sort(x.begin(), x.end(), [](Real a, Real b) { return std::strong_order(a, b) < 0; });
  return x;
}

template <class Real>
bool same_bits(const std::vector<Real>& a, const std::vector<Real>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Real)) == 0;
}

// Variables j = 0, 1 ... of n values each, as a block in either layout.
template <class Real>
std::vector<Real> laid_out(const std::vector<std::vector<Real>>& variables, bool by_variable) {
  const size_t p = variables.size(), n = variables[0].size();
  std::vector<Real> block(p * n);
  for (size_t j = 0; j < p; ++j) {
    for (size_t i = 0; i < n; ++i) block[by_variable ? j * n + i : i * p + j] = variables[j][i];
  }
  return block;
}

inline int64_t storage_word(bool by_variable) {
  return by_variable ? QOR_SS_BY_VARIABLE : QOR_SS_BY_OBSERVATION;
}

}  // namespace qor::test
