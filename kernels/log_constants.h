// Constants of the logarithms' bases and table reductions: read by the kernels and by the tools
// that make their tables and polynomials.
#pragma once

namespace qor::kernels::log_constants {

// For a base b:
//   two_high, two_low  log_b 2 in two parts, with trailing zeros that make their products with an
//                      exponent exact, so that these cancel exactly at x = 1
//   slope              a number of few bits near log_b e: the reduced argument is kept times slope,
//                      and its product with the leading bits of x stays exact
//   row_bits           table rows are for c / 2^row_bits, c from 2^(row_bits - 1) to 2^row_bits
//   per_natural        log_b e in two parts
struct Natural {
  static constexpr double two_high = 0x1.62e42fefap-1;
  static constexpr double two_low = 0x1.cf79abc9ep-40;
  static constexpr double slope = 1.0;
  static constexpr int row_bits = 10;
  static constexpr double per_natural = 1.0, per_natural_low = 0.0;
};

struct Decimal {
  static constexpr double two_high = 0x1.34413509fp-2;
  static constexpr double two_low = 0x1.e7fbcc47cp-40;
  static constexpr double slope = 0x1.bcp-2;
  static constexpr int row_bits = 10;
  static constexpr double per_natural = 0x1.bcb7b1526e50ep-2;
  static constexpr double per_natural_low = 0x1.95355baaafad3p-57;
};

struct Binary {
  static constexpr double two_high = 1.0;
  static constexpr double two_low = 0.0;
  static constexpr double slope = 0x1.71p+0;
  static constexpr int row_bits = 9;
  static constexpr double per_natural = 0x1.71547652b82fep+0;
  static constexpr double per_natural_low = 0x1.777d0ffda0d24p-56;
};

inline constexpr int exponent_bias = 1023;

// The high part of a row's logarithm is a multiple of this: it adds to the exponent's high part and
// to the leading part of the reduced argument without rounding.
inline constexpr double row_grid = 0x1p-42;

// The 16 cells of [0.75, 1.5): the reduced argument m c - 1 lies in this interval.
inline constexpr double cell_first = -0.0375, cell_last = 0.0625;

// Coefficients of v^4 to v^6 in log2(1 + v / slope), |v| <= slope / 512; the lower ones are fitted.
inline constexpr double log2_rows_last[] = {-0x1.563d0fce1881p-4, 0x1.7be52039fb7cep-5,
                                            -0x1.b743ca0b38eebp-6};

// Single precision: the mantissa lies in [split, 2 split), as an image, and log_b(1 + r) is
// slope r + r P(r) with slope r exact.
namespace single {
inline constexpr int natural_split = 0x3F2AAAAB;  // 2/3
inline constexpr int even_split = 0x3F3504F3;     // the square root of 1/2
inline constexpr float decimal_slope = 0.5f;
inline constexpr float binary_slope = 1.5f;
}  // namespace single

}  // namespace qor::kernels::log_constants
