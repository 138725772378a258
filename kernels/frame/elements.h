// Element types: how vectors of them meet the registers.
//
// A block is as many elements as a register has lanes: one register of real elements, two (a
// register for each part) of complex ones.
#pragma once

#include <cstdint>
#include <cstring>

#include "kernels/lanes.h"
#include "qor/vector_math.h"

namespace qor::kernels {

namespace detail {
template <class T>
struct ComplexOf;
template <>
struct ComplexOf<float> {
  using Type = qor_complex_float;
};
template <>
struct ComplexOf<double> {
  using Type = qor_complex_double;
};

template <class T>
struct RealElement {
  using Real = T;
  using Register = typename lanes::Lanes<T>::V;

  static Register load(const T* from) { return lanes::load(from); }
  static Register load_first(const T* from, int count, T stand_in) {
    return lanes::load_first(from, count, stand_in);
  }
  static Register load_strided(const T* from, int64_t increment) {
    return lanes::load_strided(from, increment);
  }
  static Register broadcast(T x) { return lanes::broadcast(x); }
  static Register stand_in(T x) { return lanes::broadcast(x); }
  static void store(T* to, Register y) { lanes::store(to, y); }
  static void store_first(T* to, int count, Register y) { lanes::store_first(to, count, y); }
  static T lane(const Register& x, int i) { return x[i]; }
  static void set_lane(Register& x, int i, T value) { x[i] = value; }
};

template <class T>
struct ComplexElement {
  using Real = T;
  using E = typename ComplexOf<T>::Type;
  using V = typename lanes::Lanes<T>::V;
  using Register = lanes::ComplexLanes<V>;
  static constexpr int width = lanes::Lanes<T>::count;

  static Register load(const E* from) {
    return lanes::part(lanes::load(&from->re), lanes::load(&from->re + width));
  }
  static Register load_first(const E* from, int count, T stand_in) {
    E block[width];
    for (E& z : block) z = {stand_in, stand_in};
    std::memcpy(block, from, static_cast<size_t>(count) * sizeof(E));
    return load(block);
  }
  static Register load_strided(const E* from, int64_t increment) {
    return {lanes::load_strided(&from->re, 2 * increment),
            lanes::load_strided(&from->im, 2 * increment)};
  }
  static Register broadcast(E z) { return {lanes::broadcast(z.re), lanes::broadcast(z.im)}; }
  static Register stand_in(T x) { return broadcast({x, x}); }
  static void store(E* to, const Register& y) {
    const auto [lower, upper] = lanes::join(y);
    lanes::store(&to->re, lower);
    lanes::store(&to->re + width, upper);
  }
  static void store_first(E* to, int count, const Register& y) {
    E block[width];
    store(block, y);
    std::memcpy(to, block, static_cast<size_t>(count) * sizeof(E));
  }
  static E lane(const Register& x, int i) { return {x.re[i], x.im[i]}; }
  static void set_lane(Register& x, int i, E value) {
    x.re[i] = value.re;
    x.im[i] = value.im;
  }
};
}  // namespace detail

// The complex element of a real type.
template <class T>
using Complex = typename detail::ComplexOf<T>::Type;

template <class E>
struct Element;
template <>
struct Element<float> : detail::RealElement<float> {};
template <>
struct Element<double> : detail::RealElement<double> {};
template <>
struct Element<qor_complex_float> : detail::ComplexElement<float> {};
template <>
struct Element<qor_complex_double> : detail::ComplexElement<double> {};

template <class E>
using Register = typename Element<E>::Register;

}  // namespace qor::kernels
