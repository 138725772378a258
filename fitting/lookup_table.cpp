// The lookup table: bins of equal width over the partition, and for each the breakpoints among
// which the cell of its sites lies.

#include <algorithm>

#include "fitting/scratch.h"
#include "fitting/task.h"

namespace qor::fitting {
namespace {

constexpr int64_t kFewestBins = 16, kMostBins = 1024, kBreakpointsPerBin = 16;
constexpr uint32_t kUnknown = UINT32_MAX;

// The bin of a distance from the left end, in bins; 0 for what is none, such as NaN.
template <class Real>
int64_t bin_of(Real bins, int64_t count) {
  if (!(bins >= 1)) return 0;
  return bins < static_cast<Real>(count) ? static_cast<int64_t>(bins) : count;
}

// One pass over the breakpoints: high of a bin is the first breakpoint beyond it, low the last one
// before it. Bins without a breakpoint nearby stay unknown.
template <class Real>
void mark_bins(const Real* x, int64_t nx, Real scale, LookupBin* bins, int64_t count) {
  bins[0].low = 0;
  for (int64_t i = 1; i < nx; ++i) {
    const int64_t bin = bin_of((x[i] - x[0]) * scale, count);
    if (bin == 0) continue;
    uint32_t& high = bins[bin - 1].high;
    if (high == kUnknown) high = static_cast<uint32_t>(i);
    bins[bin + 1].low = static_cast<uint32_t>(i);
  }
  bins[count - 1].high = static_cast<uint32_t>(nx - 1);
}

void fill_gaps(LookupBin* bins, int64_t count) {
  for (int64_t up = 1; up < count; ++up) {
    const int64_t down = count - 1 - up;
    if (bins[up].low == kUnknown) bins[up].low = bins[up - 1].low;
    if (bins[down].high == kUnknown) bins[down].high = bins[down + 1].high;
  }
  bins[count] = bins[count - 1];
}

}  // namespace

template <class Real>
int build_lookup_table(DFTask& task) {
  const int64_t count = std::clamp(task.nx / kBreakpointsPerBin, kFewestBins, kMostBins);
  auto* bins = allocate_values<LookupBin>(count + 2);
  if (bins == nullptr) return QOR_DF_NO_MEMORY;
  std::fill_n(bins, count + 2, LookupBin{kUnknown, kUnknown});
  const Real* x = partition_of<Real>(task);
  const Real scale = static_cast<Real>(count) / (x[task.nx - 1] - x[0]);
  mark_bins(x, task.nx, scale, bins, count);
  fill_gaps(bins, count);
  qor_serv_deallocate(task.lut);
  task.lut = bins;
  task.lut_size = count;
  if constexpr (sizeof(Real) == sizeof(double)) {
    task.lut_scale.d = scale;
  } else {
    task.lut_scale.s = scale;
  }
  return QOR_DF_OK;
}

template int build_lookup_table<double>(DFTask&);
template int build_lookup_table<float>(DFTask&);

}  // namespace qor::fitting
