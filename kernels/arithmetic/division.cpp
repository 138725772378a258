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
struct Inv : Unary<T> {
  using typename Unary<T>::V;
  using typename Unary<T>::LaneSet;
  static constexpr int registers = 4;
  static constexpr bool is_single = sizeof(T) == sizeof(float);
  static constexpr const char* name = is_single ? "vsInv" : "vdInv";
  static constexpr const char* strided_name = is_single ? "vsInvI" : "vdInvI";
  static constexpr Environment environment = kDivision<T>;

  V core(V x) const { return T{1} / x; }
  LaneSet special(V x) const { return lanes::equal(x, V{}); }
  Outcome<T> scalar(T x) const { return divide_by_zero(T{1}, x); }
};

template <class T>
struct Div : Binary<T> {
  using typename Binary<T>::V;
  using typename Binary<T>::LaneSet;
  static constexpr int registers = 4;
  static constexpr bool is_single = sizeof(T) == sizeof(float);
  static constexpr const char* name = is_single ? "vsDiv" : "vdDiv";
  static constexpr const char* strided_name = is_single ? "vsDivI" : "vdDivI";
  static constexpr Environment environment = kDivision<T>;

  V core(V a, V b) const { return a / b; }
  LaneSet special(V, V b) const { return lanes::equal(b, V{}); }
  Outcome<T> scalar(T a, T b) const { return divide_by_zero(a, b); }
};

}  // namespace

QOR_FILL_ROW(s, Inv, unary, A, 1, Inv<float>)
QOR_FILL_ROW(d, Inv, unary, A, 1, Inv<double>)
QOR_FILL_ROW(s, Div, binary, A, 1, Div<float>)
QOR_FILL_ROW(d, Div, binary, A, 1, Div<double>)

}  // namespace qor::kernels
