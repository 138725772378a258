// Kernels by the argument lists of the shapes.
#pragma once

#include <cstdint>

#include "kernels/frame/lane_loop.h"

namespace qor::kernels {

template <class F, class T>
inline void contiguous(int32_t n, const T* a, T* y) {
  run<F::environment>(F{}, Contiguous<F>{{a}, {y}}, n);
}
template <class F, class T>
inline void contiguous(int32_t n, const T* a, const T* b, T* y) {
  run<F::environment>(F{}, Contiguous<F>{{a, b}, {y}}, n);
}
template <class F, class T>
inline void contiguous(int32_t n, const T* a, T* y, T* z) {
  run<F::environment>(F{}, Contiguous<F>{{a}, {y, z}}, n);
}

// A strided kernel's call. With all increments 1 the row's contiguous kernel runs instead, before
// anything is touched.
template <class F, class Row>
struct StridedCall {
  using T = typename F::Real;
  Row row;

  void operator()(int32_t n, const T* a, int32_t inca, T* y, int32_t incy) const {
    if (inca == 1 && incy == 1) return row(n, a, y);
    run<F::strided_environment>(F{}, Strided<F>{{a}, {inca}, {y}, {incy}}, n);
  }
  void operator()(int32_t n, const T* a, int32_t inca, const T* b, int32_t incb, T* y,
                  int32_t incy) const {
    if (inca == 1 && incb == 1 && incy == 1) return row(n, a, b, y);
    run<F::strided_environment>(F{}, Strided<F>{{a, b}, {inca, incb}, {y}, {incy}}, n);
  }
  void operator()(int32_t n, const T* a, int32_t inca, T* y, int32_t incy, T* z,
                  int32_t incz) const {
    if (inca == 1 && incy == 1 && incz == 1) return row(n, a, y, z);
    run<F::strided_environment>(F{}, Strided<F>{{a}, {inca}, {y, z}, {incy, incz}}, n);
  }
};
template <class F, class Row>
inline StridedCall<F, Row> strided(Row row) {
  return {row};
}

}  // namespace qor::kernels
