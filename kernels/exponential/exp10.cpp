// Exp10: 10^x, single and double.
//
// Method.   x = k log10(2)/N + r; 10^x = 2^(k/N) 10^r as in Exp.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormal results included.
// Special.  -inf -> +0; +inf -> +inf; NaN -> quiet NaN; overflow code 3; denormal result or 0
//           code 4.

#include "kernels/exponential/core.h"
#include "kernels/exponential/limits.h"
#include "kernels/exponential/scalar.h"
#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

// ---- Shared by both scalar routines ---------------------------------------------------------

constexpr double kStepsPerUnit = 0x1.a934f0979a371p+7;  // 64 / log10(2)
constexpr double kStepHigh = 0x1.34413509fp-8;          // log10(2) / 64, its first 37 bits
constexpr double kStepLow = 0x1.e7fbcc47c4acdp-46;      // and the rest
// (10^r - 1) / r, |r| <= log10(2) / 128
constexpr double kDecimal[] = {0x1.1427c87c70a85p-1, 0x1.2bd77b840f0bfp+0, 0x1.0470591e2bc1p+1,
                               0x1.53524c73cd20ap+1, 0x1.26bb1bbb55515p+1};

exp_scalar::ScaledSum parts(double x) {
  const double t = kStepsPerUnit * x + exp_scalar::shifter;
  const double k = t - exp_scalar::shifter;
  const double r = (x - k * kStepHigh) - k * kStepLow;
  return exp_scalar::parts(exp_scalar::polynomial(r, kDecimal) * r, exp_scalar::low_integer(t));
}

// ---- Single ---------------------------------------------------------------------------------

struct SExp10 : Tiered<float(float)> {
  static constexpr Traits traits{.group = exp_core::registers, .nan_passes = true};
  // log10(2) / 128
  static constexpr auto step = exp_core::step_of_level<128>(
      exp_core::Step<float>{0x1.a934fp+8f, 0x1.8p+23f, 0x1.348p-9f, -0x1.f657bp-20f},
      tables::exp10_step_16);

  // By 2 r and (10^r - 1) / (2 r) - 1.
  V core(V x) const {
    const auto [r, shifted] = exp_core::reduce(x, step);
    const V twice = r + r;
    if constexpr (exp_core::short_tables<float>) {
      const V rest = lanes::horner(r, tables::exp10_float_16);
      return exp_core::times_short_power(twice, rest, twice, shifted);
    } else {
      const V rest = lanes::horner(r, 0x1.535252p+0f, 0x1.26bb2ep+0f - 1.0f);
      return exp_core::times_growth<128>(twice, rest, shifted);
    }
  }

  LaneSet special(V x) const {
    return lanes::above(lanes::bits(lanes::abs(x)), limits::sexp10::fast_image);
  }

  Wide<float> wide(V x, LaneSet special_lanes) const {
    using namespace limits::sexp10;
    return exp_core::wide<float>(x, special_lanes,
                                 {next_magnitude(overflow), next_magnitude(underflow)},
                                 [&](V ordinary) { return core(ordinary); });
  }

  Outcome<float> scalar(float x) const {
    using namespace limits::sexp10;
    if (exp_scalar::special(x)) return exp_scalar::at_special(x);
    if (x > overflow) return exp_scalar::overflow<float>();
    if (x < underflow) return exp_scalar::underflow<float>();
    return exp_scalar::in_range<float>(parts(x), x < denormal);
  }
};

// ---- Double ---------------------------------------------------------------------------------

struct DExp10 : Tiered<double(double)> {
  static constexpr Traits traits{.group = exp_core::registers, .nan_passes = true};
  // log10(2) / 128
  static constexpr auto step = exp_core::step_of_level<128>(exp_core::Step<double>{
      0x1.a934f0979a371p+8, 0x1.88p+52, 0x1.3441350ap-9, -0x1.0c0219dc1da99p-46});

  V core(V x) const {
    if constexpr (exp_core::short_tables<double>) {
      const auto [r, head, small, shifted] = exp_core::reduce_in_parts(x, step);
      const V growth = lanes::horner(r, tables::exp10_double_16);
      return exp_core::times_short_power(head + head,
                                         lanes::multiply_add(growth, r, -(small + small)), shifted);
    } else {
      const auto [r, shifted] = exp_core::reduce(x, step);
      // By 2 r and (10^r - 1) / (2 r) - 1.
      const V rest =
          lanes::horner(r, 0x1.144c03efafb54p-2, 0x1.2bd767584db59p-1, 0x1.0470591ccea8bp+0,
                        0x1.53524c73ce8e3p+0, 0x1.26bb1bbb55516p+0 - 1.0);
      return exp_core::times_growth<128>(r + r, rest, shifted);
    }
  }

  LaneSet special(V x) const {
    return lanes::high_word_above(lanes::bits(lanes::abs(x)), limits::dexp10::fast_high_word);
  }

  Wide<double> wide(V x, LaneSet special_lanes) const {
    using namespace limits::dexp10;
    return exp_core::wide<double>(x, special_lanes,
                                  {next_magnitude(overflow), next_magnitude(underflow)},
                                  [&](V ordinary) { return core(ordinary); });
  }

  Outcome<double> scalar(double x) const {
    using namespace limits::dexp10;
    if (exp_scalar::special(x)) return exp_scalar::at_special(x);
    if (x > overflow) return exp_scalar::overflow<double>();
    if (x < underflow) return exp_scalar::underflow<double>();
    return exp_scalar::in_range<double>(parts(x), x < denormal);
  }
};

}  // namespace

QOR_FILL_ROW(s, Exp10, unary, SExp10)
QOR_FILL_ROW(d, Exp10, unary, DExp10)

}  // namespace qor::kernels
