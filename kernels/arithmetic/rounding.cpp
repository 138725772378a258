// Ceil, Floor, Trunc, Round, Rint, NearbyInt: to an integer, single and double.
//
// Method.   kernels/arithmetic/rounding_core.h; to nearest is in force whatever the caller had, so
// that Rint
//           and NearbyInt give the same.
// Accuracy. exact.
// Special.  a zero result has the sign of x; infinities and integers pass; a NaN is quieted.
//           Nothing is reported.

#include "kernels/arithmetic/rounding_core.h"
#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

template <class T>
struct Rounding : Everywhere<T(T)> {
  static constexpr Traits traits{.group = 4, .aligned_stores = true};
};

template <class T>
struct Ceil : Rounding<T> {
  using typename Rounding<T>::V;
  V core(V x) const { return rounding::up(x); }
};

template <class T>
struct Floor : Rounding<T> {
  using typename Rounding<T>::V;
  V core(V x) const { return rounding::down(x); }
};

template <class T>
struct Trunc : Rounding<T> {
  using typename Rounding<T>::V;
  V core(V x) const { return rounding::to_zero(x); }
};

// Halves go away from zero.
template <class T>
struct Round : Rounding<T> {
  using typename Rounding<T>::V;
  V core(V x) const { return rounding::half_away(x); }
};

// Halves go to even.
template <class T>
struct Rint : Rounding<T> {
  using typename Rounding<T>::V;
  V core(V x) const { return rounding::nearest(x); }
};

}  // namespace

QOR_FILL_ROW(s, Ceil, unary, Ceil<float>)
QOR_FILL_ROW(d, Ceil, unary, Ceil<double>)
QOR_FILL_ROW(s, Floor, unary, Floor<float>)
QOR_FILL_ROW(d, Floor, unary, Floor<double>)
QOR_FILL_ROW(s, Trunc, unary, Trunc<float>)
QOR_FILL_ROW(d, Trunc, unary, Trunc<double>)
QOR_FILL_ROW(s, Round, unary, Round<float>)
QOR_FILL_ROW(d, Round, unary, Round<double>)
QOR_FILL_ROW(s, Rint, unary, Rint<float>)
QOR_FILL_ROW(d, Rint, unary, Rint<double>)
QOR_FILL_ROW(s, NearbyInt, unary, Rint<float>)
QOR_FILL_ROW(d, NearbyInt, unary, Rint<double>)

}  // namespace qor::kernels
