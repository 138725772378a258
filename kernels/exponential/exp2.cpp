// Exp2: 2^x, single and double.
//
// Method.   x = k/N + r, exactly; 2^x = 2^(k/N) 2^r as in Exp.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormal results included; exact at integers.
// Special.  -inf -> +0; +inf -> +inf; NaN -> quiet NaN; overflow code 3; denormal result or 0
//           code 4.

#include "kernels/exponential/core.h"
#include "kernels/exponential/limits.h"
#include "kernels/exponential/scalar.h"
#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

using lanes::broadcast;

// ---- Shared by both scalar routines ---------------------------------------------------------

constexpr double kShifter = 0x1.8p+46;  // a unit of 1/64
// (2^r - 1) / r, |r| <= 1/128
constexpr double kBinary[] = {0x1.5d870c4d8440ap-10, 0x1.3b2ad33f8b48bp-7, 0x1.c6b08d7076268p-5,
                              0x1.ebfbdff82a23ap-3, 0x1.62e42fefa39efp-1};

exp_scalar::ScaledSum parts(double x) {
  const double t = x + kShifter;
  const double r = x - (t - kShifter);
  return exp_scalar::parts(exp_scalar::polynomial(r, kBinary) * r, exp_scalar::low_integer(t));
}

// ---- Single ---------------------------------------------------------------------------------

struct SExp2 : Tiered<float(float)> {
  static constexpr Traits traits{.group = exp_core::registers, .nan_passes = true};

  static constexpr float shifter = 0x1.8p+23f / exp_core::steps<float, 64>;

  // With (2^r - 1) / r - 1.
  V core(V x) const {
    const auto [r, shifted] = exp_core::reduce(x, shifter);
    if constexpr (exp_core::short_tables<float>) {
      const V rest = lanes::horner(r, tables::exp2_float_16);
      return exp_core::times_short_power(r, rest, r, shifted);
    } else {
      const V rest = lanes::horner(r, 0x1.ebfbf8p-3f, 0x1.62e486p-1f - 1.0f);
      return exp_core::times_growth<64>(r, rest, shifted);
    }
  }

  LaneSet special(V x) const {
    return lanes::above(lanes::bits(lanes::abs(x)), limits::sexp2::fast_image);
  }

  Wide<float> wide(V x, LaneSet special_lanes) const {
    using namespace limits::sexp2;
    return exp_core::wide<float>(x, special_lanes, {overflow, underflow},
                                 [&](V ordinary) { return core(ordinary); });
  }

  Outcome<float> scalar(float x) const {
    using namespace limits::sexp2;
    if (exp_scalar::special(x)) return exp_scalar::at_special(x);
    if (x >= overflow) return exp_scalar::overflow<float>();
    if (x <= underflow) return exp_scalar::underflow<float>();
    return exp_scalar::in_range<float>(parts(x), x < denormal);
  }
};

// ---- Double ---------------------------------------------------------------------------------

struct DExp2 : Tiered<double(double)> {
  static constexpr Traits traits{.group = exp_core::registers, .nan_passes = true};
  static constexpr double shifter = exp_scalar::shifter / exp_core::steps<double, 64>;

  V core(V x) const {
    const auto [r, shifted] = exp_core::reduce(x, shifter);
    if constexpr (exp_core::short_tables<double>) {
      const V rest = lanes::horner(r, tables::exp2_double_16) * r;
      return exp_core::times_short_power(r * broadcast(0.5), rest, shifted);
    } else {
      const V rest =
          lanes::horner(r, kBinary[0], kBinary[1], kBinary[2], kBinary[3], kBinary[4] - 1.0);
      return exp_core::times_growth<64>(r, rest, shifted);
    }
  }

  LaneSet special(V x) const {
    return lanes::high_word_above(lanes::bits(lanes::abs(x)), limits::dexp2::fast_high_word);
  }

  Wide<double> wide(V x, LaneSet special_lanes) const {
    using namespace limits::dexp2;
    return exp_core::wide<double>(x, special_lanes, {overflow, underflow},
                                  [&](V ordinary) { return core(ordinary); });
  }

  Outcome<double> scalar(double x) const {
    using namespace limits::dexp2;
    if (exp_scalar::special(x)) return exp_scalar::at_special(x);
    if (x >= overflow) return exp_scalar::overflow<double>();
    if (x <= underflow) return exp_scalar::underflow<double>();
    return exp_scalar::in_range<double>(parts(x), x < denormal);
  }
};

}  // namespace

QOR_FILL_ROW(s, Exp2, unary, SExp2)
QOR_FILL_ROW(d, Exp2, unary, DExp2)

}  // namespace qor::kernels
