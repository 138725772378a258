// Add, Sub, Mul, Sqr, Abs: one IEEE operation an element, single and double.
//
// Accuracy. correctly rounded, in the rounding mode of the environment; Abs is exact.
// Special.  as the operation has them, of two NaN the first; nothing is reported. Abs multiplies
//           the sign away, so that a signalling NaN comes out quiet (and a NaN keeps its sign bit).
//
// The single kernels (but not their strided mates) and dAbs work in the caller's rounding mode, the
// others to nearest.

#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

template <class T>
inline constexpr Environment kPlainArithmetic{};
template <>
inline constexpr Environment kPlainArithmetic<float>{X87::masks, Mxcsr::mask};
template <>
inline constexpr Environment kPlainArithmetic<double>{X87::double_precision, Mxcsr::from_mode};

template <class Signature>
struct Arithmetic : Everywhere<Signature> {
  static constexpr Traits traits{.environment = kPlainArithmetic<typename Arithmetic::Real>,
                                 .group = 4,
                                 .aligned_stores = true};
};

template <class T>
struct Add : Arithmetic<T(T, T)> {
  using typename Everywhere<T(T, T)>::V;
  V core(V a, V b) const { return lanes::ordered_sum(a, b); }
};

template <class T>
struct Sub : Arithmetic<T(T, T)> {
  using typename Everywhere<T(T, T)>::V;
  V core(V a, V b) const { return a - b; }
};

template <class T>
struct Mul : Arithmetic<T(T, T)> {
  using typename Everywhere<T(T, T)>::V;
  V core(V a, V b) const { return lanes::ordered_product(a, b); }
};

template <class T>
struct Sqr : Arithmetic<T(T)> {
  using typename Everywhere<T(T)>::V;
  V core(V a) const { return a * a; }
};

template <class T>
struct Abs : Everywhere<T(T)> {
  using typename Everywhere<T(T)>::V;
  static constexpr Traits traits{
      .environment = {X87::masks, Mxcsr::mask}, .group = 4, .aligned_stores = true};

  V core(V argument) const {
    const V x = lanes::loaded_once(argument);
    return x * lanes::with_sign(lanes::broadcast(T{1}), x);
  }
};

}  // namespace

QOR_FILL_ROW(s, Add, binary, Add<float>)
QOR_FILL_ROW(d, Add, binary, Add<double>)
QOR_FILL_ROW(s, Sub, binary, Sub<float>)
QOR_FILL_ROW(d, Sub, binary, Sub<double>)
QOR_FILL_ROW(s, Mul, binary, Mul<float>)
QOR_FILL_ROW(d, Mul, binary, Mul<double>)
QOR_FILL_ROW(s, Sqr, unary, Sqr<float>)
QOR_FILL_ROW(d, Sqr, unary, Sqr<double>)
QOR_FILL_ROW(s, Abs, unary, Abs<float>)
QOR_FILL_ROW(d, Abs, unary, Abs<double>)

}  // namespace qor::kernels
