// The vectors of a call, contiguous and strided.
#pragma once

#include <cstdint>

#include "frame/error.h"
#include "kernels/frame/function.h"

namespace qor::kernels {

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
    return lanes::load_first(in[k] + i, count, F::stand_in);
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
    if (in_inc[k] == 0) return lanes::broadcast(in[k][0]);
    return lanes::load_strided(in[k] + i * in_inc[k], in_inc[k]);
  }
  typename F::V load_first(int k, int64_t i, int count) const {
    typename F::V x = lanes::broadcast(F::stand_in);
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

}  // namespace qor::kernels
