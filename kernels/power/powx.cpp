// Powx: x^b with one exponent b for the whole vector, single and double.
//
// Method.   b decides on the path: 1 for b = +-0, a copy for 1, squares for 2, the rows of Inv,
//           Sqrt, InvSqrt and Pow3o2 for -1, 1/2, -1/2 and 3/2, the vector path of Pow otherwise.
// Accuracy. that of the path.
// Special.  as Pow and with its codes, but for the paths above: the rows called report under their
//           own names; x^0 is 1 for NaN too and a is not read; copies and squares report nothing.

#include "kernels/frame/rows.h"
#include "kernels/power/special.h"

namespace qor::kernels {
namespace {

// ---- Rows of other functions ----------------------------------------------------------------

template <class T>
using Contiguous1 = void (*)(int32_t, const T*, T*);
template <class T>
using Strided1 = void (*)(int32_t, const T*, int32_t, T*, int32_t);

// The HA kernels of the rows that know the power b, contiguous and strided.
template <class T>
struct Delegate {
  T b;
  const Contiguous1<T>* contiguous;
  const Strided1<T>* strided;
};

const Delegate<float> kSDelegates[] = {
    {-1.0f, &qor_ark_kernel_sInv_ttab[1], &qor_ark_kernel_sInvI_ttab[1]},
    {0.5f, &qor_ark_kernel_sSqrt_ttab[1], &qor_ark_kernel_sSqrtI_ttab[1]},
    {-0.5f, &qor_ark_kernel_sInvSqrt_ttab[1], &qor_ark_kernel_sInvSqrtI_ttab[1]},
    {1.5f, &qor_ark_kernel_sPow3o2_ttab[1], &qor_ark_kernel_sPow3o2I_ttab[1]},
};
const Delegate<double> kDDelegates[] = {
    {-1.0, &qor_ark_kernel_dInv_ttab[1], &qor_ark_kernel_dInvI_ttab[1]},
    {0.5, &qor_ark_kernel_dSqrt_ttab[1], &qor_ark_kernel_dSqrtI_ttab[1]},
    {-0.5, &qor_ark_kernel_dInvSqrt_ttab[1], &qor_ark_kernel_dInvSqrtI_ttab[1]},
    {1.5, &qor_ark_kernel_dPow3o2_ttab[1], &qor_ark_kernel_dPow3o2I_ttab[1]},
};

inline const auto& delegates(float) { return kSDelegates; }
inline const auto& delegates(double) { return kDDelegates; }

// The one for b, by its bits: the caller's environment has no say. Null when there is none.
template <class T>
const Delegate<T>* delegate(T b) {
  for (const Delegate<T>& candidate : delegates(b)) {
    if (bits_of(candidate.b) == bits_of(b)) return &candidate;
  }
  return nullptr;
}

// ---- Loops of its own -----------------------------------------------------------------------

template <class T>
struct Powx : Unary<T> {
  static constexpr const char* name = sizeof(T) == sizeof(float) ? "vsPowx" : "vdPowx";
};

template <class T>
struct Copy : Powx<T> {
  using typename Powx<T>::V;
  V core(V x) const { return x; }
};

template <class T>
struct Square : Powx<T> {
  using typename Powx<T>::V;
  V core(V x) const { return x * x; }
};

template <class T>
struct General : Powx<T> {
  using typename Powx<T>::V;
  using typename Powx<T>::LaneSet;
  static constexpr int registers = sizeof(T) == sizeof(double) ? dpow::registers : 1;
  T b;

  explicit General(T exponent) : b(exponent) {}
  Checked<T> core(V x) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      return spow::power(x, lanes::broadcast(b));
    } else {
      return dpow::power<true>(x, lanes::broadcast(b));
    }
  }
  LaneSet special(V x) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      return spow::special(x, lanes::broadcast(b));
    } else {
      return dpow::special(x, lanes::broadcast(b));
    }
  }
  Outcome<T> scalar(T x) const { return pow_scalar(x, b); }
};

// Never inlined, as a lane loop is not.
template <class T>
[[gnu::noinline]] void store_ones(int64_t n, T* y, int64_t incy) {
  for (int64_t i = 0; i < n; ++i) y[i * incy] = 1;
}

template <class T>
void ones(int64_t n, T* y, int64_t incy) {
  FpEnvSave save;
  enter<Environment{}>(save);
  store_ones(n, y, incy);
  leave(save);
}

template <class F, class T>
void run_contiguous(const F& f, int32_t n, const T* a, T* y) {
  run<F::environment>(f, Contiguous<F>{{a}, {y}}, n);
}
template <class F, class T>
void run_strided(const F& f, int32_t n, const T* a, int32_t inca, T* y, int32_t incy) {
  run<F::strided_environment>(f, Strided<F>{{a}, {inca}, {y}, {incy}}, n);
}

// ---- Paths ----------------------------------------------------------------------------------

template <class T>
void powx(int32_t n, const T* a, T b, T* y) {
  if (const Delegate<T>* other = delegate(b)) return (*other->contiguous)(n, a, y);
  const auto bits = bits_of(b);
  if (bits == 0 || bits == sign_mask<T>) return ones(n, y, 1);
  if (bits == bits_of(T{1})) return run_contiguous(Copy<T>{}, n, a, y);
  if (bits == bits_of(T{2})) return run_contiguous(Square<T>{}, n, a, y);
  run_contiguous(General<T>{b}, n, a, y);
}

template <class T>
void powx_strided(int32_t n, const T* a, int32_t inca, T b, T* y, int32_t incy) {
  if (const Delegate<T>* other = delegate(b)) return (*other->strided)(n, a, inca, y, incy);
  const auto bits = bits_of(b);
  if (bits == 0 || bits == sign_mask<T>) return ones(n, y, incy);
  if (bits == bits_of(T{1})) return run_strided(Copy<T>{}, n, a, inca, y, incy);
  if (bits == bits_of(T{2})) return run_strided(Square<T>{}, n, a, inca, y, incy);
  run_strided(General<T>{b}, n, a, inca, y, incy);
}

}  // namespace
}  // namespace qor::kernels

extern "C" {

void qor_kernel_sPowx_A(int32_t n, const float* a, float b, float* y) {
  qor::kernels::powx(n, a, b, y);
}
void qor_kernel_dPowx_A(int32_t n, const double* a, double b, double* y) {
  qor::kernels::powx(n, a, b, y);
}
void qor_kernel_sPowxI_A(int32_t n, const float* a, int32_t inca, float b, float* y, int32_t incy) {
  if (inca == 1 && incy == 1) return qor_ark_kernel_sPowx_ttab[1](n, a, b, y);
  qor::kernels::powx_strided(n, a, inca, b, y, incy);
}
void qor_kernel_dPowxI_A(int32_t n, const double* a, int32_t inca, double b, double* y,
                         int32_t incy) {
  if (inca == 1 && incy == 1) return qor_ark_kernel_dPowx_ttab[1](n, a, b, y);
  qor::kernels::powx_strided(n, a, inca, b, y, incy);
}

}  // extern "C"
