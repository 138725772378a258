// Log10: the decimal logarithm, single and double.
//
// Method.   see core.h.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormals included; exact at powers of ten.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"

namespace qor::kernels {
namespace {

template <class T>
struct Log10 : Tiered<T(T)> {
  using Base = log_vector::Decimal<T>;
  static constexpr Traits traits{.group = log_vector::registers, .nan_passes = true};
  using typename Tiered<T(T)>::V;

  V core(V x) const { return log_vector::logarithm<Base>(x); }
  lanes::LaneSet<T> special(V x) const { return log_vector::special(x); }
  Complete<T> wide(V x, lanes::LaneSet<T> special_lanes) const {
    return log_vector::wide<T>(x, special_lanes, [](V m, auto excess) {
      return log_vector::logarithm<Base>(m, log_vector::NoRest{}, excess);
    });
  }
};

}  // namespace

QOR_FILL_ROW(s, Log10, unary, Log10<float>)
QOR_FILL_ROW(d, Log10, unary, Log10<double>)

}  // namespace qor::kernels
