// Values that carry their IEEE flag: what scalar routines answer for special cases.
//
// Operands are hidden from the compiler: the operation happens at run time, where it raises its
// flag, and only on its branch (clang would do both branches of a choice and drop one).
#pragma once

#include <limits>

namespace qor::kernels {

template <class T>
inline T opaque(T x) {
  asm volatile("" : "+x"(x));
  return x;
}

// Raises the flags of a value that nobody needs.
template <class T>
inline void raise(T signalled) {
  static_cast<void>(opaque(signalled));
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

// x; a signalling NaN comes out quiet, with the invalid flag. (A plain product with 1 would be
// folded away.)
template <class T>
inline T quieted(T x) {
  return x * opaque(T{1});
}

// The NaN of two operands, quieted; of two the first, as a sum of the operands has it.
template <class T>
inline T nan_of(T x, T y) {
  return quieted(x != x ? x : y);
}

// NaN with the invalid flag.
template <class T>
inline T undefined() {
  return opaque(T{0}) / T{0};
}

}  // namespace qor::kernels
