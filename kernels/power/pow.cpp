// Pow: x^y, single and double.
//
// Method.   2^(y log2 x), the logarithm and the product in two parts (d) or in double (s); see
//           log2.h, double.h, single.h.
// Accuracy. see docs/accuracy.md; d below 0.6 ulp, s below 1 ulp.
// Special.  IEEE values; 0 to a negative power and a negative x to a fraction code 1, overflow
//           code 3, underflow nothing. pow(-1, +-inf) = 1; pow(x, 0) = pow(1, y) = 1, NaN too.

#include "kernels/frame/rows.h"
#include "kernels/power/special.h"

namespace qor::kernels {
namespace {

struct SPow : Guarded<float(float, float)> {
  Checked<float> core(V x, V y) const { return spow::power(x, y); }
  LaneSet special(V x, V y) const { return spow::special(x, y); }
  Outcome<float> scalar(float x, float y) const { return pow_scalar(x, y); }
};

// The HA kernel is one of its own by its address alone: what its accuracy costs, the other has too.
template <char kernel>
struct DPow : Guarded<double(double, double)> {
  static constexpr Traits traits{.group = dpow::registers};
  Checked<double> core(V x, V y) const { return dpow::power(x, y); }
  LaneSet special(V x, V y) const { return dpow::special(x, y); }
  Outcome<double> scalar(double x, double y) const { return pow_scalar(x, y); }
};

}  // namespace

QOR_FILL_ROW(s, Pow, binary, SPow)
QOR_FILL_KERNEL(d, Pow, binary, A, DPow<'A'>)
QOR_FILL_KERNEL(d, Pow, binary, B, DPow<'B'>)

}  // namespace qor::kernels
