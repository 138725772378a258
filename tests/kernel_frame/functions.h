// Functions of every shape for the kernel frame, with what an element of theirs shall be.
//
// Arguments are small integers, so that all arithmetic is exact; which of them are special, and
// what codes they have, is arbitrary.
#pragma once

#include "kernels/frame.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels::test {

using lanes::broadcast;

// The register whose sign says whether x is the value.
template <class T, class V = typename lanes::Lanes<T>::V>
lanes::LaneSet<T> equal_to(V x, T value) {
  return lanes::equal(x, broadcast(value));
}

template <class T>
struct Conjugate : Everywhere<Complex<T>(Complex<T>)> {
  using typename Everywhere<Complex<T>(Complex<T>)>::X;
  X core(X z) const { return {z.re, -z.im}; }
  static Outcome<Complex<T>> expected(Complex<T> z) { return {{z.re, -z.im}}; }
};

template <class T>
struct Product : Guarded<Complex<T>(Complex<T>, Complex<T>)> {
  using Base = Guarded<Complex<T>(Complex<T>, Complex<T>)>;
  using typename Base::LaneSet;
  using typename Base::X;
  X core(X u, X v) const { return {u.re * v.re - u.im * v.im, u.re * v.im + u.im * v.re}; }
  LaneSet special(X u, X v) const { return equal_to<T>(u.re, 3) | equal_to<T>(v.im, 5); }
  Outcome<Complex<T>> scalar(Complex<T> u, Complex<T> v) const { return expected(u, v); }
  static Outcome<Complex<T>> expected(Complex<T> u, Complex<T> v) {
    if (u.re == 3) return {{v.im, u.im}, QOR_ERROR_OVERFLOW};
    if (v.im == 5) return {{-1, -2}};
    return {{u.re * v.re - u.im * v.im, u.re * v.im + u.im * v.re}};
  }
};

template <class T>
struct OnCircle : Everywhere<Complex<T>(T)> {
  using Base = Everywhere<Complex<T>(T)>;
  static constexpr Traits traits{.group = 2, .aligned_stores = true};
  typename Base::Y core(typename Base::X x) const { return {x + T{1}, x - T{1}}; }
  static Outcome<Complex<T>> expected(T x) { return {{x + 1, x - 1}}; }
};

// A real function of complex numbers; the stand-in itself is special.
template <class T>
struct Size : Guarded<T(Complex<T>)> {
  using Base = Guarded<T(Complex<T>)>;
  static constexpr Traits traits{.group = 3, .stand_in = 2};
  typename Base::Y core(typename Base::X z) const { return z.re + z.im; }
  typename Base::LaneSet special(typename Base::X z) const { return equal_to<T>(z.re, 2); }
  Outcome<T> scalar(Complex<T> z) const { return expected(z); }
  static Outcome<T> expected(Complex<T> z) {
    if (z.re == 2) return {z.im * 100, z.im > 4 ? QOR_ERROR_DOMAIN : QOR_ERROR_UNDERFLOW};
    return {z.re + z.im};
  }
};

// Two outputs, and special lanes that the core alone finds.
template <class T>
struct SumAndDifference : Guarded<Two<T>(T)> {
  using Base = Guarded<Two<T>(T)>;
  static constexpr Traits traits{.group = 2, .found_by_core = true};
  Checked<Two<T>> core(typename Base::X x) const {
    const auto sum = x + T{4};
    return {{sum, x - T{4}}, equal_to<T>(sum, 7)};
  }
  Outcome<Two<T>> scalar(T x) const { return expected(x); }
  static Outcome<Two<T>> expected(T x) {
    if (x == 3) return {{-x, x * 10}, QOR_ERROR_SINGULARITY};
    return {{x + 4, x - 4}};
  }
};

// Three inputs and a wide form, which does some of the special lanes.
template <class T>
struct Total : Tiered<T(T, T, T)> {
  using Base = Tiered<T(T, T, T)>;
  using typename Base::LaneSet;
  using typename Base::V;
  V core(V a, V b, V c) const { return a + b + c; }
  LaneSet special(V a, V, V) const { return equal_to<T>(a, 1) | equal_to<T>(a, 6); }
  Wide<T> wide(V a, V b, V c, LaneSet special_lanes) const {
    const LaneSet one = equal_to<T>(a, 1);
    return {.value = lanes::select(special_lanes, b - c, core(a, b, c)),
            .left = one & equal_to<T>(b, 4),
            .domain = one & equal_to<T>(b, 5),
            .pole = one & equal_to<T>(b, 7),
            .overflow = equal_to<T>(a, 6) & equal_to<T>(c, 1),
            .underflow = equal_to<T>(a, 6) & equal_to<T>(c, 2)};
  }
  Outcome<T> scalar(T a, T b, T c) const { return expected(a, b, c); }
  static Outcome<T> expected(T a, T b, T c) {
    if (a == 1 && b == 4) return {a * 1000, c > 3 ? QOR_ERROR_OVERFLOW : QOR_ERROR_NONE};
    if (a == 1) {
      return {b - c, b == 5 ? QOR_ERROR_DOMAIN : b == 7 ? QOR_ERROR_SINGULARITY : QOR_ERROR_NONE};
    }
    if (a == 6) {
      return {b - c, c == 1 ? QOR_ERROR_OVERFLOW : c == 2 ? QOR_ERROR_UNDERFLOW : QOR_ERROR_NONE};
    }
    return {a + b + c};
  }
};

}  // namespace qor::kernels::test
