// The vectors of a call, contiguous and strided.
#pragma once

#include <cstdint>

#include "frame/error.h"
#include "kernels/frame/forms.h"

namespace qor::kernels {

template <class F>
inline constexpr int input_places = F::inputs == 0 ? 1 : F::inputs;
// The second input of a report: of one the same again, as for outputs.
template <class F>
inline constexpr int second_input = F::inputs > 1 ? 1 : 0;
template <class F>
inline constexpr auto stand_in = static_cast<typename F::Real>(F::traits.stand_in);

// A word of a call's vectors, loaded by itself. The caller has only just stored it: a load of
// several words at once, by which compilers copy records, would wait until they are in the cache,
// longer than a short call takes.
template <class Word>
inline Word held(Word word) {
  asm("" : "+r"(word));
  return word;
}

// Contiguous vectors.
template <class F>
struct Contiguous {
  using In = typename F::Input;
  using Out = typename F::Output;
  static constexpr bool is_strided = false;
  const In* in[input_places<F>];
  Out* out[F::outputs];
  const char* name;

  auto load(int k, int64_t i) const { return Element<In>::load(in[k] + i); }
  auto load_first(int k, int64_t i, int count) const {
    return Element<In>::load_first(in[k] + i, count, stand_in<F>);
  }
  void store(int k, int64_t i, const Register<Out>& y) const { Element<Out>::store(out[k] + i, y); }
  void store_first(int k, int64_t i, int count, const Register<Out>& y) const {
    Element<Out>::store_first(out[k] + i, count, y);
  }
  const In& argument(int k, int64_t i) const { return in[k][i]; }
  Out& element(int k, int64_t i) const { return out[k][i]; }

  void report(int32_t code, int64_t i) const {
    frame::report_error(code, static_cast<int32_t>(i), in[0], in[second_input<F>], out[0],
                        out[F::outputs - 1], name);
  }

  // A copy for a function G, of which the inputs are the first of these, from `first` on.
  template <class G = F>
  Contiguous<G> copy(int first = 0) const {
    Contiguous<G> copied{{}, {}, held(name)};
    for (int k = 0; k < G::inputs; ++k) copied.in[k] = held(in[first + k]);
    for (int k = 0; k < G::outputs; ++k) copied.out[k] = held(out[k]);
    return copied;
  }
};

// Strided vectors; positions are computed in 64 bits. A block is loaded and stored by the register
// for an increment of 1, by broadcast of element 0 for a load with 0, by elements otherwise.
template <class F>
struct Strided {
  using In = typename F::Input;
  using Out = typename F::Output;
  static constexpr bool is_strided = true;
  const In* in[input_places<F>];
  int32_t in_inc[input_places<F>];
  Out* out[F::outputs];
  int32_t out_inc[F::outputs];
  const char* name;

  Register<In> load(int k, int64_t i) const {
    if (in_inc[k] == 1) return Element<In>::load(in[k] + i);
    if (in_inc[k] == 0) return Element<In>::broadcast(in[k][0]);
    return Element<In>::load_strided(in[k] + i * in_inc[k], in_inc[k]);
  }
  Register<In> load_first(int k, int64_t i, int count) const {
    Register<In> x = Element<In>::stand_in(stand_in<F>);
    for (int lane = 0; lane < count; ++lane) Element<In>::set_lane(x, lane, argument(k, i + lane));
    return x;
  }
  void store(int k, int64_t i, const Register<Out>& y) const {
    if (out_inc[k] == 1) return Element<Out>::store(out[k] + i, y);
    store_first(k, i, lanes::Lanes<typename F::Real>::count, y);
  }
  void store_first(int k, int64_t i, int count, const Register<Out>& y) const {
    for (int lane = 0; lane < count; ++lane) element(k, i + lane) = Element<Out>::lane(y, lane);
  }
  const In& argument(int k, int64_t i) const { return in[k][i * in_inc[k]]; }
  Out& element(int k, int64_t i) const { return out[k][i * out_inc[k]]; }

  void report(int32_t code, int64_t i) const {
    constexpr int b = second_input<F>, z = F::outputs - 1;
    frame::report_error_strided(code, static_cast<int32_t>(i), in[0], in_inc[0], in[b], in_inc[b],
                                out[0], out_inc[0], out[z], out_inc[z], name);
  }

  template <class G = F>
  Strided<G> copy(int first = 0) const {
    Strided<G> copied{{}, {}, {}, {}, held(name)};
    for (int k = 0; k < G::inputs; ++k) {
      copied.in[k] = held(in[first + k]);
      copied.in_inc[k] = held(in_inc[first + k]);
    }
    for (int k = 0; k < G::outputs; ++k) {
      copied.out[k] = held(out[k]);
      copied.out_inc[k] = held(out_inc[k]);
    }
    return copied;
  }
};

}  // namespace qor::kernels
