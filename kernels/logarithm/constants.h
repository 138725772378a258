// Constants of the logarithms' bases and reductions: read by the kernels and by the tools that make
// their tables and polynomials.
#pragma once

#include <cstdint>

namespace qor::kernels::log_constants {

// For a base b and a type:
//   two_high, two_low  log_b 2 in two parts; the products of two_high with an exponent are exact
//   log_e              log_b e
//   slope              a number of few bits near log_b e: at a table row the reduced argument is
//                      kept times slope, so that its products stay exact
//   row_bits           rows are for reciprocals c / 2^row_bits, c in [2^(row_bits - 1), 2^row_bits]
template <class T>
struct Natural;
template <class T>
struct Decimal;
template <class T>
struct Binary;

template <>
struct Natural<double> {
  static constexpr double two_high = 0x1.62e42fefap-1, two_low = 0x1.cf79abc9ep-40;
  static constexpr double log_e = 1.0;
  static constexpr double slope = 1.0;
  static constexpr int row_bits = 10;
};

template <>
struct Decimal<double> {
  static constexpr double two_high = 0x1.34413509fp-2, two_low = 0x1.e7fbcc47cp-40;
  static constexpr double log_e = 0x1.bcb7b1526e50ep-2;
  static constexpr double slope = 0x1.bcp-2;
  static constexpr int row_bits = 10;
};

template <>
struct Binary<double> {
  static constexpr double two_high = 1.0, two_low = 0.0;
  static constexpr double log_e = 0x1.71547652b82fep+0;
  static constexpr double slope = 0x1.71p+0;
  static constexpr int row_bits = 9;
};

template <>
struct Natural<float> {
  static constexpr float two_high = 0x1.62e4p-1f, two_low = 0x1.7f7d1cp-20f;
  static constexpr float log_e = 1.0f;
  static constexpr float slope = 1.0f;
  static constexpr int row_bits = 7;
};

template <>
struct Decimal<float> {
  static constexpr float two_high = 0x1.3442p-2f, two_low = -0x1.95ecp-19f;
  static constexpr float log_e = 0x1.bcb7b2p-2f;
  static constexpr float slope = 0x1.cp-2f;
  static constexpr int row_bits = 7;
};

template <>
struct Binary<float> {
  static constexpr float two_high = 1.0f, two_low = 0.0f;
  static constexpr float log_e = 0x1.715476p+0f;
  static constexpr float slope = 0x1.7p+0f;
  static constexpr int row_bits = 7;
};

template <class T>
struct NumberLayout;

template <>
struct NumberLayout<double> {
  static constexpr int fraction_bits = 52;
  static constexpr int bias = 1023;
  // The high part of a table's logarithm is a multiple of this, so that it adds to that of the
  // exponent without rounding.
  static constexpr double grid = 0x1p-42;
};

template <>
struct NumberLayout<float> {
  static constexpr int fraction_bits = 23;
  static constexpr int bias = 127;
  static constexpr double grid = 0x1p-16;
};

// The cells of the mantissas m in [0.75, 1.5): the reduced argument m c - 1 lies in this interval.
template <int count>
struct Cells {
  static constexpr double first = -0.5 / count, last = 1.0 / count;
};

// log10(1 + v/slope)/v - 1 and the upper half of log2's at the rows of double, from the highest
// power of v down.
inline constexpr double log10_row_polynomial[] = {-0x1.5c91a15f7eb9fp+3, 0x1.6aba863a166dbp+2,
                                                  -0x1.8930964d2fa9bp+1, 0x1.c6a02dc954978p+0,
                                                  -0x1.27af2dc77b115p+0, 0x1.a7a6cbf2e410cp-10};
inline constexpr double log2_row_upper[] = {-0x1.b743ca0b38eebp-6, 0x1.7be52039fb7cep-5,
                                            -0x1.563d0fce1881p-4};

}  // namespace qor::kernels::log_constants
