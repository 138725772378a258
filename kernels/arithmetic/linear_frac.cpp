// LinearFrac: (a aScale + aShift) / (b bScale + bShift), single and double.
//
// Method.   the scalars choose one of four loops before an element is read; the vector that the
//           formula does not need is not read. The division is the processor's in both precisions.
// Accuracy. that of the formula, each operation (where the level has it, each multiply-add)
//           correctly rounded; with bScale 0 the quotients of the scalars are rounded beforehand.
//           Where no sum cancels, the terms of each being of one sign, below 4.5 ulp, and below 2.5
//           with fused multiply-add: less than 1 for each rounding before the last.
// Special.  no element is looked at: a zero denominator gives the quotient that the processor
//           gives, and nothing is reported.

#include <cmath>

#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

using lanes::broadcast;
using lanes::multiply_add;

// ---- Loops ----------------------------------------------------------------------------------

inline constexpr Traits kLoop{.group = 4, .aligned_stores = true};

template <class T>
struct Ratio : Everywhere<T(T, T)> {
  using typename Everywhere<T(T, T)>::V;
  static constexpr Traits traits = kLoop;
  T a_scale, a_shift, b_scale, b_shift;
  V core(V a, V b) const {
    return multiply_add(a, broadcast(a_scale), a_shift) /
           multiply_add(b, broadcast(b_scale), b_shift);
  }
};

template <class T>
struct Line : Everywhere<T(T)> {
  using typename Everywhere<T(T)>::V;
  static constexpr Traits traits = kLoop;
  T scale, shift;
  V core(V a) const { return multiply_add(a, broadcast(scale), shift); }
};

template <class T>
struct LineTimes : Everywhere<T(T)> {
  using typename Everywhere<T(T)>::V;
  static constexpr Traits traits = kLoop;
  T scale, shift, factor;
  V core(V a) const { return multiply_add(a, broadcast(scale), shift) * factor; }
};

template <class T>
struct Hyperbola : Everywhere<T(T)> {
  using typename Everywhere<T(T)>::V;
  static constexpr Traits traits = kLoop;
  T numerator, scale, shift;
  V core(V b) const { return numerator / multiply_add(b, broadcast(scale), shift); }
};

// ---- Choice ---------------------------------------------------------------------------------

template <class T>
inline constexpr Environment kContiguous{};
template <>
inline constexpr Environment kContiguous<double>{X87::double_precision, Mxcsr::from_mode};

template <class T>
struct LinearFrac : Chosen<T(T, T)> {
  static constexpr Traits traits{.environment = kContiguous<T>};
  T a_scale, a_shift, b_scale, b_shift;

  template <class Run>
  void choose(const Run& run) const {
    constexpr int on_b = 1;
    if (b_scale == 0) {
      const T scale = a_scale / b_shift, shift = a_shift / b_shift;
      if (std::isnormal(scale) && std::isnormal(shift)) return run(Line<T>{{}, scale, shift});
      return run(LineTimes<T>{{}, a_scale, a_shift, T{1} / b_shift});
    }
    if (a_scale == 0) return run(Hyperbola<T>{{}, a_shift, b_scale, b_shift}, on_b);
    run(Ratio<T>{{}, a_scale, a_shift, b_scale, b_shift});
  }
};

}  // namespace

QOR_FILL_ROW(s, LinearFrac, linear_fraction, LinearFrac<float>)
QOR_FILL_ROW(d, LinearFrac, linear_fraction, LinearFrac<double>)

}  // namespace qor::kernels
