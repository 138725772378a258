// Add, Sub, Mul, Sqr, Abs: one IEEE operation an element, single and double.
//
// Accuracy. correctly rounded, in the rounding mode of the environment; Abs is exact.
// Special.  as the operation has them, of two NaN the first; nothing is reported. Abs multiplies
//           the sign away, so that a signalling NaN comes out quiet (and a NaN keeps its sign bit).
//
// The single kernels (but not their strided mates) and dAbs work in the caller's rounding mode, the
// others to nearest.

#include "kernels/frame/rows.h"
#include "kernels/frame/simple.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr Environment kPlainArithmetic{};
template <>
inline constexpr Environment kPlainArithmetic<float>{X87::masks, Mxcsr::mask};
template <>
inline constexpr Environment kPlainArithmetic<double>{X87::double_precision, Mxcsr::from_mode};

template <class T, int inputs>
struct Arithmetic : Simple<T, inputs> {
  static constexpr Environment environment = kPlainArithmetic<T>;
};

template <class T>
struct Add : Arithmetic<T, 2> {
  using typename Simple<T, 2>::V;
  V core(V a, V b) const { return lanes::ordered_sum(a, b); }
};

template <class T>
struct Sub : Arithmetic<T, 2> {
  using typename Simple<T, 2>::V;
  V core(V a, V b) const { return a - b; }
};

template <class T>
struct Mul : Arithmetic<T, 2> {
  using typename Simple<T, 2>::V;
  V core(V a, V b) const { return lanes::ordered_product(a, b); }
};

template <class T>
struct Sqr : Arithmetic<T, 1> {
  using typename Simple<T, 1>::V;
  V core(V a) const { return a * a; }
};

template <class T>
struct Abs : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  static constexpr Environment environment{X87::masks, Mxcsr::mask};

  V core(V argument) const {
    const V x = lanes::loaded_once(argument);
    return x * lanes::with_sign(lanes::broadcast(T{1}), x);
  }
};

}  // namespace

QOR_FILL_ROW(s, Add, binary, A, 1, Add<float>)
QOR_FILL_ROW(d, Add, binary, A, 1, Add<double>)
QOR_FILL_ROW(s, Sub, binary, A, 1, Sub<float>)
QOR_FILL_ROW(d, Sub, binary, A, 1, Sub<double>)
QOR_FILL_ROW(s, Mul, binary, A, 1, Mul<float>)
QOR_FILL_ROW(d, Mul, binary, A, 1, Mul<double>)
QOR_FILL_ROW(s, Sqr, unary, A, 1, Sqr<float>)
QOR_FILL_ROW(d, Sqr, unary, A, 1, Sqr<double>)
QOR_FILL_ROW(s, Abs, unary, A, 1, Abs<float>)
QOR_FILL_ROW(d, Abs, unary, A, 1, Abs<double>)

}  // namespace qor::kernels
