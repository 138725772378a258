// Quantiles and order statistics of each variable: by sorting where the sorted values are asked for
// or the orders are many, else by selection.

#include <algorithm>

#include "statistics/estimators.h"
#include "statistics/items.h"
#include "statistics/order_place.h"
#include "statistics/selection.h"
#include "statistics/sort_item.h"

namespace qor::statistics {
namespace {

constexpr int64_t kMostWorkBytes = int64_t{1} << 30;
// More orders than this are read from sorted values.
constexpr int64_t kMostSelectedOrders = most_selected / 2;

// The sorted positions on either side of an order, and the part of the way from one to the other.
template <class Real>
struct Neighbours {
  int64_t low, high;
  Real part;

  Neighbours(Real order, int64_t n) {
    const double place = order_place(order, n - 1);
    low = std::min(static_cast<int64_t>(place), n - 1);
    high = std::min(low + 1, n - 1);
    part = static_cast<Real>(place - static_cast<double>(low));
  }
  // At a position itself the neighbour does not count, be it infinite.
  Real between(Real a, Real b) const { return part == 0 ? a : (1 - part) * a + part * b; }
};

template <class Real>
struct Orders {
  const Real* order;
  int64_t count;
  Real* quantiles;
};

template <class Real>
void read_sorted(const Orders<Real>& orders, int64_t n, const Real* sorted, Real* quantile) {
  for (int64_t k = 0; k < orders.count; ++k) {
    const Neighbours<Real> at(orders.order[k], n);
    quantile[k] = at.between(sorted[at.low], sorted[at.high]);
  }
}

template <class Real>
void select_quantiles(const Orders<Real>& orders, const Column<Real>& column, Real* quantile,
                      Key<Real>* work) {
  int64_t position[most_selected];
  Key<Real> selected[most_selected];
  int count = 0;
  for (int64_t k = 0; k < orders.count; ++k) {
    const Neighbours<Real> at(orders.order[k], column.n);
    position[count++] = at.low;
    position[count++] = at.high;
  }
  sort_by_partition(&position[0], count);
  select_keys(column, position, count, selected, work);
  const auto value_at = [&](int64_t wanted) {
    return value_of<Real>(
        selected[std::lower_bound(position, position + count, wanted) - position]);
  };
  for (int64_t k = 0; k < orders.count; ++k) {
    const Neighbours<Real> at(orders.order[k], column.n);
    quantile[k] = at.between(value_at(at.low), value_at(at.high));
  }
}

// item_work(item, work) for all items, with `room` values of type T as work for each thread.
template <class T, class ItemWork>
int run_with_work(const ThreadHook* hook, int64_t items, int64_t n, int64_t room,
                  const ItemWork& item_work) {
  const int64_t affordable =
      kMostWorkBytes / services::counted_product(n, static_cast<int64_t>(sizeof(T)));
  const int64_t threads =
      std::max<int64_t>(std::min({threads_offered(hook), items, affordable}), 1);
  const services::HeapScratch<T> work(services::counted_product(threads, room));
  if (work.data() == nullptr) return QOR_SS_NO_MEMORY;
  auto run = [&](int64_t item, int64_t thread) { item_work(item, work.data() + thread * room); };
  run_items(hook, items, threads, run);
  return QOR_SS_OK;
}

template <class Real>
int compute_selected(SsTask& task, const Orders<Real>& orders, const ItemOutput<Real>& output,
                     bool sorted_asked, const ThreadHook* hook) {
  const Observations<Real> data = observations<Real>(task);
  const SelectedVariables variables(data);
  if (!variables.allocated()) return QOR_SS_NO_MEMORY;
  if (variables.count() == 0) return QOR_SS_OK;
  if (sorted_asked || orders.count > kMostSelectedOrders) {
    return run_with_work<Real>(
        hook, variables.count(), data.n, sorting_work(output), [&](int64_t item, Real* work) {
          const Real* sorted = sort_item(column(data, variables[item]), output, item, work);
          read_sorted(orders, data.n, sorted, orders.quantiles + item * orders.count);
        });
  }
  if (orders.count == 0) return QOR_SS_OK;
  return run_with_work<Key<Real>>(hook, variables.count(), data.n, sorting_room<Key<Real>>(data.n),
                                  [&](int64_t item, Key<Real>* work) {
                                    select_quantiles(orders, column(data, variables[item]),
                                                     orders.quantiles + item * orders.count, work);
                                  });
}

}  // namespace

template <class Real>
int compute_quantiles(SsTask& task, uint64_t estimates, const ThreadHook* hook) {
  const int64_t p = integer(task, task.p), n = integer(task, task.n);
  Orders<Real> orders{};
  if ((estimates & QOR_SS_ESTIMATE_QUANTILES) != 0) {
    orders = {reals<Real>(task.quantile_orders), integer(task, task.quantile_count),
              reals<Real>(task.quantiles)};
  }
  ItemOutput<Real> output{nullptr, n, p, false};
  const bool sorted_asked = (estimates & QOR_SS_ESTIMATE_ORDER_STATISTICS) != 0;
  if (sorted_asked) {
    const int64_t storage = integer(task, task.order_statistics_storage);
    output = {reals<Real>(task.order_statistics), n, p, (storage & QOR_SS_BY_VARIABLE) != 0};
  }
  return compute_selected(task, orders, output, sorted_asked, hook);
}

template int compute_quantiles<double>(SsTask&, uint64_t, const ThreadHook*);
template int compute_quantiles<float>(SsTask&, uint64_t, const ThreadHook*);

}  // namespace qor::statistics
