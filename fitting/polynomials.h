// Evaluation of piecewise polynomials and of their derivatives.
#pragma once

#include <array>
#include <cstdint>
#include <utility>

namespace qor::fitting {

// Results of one derivative for `count` sites, `stride` values apart: c holds `order` coefficients
// per piece, distance is that of a site from the left end of its piece.
template <class Real>
using PolynomialRoutine = void (*)(const Real* c, const int32_t* piece, const Real* distance,
                                   int64_t count, Real* out, int64_t stride);

// k (k - 1) ... (k - derivative + 1): the factor of coefficient k.
constexpr int falling_factorial(int k, int derivative) {
  int product = 1;
  for (int i = 0; i < derivative; ++i) product *= k - i;
  return product;
}

template <class Real, int order, int derivative>
inline Real polynomial(const Real* c, Real t) {
  Real value = Real(falling_factorial(order - 1, derivative)) * c[order - 1];
  for (int k = order - 2; k >= derivative; --k) {
    value = value * t + Real(falling_factorial(k, derivative)) * c[k];
  }
  return value;
}

template <class Real, int order, int derivative>
void evaluate_polynomials(const Real* c, const int32_t* piece, const Real* distance, int64_t count,
                          Real* out, int64_t stride) {
  for (int64_t i = 0; i < count; ++i) {
    out[i * stride] =
        polynomial<Real, order, derivative>(c + int64_t{order} * piece[i], distance[i]);
  }
}

// The same for values side by side.
template <class Real, int order>
void evaluate_values(const Real* c, const int32_t* piece, const Real* distance, int64_t count,
                     Real* out) {
  evaluate_polynomials<Real, order, 0>(c, piece, distance, count, out, 1);
}

// Cubic values, four sites together: the four coefficients of a piece are one load, and four pieces
// are transposed into vectors of equal powers.
template <class Real>
void evaluate_cubic_values(const Real* c, const int32_t* piece, const Real* distance, int64_t count,
                           Real* out) {
  typedef Real Four __attribute__((vector_size(4 * sizeof(Real))));
  const auto load = [](const Real* from, Four& v) { __builtin_memcpy(&v, from, sizeof v); };
  int64_t i = 0;
  for (; i + 4 <= count; i += 4) {
    Four p, q, r, s, t;
    load(c + int64_t{4} * piece[i], p);
    load(c + int64_t{4} * piece[i + 1], q);
    load(c + int64_t{4} * piece[i + 2], r);
    load(c + int64_t{4} * piece[i + 3], s);
    load(distance + i, t);
    const Four pq_even = __builtin_shufflevector(p, q, 0, 4, 2, 6);
    const Four pq_odd = __builtin_shufflevector(p, q, 1, 5, 3, 7);
    const Four rs_even = __builtin_shufflevector(r, s, 0, 4, 2, 6);
    const Four rs_odd = __builtin_shufflevector(r, s, 1, 5, 3, 7);
    const Four c0 = __builtin_shufflevector(pq_even, rs_even, 0, 1, 4, 5);
    const Four c1 = __builtin_shufflevector(pq_odd, rs_odd, 0, 1, 4, 5);
    const Four c2 = __builtin_shufflevector(pq_even, rs_even, 2, 3, 6, 7);
    const Four c3 = __builtin_shufflevector(pq_odd, rs_odd, 2, 3, 6, 7);
    const Four value = ((c3 * t + c2) * t + c1) * t + c0;
    __builtin_memcpy(out + i, &value, sizeof value);
  }
  evaluate_values<Real, 4>(c, piece + i, distance + i, count - i, out + i);
}

// Routines of an order by derivative.
template <class Real, int order, size_t... derivative>
constexpr auto polynomial_routines(std::index_sequence<derivative...>) {
  return std::array<PolynomialRoutine<Real>, order>{
      evaluate_polynomials<Real, order, static_cast<int>(derivative)>...};
}
template <class Real, int order>
inline constexpr auto routines_of_order =
    polynomial_routines<Real, order>(std::make_index_sequence<order>{});

// Any order: Horner's rule over falling factorials, which grow with the order and are kept as
// values.
template <class Real>
Real any_polynomial(const Real* c, int64_t order, int64_t derivative, Real t) {
  Real value = 0;
  for (int64_t k = order - 1; k >= derivative; --k) {
    Real factor = 1;
    for (int64_t i = 0; i < derivative; ++i) factor *= static_cast<Real>(k - i);
    value = value * t + factor * c[k];
  }
  return value;
}

}  // namespace qor::fitting
