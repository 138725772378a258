// Sorting of each variable.

#include "statistics/estimators.h"
#include "statistics/items.h"
#include "statistics/sort_item.h"

namespace qor::statistics {
namespace {

constexpr int64_t kBytesAThread = int64_t{1} << 30;

// Threads for `items` items whose work takes `bytes` each.
int64_t threads_for_sorting(const ThreadHook* hook, int64_t items, int64_t bytes) {
  const int64_t offered = threads_offered(hook);
  const int64_t threads = std::min(offered, items);
  const int64_t affordable = services::counted_product(offered, kBytesAThread) / bytes;
  return affordable > 0 ? std::min(threads, affordable) : threads;
}

}  // namespace

template <class Real>
int compute_sort(SsTask& task, const ThreadHook* hook) {
  const Observations<Real> data = observations<Real>(task);
  const bool by_variable = (integer(task, task.sorted_output_storage) & QOR_SS_BY_VARIABLE) != 0;
  const ItemOutput<Real> output{reals<Real>(task.sorted_output), data.n, data.p, by_variable};
  const SelectedVariables variables(data);
  if (!variables.allocated()) return QOR_SS_NO_MEMORY;
  if (variables.count() == 0) return QOR_SS_OK;
  const int64_t room = sorting_work(output);
  const int64_t bytes = services::counted_product(
      by_variable ? data.n : services::counted_product(data.n, 2), int64_t{sizeof(Real)});
  const int64_t threads = threads_for_sorting(hook, variables.count(), bytes);
  const services::HeapScratch<Real> work(services::counted_product(threads, room));
  if (work.data() == nullptr) return QOR_SS_NO_MEMORY;
  auto sort = [&](int64_t item, int64_t thread) {
    sort_item(column(data, variables[item]), output, item, work.data() + thread * room);
  };
  run_items(hook, variables.count(), threads, sort);
  return QOR_SS_OK;
}

template int compute_sort<double>(SsTask&, const ThreadHook*);
template int compute_sort<float>(SsTask&, const ThreadHook*);

}  // namespace qor::statistics
