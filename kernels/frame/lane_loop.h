// A call: the loops over blocks, the masked parts of a block, the walk over elements of functions
// without a vector path; and the environment around them.
#pragma once

#include <cstdint>

#include "kernels/frame/environment.h"
#include "kernels/frame/loops.h"

namespace qor::kernels {

// `count` elements from i on, at least one and fewer than a register has. Lanes that are not in use
// are never special, whatever stands in for them.
template <class F, class Vectors>
inline void run_part(const F& f, const Vectors& vectors, int64_t i, int count, Reports& reports) {
  Inputs<F> x;
  for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load_first(k, i, count);
  const uint32_t used = lanes::first_lanes(count);
  const Outputs<F> y = [&] {
    if constexpr (has_special_lanes<F>) {
      if ((special_bits(f, x) & used) == 0) {
        const Computed<F> block = compute(f, x);
        if ((block.special & used) == 0) [[likely]]
          return block.y;
      }
      return special_block(f, vectors, i, x, used, reports);
    } else {
      return compute(f, x).y;
    }
  }();
  for (int k = 0; k < F::outputs; ++k) vectors.store_first(k, i, count, y.at[k]);
}

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

// A block with special lanes, and in the form that has one the run of such blocks in the wide form;
// returns where that ends.
template <class F, class Vectors>
inline int64_t run_special_blocks(const F& f, const Vectors& vectors, int64_t i, int64_t n,
                                  Reports& reports) {
  constexpr int width = block_width<F>;
  const auto run_one = [&] {
    const Inputs<F> x = load_block<F>(vectors, i);
    const Outputs<F> y = special_block(f, vectors, i, x, lanes::first_lanes(width), reports);
    store_block<F>(vectors, i, y);
    i += width;
  };
  if constexpr (F::form == Form::tiered) {
    while (i + width <= n) {
      const WideRun run = run_wide_blocks<F, Vectors>(f, vectors, i, n, reports);
      i = run.i;
      if (!run.is_left) break;
      run_one();
    }
  } else {
    run_one();
  }
  return i;
}

// Never inlined: its arithmetic stays between the environment's steps.
template <class F, class Vectors>
[[gnu::noinline]] void run_lanes(const F f, const Vectors& given, int64_t n) {
  const Vectors vectors = given.copy();
  constexpr int width = block_width<F>;
  Reports reports;
  int64_t i = 0;
  if constexpr (F::traits.aligned_stores && !Vectors::is_strided) {
    i = elements_to_alignment(vectors.out[0], n);
    if (i > 0) run_part(f, vectors, 0, static_cast<int>(i), reports);
  }
  if constexpr (has_special_lanes<F>) {
    while (i + width <= n) {
      i = run_calm_blocks<F, Vectors>(f, vectors, i, n);
      if (i + width <= n) i = run_special_blocks(f, vectors, i, n, reports);
    }
  } else {
    i = calm_blocks(f, vectors, i, n);
  }
  if (i < n) run_part(f, vectors, i, static_cast<int>(n - i), reports);
  if constexpr (has_special_lanes<F>) reports.finish(vectors);
}

// ---- Other forms ----------------------------------------------------------------------------

// The elements one by one, for a function of one input and output without a vector path.
template <class F, class Vectors>
[[gnu::noinline]] void run_elements(const F f, const Vectors& given, int64_t n) {
  const Vectors vectors = given.copy();
  for (int64_t i = 0; i < n; ++i) {
    const int32_t code = f.evaluate(vectors.argument(0, i), vectors.element(0, i));
    if (code != QOR_ERROR_NONE) [[unlikely]]
      vectors.report(code, i);
  }
}

// The x87 flags that a walk is certain to raise: its first element tells.
template <class F, class Vectors>
inline uint16_t x87_flags_to_be_raised(const F& f, const Vectors& vectors, int64_t n) {
  if constexpr (F::form == Form::walked) {
    if (n > 0 && f.raises_x87_inexact(vectors.argument(0, 0))) return x87_inexact;
  }
  return 0;
}

// The function that the state chooses, on inputs from `first` on. Never inlined: what it works out
// beforehand belongs between the environment's steps.
template <class F, class Vectors>
[[gnu::noinline]] void run_chosen(const F& f, const Vectors& vectors, int64_t n) {
  f.choose([&]<class G>(const G& chosen, int first = 0) {
    static_assert(check_form<G>() && G::form != Form::chosen);
    run_lanes<G>(chosen, vectors.template copy<G>(first), n);
  });
}

// ---- A call ---------------------------------------------------------------------------------

template <Environment environment, class F, class Vectors>
inline void run(const F& f, const Vectors& vectors, int64_t n) {
  static_assert(check_form<F>());
  FpEnvSave save;
  enter<environment>(save, x87_flags_to_be_raised(f, vectors, n));
  if constexpr (F::form == Form::walked) {
    run_elements<F, Vectors>(f, vectors, n);
  } else if constexpr (F::form == Form::chosen) {
    run_chosen<F, Vectors>(f, vectors, n);
  } else {
    run_lanes<F, Vectors>(f, vectors, n);
  }
  leave(save);
}

}  // namespace qor::kernels
