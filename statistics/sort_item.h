// One variable sorted into its place of an output.
#pragma once

#include "statistics/columns.h"
#include "statistics/radix_sort.h"

namespace qor::statistics {

// Work for one item: that of sorting, and n values where the output has no rows for these.
template <class Real>
int64_t sorting_work(const ItemOutput<Real>& output) {
  return services::counted_sum(output.by_variable ? 0 : output.n, sorting_room<Real>(output.n));
}

// Sorts the column into the item's place of the output, if there is one, and returns the sorted
// values, which stand together in the output or in the work. The output may be the data itself.
template <class Real>
const Real* sort_item(const Column<Real>& column, const ItemOutput<Real>& output, int64_t item,
                      Real* work) {
  Real* sorted = output.by_variable ? output.row(item) : work;
  if (!output.by_variable) work += column.n;
  const Real* source = column.x;
  if (column.stride != 1) {
    copy_values(column, work);
    source = work;
  }
  sort_by_key(column.n, source, sorted, work);
  if (!output.by_variable && output.values != nullptr) output.write_column(item, sorted);
  return sorted;
}

}  // namespace qor::statistics
