// Modular arithmetic of skip-ahead: powers of numbers and of 3 by 3 companion matrices.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qor::streams {

constexpr uint64_t mul_mod(uint32_t a, uint32_t b, uint32_t m) { return uint64_t{a} * b % m; }

// A matrix of residues by rows, and the transition matrix of a recurrence of order 3, whose bottom
// row is the recurrence.
using Matrix3 = std::array<uint32_t, 9>;
using Vector3 = std::array<uint32_t, 3>;

constexpr Matrix3 companion(const uint32_t* row) {
  return {0, 1, 0, 0, 0, 1, row[0], row[1], row[2]};
}

// The dot product of two triples `stride` apart in b.
constexpr uint32_t dot_mod(const uint32_t* a, const uint32_t* b, size_t stride, uint32_t m) {
  uint64_t sum = 0;
  for (size_t k = 0; k < 3; ++k) {
    sum += mul_mod(a[k], b[k * stride], m);
    if (sum >= m) sum -= m;
  }
  return static_cast<uint32_t>(sum);
}

constexpr Matrix3 product_mod(const Matrix3& a, const Matrix3& b, uint32_t m) {
  Matrix3 result{};
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < 3; ++j) result[3 * i + j] = dot_mod(&a[3 * i], &b[j], 3, m);
  }
  return result;
}

constexpr Matrix3 square_mod(const Matrix3& a, uint32_t m) { return product_mod(a, a, m); }

// companion(row) to the power e.
constexpr Matrix3 power_mod(const Vector3& row, uint32_t e, uint32_t m) {
  Matrix3 result = {1, 0, 0, 0, 1, 0, 0, 0, 1}, square = companion(row.data());
  for (; e != 0; e >>= 1, square = square_mod(square, m)) {
    if ((e & 1) != 0) result = product_mod(result, square, m);
  }
  return result;
}

// v = a v mod m.
constexpr void multiply_mod(const uint32_t* a, uint32_t* v, uint32_t m) {
  const Vector3 old = {v[0], v[1], v[2]};
  for (size_t i = 0; i < 3; ++i) v[i] = dot_mod(&a[3 * i], old.data(), 1, m);
}

// companion(row) to the power 2^b, b = 0, 1, ...
template <size_t count>
constexpr std::array<Matrix3, count> powers_of_two(const Vector3& row, uint32_t m) {
  std::array<Matrix3, count> powers{companion(row.data())};
  for (size_t b = 1; b < count; ++b) powers[b] = square_mod(powers[b - 1], m);
  return powers;
}

// The two components of MRG32K3A (L'Ecuyer 1999).
inline constexpr uint32_t mrg_m1 = 4294967087;  // 2^32 - 209
inline constexpr uint32_t mrg_m2 = 4294944443;  // 2^32 - 22853
inline constexpr Vector3 mrg_row1 = {mrg_m1 - 810728, 1403580, 0};
inline constexpr Vector3 mrg_row2 = {mrg_m2 - 1370589, 0, 527612};

}  // namespace qor::streams
