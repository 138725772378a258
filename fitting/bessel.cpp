// Bessel cubic splines: inner first derivatives from the parabola through three points.

#include "fitting/local_cubic.h"
#include "fitting/parabola.h"

namespace qor::fitting {
namespace {

struct Bessel : LocalKind {
  static constexpr int64_t fewest_breakpoints = 4;
  static constexpr int back = 0, ahead = 1;

  template <class Partition, class Window>
  static auto derivative(const DFTask&, const Partition& x, const Window& w, int64_t i,
                         int64_t place) {
    return parabola_derivative(x, w, i, place);
  }
};

}  // namespace
}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dDFBesselCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Bessel, double>(task);
}
int qor_df_kernel_sDFBesselCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Bessel, float>(task);
}
