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
#include "kernels/frame/simple.h"

namespace qor::kernels {
namespace {

template <class T>
struct Ceil : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  V core(V x) const { return rounding::up(x); }
};

template <class T>
struct Floor : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  V core(V x) const { return rounding::down(x); }
};

template <class T>
struct Trunc : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  V core(V x) const { return rounding::to_zero(x); }
};

// Halves go away from zero.
template <class T>
struct Round : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  V core(V x) const { return rounding::half_away(x); }
};

// Halves go to even.
template <class T>
struct Rint : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  V core(V x) const { return rounding::nearest(x); }
};

}  // namespace

QOR_FILL_ROW(s, Ceil, unary, A, 1, Ceil<float>)
QOR_FILL_ROW(d, Ceil, unary, A, 1, Ceil<double>)
QOR_FILL_ROW(s, Floor, unary, A, 1, Floor<float>)
QOR_FILL_ROW(d, Floor, unary, A, 1, Floor<double>)
QOR_FILL_ROW(s, Trunc, unary, A, 1, Trunc<float>)
QOR_FILL_ROW(d, Trunc, unary, A, 1, Trunc<double>)
QOR_FILL_ROW(s, Round, unary, A, 1, Round<float>)
QOR_FILL_ROW(d, Round, unary, A, 1, Round<double>)
QOR_FILL_ROW(s, Rint, unary, A, 1, Rint<float>)
QOR_FILL_ROW(d, Rint, unary, A, 1, Rint<double>)
QOR_FILL_ROW(s, NearbyInt, unary, A, 1, Rint<float>)
QOR_FILL_ROW(d, NearbyInt, unary, A, 1, Rint<double>)

}  // namespace qor::kernels
