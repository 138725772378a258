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
struct One : Everywhere<T()> {
  typename One::V core() const { return lanes::broadcast(T{1}); }
};

template <class T>
struct Copy : Everywhere<T(T)> {
  using typename Everywhere<T(T)>::V;
  V core(V x) const { return x; }
};

template <class T>
struct Square : Everywhere<T(T)> {
  using typename Everywhere<T(T)>::V;
  V core(V x) const { return x * x; }
};

template <class T>
struct General : Guarded<T(T)> {
  using typename Guarded<T(T)>::V;
  using typename Guarded<T(T)>::LaneSet;
  static constexpr Traits traits{.group = sizeof(T) == sizeof(double) ? dpow::registers : 1};
  T b;

  Checked<T> core(V x) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      return spow::power(x, lanes::broadcast(b));
    } else {
      return dpow::power(x, lanes::broadcast(b));
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

template <class T>
struct Powx : Chosen<T(T)> {
  T b;

  template <class Run>
  void choose(const Run& run) const {
    const auto bits = bits_of(b);
    if (bits == 0 || bits == sign_mask<T>) return run(One<T>{});
    if (bits == bits_of(T{1})) return run(Copy<T>{});
    if (bits == bits_of(T{2})) return run(Square<T>{});
    run(General<T>{{}, b});
  }
};

// ---- Calls ----------------------------------------------------------------------------------

template <class T>
void powx(RowNames names, int32_t n, const T* a, T b, T* y) {
  if (const Delegate<T>* other = delegate(b)) return (*other->contiguous)(n, a, y);
  ContiguousCall<Powx<T>>{names}(n, a, b, y);
}

template <class T, class Row>
void powx_strided(RowNames names, Row row, int32_t n, const T* a, int32_t inca, T b, T* y,
                  int32_t incy) {
  if (inca == 1 && incy == 1) return row(n, a, b, y);
  if (const Delegate<T>* other = delegate(b)) return (*other->strided)(n, a, inca, y, incy);
  strided_call<Powx<T>>(names, row)(n, a, inca, b, y, incy);
}

constexpr RowNames kSNames{"vsPowx", "vsPowxI"}, kDNames{"vdPowx", "vdPowxI"};

}  // namespace
}  // namespace qor::kernels

extern "C" {

void qor_kernel_sPowx_A(int32_t n, const float* a, float b, float* y) {
  qor::kernels::powx(qor::kernels::kSNames, n, a, b, y);
}
void qor_kernel_dPowx_A(int32_t n, const double* a, double b, double* y) {
  qor::kernels::powx(qor::kernels::kDNames, n, a, b, y);
}
void qor_kernel_sPowxI_A(int32_t n, const float* a, int32_t inca, float b, float* y, int32_t incy) {
  qor::kernels::powx_strided(qor::kernels::kSNames, qor_ark_kernel_sPowx_ttab[1], n, a, inca, b, y,
                             incy);
}
void qor_kernel_dPowxI_A(int32_t n, const double* a, int32_t inca, double b, double* y,
                         int32_t incy) {
  qor::kernels::powx_strided(qor::kernels::kDNames, qor_ark_kernel_dPowx_ttab[1], n, a, inca, b, y,
                             incy);
}

}  // extern "C"
