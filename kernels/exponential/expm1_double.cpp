// Expm1: e^x - 1, double (single: expm1.cpp).
//
// Method.   Element by element, in the x87 unit set to double precision (contiguous), so that
//           neither MXCSR nor a level plays a part, or in SSE (strided): the same operations, the
//           same bits. |x| < 1/32: a polynomial. Else x = k ln2/128 + r, A = 2^(k/128) from a table
//           in two parts, e^x - 1 = (A - 1) + A (e^r - 1), the first part of A being short enough
//           for A - 1 to be exact.
// Accuracy. see docs/accuracy.md; below 1 ulp.
// Special.  |x| < 2^-52 -> x (-0 -> -0); -inf and x < -37.5 -> -1; +inf -> +inf; NaN -> quiet NaN;
//           overflow code 3.

#include <cstring>
#include <limits>
#include <type_traits>

#include "kernels/exponential/limits.h"
#include "kernels/exponential/scalar.h"
#include "kernels/frame/rows.h"
#include "kernels/scalar/bits.h"

namespace qor::kernels {
namespace {

using limits::dexpm1::overflow;
using limits::dexpm1::saturated;
using limits::dexpm1::small;
using limits::dexpm1::tiny;

constexpr double kStepsPerUnit = 0x1.71547652b82fep+7;  // 128 / ln 2
constexpr double kStepHigh = 0x1.62e42p-8;              // ln 2 / 128, its first 20 bits
constexpr double kStepLow = 0x1.fdf473de6af28p-29;      // and the rest

// Loaded by itself, so that the x87 unit loads x from where it is: a value that goes through the
// stack to the unit and back costs as much as all the arithmetic.
inline int64_t bits_in_memory(const double& x) {
  const double* from = &x;
  asm("" : "+r"(from));
  int64_t bits;
  std::memcpy(&bits, from, sizeof bits);
  return bits;
}

// `Number` is what the arithmetic is done in. Decisions look at integer bits: a comparison would
// look at MXCSR.
template <class Number>
struct DExpm1 : Walked<double(double)> {
  static constexpr Traits traits{.strided_name = true,
                                 .environment = {X87::double_precision, Mxcsr::none}};

  // |x| < 1/32. Terms are paired for a short chain of operations, here and below.
  static Number near_zero(Number x) {
    const auto& c = tables::expm1_small;
    const Number x2 = x * x;
    const Number low = (c[5] + x * c[4]) + x2 * (c[3] + x * c[2]);
    const Number tail = low + x2 * x2 * (c[1] + x * c[0]);
    return x + (x2 * 0.5 + x2 * x * tail);
  }

  // saturated <= x <= overflow, not near zero.
  static Number by_table(Number x) {
    const Number t = x * kStepsPerUnit + exp_scalar::shifter;
    const int32_t m = exp_scalar::low_integer(static_cast<double>(t));
    const Number k = t - exp_scalar::shifter;
    const Number r = (x - k * kStepHigh) - k * kStepLow;
    const auto& c = tables::expm1_128;
    const Number r2 = r * r;
    const Number growth = r + r2 * ((c[3] + r * c[2]) + r2 * (c[1] + r * c[0]));
    const auto& row = tables::exp2_split_128[m & 127];
    const Number rest = tables::exp2_double_128[m & 127].high * growth + row.low;
    return assemble(row.high, rest, m >> 7);
  }

  // 2^n (high + rest) - 1, high of 32 bits.
  static Number assemble(double high, Number rest, int32_t n) {
    if (n < -20) {  // the 1 leads
      const Number scale = power_of_two<double>(n);
      return (high * scale + rest * scale) - 1.0;
    }
    if (n > 52) {  // the power leads, up to 2^1024
      const Number half_scale = power_of_two<double>(n - 1);
      return (high * half_scale + (rest * half_scale - 0.5)) * 2.0;
    }
    const double scale = power_of_two<double>(n);
    const double leading = high * scale - 1.0;  // exact, whatever MXCSR says
    return leading + rest * scale;
  }

  static int32_t out_of_range(double x, double& y) {
    if (exp_scalar::special(x) && bits_of(x) != bits_of(-std::numeric_limits<double>::infinity())) {
      y = static_cast<double>(Number{x} * Number{x});
      return QOR_ERROR_NONE;
    }
    if (bits_of(x) < 0) {
      y = -1.0;
      return QOR_ERROR_NONE;
    }
    const Number largest = opaque(std::numeric_limits<double>::max());
    y = static_cast<double>(largest * largest);  // in x87 it is the narrowing that overflows
    return QOR_ERROR_OVERFLOW;
  }

  // Between the limits no argument has an exact chain of operations: kStepsPerUnit and c[4] have
  // too many bits for the sums that their products go into.
  static bool raises_x87_inexact(const double& x) {
    if constexpr (!std::is_same_v<Number, long double>) return false;
    const int64_t magnitude = bits_in_memory(x) & INT64_MAX;
    return magnitude >= bits_of(tiny) && magnitude <= bits_of(-saturated);
  }

  // The value of an element, and its code.
  int32_t evaluate(const double& x, double& y) const {
    const int64_t bits = bits_in_memory(x), magnitude = bits & INT64_MAX;
    if (magnitude < bits_of(small)) {
      if (magnitude < bits_of(tiny)) {
        y = static_cast<double>(Number{x} * opaque(1.0));
      } else {
        y = static_cast<double>(near_zero(x));
      }
      return QOR_ERROR_NONE;
    }
    // Without a branch: signs may be anything.
    const int64_t last =
        bits_of(overflow) ^ ((bits >> 63) & (bits_of(overflow) ^ bits_of(-saturated)));
    if (magnitude > last) [[unlikely]]
      return out_of_range(x, y);
    y = static_cast<double>(by_table(x));
    return QOR_ERROR_NONE;
  }
};

}  // namespace

QOR_FILL_CONTIGUOUS(d, Expm1, unary, A, DExpm1<long double>)
QOR_FILL_STRIDED(d, Expm1, unary, A, DExpm1<double>)

}  // namespace qor::kernels
