// Powr: x^y as e^(y ln x), for x not negative, single and double.
//
// Method.   The vector paths of Pow.
// Accuracy. see docs/accuracy.md; below 1 ulp.
// Special.  As IEEE 754 has powr: a negative x, 0^0, inf^0 and 1^inf give NaN, code 1; 0 to a
//           negative power +inf, code 1 (to -inf: no code); overflow code 3; a denormal result or 0
//           code 4. NaN -> quiet NaN, with 0 as the other argument too.

#include "kernels/frame/rows.h"
#include "kernels/power/special.h"

namespace qor::kernels {
namespace {

struct SPowr : Guarded<float(float, float)> {
  Checked<float> core(V x, V y) const { return spow::power(x, y); }
  LaneSet special(V x, V y) const { return spow::special(x, y); }
  Outcome<float> scalar(float x, float y) const { return powr_scalar(x, y); }
};

struct DPowr : Guarded<double(double, double)> {
  static constexpr Traits traits{.group = dpow::registers};
  Checked<double> core(V x, V y) const { return dpow::power(x, y); }
  LaneSet special(V x, V y) const { return dpow::special(x, y); }
  Outcome<double> scalar(double x, double y) const { return powr_scalar(x, y); }
};

}  // namespace

QOR_FILL_ROW(s, Powr, binary, SPowr)
QOR_FILL_ROW(d, Powr, binary, DPowr)

}  // namespace qor::kernels
