// Fmax, Fmin, MaxMag, MinMag, Fdim: comparisons of two vectors, single and double.
//
// Method.   the processor's maximum and minimum, of equal values the second; of equal magnitudes
//           MaxMag takes the signed maximum, MinMag the signed minimum. Fdim is a - b for a > b and
//           else +0.
// Accuracy. exact; Fdim correctly rounded.
// Special.  Fmax, Fmin, MaxMag, MinMag give the operand that is not a NaN, of two NaN the second;
//           Fdim gives the NaN, of two the second. A NaN is quieted. Nothing is reported.

#include <cmath>

#include "kernels/frame/rows.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {
namespace {

// Infinities are numbers like others, and take the vector path.
template <class T>
struct Comparison : Guarded<T(T, T)> {
  using typename Guarded<T(T, T)>::V;
  using typename Guarded<T(T, T)>::LaneSet;
  static constexpr Traits traits{.group = 4};
  LaneSet special(V a, V b) const { return lanes::unordered(a, b); }
};

// The element chosen where a NaN takes no part: `choose` decides between two numbers.
template <class T, class Choose>
Outcome<T> choose_number(T a, T b, Choose choose) {
  if (std::isnan(a)) return {quieted(b)};
  if (std::isnan(b)) return {quieted(a)};
  return {choose(a, b)};
}

template <class T>
struct Fmax : Comparison<T> {
  using typename Comparison<T>::V;

  V core(V a, V b) const { return lanes::maximum(a, b); }
  Outcome<T> scalar(T a, T b) const {
    return choose_number(a, b, [](T x, T y) { return x > y ? x : y; });
  }
};

template <class T>
struct Fmin : Comparison<T> {
  using typename Comparison<T>::V;

  V core(V a, V b) const { return lanes::minimum(a, b); }
  Outcome<T> scalar(T a, T b) const {
    return choose_number(a, b, [](T x, T y) { return x < y ? x : y; });
  }
};

template <class T>
struct MaxMag : Comparison<T> {
  using typename Comparison<T>::V;

  V core(V a, V b) const {
    const V s = lanes::abs(a), t = lanes::abs(b);
    const V unequal = t < s ? a : b;
    return s == t ? lanes::maximum(a, b) : unequal;
  }
  Outcome<T> scalar(T a, T b) const {
    return choose_number(a, b, [](T x, T y) {
      const T s = std::abs(x), t = std::abs(y);
      return t < s || (s == t && x > y) ? x : y;
    });
  }
};

template <class T>
struct MinMag : Comparison<T> {
  using typename Comparison<T>::V;

  V core(V a, V b) const {
    const V s = lanes::abs(a), t = lanes::abs(b);
    const V unequal = s < t ? a : b;
    return s == t ? lanes::minimum(a, b) : unequal;
  }
  Outcome<T> scalar(T a, T b) const {
    return choose_number(a, b, [](T x, T y) {
      const T s = std::abs(x), t = std::abs(y);
      return s < t || (s == t && x < y) ? x : y;
    });
  }
};

template <class T>
struct Fdim : Comparison<T> {
  using typename Comparison<T>::V;
  using typename Comparison<T>::LaneSet;

  LaneSet special(V a, V b) const { return lanes::not_finite(a) | lanes::not_finite(b); }

  // a - a for a <= b, which is +0: the difference not asked for cannot overflow.
  V core(V a, V b) const { return a - lanes::minimum(b, a); }
  Outcome<T> scalar(T a, T b) const {
    if (std::isnan(b)) return {quieted(b)};
    if (std::isnan(a)) return {quieted(a)};
    if (!(a > b)) return {T{0}};
    return {opaque(a) - b};  // not to be computed beforehand: equal infinities raise nothing
  }
};

}  // namespace

QOR_FILL_ROW(s, Fmax, binary, Fmax<float>)
QOR_FILL_ROW(d, Fmax, binary, Fmax<double>)
QOR_FILL_ROW(s, Fmin, binary, Fmin<float>)
QOR_FILL_ROW(d, Fmin, binary, Fmin<double>)
QOR_FILL_ROW(s, MaxMag, binary, MaxMag<float>)
QOR_FILL_ROW(d, MaxMag, binary, MaxMag<double>)
QOR_FILL_ROW(s, MinMag, binary, MinMag<float>)
QOR_FILL_ROW(d, MinMag, binary, MinMag<double>)
QOR_FILL_ROW(s, Fdim, binary, Fdim<float>)
QOR_FILL_ROW(d, Fdim, binary, Fdim<double>)

}  // namespace qor::kernels
