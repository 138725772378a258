// Hermite cubic splines: inner first derivatives are given.

#include <type_traits>

#include "fitting/local_cubic.h"

namespace qor::fitting {
namespace {

struct Hermite : LocalKind {
  static constexpr int64_t fewest_breakpoints = 3;
  static constexpr int back = 0, ahead = 0;

  static constexpr BoundaryRules rules{.takes_periodic_value = true};
  static constexpr unsigned arrays = inner_conditions | spline_arrays;

  // At periodic ends the derivative is given too.
  template <class Real>
  static Boundary<Real> boundary(const DFTask& task) {
    Boundary<Real> b = boundary_of<Real>(task);
    if (b.periodic()) b.left.kind = b.right.kind = EndKind::first_derivative;
    return b;
  }

  template <class Partition, class Window>
  static auto derivative(const DFTask& task, const Partition&, const Window& w, int64_t i,
                         int64_t) {
    using Real = std::remove_reference_t<decltype(w.slope[0])>;
    return internal_conditions<Real>(task)[i - 1];
  }
};

}  // namespace
}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dDFHermiteCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Hermite, double>(task);
}
int qor_df_kernel_sDFHermiteCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Hermite, float>(task);
}
