// Exp: e^x, single and double.
//
// Method.   x = k ln2/N + r; e^x = 2^(k/N) e^r, the power from a table in two parts and an exponent
//           added to its bits, e^r - 1 by a polynomial (Tang, 1989).
// Accuracy. see docs/accuracy.md; below 0.55 ulp (d), below 1 ulp (s), denormal results included.
// Special.  -inf -> +0; +inf -> +inf; NaN -> quiet NaN; overflow code 3; denormal result or 0
//           code 4.

#include <limits>

#include "kernels/exponential/core.h"
#include "kernels/exponential/limits.h"
#include "kernels/exponential/scalar.h"
#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

using lanes::broadcast;

// ---- Single ---------------------------------------------------------------------------------

struct SExp : Tiered<float(float)> {
  static constexpr Traits traits{
      .group = exp_core::registers, .nan_passes = true, .code_flags = CodeFlags::of_heard_codes};
  // ln 2 / 128
  static constexpr auto step = exp_core::step_of_level<128>(
      exp_core::Step<float>{0x1.715476p+7f, 0x1.8p+23f, 0x1.63p-8f, -0x1.bd0106p-20f},
      tables::exp_step_16);

  V core(V x) const {
    const auto [r, shifted] = exp_core::reduce(x, step);
    if constexpr (exp_core::short_tables<float>) {
      const V tail = lanes::horner(r, tables::exp_float_16);
      return exp_core::times_short_power(r, tail, r * r, shifted);
    } else {
      const V tail = broadcast(0.5f);
      return exp_core::times_power<128>(lanes::multiply_add(r * r, tail, r), shifted);
    }
  }

  LaneSet special(V x) const {
    return lanes::above(lanes::bits(lanes::abs(x)), limits::sexp::fast_image);
  }

  Wide<float> wide(V x, LaneSet special_lanes) const {
    using namespace limits::sexp;
    return exp_core::wide<float>(x, special_lanes,
                                 {next_magnitude(overflow), next_magnitude(underflow)},
                                 [&](V ordinary) { return core(ordinary); });
  }

  Outcome<float> scalar(float x) const {
    using namespace limits::sexp;
    if (exp_scalar::special(x)) return exp_scalar::at_special(x);
    if ((std::bit_cast<int32_t>(x) >> 23 & 0xFF) < tiny_exponent) return {1.0f + x};
    if (x > overflow) return exp_scalar::overflow<float>();
    if (x < underflow) return exp_scalar::underflow<float>();
    return exp_scalar::in_range<float>(exp_scalar::natural_of_float(x), x < denormal);
  }
};

// ---- Double ---------------------------------------------------------------------------------

struct DExp : Tiered<double(double)> {
  static constexpr Traits traits{
      .group = exp_core::registers, .nan_passes = true, .code_flags = CodeFlags::of_heard_codes};
  static constexpr auto step = exp_core::step_of_level<64>(
      exp_core::Step<double>{exp_scalar::steps_per_unit, exp_scalar::shifter, exp_scalar::step_high,
                             exp_scalar::step_low});

  V core(V x) const {
    if constexpr (exp_core::short_tables<double>) {
      const auto [r, head, small, shifted] = exp_core::reduce_in_parts(x, step);
      const V rest = lanes::multiply_add(r * r, lanes::horner(r, tables::exp_double_16), -small);
      return exp_core::times_short_power(head, rest, shifted);
    } else {
      const auto [r, shifted] = exp_core::reduce(x, step);
      const V p = lanes::horner(r, 0x1.111112d9f549bp-7, 0x1.555573f218b93p-5, 0x1.555555555653ep-3,
                                0x1.fffffffffdb3bp-2);
      return exp_core::times_power<64>(lanes::multiply_add(r * r, p, r), shifted);
    }
  }

  LaneSet special(V x) const {
    return lanes::high_word_above(lanes::bits(lanes::abs(x)), limits::dexp::fast_high_word);
  }

  Wide<double> wide(V x, LaneSet special_lanes) const {
    using namespace limits::dexp;
    return exp_core::wide<double>(x, special_lanes,
                                  {next_magnitude(overflow), next_magnitude(underflow)},
                                  [&](V ordinary) { return core(ordinary); });
  }

  Outcome<double> scalar(double x) const {
    using namespace limits::dexp;
    if (exp_scalar::special(x)) return exp_scalar::at_special(x);
    if ((std::bit_cast<int64_t>(x) >> 52 & 0x7FF) < tiny_exponent) return {1.0 + x};
    if (x > overflow) return exp_scalar::overflow<double>();
    if (x < underflow) return exp_scalar::underflow<double>();
    return exp_scalar::in_range<double>(exp_scalar::natural_of_double(x), x < denormal);
  }
};

}  // namespace

QOR_FILL_ROW(s, Exp, unary, SExp)
QOR_FILL_ROW(d, Exp, unary, DExp)

}  // namespace qor::kernels
