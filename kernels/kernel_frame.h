// The kernel frame: environment, lane loop, masked tail, side path, strided form, once for all.
//
// A function is a struct F of constants and functions:
//
//   using Real = double;                      element type
//   static constexpr int inputs, outputs;     1 or 2 each
//   static constexpr const char* name;        reported name; strided_name where that differs
//   static constexpr Real filler;             an argument of the fast path, for lanes not in use
//   V core(V x) const                         the vector path, no branch (Two<V> for two outputs,
//                                             Provisional<Real> when it finds doubtful lanes
//                                             itself)
//   Doubt<Real> care(V x) const               lanes that the vector path cannot do, from the input
//   Outcome<Real> scalar(Real x) const        such a lane: correctly signalled value, and a code
//
// and, where they differ from the usual: environment, strided_environment, registers (see
// run_calm_groups), settle (see settle_lanes). A function without `care` has no side path. One
// without a vector path has, in place of core, care and scalar,
//
//   int32_t evaluate(const Real& x, Real& y) const   sets y to the value of an element; its code
#pragma once

#include <bit>
#include <cstdint>

#include "frame/error.h"
#include "kernels/fp_environment.h"
#include "kernels/lanes.h"
#include "qor/vector_math.h"

namespace qor::kernels {

// What a scalar routine answers: the value and an error code, 0 for none.
template <class T>
struct Outcome {
  T value;
  int32_t code = QOR_ERROR_NONE;
};
template <class T>
struct TwoOutcomes {
  T first, second;
  int32_t code = QOR_ERROR_NONE;
};

// What a core answers that finds out on its way which lanes it cannot do, from an intermediate
// value that the input decides. Such lanes must raise no flag of their own.
template <class T>
struct Provisional {
  typename lanes::Lanes<T>::V value;
  lanes::Doubt<T> doubt;
};

// Constants that most functions share; a function's struct takes them from here and hides what it
// has otherwise.
template <class T, int input_count, int output_count>
struct Function {
  using Real = T;
  using V = typename lanes::Lanes<T>::V;
  using I = typename lanes::Lanes<T>::I;
  using M = typename lanes::Lanes<T>::M;
  using Doubt = lanes::Doubt<T>;
  static constexpr int inputs = input_count;
  static constexpr int outputs = output_count;
  static constexpr T filler = static_cast<T>(0.75);
  static constexpr Environment environment{};
  static constexpr Environment strided_environment{};
};
template <class T>
using Unary = Function<T, 1, 1>;
template <class T>
using Binary = Function<T, 2, 1>;

// ---- Vectors of a call ----------------------------------------------------------------------

// One register per input or output.
template <class T, int count>
struct Block {
  typename lanes::Lanes<T>::V at[count];
};

template <class F>
using Inputs = Block<typename F::Real, F::inputs>;
template <class F>
using Outputs = Block<typename F::Real, F::outputs>;

// Contiguous vectors.
template <class F>
struct Contiguous {
  using T = typename F::Real;
  const T* in[F::inputs];
  T* out[F::outputs];

  typename F::V load(int k, int64_t i) const { return lanes::load(in[k] + i); }
  typename F::V load_first(int k, int64_t i, int count) const {
    return lanes::load_first(in[k] + i, count, F::filler);
  }
  void store(int k, int64_t i, typename F::V y) const { lanes::store(out[k] + i, y); }
  void store_first(int k, int64_t i, int count, typename F::V y) const {
    lanes::store_first(out[k] + i, count, y);
  }
  const T& argument(int k, int64_t i) const { return in[k][i]; }
  T& element(int k, int64_t i) const { return out[k][i]; }

  void report(int32_t code, int64_t i) const {
    frame::report_error(code, static_cast<int32_t>(i), in[0], in[F::inputs - 1], out[0],
                        out[F::outputs - 1], F::name);
  }
};

// Strided vectors; positions are computed in 64 bits. A block is loaded and stored by the register
// for an increment of 1, by broadcast of element 0 for a load with 0, by elements otherwise.
template <class F>
struct Strided {
  using T = typename F::Real;
  const T* in[F::inputs];
  int32_t in_inc[F::inputs];
  T* out[F::outputs];
  int32_t out_inc[F::outputs];

  typename F::V load(int k, int64_t i) const {
    if (in_inc[k] == 1) return lanes::load(in[k] + i);
    if (in_inc[k] == 0) return lanes::all(in[k][0]);
    return lanes::load_strided(in[k] + i * in_inc[k], in_inc[k]);
  }
  typename F::V load_first(int k, int64_t i, int count) const {
    typename F::V x = lanes::all(F::filler);
    for (int lane = 0; lane < count; ++lane) x[lane] = in[k][(i + lane) * in_inc[k]];
    return x;
  }
  void store(int k, int64_t i, typename F::V y) const {
    if (out_inc[k] == 1) return lanes::store(out[k] + i, y);
    lanes::store_strided(out[k] + i * out_inc[k], out_inc[k], y);
  }
  void store_first(int k, int64_t i, int count, typename F::V y) const {
    for (int lane = 0; lane < count; ++lane) out[k][(i + lane) * out_inc[k]] = y[lane];
  }
  const T& argument(int k, int64_t i) const { return in[k][i * in_inc[k]]; }
  T& element(int k, int64_t i) const { return out[k][i * out_inc[k]]; }

  static constexpr const char* name() {
    if constexpr (requires { F::strided_name; }) {
      return F::strided_name;
    } else {
      return F::name;
    }
  }
  void report(int32_t code, int64_t i) const {
    constexpr int a = F::inputs - 1, y = F::outputs - 1;
    frame::report_error_strided(code, static_cast<int32_t>(i), in[0], in_inc[0], in[a], in_inc[a],
                                out[0], out_inc[0], out[y], out_inc[y], name());
  }
};

// ---- Arity ----------------------------------------------------------------------------------

// A block's results, and the lanes that its core could not do, as bits.
template <class F>
struct Computed {
  Outputs<F> y;
  uint32_t careful = 0;
};

template <class F>
inline Computed<F> compute(const F& f, const Inputs<F>& x) {
  const auto y = [&] {
    if constexpr (F::inputs == 1) {
      return f.core(x.at[0]);
    } else {
      return f.core(x.at[0], x.at[1]);
    }
  }();
  if constexpr (F::outputs == 2) {
    return {{y.first, y.second}};
  } else if constexpr (requires { y.doubt; }) {
    return {{y.value}, lanes::bits(y.doubt)};
  } else {
    return {{y}};
  }
}

template <class F>
inline constexpr bool has_side_path = requires {
  &F::care;
};

template <class F>
inline auto care(const F& f, const Inputs<F>& x) {
  if constexpr (F::inputs == 1) {
    return f.care(x.at[0]);
  } else {
    return f.care(x.at[0], x.at[1]);
  }
}

// ---- Side path ------------------------------------------------------------------------------

// Registers spilled to memory, a row each.
template <class T, int count>
struct alignas(64) LaneBuffer {
  static constexpr int width = lanes::Lanes<T>::count;
  T at[count][width];

  explicit LaneBuffer(const Block<T, count>& block) {
    for (int k = 0; k < count; ++k) lanes::store(at[k], block.at[k]);
  }
  Block<T, count> block() const {
    Block<T, count> loaded;
    for (int k = 0; k < count; ++k) loaded.at[k] = lanes::load(at[k]);
    return loaded;
  }
};

// Runs the scalar routine on a lane of the buffers; returns its code.
template <class F>
int32_t run_scalar(const F& f, const LaneBuffer<typename F::Real, F::inputs>& x,
                   LaneBuffer<typename F::Real, F::outputs>& y, int lane) {
  const auto outcome = [&] {
    if constexpr (F::inputs == 1) {
      return f.scalar(x.at[0][lane]);
    } else {
      return f.scalar(x.at[0][lane], x.at[1][lane]);
    }
  }();
  if constexpr (F::outputs == 1) {
    y.at[0][lane] = outcome.value;
  } else {
    y.at[0][lane] = outcome.first;
    y.at[1][lane] = outcome.second;
  }
  return outcome.code;
}

// Takes the lanes out of `careful` whose values a few selects can give when nobody is to hear of
// them (the error field is NOERR alone), for functions with `settle(x, y)`: it changes y and
// returns the mask of the lanes done.
template <class F>
uint32_t settle_lanes(const F& f, uint32_t mode, const Inputs<F>& x, Outputs<F>& y,
                      uint32_t careful) {
  if constexpr (requires { &F::settle; }) {
    if ((mode & QOR_MODE_ERRORS) == QOR_MODE_ERRORS_NOERR) {
      return careful & ~lanes::bits(f.settle(x.at[0], y.at[0]));
    }
  }
  return careful;
}

// A block with lanes that need care, from element i on: the others take the vector path (where
// these hold the filler, so that they raise no stray flag), these the scalar routine in ascending
// order. A lane with a code is stored and reported at once, and read back: the report may change
// it.
template <class F, class Vectors>
[[gnu::cold, gnu::noinline]] Outputs<F> careful_block(const F& f, const Vectors& vectors, int64_t i,
                                                      Inputs<F> x, uint32_t careful,
                                                      uint32_t mode) {
  const LaneBuffer<typename F::Real, F::inputs> arguments(x);
  LaneBuffer<typename F::Real, F::inputs> calm(x);
  for (uint32_t rest = careful; rest != 0; rest &= rest - 1) {
    for (auto& row : calm.at) row[std::countr_zero(rest)] = F::filler;
  }
  auto [y, more] = compute(f, calm.block());
  careful |= more;
  careful = settle_lanes(f, mode, x, y, careful);
  LaneBuffer<typename F::Real, F::outputs> results(y);
  for (uint32_t rest = careful; rest != 0; rest &= rest - 1) {
    const int lane = std::countr_zero(rest);
    const int32_t code = run_scalar(f, arguments, results, lane);
    if (code == QOR_ERROR_NONE) continue;
    for (int k = 0; k < F::outputs; ++k) vectors.element(k, i + lane) = results.at[k][lane];
    vectors.report(code, i + lane);
    for (int k = 0; k < F::outputs; ++k) results.at[k][lane] = vectors.element(k, i + lane);
  }
  return results.block();
}

// ---- Lane loop ------------------------------------------------------------------------------

// Lanes of a block that need care, as bits.
template <class F>
inline uint32_t careful_lanes(const F& f, const Inputs<F>& x) {
  if constexpr (has_side_path<F>) {
    return lanes::bits(care(f, x));
  } else {
    return 0;
  }
}

// Runs groups of F::registers blocks, with one test of care for all, up to a group with a lane that
// needs care; returns where it stopped. For functions of a few instructions, where the test weighs;
// not for a Provisional core.
template <class F, class Vectors>
inline int64_t run_calm_groups(const F& f, const Vectors& vectors, int64_t i, int64_t n) {
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  constexpr int group = F::registers * width;
  for (; i + group <= n; i += group) {
    Inputs<F> x[F::registers];
    for (int r = 0; r < F::registers; ++r) {
      for (int k = 0; k < F::inputs; ++k) x[r].at[k] = vectors.load(k, i + r * width);
    }
    auto doubt = care(f, x[0]);
    for (int r = 1; r < F::registers; ++r) doubt = doubt | care(f, x[r]);
    if (lanes::bits(doubt) != 0) [[unlikely]]
      return i;
    for (int r = 0; r < F::registers; ++r) {
      const Outputs<F> y = compute(f, x[r]).y;
      for (int k = 0; k < F::outputs; ++k) vectors.store(k, i + r * width, y.at[k]);
    }
  }
  return i;
}

// Runs whole blocks from element i on, up to one with a lane that needs care; returns where it
// stopped. A function of its own without any call in its loop, so that constants stay in registers
// (no vector register survives a call).
template <class F, class Vectors>
[[gnu::noinline]] int64_t run_calm_blocks(const F f, const Vectors vectors, int64_t i, int64_t n) {
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  if constexpr (requires { F::registers; }) i = run_calm_groups(f, vectors, i, n);
  for (; i + width <= n; i += width) {
    Inputs<F> x;
    for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load(k, i);
    if (careful_lanes(f, x) != 0) [[unlikely]]
      return i;
    const Computed<F> block = compute(f, x);
    if (block.careful != 0) [[unlikely]]
      return i;
    for (int k = 0; k < F::outputs; ++k) vectors.store(k, i, block.y.at[k]);
  }
  return i;
}

// Never inlined: its arithmetic stays between the environment's steps.
template <class F, class Vectors>
[[gnu::noinline]] void run_lanes(const F f, const Vectors vectors, int64_t n, uint32_t mode) {
  constexpr int width = lanes::Lanes<typename F::Real>::count;
  int64_t i = 0;
  for (; i + width <= n; i += width) {
    i = run_calm_blocks<F, Vectors>(f, vectors, i, n);
    if (i + width > n) break;
    if constexpr (has_side_path<F>) {
      Inputs<F> x;
      for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load(k, i);
      const Outputs<F> y = careful_block(f, vectors, i, x, careful_lanes(f, x), mode);
      for (int k = 0; k < F::outputs; ++k) vectors.store(k, i, y.at[k]);
    }
  }
  if (i >= n) return;
  const int left = static_cast<int>(n - i);
  Inputs<F> x;
  for (int k = 0; k < F::inputs; ++k) x.at[k] = vectors.load_first(k, i, left);
  const uint32_t careful = careful_lanes(f, x);
  const Outputs<F> y = [&] {
    if constexpr (has_side_path<F>) {
      if (careful == 0) {
        const Computed<F> block = compute(f, x);
        if (block.careful == 0) [[likely]]
          return block.y;
      }
      return careful_block(f, vectors, i, x, careful, mode);
    } else {
      return compute(f, x).y;
    }
  }();
  for (int k = 0; k < F::outputs; ++k) vectors.store_first(k, i, left, y.at[k]);
}

// ---- Walk -----------------------------------------------------------------------------------

// The elements one by one, for a function of one input and output without a vector path.
template <class F, class Vectors>
[[gnu::noinline]] void run_elements(const F f, const Vectors vectors, int64_t n) {
  for (int64_t i = 0; i < n; ++i) {
    const int32_t code = f.evaluate(vectors.argument(0, i), vectors.element(0, i));
    if (code != QOR_ERROR_NONE) [[unlikely]]
      vectors.report(code, i);
  }
}

template <Environment environment, class F, class Vectors>
inline void run(const F& f, const Vectors& vectors, int64_t n) {
  FpEnvSave save;
  [[maybe_unused]] const uint32_t mode = enter<environment>(save);
  if constexpr (requires { &F::evaluate; }) {
    run_elements<F, Vectors>(f, vectors, n);
  } else {
    run_lanes<F, Vectors>(f, vectors, n, mode);
  }
  leave(save);
}

// ---- Argument lists of the shapes -----------------------------------------------------------

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
