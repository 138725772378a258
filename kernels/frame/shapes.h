// Kernels by the argument lists of the shapes.
#pragma once

#include <cstdint>

#include "kernels/frame/lane_loop.h"

namespace qor::kernels {

// What a kernel's reports are called.
struct RowNames {
  const char* contiguous;
  const char* strided;

  template <class F>
  constexpr const char* of_contiguous() const {
    return F::traits.name != nullptr ? F::traits.name : contiguous;
  }
  template <class F>
  constexpr const char* of_strided() const {
    return F::traits.strided_name ? strided : of_contiguous<F>();
  }
};

// A contiguous kernel's call. Scalars of the shape are the function's state.
template <class F>
struct ContiguousCall {
  using In = typename F::Input;
  using Out = typename F::Output;
  RowNames names;

  void operator()(int32_t n, const In* a, Out* y) const { go(F{}, {{a}, {y}, name()}, n); }
  void operator()(int32_t n, const In* a, const In* b, Out* y) const {
    go(F{}, {{a, b}, {y}, name()}, n);
  }
  void operator()(int32_t n, const In* a, In b, Out* y) const {
    go(F{{}, b}, {{a}, {y}, name()}, n);
  }
  void operator()(int32_t n, const In* a, Out* y, Out* z) const {
    go(F{}, {{a}, {y, z}, name()}, n);
  }
  void operator()(int32_t n, const In* a, const In* b, In a_scale, In a_shift, In b_scale,
                  In b_shift, Out* y) const {
    go(F{{}, a_scale, a_shift, b_scale, b_shift}, {{a, b}, {y}, name()}, n);
  }

 private:
  constexpr const char* name() const { return names.of_contiguous<F>(); }
  static void go(const F& f, const Contiguous<F>& vectors, int32_t n) {
    run<F::traits.environment>(f, vectors, n);
  }
};

// A strided kernel's call. With all increments 1 the row's contiguous kernel runs instead, before
// anything is touched.
template <class F, class Row>
struct StridedCall {
  using In = typename F::Input;
  using Out = typename F::Output;
  RowNames names;
  Row row;

  void operator()(int32_t n, const In* a, int32_t inca, Out* y, int32_t incy) const {
    if (inca == 1 && incy == 1) return row(n, a, y);
    go(F{}, {{a}, {inca}, {y}, {incy}, name()}, n);
  }
  void operator()(int32_t n, const In* a, int32_t inca, const In* b, int32_t incb, Out* y,
                  int32_t incy) const {
    if (inca == 1 && incb == 1 && incy == 1) return row(n, a, b, y);
    go(F{}, {{a, b}, {inca, incb}, {y}, {incy}, name()}, n);
  }
  void operator()(int32_t n, const In* a, int32_t inca, In b, Out* y, int32_t incy) const {
    if (inca == 1 && incy == 1) return row(n, a, b, y);
    go(F{{}, b}, {{a}, {inca}, {y}, {incy}, name()}, n);
  }
  void operator()(int32_t n, const In* a, int32_t inca, Out* y, int32_t incy, Out* z,
                  int32_t incz) const {
    if (inca == 1 && incy == 1 && incz == 1) return row(n, a, y, z);
    go(F{}, {{a}, {inca}, {y, z}, {incy, incz}, name()}, n);
  }
  void operator()(int32_t n, const In* a, int32_t inca, const In* b, int32_t incb, In a_scale,
                  In a_shift, In b_scale, In b_shift, Out* y, int32_t incy) const {
    if (inca == 1 && incb == 1 && incy == 1) {
      return row(n, a, b, a_scale, a_shift, b_scale, b_shift, y);
    }
    go(F{{}, a_scale, a_shift, b_scale, b_shift}, {{a, b}, {inca, incb}, {y}, {incy}, name()}, n);
  }

 private:
  constexpr const char* name() const { return names.of_strided<F>(); }
  static void go(const F& f, const Strided<F>& vectors, int32_t n) {
    run<F::traits.strided_environment>(f, vectors, n);
  }
};
template <class F, class Row>
inline StridedCall<F, Row> strided_call(RowNames names, Row row) {
  return {names, row};
}

}  // namespace qor::kernels
