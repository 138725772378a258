// The shapes of kernels, read off their types: how a call's arguments reach them.
#pragma once

#include <type_traits>

#include "reference/rows.h"

namespace qor::reference {

// Elements of a vector of numbers.
template <class E, class T>
const E* elements(const T* numbers) {
  static_assert(sizeof(E) % sizeof(T) == 0);
  return reinterpret_cast<const E*>(numbers);
}
template <class E, class T>
E* elements(T* numbers) {
  static_assert(sizeof(E) % sizeof(T) == 0);
  return reinterpret_cast<E*>(numbers);
}

template <class E, class T>
inline constexpr int parts = sizeof(E) / sizeof(T);

// By the contiguous kernel; T is the type of numbers.
template <class Kernel, class T>
struct Signature;

template <class A, class Y, class T>
struct Signature<void (*)(int32_t, const A*, Y*), T> {
  static constexpr Shape shape{1, 0, 1, parts<A, T>, parts<Y, T>};
  static void run(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), elements<Y>(c.out[0]));
  }
  static void run_strided(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), c.in_inc[0], elements<Y>(c.out[0]), c.out_inc[0]);
  }
};

template <class A, class T>
struct Signature<void (*)(int32_t, const A*, const A*, A*), T> {
  static constexpr Shape shape{2, 0, 1, parts<A, T>, parts<A, T>};
  static void run(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), elements<A>(c.in[1]), elements<A>(c.out[0]));
  }
  static void run_strided(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), c.in_inc[0], elements<A>(c.in[1]), c.in_inc[1],
           elements<A>(c.out[0]), c.out_inc[0]);
  }
};

// A scalar exponent: one element by value.
template <class A, class T>
struct Signature<void (*)(int32_t, const A*, A, A*), T> {
  static constexpr Shape shape{1, parts<A, T>, 1, parts<A, T>, parts<A, T>};
  static void run(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), *elements<A>(c.scalar.data()), elements<A>(c.out[0]));
  }
  static void run_strided(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), c.in_inc[0], *elements<A>(c.scalar.data()),
           elements<A>(c.out[0]), c.out_inc[0]);
  }
};

template <class A, class T>
struct Signature<void (*)(int32_t, const A*, A*, A*), T> {
  static constexpr Shape shape{1, 0, 2, parts<A, T>, parts<A, T>};
  static void run(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), elements<A>(c.out[0]), elements<A>(c.out[1]));
  }
  static void run_strided(auto kernel, const Call<T>& c) {
    kernel(c.n, elements<A>(c.in[0]), c.in_inc[0], elements<A>(c.out[0]), c.out_inc[0],
           elements<A>(c.out[1]), c.out_inc[1]);
  }
};

// The linear fraction: aScale, aShift, bScale, bShift by value.
template <class T>
struct Signature<void (*)(int32_t, const T*, const T*, T, T, T, T, T*), T> {
  static constexpr Shape shape{2, 4, 1};
  static void run(auto kernel, const Call<T>& c) {
    const auto& s = c.scalar;
    kernel(c.n, c.in[0], c.in[1], s[0], s[1], s[2], s[3], c.out[0]);
  }
  static void run_strided(auto kernel, const Call<T>& c) {
    const auto& s = c.scalar;
    kernel(c.n, c.in[0], c.in_inc[0], c.in[1], c.in_inc[1], s[0], s[1], s[2], s[3], c.out[0],
           c.out_inc[0]);
  }
};

}  // namespace qor::reference
