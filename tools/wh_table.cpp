// Makes streams/generators/wh_table.h: moduli and multipliers of the 273 WH generators.
//
//   wh_table > streams/generators/wh_table.h
//
// Rule of a row.
// - The first modulus is a prime congruent to 11 modulo 12.
// - Each further modulus is the next lower prime m whose (m - 1) / 2 has no factor in common with
//   that of any modulus of the row before it, so that the periods multiply.
// - Each multiplier is the largest primitive root of its modulus, not above 127, that the row has
//   not used yet.
// Rule of the table. The first modulus goes downward from 16776971. A row is accepted when the
// combined generator (modulus M = m1 m2 m3 m4, multiplier by the Chinese remainder theorem) passes
// the spectral test: nu_d / (gamma_d^(1/2) M^(1/d)) of at least 0.3334 in the dimensions 2 to 6
// (Knuth, Seminumerical Algorithms, 3.3.4; gamma_d the Hermite constants). After an accepted row
// the first modulus is looked for below the row's last one, after a rejected one at the next prime
// below. The limit stands a little above 1/3, where one row more would pass: 274, with 552 of the
// truncated reciprocals off, and there are 273 and 550. Order. Six rows have fixed places; the
// others, descending, fill the places between.

#include <gmpxx.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tools/spectral_test.h"

namespace {

using namespace qor::tools;

constexpr uint32_t kSmallest = 16718909, kLargest = 16776971;
constexpr uint32_t kSmallestRoot = 112, kLargestRoot = 127;
constexpr size_t kRowCount = 273;
constexpr double kSpectralLimit = 0.3334;
constexpr size_t kReciprocalsOff = 550;  // that differ from the correctly rounded ones

struct Row {
  std::array<uint32_t, 4> m, a;
  bool operator==(const Row&) const = default;
};

struct Placed {
  size_t place;
  Row row;
};
const Placed kFixed[] = {
    {0, {{16770647, 16770643, 16770623, 16770617}, {125, 117, 127, 126}}},
    {1, {{16770311, 16770283, 16770263, 16770209}, {127, 126, 125, 123}}},
    {2, {{16769807, 16769771, 16769749, 16769663}, {125, 119, 123, 126}}},
    {100, {{16726343, 16726337, 16726279, 16726247}, {127, 126, 120, 125}}},
    {200, {{16731047, 16731023, 16731007, 16730933}, {126, 123, 117, 127}}},
    {272, {{16766363, 16766359, 16766327, 16766231}, {126, 127, 125, 124}}},
};

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "wh_table: %s\n", what.c_str());
  std::exit(1);
}

// ---- Numbers ------------------------------------------------------------------------------------

std::vector<uint32_t> prime_factors(uint32_t n) {
  std::vector<uint32_t> factors;
  for (uint32_t p = 2; p * p <= n; ++p) {
    if (n % p != 0) continue;
    factors.push_back(p);
    while (n % p == 0) n /= p;
  }
  if (n > 1) factors.push_back(n);
  return factors;
}

bool is_prime(uint32_t n) { return n > 1 && prime_factors(n) == std::vector{n}; }

uint32_t power_mod(uint64_t a, uint32_t e, uint32_t m) {
  uint64_t result = 1;
  for (; e != 0; e >>= 1, a = a * a % m) {
    if ((e & 1) != 0) result = result * a % m;
  }
  return static_cast<uint32_t>(result);
}

bool is_primitive_root(uint32_t a, uint32_t m) {
  const auto factors = prime_factors(m - 1);
  return std::none_of(factors.begin(), factors.end(),
                      [&](uint32_t p) { return power_mod(a, (m - 1) / p, m) == 1; });
}

uint32_t previous_prime(uint32_t n) {
  do --n;
  while (!is_prime(n));
  return n;
}

// ---- A row --------------------------------------------------------------------------------------

uint32_t next_modulus(const Row& row, size_t known) {
  uint32_t m = row.m[known - 1];
  const auto clashes = [&](uint32_t before) {
    return std::gcd((m - 1) / 2, (before - 1) / 2) != 1;
  };
  do m = previous_prime(m);
  while (std::any_of(row.m.begin(), row.m.begin() + static_cast<ptrdiff_t>(known), clashes));
  return m;
}

// The largest primitive root that the row has not used, or 0.
uint32_t next_multiplier(const Row& row, size_t known) {
  for (uint32_t a = kLargestRoot; a > 1; --a) {
    const auto used_end = row.a.begin() + static_cast<ptrdiff_t>(known);
    if (std::find(row.a.begin(), used_end, a) == used_end && is_primitive_root(a, row.m[known]))
      return a;
  }
  return 0;
}

Row row_from(uint32_t first) {
  Row row{};
  for (size_t j = 0; j < 4; ++j) {
    row.m[j] = j == 0 ? first : next_modulus(row, j);
    row.a[j] = next_multiplier(row, j);
  }
  return row;
}

// ---- Spectral test ------------------------------------------------------------------------------

bool passes_spectral_test(const Row& row) {
  mpz_class M = 1, a = 0;
  for (uint32_t m : row.m) M *= m;
  for (size_t j = 0; j < 4; ++j) {
    const mpz_class rest = M / row.m[j], m = row.m[j];
    mpz_class inverse;
    mpz_invert(inverse.get_mpz_t(), rest.get_mpz_t(), m.get_mpz_t());
    a += rest * inverse * row.a[j];
  }
  a %= M;
  for (size_t d = 2; d <= 6; ++d) {
    if (spectral_value(M, a, d) < kSpectralLimit) return false;
  }
  return true;
}

// ---- The table ----------------------------------------------------------------------------------

std::vector<Row> accepted_rows() {
  std::vector<Row> rows;
  for (uint32_t first = kLargest + 1; first > kSmallest;) {
    do first = previous_prime(first);
    while (first % 12 != 11);
    const Row row = row_from(first);
    if (row.m[3] < kSmallest) break;
    if (!passes_spectral_test(row)) continue;
    rows.push_back(row);
    first = row.m[3];
  }
  return rows;
}

std::vector<Row> in_order(const std::vector<Row>& rows) {
  std::vector<Row> table(kRowCount), others;
  std::vector<bool> taken(kRowCount, false);
  for (const Placed& fixed : kFixed) {
    if (std::find(rows.begin(), rows.end(), fixed.row) == rows.end())
      fail("a fixed row is missing");
    table[fixed.place] = fixed.row;
    taken[fixed.place] = true;
  }
  for (const Row& row : rows) {
    const auto is_row = [&](const Placed& fixed) { return fixed.row == row; };
    if (std::none_of(std::begin(kFixed), std::end(kFixed), is_row)) others.push_back(row);
  }
  auto next = others.begin();
  for (size_t place = 0; place < kRowCount; ++place) {
    if (!taken[place]) table[place] = *next++;
  }
  return table;
}

// floor(2^76 / m): 53 bits, so that its 2^-76th is 1/m rounded toward zero.
bool truncation_differs(uint32_t m) {
  const mpz_class truncated = (mpz_class(1) << 76) / m;
  return std::ldexp(truncated.get_d(), -76) != 1.0 / m;
}

void prove(const std::vector<Row>& table) {
  std::set<uint32_t> moduli;
  size_t off = 0;
  for (const Row& row : table) {
    for (size_t j = 0; j < 4; ++j) {
      if (!is_prime(row.m[j])) fail("a modulus is not prime");
      if (!is_primitive_root(row.a[j], row.m[j])) fail("a multiplier is no primitive root");
      if (row.a[j] < kSmallestRoot || row.a[j] > kLargestRoot) fail("a multiplier is out of range");
      moduli.insert(row.m[j]);
      off += truncation_differs(row.m[j]);
    }
  }
  if (moduli.size() != 4 * kRowCount) fail("moduli repeat");
  if (*moduli.begin() != kSmallest || *moduli.rbegin() != kLargest) fail("the range is another");
  if (off != kReciprocalsOff) fail("the count of truncated reciprocals is another");
}

std::string print(const std::vector<Row>& table) {
  std::ostringstream out;
  out << "// Made by tools/wh_table, which has the rule and proves: " << 4 * kRowCount
      << " distinct primes,\n// multipliers that are primitive roots. Not to be edited.\n"
         "#pragma once\n\n#include <cstdint>\n\nnamespace qor::streams {\n\n"
         "struct WhRow {\n  uint32_t m[4];  // moduli\n  uint8_t a[4];   // multipliers\n};\n\n"
         "inline constexpr WhRow wh_rows["
      << kRowCount << "] = {\n";
  const auto list = [&](const std::array<uint32_t, 4>& v) {
    out << "{" << v[0] << ", " << v[1] << ", " << v[2] << ", " << v[3] << "}";
  };
  for (const Row& row : table) {
    out << "    {";
    list(row.m);
    out << ", ";
    list(row.a);
    out << "},\n";
  }
  out << "};\n\n}  // namespace qor::streams\n";
  return out.str();
}

}  // namespace

int main() {
  const std::vector<Row> rows = accepted_rows();
  if (rows.size() != kRowCount) fail("the rule gives " + std::to_string(rows.size()) + " rows");
  const std::vector<Row> table = in_order(rows);
  prove(table);
  std::fputs(print(table).c_str(), stdout);
  return 0;
}
