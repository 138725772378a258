// LinearFrac: (a aScale + aShift) / (b bScale + bShift), single and double.
//
// Method.   the scalars choose one of four loops before an element is read; the vector that the
//           formula does not need is not read. The division is the processor's in both precisions.
// Accuracy. that of the formula, each operation (where the level has it, each multiply-add)
//           correctly rounded; with bScale 0 the quotients of the scalars are rounded beforehand.
// Special.  no element is looked at: a zero denominator gives the quotient that the processor
//           gives, and nothing is reported.

#include <cmath>

#include "kernels/frame/rows.h"
#include "kernels/frame/simple.h"

namespace qor::kernels {
namespace {

using lanes::broadcast;
using lanes::multiply_add;

template <class T>
struct Scalars {
  T a_scale, a_shift, b_scale, b_shift;
};

// ---- Loops ----------------------------------------------------------------------------------

template <class T>
struct Ratio : Simple<T, 2> {
  using typename Simple<T, 2>::V;
  Scalars<T> s;
  V core(V a, V b) const {
    return multiply_add(a, broadcast(s.a_scale), s.a_shift) /
           multiply_add(b, broadcast(s.b_scale), s.b_shift);
  }
};

template <class T>
struct Line : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  T scale, shift;
  V core(V a) const { return multiply_add(a, broadcast(scale), shift); }
};

template <class T>
struct LineTimes : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  T scale, shift, factor;
  V core(V a) const { return multiply_add(a, broadcast(scale), shift) * factor; }
};

template <class T>
struct Hyperbola : Simple<T, 1> {
  using typename Simple<T, 1>::V;
  T numerator, scale, shift;
  V core(V b) const { return numerator / multiply_add(b, broadcast(scale), shift); }
};

// ---- Vectors --------------------------------------------------------------------------------

template <class T>
struct ContiguousVectors {
  int32_t n;
  const T *a, *b;
  T* y;

  template <class F>
  void run_on_both(const F& f) const {
    run_simple<F>(f, {{a, b}, {y}}, n);
  }
  template <class F>
  void run_on_a(const F& f) const {
    run_simple<F>(f, {{a}, {y}}, n);
  }
  template <class F>
  void run_on_b(const F& f) const {
    run_simple<F>(f, {{b}, {y}}, n);
  }
};

template <class T>
struct StridedVectors {
  int32_t n;
  const T* a;
  int32_t inca;
  const T* b;
  int32_t incb;
  T* y;
  int32_t incy;

  template <class F>
  void run_on_both(const F& f) const {
    run_lanes<F>(f, Strided<F>{{a, b}, {inca, incb}, {y}, {incy}}, n, 0);
  }
  template <class F>
  void run_on_a(const F& f) const {
    run_lanes<F>(f, Strided<F>{{a}, {inca}, {y}, {incy}}, n, 0);
  }
  template <class F>
  void run_on_b(const F& f) const {
    run_lanes<F>(f, Strided<F>{{b}, {incb}, {y}, {incy}}, n, 0);
  }
};

// Never inlined: the quotients of the scalars belong between the environment's steps.
template <class T, class Vectors>
[[gnu::noinline]] void run_chosen_loop(const Vectors& vectors, const Scalars<T>& s) {
  if (s.b_scale == 0) {
    const T scale = s.a_scale / s.b_shift, shift = s.a_shift / s.b_shift;
    if (std::isnormal(scale) && std::isnormal(shift)) {
      return vectors.run_on_a(Line<T>{{}, scale, shift});
    }
    return vectors.run_on_a(LineTimes<T>{{}, s.a_scale, s.a_shift, T{1} / s.b_shift});
  }
  if (s.a_scale == 0) return vectors.run_on_b(Hyperbola<T>{{}, s.a_shift, s.b_scale, s.b_shift});
  vectors.run_on_both(Ratio<T>{{}, s});
}

template <Environment environment, class T, class Vectors>
inline void linear_fraction(const Vectors& vectors, const Scalars<T>& scalars) {
  FpEnvSave save;
  enter<environment>(save);
  run_chosen_loop(vectors, scalars);
  leave(save);
}

constexpr Environment kStrided{};
constexpr Environment kSingle{};
constexpr Environment kDouble{X87::double_precision, Mxcsr::from_mode};

}  // namespace

extern "C" {

void qor_kernel_sLinearFrac_A QOR_PARAMETERS_linear_fraction(float, float) {
  const ContiguousVectors<float> vectors{n, a, b, y};
  linear_fraction<kSingle, float>(vectors, {aScale, aShift, bScale, bShift});
}

void qor_kernel_dLinearFrac_A QOR_PARAMETERS_linear_fraction(double, double) {
  const ContiguousVectors<double> vectors{n, a, b, y};
  linear_fraction<kDouble, double>(vectors, {aScale, aShift, bScale, bShift});
}

void qor_kernel_sLinearFracI_A QOR_PARAMETERS_linear_fraction_I(float, float) {
  if (inca == 1 && incb == 1 && incy == 1) {
    return qor_ark_kernel_sLinearFrac_ttab[1] QOR_ARGUMENTS_linear_fraction;
  }
  const StridedVectors<float> vectors{n, a, inca, b, incb, y, incy};
  linear_fraction<kStrided, float>(vectors, {aScale, aShift, bScale, bShift});
}

void qor_kernel_dLinearFracI_A QOR_PARAMETERS_linear_fraction_I(double, double) {
  if (inca == 1 && incb == 1 && incy == 1) {
    return qor_ark_kernel_dLinearFrac_ttab[1] QOR_ARGUMENTS_linear_fraction;
  }
  const StridedVectors<double> vectors{n, a, inca, b, incb, y, incy};
  linear_fraction<kStrided, double>(vectors, {aScale, aShift, bScale, bShift});
}
}

}  // namespace qor::kernels
