// The simple form of the lane loop, for functions of a few instructions that have no side path:
// several registers a step, aligned stores.
//
// A function takes it by deriving from Simple. Peeling to the alignment of the output changes no
// result: an element's value depends on its operands only.
#pragma once

#include <cstdint>

#include "kernels/frame.h"

namespace qor::kernels {

template <class T, int input_count>
struct Simple : Function<T, input_count, 1> {
  static constexpr bool simple_form = true;
};
template <class F>
concept SimpleForm = F::simple_form && !has_side_path<F>;

// Elements to do before the output meets a register's alignment; none when it never does, or when
// the vector is too short to gain by it.
template <class T>
inline int elements_to_alignment(const T* y, int64_t n) {
  constexpr int shortest_run = 8;  // elements that must be left behind the peel
  const auto past = static_cast<unsigned>(reinterpret_cast<uintptr_t>(y) % lanes::register_bytes);
  if (past == 0 || past % sizeof(T) != 0) return 0;
  const auto peel = static_cast<int>((lanes::register_bytes - past) / sizeof(T));
  return n >= peel + shortest_run ? peel : 0;
}

template <class F>
inline void run_registers(const F& f, const Contiguous<F>& vectors, int64_t i, int64_t step,
                          int count) {
  for (int r = 0; r < count; ++r) {
    Inputs<F> x;
    for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load(k, i + r * step);
    vectors.store(0, i + r * step, compute(f, x).y.at[0]);
  }
}

// `count` elements from i on, at least one and fewer than a register has.
template <class F>
inline void run_part(const F& f, const Contiguous<F>& vectors, int64_t i, int count) {
  Inputs<F> x;
  for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load_first(k, i, count);
  vectors.store_first(0, i, count, compute(f, x).y.at[0]);
}

// Never inlined: its arithmetic stays between the environment's steps.
template <class F>
[[gnu::noinline]] void run_simple(const F f, const Contiguous<F>& given, int64_t n) {
  const Contiguous<F> vectors = given;
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  constexpr int unrolled = 4;
  int64_t i = elements_to_alignment(vectors.out[0], n);
  if (i > 0) run_part(f, vectors, 0, static_cast<int>(i));
  for (; i + unrolled * width <= n; i += unrolled * width) {
    run_registers(f, vectors, i, width, unrolled);
  }
  for (; i + width <= n; i += width) run_registers(f, vectors, i, width, 1);
  if (i < n) run_part(f, vectors, i, static_cast<int>(n - i));
}

template <SimpleForm F>
inline void run_simple_in_environment(const Contiguous<F>& vectors, int64_t n) {
  FpEnvSave save;
  enter<F::environment>(save);
  run_simple<F>(F{}, vectors, n);
  leave(save);
}

// ---- Argument lists of the shapes: preferred to those of the lane form ----------------------

template <SimpleForm F, class T>
inline void contiguous(int32_t n, const T* a, T* y) {
  run_simple_in_environment<F>({{a}, {y}}, n);
}
template <SimpleForm F, class T>
inline void contiguous(int32_t n, const T* a, const T* b, T* y) {
  run_simple_in_environment<F>({{a, b}, {y}}, n);
}

}  // namespace qor::kernels
