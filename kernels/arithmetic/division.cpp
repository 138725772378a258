// Inv, Div: 1 / a and a / b, single and double.
//
// Method.   The processor's division; no estimates.
// Accuracy. correctly rounded: dInv and dDiv in the caller's rounding mode, the others to nearest.
// Special.  a divisor that compares equal to zero (denormals too where they count as zero) gives
//           the IEEE quotient, an infinity or for 0 / 0 a NaN, and code 2; a NaN over zero is
//           quieted and reports nothing.

#include "kernels/frame/rows.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr Environment kDivision{};
template <>
inline constexpr Environment kDivision<double>{X87::double_precision, Mxcsr::mask};

// The divisor is 0: the quotient at run time, where it raises its flag.
template <class T>
Outcome<T> divide_by_zero(T a, T b) {
  const bool is_nan = a != a;
  return {opaque(a) / b, is_nan ? QOR_ERROR_NONE : QOR_ERROR_SINGULARITY};
}

template <class T>
struct Inv : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;
  static constexpr Traits traits{.strided_name = true, .environment = kDivision<T>, .group = 4};

  V core(V x) const { return T{1} / x; }
  LaneSet special(V x) const { return lanes::equal(x, V{}); }
  Outcome<T> scalar(T x) const { return divide_by_zero(T{1}, x); }
};

template <class T>
struct Div : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::LaneSet;
  static constexpr Traits traits{.strided_name = true, .environment = kDivision<T>, .group = 4};

  V core(V a, V b) const { return a / b; }
  LaneSet special(V, V b) const { return lanes::equal(b, V{}); }
  Outcome<T> scalar(T a, T b) const { return divide_by_zero(a, b); }
};

}  // namespace

QOR_FILL_ROW(s, Inv, unary, Inv<float>)
QOR_FILL_ROW(d, Inv, unary, Inv<double>)
QOR_FILL_ROW(s, Div, binary, Div<float>)
QOR_FILL_ROW(d, Div, binary, Div<double>)

}  // namespace qor::kernels
