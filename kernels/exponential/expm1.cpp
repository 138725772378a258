// Expm1: e^x - 1, single (double: expm1_double.cpp).
//
// Method.   x = k ln2/N + r; A = 2^(k/N) from a table in two parts; e^x - 1 = (A - 1) + A r +
//           A (e^r - 1 - r), the first two terms summed without error, since they may cancel. For
//           k = 0 that is r + (e^r - 1 - r): small arguments keep their digits. What the table and
//           the reduction of x lose stays beside r.
// Accuracy. see docs/accuracy.md; below 1 ulp.
// Special.  +-0 and denormals -> themselves; -inf -> -1; +inf -> +inf; NaN -> quiet NaN; overflow
//           code 3.

#include "kernels/exact/exact.h"
#include "kernels/exponential/core.h"
#include "kernels/exponential/limits.h"
#include "kernels/exponential/scalar.h"
#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

using lanes::bits;
using lanes::broadcast;
using lanes::multiply_add;

struct SExpm1 : Tiered<float(float)> {
  static constexpr Traits traits{.nan_passes = true};
  // ln 2 / 64
  static constexpr auto step = exp_core::step_of_level<64>(
      exp_core::Step<float>{0x1.715476p+6f, 0x1.8p+23f, 0x1.63p-7f, -0x1.bd0106p-19f},
      tables::exp_step_16);
  static constexpr float saturated = -25.0f;  // below, e^x - 1 rounds to -1

  // e^x - 1 from the terms of a table kept in registers (multiply-add; k step is exact).
  static V by_short_table(V r, V k, I shifted) {
    const V a = lanes::from_bits(bits(lanes::look_up(tables::exp2_float_16_bases, shifted)) +
                                 (shifted << 19));
    const V lost =
        multiply_add(k, broadcast(-step.low), lanes::look_up(tables::exp2_float_16_rests, shifted));
    // (1 + lost) e^r - 1 - r
    const V growth = lanes::horner(r, tables::exp_float_16);
    const V tail = multiply_add(r, multiply_add(r, growth, lost), lost);
    // Between 1/2 and 2^24, a - 1 is exact.
    const auto huge = a > broadcast(0x1p24f);
    const V less_one = huge ? a : a - broadcast(1.0f);
    const V rest = huge ? broadcast(-1.0f) : a - (less_one + broadcast(1.0f));
    const V y = multiply_add(a, r, less_one);
    return y + multiply_add(a, tail, multiply_add(a, r, less_one - y) + rest);
  }

  // (a - 1) + a r, |a r| below |a - 1| or a = 1.
  static exact::Sum<V> leading_terms(V a, V r) {
    const exact::Sum<V> b = exact::two_sum(a, broadcast(-1.0f));
    // By an addition, so that what is left of a small r is r, and no denormal part of it.
    constexpr float cut = 0x1.8p+4f;  // a unit of 2^-19: 12 bits of the largest r
    const V a_head = exact::leading<12>(a), r_head = (r + cut) - cut;
    const V product = a_head * r_head;  // exact
    const V rest = a_head * (r - r_head) + (a - a_head) * r;
    const exact::Sum<V> y = exact::fast_two_sum(b.high, product);
    return {y.high, y.low + (b.low + rest)};
  }

  // The same from the terms of a table in memory.
  static V by_long_table(V r, V lost, I shifted) {
    const V scale = exp_core::power<6>(shifted);
    const auto row = lanes::gather_entries(tables::exp2_float_64, shifted & 63);
    const V growth = lanes::horner(r, 0x1.55557ep-3f, 0x1.00001ep-1f);
    const V tail = multiply_add(r * r, growth, lost);
    const V rest = multiply_add(row.first, tail, multiply_add(row.second, r, row.second));
    const exact::Sum<V> y = leading_terms(scale * row.first, r);
    return y.high + multiply_add(scale, rest, y.low);
  }

  V core(V argument) const {
    const V x = lanes::maximum(argument, broadcast(saturated));
    const V t = multiply_add(x, broadcast(step.per_unit), step.shifter);
    const V k = t - step.shifter;
    const V head_of_r = multiply_add(k, broadcast(-step.high), x);  // exact
    V result;
    if constexpr (exp_core::short_tables<float>) {
      result = by_short_table(head_of_r, k, bits(t));
    } else {
      const V r = multiply_add(k, broadcast(-step.low), head_of_r);
      const V lost = multiply_add(k, broadcast(-step.low), head_of_r - r);
      result = by_long_table(r, lost, bits(t));
    }
    return lanes::with_sign(result, argument);  // -0 too
  }

  LaneSet special(V x) const {
    return lanes::above(bits(x), limits::sexpm1::fast_image) | lanes::not_finite(x);
  }

  Wide<float> wide(V x, LaneSet special_lanes) const {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const LaneSet infinite = lanes::equal(lanes::abs(x), broadcast(infinity));
    const LaneSet below = special_lanes & lanes::negative(x);
    const LaneSet above = lanes::at_least(x, next_magnitude(limits::sexpm1::overflow));
    V y = core(lanes::select(special_lanes, 0.0f, x));
    y = lanes::select(above, infinity, y);
    y = lanes::select(below, -1.0f, y);
    return {.value = y,
            .left = special_lanes.without(above | below),
            .overflow = above.without(infinite)};
  }

  // Large arguments and special ones: an exponential, where the 1 is lost anyway.
  Outcome<float> scalar(float x) const {
    if (x == -std::numeric_limits<float>::infinity()) return {-1.0f};
    if (exp_scalar::special(x)) return {x * x};
    if (x > limits::sexpm1::overflow) return exp_scalar::overflow<float>();
    return exp_scalar::in_range<float>(exp_scalar::natural_of_float(x), false);
  }
};

}  // namespace

QOR_FILL_ROW(s, Expm1, unary, SExpm1)

}  // namespace qor::kernels
