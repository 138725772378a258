// Exp: e^x, single and double.
//
// Method.   x = m ln2/N + r; e^x = 2^(m/N) e^r, the power from a table in two parts and an exponent
//           added to its image, e^r - 1 by a polynomial (Tang, 1989).
// Accuracy. see docs/accuracy.md; below 0.55 ulp (d), below 1 ulp (s), denormal results included.
// Special.  -inf -> +0; +inf -> +inf; NaN -> quiet NaN; overflow code 3; denormal result or 0
// code 4.

#include <limits>

#include "kernels/exp_limits.h"
#include "kernels/exp_scalar.h"
#include "kernels/rows.h"

namespace qor::kernels {
namespace {

using lanes::abs;
using lanes::all;
using lanes::image;
using lanes::multiply_add;

// ---- Shared by both scalar routines ---------------------------------------------------------

constexpr double kStepsPerUnit = 0x1.71547652b82fep+6;  // 64 / ln 2
constexpr double kStepHigh = 0x1.62e42fefap-7;          // ln 2 / 64, its first 32 bits
constexpr double kStepLow = 0x1.cf79abc9e3b3ap-46;      // and the rest
// (e^r - 1 - r) / r^2, |r| <= ln 2 / 128
constexpr double kScalar[] = {0x1.6c16a1c2a3ffdp-10, 0x1.111123aaf20d3p-7, 0x1.5555555558fccp-5,
                              0x1.55555555548f8p-3, 0.5};

// e^x for |x| in the range where the result is finite and not 0, as q T, T and the power.
struct Parts {
  double q, t;
  int32_t m;
};

Parts finish_parts(double r, int32_t m) {
  const auto& row = tables::exp2_relative_64[m & 63];
  double q = kScalar[0];
  for (int i = 1; i < 5; ++i) q = q * r + kScalar[i];
  q = q * r * r + r + row.low;
  return {q * row.high, row.high, m};
}

// ---- Single ---------------------------------------------------------------------------------

struct SExp : Unary<float> {
  static constexpr const char* name = "vsExp";
  static constexpr float steps_per_unit = 0x1.715476p+7f;  // 128 / ln 2
  static constexpr float shifter = 0x1.8p+23f;
  static constexpr float step_high = 0x1.63p-8f;  // ln 2 / 128
  static constexpr float step_low = -0x1.bd0106p-20f;

  V core(V x) const {
    const V t = multiply_add(x, all(steps_per_unit), shifter);
    const I bits = image(t);
    const V k = t - shifter;
    const V r = multiply_add(k, all(-step_low), multiply_add(k, all(-step_high), x));
    const V p = multiply_add(r * r, all(0.5f), r);
    const auto row = lanes::gather_rows(tables::exp2_float_128, bits & 0x7F);
    const V scale = lanes::from_image(((bits + 0x3F80) << 16) & 0x7F800000);
    return scale * (row.first + multiply_add(p, row.first, row.second));
  }

  Doubt care(V x) const { return lanes::above(image(abs(x)), limits::sexp::fast_image); }

  Outcome<float> scalar(float x) const {
    const int32_t exponent = (std::bit_cast<int32_t>(x) >> 23) & 0xFF;
    if (exponent == 0xFF) {
      if (x == -std::numeric_limits<float>::infinity()) return {0.0f};
      return {x * x};
    }
    if (exponent < limits::sexp::tiny_exponent) return {1.0f + x};
    if (x > limits::sexp::overflow) {
      return {static_cast<float>(overflowed<double>()), QOR_ERROR_OVERFLOW};
    }
    if (x < limits::sexp::underflow) {
      return {static_cast<float>(underflowed<double>()), QOR_ERROR_UNDERFLOW};
    }
    return in_range(static_cast<double>(x));
  }

  static Outcome<float> in_range(double x) {
    const double t = kStepsPerUnit * x + exp_scalar::shifter;
    const double k = t - exp_scalar::shifter;
    const double r = (x - k * kStepLow) - k * kStepHigh;
    const Parts e = finish_parts(r, static_cast<int32_t>(std::bit_cast<int64_t>(t)));
    if (x >= static_cast<double>(limits::sexp::denormal)) {
      return {static_cast<float>(exp_scalar::scale_normal(e.q, e.t, e.m))};
    }
    return {static_cast<float>(exp_scalar::scale_denormal(e.q, e.t, e.m)), QOR_ERROR_UNDERFLOW};
  }

  M settle(V x, V& y) const {
    const M over = x > limits::sexp::overflow, under = x < limits::sexp::underflow;
    y = over ? all(std::numeric_limits<float>::infinity()) : y;
    y = under ? all(0.0f) : y;
    return over | under;
  }
};

// ---- Double ---------------------------------------------------------------------------------

struct DExp : Unary<double> {
  static constexpr const char* name = "vdExp";
  static constexpr double shifter = exp_scalar::shifter;

  V core(V x) const {
    const V t = multiply_add(x, all(kStepsPerUnit), shifter);
    const I bits = image(t);
    const V k = t - shifter;
    const V r = multiply_add(k, all(-kStepLow), multiply_add(k, all(-kStepHigh), x));
    const V p = lanes::horner(r, 0x1.111112d9f549bp-7, 0x1.555573f218b93p-5, 0x1.555555555653ep-3,
                              0x1.fffffffffdb3bp-2);
    const V q = multiply_add(r * r, p, r);
    const auto row = lanes::gather_rows(tables::exp2_double_64, bits & 0x3F);
    const V y = multiply_add(q, row.first, row.second) + row.first;
    return lanes::from_image(image(y) + ((bits & ~0x3Fll) << 46));
  }

  Doubt care(V x) const {
    return lanes::high_word_above(image(abs(x)), limits::dexp::fast_high_word);
  }

  Outcome<double> scalar(double x) const {
    const auto exponent = static_cast<int32_t>(std::bit_cast<int64_t>(x) >> 52) & 0x7FF;
    if (exponent == 0x7FF) {
      if (x == -std::numeric_limits<double>::infinity()) return {0.0};
      return {x * x};
    }
    if (exponent < limits::dexp::tiny_exponent) return {1.0 + x};
    if (x > limits::dexp::overflow) return {overflowed<double>(), QOR_ERROR_OVERFLOW};
    if (x < limits::dexp::underflow) return {underflowed<double>(), QOR_ERROR_UNDERFLOW};
    return in_range(x);
  }

  static Outcome<double> in_range(double x) {
    const double t = kStepsPerUnit * x + exp_scalar::shifter;
    const double k = t - exp_scalar::shifter;
    const double r = (x - k * kStepHigh) - k * kStepLow;
    const Parts e = finish_parts(r, static_cast<int32_t>(std::bit_cast<int64_t>(t)));
    if (x >= limits::dexp::denormal) return {exp_scalar::scale_normal(e.q, e.t, e.m)};
    return {exp_scalar::scale_denormal(e.q, e.t, e.m), QOR_ERROR_UNDERFLOW};
  }

  M settle(V x, V& y) const {
    const M over = x > limits::dexp::overflow, under = x < limits::dexp::underflow;
    y = over ? all(std::numeric_limits<double>::infinity()) : y;
    y = under ? all(0.0) : y;
    return over | under;
  }
};

}  // namespace

QOR_FILL_ROW(s, Exp, unary, A, 1, SExp)
QOR_FILL_ROW(d, Exp, unary, A, 1, DExp)

}  // namespace qor::kernels
