// What the logarithms' vector paths need of a base, for a type and the build level: constants,
// tables, polynomials.
#pragma once

#include "kernels/lanes.h"
#include "kernels/logarithm/constants.h"
#include "kernels/logarithm/tables/log_polynomials.h"
#include "kernels/logarithm/tables/log_tables.h"

namespace qor::kernels::log_vector {

// The cells' table and polynomial that suit the level: cells in memory or cells in registers.
template <class InMemory, class InRegisters>
constexpr const auto& for_doubles(const InMemory& in_memory, const InRegisters& in_registers) {
  if constexpr (lanes::has_register_tables<double>) {
    return in_registers;
  } else {
    return in_memory;
  }
}
// As many cells as a register has lanes.
template <class Eight, class Sixteen>
constexpr const auto& for_floats(const Eight& eight, const Sixteen& sixteen) {
  if constexpr (lanes::Lanes<float>::count == 16) {
    return sixteen;
  } else {
    return eight;
  }
}

// What the vector paths need of a base beside its constants: table and polynomial of the rows, of
// the cells.
//
//   rows    log_b(1 + r) = v + v P(v), v = slope r
//   cells   log_b(1 + r) = r log_b(e) + r P(r)
//
// and for base e, where the linear terms are 0, r + r^2 P(r) for both, or in the cells of double in
// registers r - r^2 / 2 + r^3 P(r).
template <class T>
struct Natural;
template <class T>
struct Decimal;
template <class T>
struct Binary;

template <>
struct Natural<double> : log_constants::Natural<double> {
  using Real = double;
  static constexpr bool half_apart = lanes::has_register_tables<double>;
  static constexpr const auto& rows = tables::dln_rows;
  static constexpr const auto& row_polynomial = tables::dln_rows_polynomial;
  static constexpr const auto& cells = for_doubles(tables::dln_cells_128, tables::dln_cells_16);
  static constexpr const auto& cell_polynomial =
      for_doubles(tables::dln_cells_128_polynomial, tables::dln_cells_16_polynomial);
};

template <>
struct Decimal<double> : log_constants::Decimal<double> {
  using Real = double;
  static constexpr const auto& rows = tables::dlog10_rows;
  static constexpr const auto& row_polynomial = log_constants::log10_row_polynomial;
  static constexpr const auto& cells =
      for_doubles(tables::dlog10_cells_128, tables::dlog10_cells_16);
  static constexpr const auto& cell_polynomial =
      for_doubles(tables::dlog10_cells_128_polynomial, tables::dlog10_cells_16_polynomial);
};

inline constexpr double log2_row_polynomial[] = {
    log_constants::log2_row_upper[0], log_constants::log2_row_upper[1],
    log_constants::log2_row_upper[2], tables::dlog2_rows_lower[0],
    tables::dlog2_rows_lower[1],      tables::dlog2_rows_lower[2]};

template <>
struct Binary<double> : log_constants::Binary<double> {
  using Real = double;
  static constexpr const auto& rows = tables::dlog2_rows;
  static constexpr const auto& row_polynomial = log2_row_polynomial;
  static constexpr const auto& cells = for_doubles(tables::dlog2_cells_128, tables::dlog2_cells_16);
  static constexpr const auto& cell_polynomial =
      for_doubles(tables::dlog2_cells_128_polynomial, tables::dlog2_cells_16_polynomial);
};

template <>
struct Natural<float> : log_constants::Natural<float> {
  using Real = float;
  static constexpr bool half_apart = false;
  static constexpr const auto& rows = tables::sln_rows;
  static constexpr const auto& row_polynomial = tables::sln_rows_polynomial;
  static constexpr const auto& cells = for_floats(tables::sln_cells_8, tables::sln_cells_16);
  static constexpr const auto& cell_polynomial =
      for_floats(tables::sln_cells_8_polynomial, tables::sln_cells_16_polynomial);
};

template <>
struct Decimal<float> : log_constants::Decimal<float> {
  using Real = float;
  static constexpr const auto& rows = tables::slog10_rows;
  static constexpr const auto& row_polynomial = tables::slog10_rows_polynomial;
  static constexpr const auto& cells = for_floats(tables::slog10_cells_8, tables::slog10_cells_16);
  static constexpr const auto& cell_polynomial =
      for_floats(tables::slog10_cells_8_polynomial, tables::slog10_cells_16_polynomial);
};

template <>
struct Binary<float> : log_constants::Binary<float> {
  using Real = float;
  static constexpr const auto& rows = tables::slog2_rows;
  static constexpr const auto& row_polynomial = tables::slog2_rows_polynomial;
  static constexpr const auto& cells = for_floats(tables::slog2_cells_8, tables::slog2_cells_16);
  static constexpr const auto& cell_polynomial =
      for_floats(tables::slog2_cells_8_polynomial, tables::slog2_cells_16_polynomial);
};

}  // namespace qor::kernels::log_vector
