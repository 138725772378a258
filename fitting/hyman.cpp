// Hyman cubic splines: Bessel's derivatives, filtered so that where the data are monotone the curve
// is (Hyman, 1983): none at an extremum, and no more than three times the flatter slope beside it.

#include <algorithm>
#include <cmath>

#include "fitting/local_cubic.h"
#include "fitting/parabola.h"

namespace qor::fitting {
namespace {

// By the signs: the product of two small slopes may vanish. NaN is no extremum.
template <class Real>
bool is_extremum(Real before, Real behind) {
  return (before <= 0 && behind >= 0) || (before >= 0 && behind <= 0);
}

// Comparisons in the order that keeps a NaN derivative, and a derivative beside a NaN slope.
template <class Real>
Real filtered(Real derivative, Real before, Real behind) {
  if (is_extremum(before, behind)) return 0;
  const Real bound = 3 * std::min(std::abs(before), std::abs(behind));
  return std::copysign(std::min(std::abs(derivative), bound), derivative);
}

struct Hyman : LocalKind {
  static constexpr int64_t fewest_breakpoints = 4;
  static constexpr int back = 0, ahead = 1;

  template <class Partition, class Window>
  static auto derivative(const DFTask&, const Partition& x, const Window& w, int64_t i,
                         int64_t place) {
    return filtered(parabola_derivative(x, w, i, place), w.slope[place], w.slope[place + 1]);
  }
};

}  // namespace
}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dDFHymanCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Hyman, double>(task);
}
int qor_df_kernel_sDFHymanCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Hyman, float>(task);
}
