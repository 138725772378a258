// Ln: the natural logarithm, single and double.
//
// Method.   see core.h; single without register tables: x = 2^e (1 + r) with |r| <= 1/3, and
//           a polynomial at r.
// Accuracy. see docs/accuracy.md; below 1 ulp (s), below 0.55 ulp (d), denormals included; ln 1 is
//           exact.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"

namespace qor::kernels {
namespace {

using lanes::bits;
using lanes::broadcast;
using lanes::multiply_add;

struct SLn : Tiered<float(float)> {
  static constexpr Traits traits{.nan_passes = true};
  using Base = log_vector::Natural<float>;
  static constexpr int32_t split = 0x3F2AAAAB;  // 2/3
  // (ln(1 + r) - r) / r^2
  static constexpr float table_free[] = {-0x1.08059p-3f, 0x1.1e66bap-3f,  -0x1.f3113cp-4f,
                                         0x1.1ed718p-3f, -0x1.559dccp-3f, 0x1.99d028p-3f,
                                         -0x1.fffefp-3f, 0x1.555506p-2f,  -0.5f};

  template <class E>
  static V logarithm(V x, E excess) {
    if constexpr (lanes::has_fma) {
      return log_vector::logarithm<Base>(x, log_vector::NoRest{}, excess);
    }
    const I above_split = bits(x) - split;
    const V e = log_vector::less(lanes::to_float(above_split >> 23), excess);
    const V r = lanes::from_bits((above_split & 0x7FFFFF) + split) - 1.0f;
    const V ln_m = multiply_add(r * r, lanes::horner(r, table_free), r);
    return multiply_add(e, broadcast(Base::two_high),
                        multiply_add(e, broadcast(Base::two_low), ln_m));
  }
  V core(V x) const { return logarithm(x, log_vector::NoExcess{}); }
  LaneSet special(V x) const { return log_vector::special(x); }
  Complete<float> wide(V x, LaneSet special_lanes) const {
    return log_vector::wide<float>(x, special_lanes,
                                   [](V m, auto excess) { return logarithm(m, excess); });
  }
};

using DLn = log_vector::Logarithm<double, log_vector::Natural, 1>;

}  // namespace

QOR_FILL_ROW(s, Ln, unary, SLn)
QOR_FILL_ROW(d, Ln, unary, DLn)

}  // namespace qor::kernels
