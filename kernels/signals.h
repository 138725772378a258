// Values that carry their IEEE flag: what scalar routines answer for special cases.
//
// The operands are hidden from the compiler, so that the operation happens at run time, where it
// raises its flag.
#pragma once

#include <limits>

namespace qor::kernels {

template <class T>
inline T opaque(T x) {
  asm volatile("" : "+x"(x));
  return x;
}

// +infinity with the overflow flag.
template <class T>
inline T overflowed() {
  return opaque(std::numeric_limits<T>::max()) * std::numeric_limits<T>::max();
}

// +0 with the underflow flag.
template <class T>
inline T underflowed() {
  return opaque(std::numeric_limits<T>::min()) * std::numeric_limits<T>::min();
}

// numerator / 0: an infinity with the divide-by-zero flag.
template <class T>
inline T pole(T numerator) {
  return opaque(numerator) / T{0};
}

// NaN with the invalid flag.
template <class T>
inline T undefined() {
  return opaque(T{0}) / T{0};
}

}  // namespace qor::kernels
