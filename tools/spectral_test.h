// The spectral test of multiplicative congruential generators (Knuth, Seminumerical Algorithms,
// 3.3.4), in exact integers.
#pragma once

#include <gmpxx.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace qor::tools {

using Vector = std::vector<mpz_class>;
using Basis = std::vector<Vector>;

inline mpz_class dot(const Vector& a, const Vector& b) {
  mpz_class sum = 0;
  for (size_t k = 0; k < a.size(); ++k) sum += a[k] * b[k];
  return sum;
}

// The nearest integer to a / b, b > 0.
inline mpz_class nearest(const mpz_class& a, const mpz_class& b) {
  mpz_class quotient;
  const mpz_class twice = 2 * a + b;
  mpz_fdiv_q(quotient.get_mpz_t(), twice.get_mpz_t(), mpz_class(2 * b).get_mpz_t());
  return quotient;
}

// Pairwise reduction: shortens every vector by multiples of the others until none gets shorter.
inline void reduce_pairwise(Basis& basis) {
  for (bool shorter = true; shorter;) {
    shorter = false;
    for (size_t i = 0; i < basis.size(); ++i) {
      for (size_t j = 0; j < basis.size(); ++j) {
        if (i == j) continue;
        const mpz_class q = nearest(dot(basis[i], basis[j]), dot(basis[j], basis[j]));
        if (q == 0) continue;
        Vector candidate = basis[i];
        for (size_t k = 0; k < candidate.size(); ++k) candidate[k] -= q * basis[j][k];
        if (dot(candidate, candidate) >= dot(basis[i], basis[i])) continue;
        basis[i] = candidate;
        shorter = true;
      }
    }
  }
}

// The squared length of the shortest nonzero combination with coefficients of up to `bound`.
inline mpz_class shortest_combination(const Basis& basis, int bound) {
  const size_t d = basis.size();
  mpz_class best = dot(basis[0], basis[0]);
  std::vector<int> c(d, -bound);
  for (;;) {
    Vector sum(d, 0);
    for (size_t i = 0; i < d; ++i) {
      for (size_t k = 0; k < d; ++k) sum[k] += c[i] * basis[i][k];
    }
    const mpz_class length = dot(sum, sum);
    if (length != 0 && length < best) best = length;
    size_t i = 0;
    while (i < d && ++c[i] > bound) c[i++] = -bound;
    if (i == d) return best;
  }
}

// nu_d / (gamma_d^(1/2) M^(1/d)) of modulus M and multiplier a, gamma_d the Hermite constants; nu_d
// is the shortest vector of the dual lattice, whose basis is (M, 0, ...), (-a, 1, 0, ...), (-a^2,
// 0, 1, ...).
inline double spectral_value(const mpz_class& M, const mpz_class& a, size_t d) {
  static const double gamma_to_d[] = {0, 1, 4.0 / 3, 2, 4, 8, 64.0 / 3};  // gamma_d^d
  Basis basis(d, Vector(d, 0));
  basis[0][0] = M;
  mpz_class power = 1;
  for (size_t i = 1; i < d; ++i) {
    power = power * a % M;
    basis[i][0] = -power;
    basis[i][i] = 1;
  }
  reduce_pairwise(basis);
  const double nu = std::sqrt(shortest_combination(basis, 2).get_d());
  const double exponent = 1.0 / static_cast<double>(d);
  return nu / (std::pow(gamma_to_d[d], exponent / 2) * std::pow(M.get_d(), exponent));
}

}  // namespace qor::tools
