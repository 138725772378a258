// The kernels of a row at all levels side by side in one process, so that each argument's exact
// value is worked out once for all of them.
#pragma once

#include <string>
#include <vector>

#include "reference/evaluate.h"
#include "reference/worst_cases.h"

namespace qor::tools {

// The library of one level, loaded beside those of the others.
struct LevelLibrary {
  std::string level;
  void* handle;
};

std::string library_path(const std::string& folder, const std::string& level);

// Those below `folder` (build/<preset>/levels) that this machine can run, in order. Ends the
// program when one cannot be loaded.
std::vector<LevelLibrary> load_levels(const std::string& folder);

// Lets this thread's kernels report errors to nobody.
void silence(const std::vector<LevelLibrary>& libraries);

template <class T>
struct LevelKernel {
  std::string level;
  const reference::Row<T>* row;
  int slot;  // the first that the kernel serves
  void* kernel;

  // Runs the contiguous kernel; results have room for `count` elements.
  void run(const reference::Batch<T>& batch, reference::Results<T>& results) const {
    reference::Call<T> call = reference::call_on(*row, batch);
    for (size_t k = 0; k < static_cast<size_t>(row->shape.outputs); ++k) {
      results[k].resize(static_cast<size_t>(call.n * row->shape.output_parts));
      call.out[k] = results[k].data();
    }
    row->run_kernel(kernel, call);
  }
};

void* table_of(const LevelLibrary& library, const std::string& row);

template <class T>
std::vector<LevelKernel<T>> kernels_of(const std::vector<LevelLibrary>& libraries,
                                       const reference::Row<T>& row) {
  std::vector<LevelKernel<T>> kernels;
  for (const LevelLibrary& library : libraries) {
    void* const* const table = static_cast<void* const*>(table_of(library, row.name()));
    for (const int slot : row.distinct_slots()) {
      kernels.push_back({library.level, &row, slot, table[slot]});
    }
  }
  return kernels;
}

// What was found for a kernel, as a line of the table.
template <class T>
struct Finding {
  double worst = 0;
  reference::Numbers<T> at{};  // the numbers of the element that shows it
  uint64_t count = 0;
  int64_t steps_back = -1;

  void add(double error, const reference::Numbers<T>& numbers) {
    if (!(error > worst)) return;
    worst = error;
    at = numbers;
  }
  reference::WorstCase line(const LevelKernel<T>& kernel, reference::Found found) const {
    const reference::Row<T>& row = *kernel.row;
    reference::WorstCase line{
        row.name(), reference::kernel_key(row, kernel.slot), kernel.level, worst, found, count,
        steps_back};
    if (worst > 0) line.at.assign(at.begin(), at.begin() + row.shape.numbers_in());
    return line;
  }
};

}  // namespace qor::tools
