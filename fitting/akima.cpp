// Akima cubic splines: the derivative at a breakpoint is the mean of the slopes beside it, each
// weighted by the change of slope on the other side (Akima, 1970).

#include <algorithm>
#include <cmath>

#include "fitting/local_cubic.h"

namespace qor::fitting {
namespace {

// Changes of slope whose sum is below this have no direction, and the plain mean is taken.
constexpr double kNegligibleChange = 1e-10;

struct Akima : LocalKind {
  static constexpr int64_t fewest_breakpoints = 5;
  static constexpr int back = 1, ahead = 2;
  static constexpr BoundaryRules rules{.takes_none = true};

  template <class Partition, class Window>
  static auto derivative(const DFTask&, const Partition& x, const Window& w, int64_t i,
                         int64_t place) {
    using Real = std::remove_reference_t<decltype(w.slope[0])>;
    const Real* m = w.slope + place;  // m[0] before the breakpoint, m[1] behind it
    // Beyond the ends the change of slope is that of the first and the last pair of cells.
    const bool at_left = i == 1, at_right = i == x.n - 2;
    const Real behind = at_right ? std::abs(m[1] - m[0]) : std::abs(m[2] - m[1]);
    const Real before = at_left ? std::abs(m[1] - m[0]) : std::abs(m[0] - m[-1]);
    const Real sum = behind + before;
    // A NaN takes the mean, and the weighted form at the right end.
    const auto negligible = static_cast<Real>(kNegligibleChange);
    const bool weighted = at_right ? !(sum < negligible) : sum >= negligible;
    return weighted ? (behind * m[0] + before * m[1]) / sum : (m[0] + m[1]) / 2;
  }
};

}  // namespace
}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dDFAkimaCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Akima, double>(task);
}
int qor_df_kernel_sDFAkimaCubicSpline1D(DFTask* task, int64_t, int64_t, const ThreadHook*) {
  return construct_local<Akima, float>(task);
}
