// Checks of the entries that look at the order of the data.

#include "statistics/checks.h"

namespace qor::statistics {

int check_min_max(const SsTask& task, uint64_t estimates, uint64_t method) {
  if (const int status = check_data_storage(task, task.x_storage)) return status;
  if ((estimates & QOR_SS_ESTIMATE_MIN) != 0 && task.min == nullptr) return QOR_SS_NULL_MIN;
  if ((estimates & QOR_SS_ESTIMATE_MAX) != 0 && task.max == nullptr) return QOR_SS_NULL_MAX;
  if (!has_method(method, QOR_SS_METHOD_FAST | QOR_SS_METHOD_ONE_PASS)) return QOR_SS_BAD_METHOD;
  return check_data(task);
}

template <class Real>
int check_quantiles(const SsTask& task, uint64_t estimates, uint64_t method) {
  if (const int status = check_data_storage(task, task.x_storage)) return status;
  if ((estimates & QOR_SS_ESTIMATE_QUANTILES) != 0) {
    if (task.quantiles == nullptr) return QOR_SS_NULL_QUANTILES;
    if (task.quantile_orders == nullptr) return QOR_SS_NULL_QUANTILE_ORDERS;
    if (task.quantile_count == nullptr) return QOR_SS_BAD_QUANTILE_COUNT;
    const int64_t count = integer(task, task.quantile_count);
    if (count < 0 || !are_orders(reals<Real>(task.quantile_orders), count)) {
      return QOR_SS_BAD_QUANTILE_COUNT;
    }
  }
  if ((estimates & QOR_SS_ESTIMATE_ORDER_STATISTICS) != 0) {
    if (task.order_statistics == nullptr) return QOR_SS_NULL_ORDER_STATISTICS;
    if (const int status = check_data_storage(task, task.order_statistics_storage)) return status;
  }
  if (!has_method(method, QOR_SS_METHOD_FAST)) return QOR_SS_BAD_METHOD;
  return check_data(task);
}

template <class Real>
int check_stream_quantiles(const SsTask& task, uint64_t method) {
  if (task.n == nullptr || integer(task, task.n) < 0) return QOR_SS_BAD_N;
  if (integer(task, task.n) > 0) {
    if (task.x == nullptr) return QOR_SS_NULL_X;
    if (const int status = check_data_storage(task, task.x_storage)) return status;
  }
  if (task.stream_quantiles == nullptr) return QOR_SS_NULL_STREAM_QUANTILES;
  if (task.stream_quantile_orders == nullptr) return QOR_SS_NULL_STREAM_QUANTILE_ORDERS;
  if (task.stream_quantile_count == nullptr) return QOR_SS_BAD_STREAM_QUANTILE_COUNT;
  const int64_t count = integer(task, task.stream_quantile_count);
  if (count < 0) return QOR_SS_BAD_STREAM_QUANTILE_COUNT;
  if (task.stream_parameter_count == nullptr) return QOR_SS_NULL_STREAM_PARAMETER_COUNT;
  if (integer(task, task.stream_parameter_count) != 1) return QOR_SS_BAD_STREAM_PARAMETER_COUNT;
  if (!are_orders(reals<Real>(task.stream_quantile_orders), count)) {
    return QOR_SS_BAD_STREAM_QUANTILE_COUNT;
  }
  if (task.stream_parameters == nullptr) return QOR_SS_NULL_STREAM_PARAMETERS;
  if (!has_method(method, QOR_SS_METHOD_STREAM_ANSWER | QOR_SS_METHOD_STREAM_UPDATE)) {
    return QOR_SS_BAD_METHOD;
  }
  const Real epsilon = reals<Real>(task.stream_parameters)[0];
  if (!(epsilon > 0 && epsilon <= 1)) return QOR_SS_BAD_STREAM_EPSILON;
  return has_variables(task) ? QOR_SS_OK : QOR_SS_BAD_P;
}

int check_sort(const SsTask& task, uint64_t method) {
  if (task.sorted_output == nullptr) return QOR_SS_NULL_SORTED_OUTPUT;
  if (task.sorted_output_storage == nullptr || task.x_storage == nullptr) {
    return QOR_SS_NULL_STORAGE;
  }
  const int64_t in = integer(task, task.x_storage);
  const int64_t out = integer(task, task.sorted_output_storage);
  if (task.sorted_output == task.x) {
    if (((in ^ out) & QOR_SS_BY_VARIABLE) != 0) return QOR_SS_NULL_STORAGE;
    if (task.indices != nullptr) return QOR_SS_SORTED_IN_PLACE_WITH_INDICES;
  }
  if (!is_data_storage(in) || !is_data_storage(out)) return QOR_SS_BAD_STORAGE;
  if (!has_method(method, QOR_SS_METHOD_SORT)) return QOR_SS_BAD_METHOD;
  return check_data(task);
}

template int check_quantiles<double>(const SsTask&, uint64_t, uint64_t);
template int check_quantiles<float>(const SsTask&, uint64_t, uint64_t);
template int check_stream_quantiles<double>(const SsTask&, uint64_t);
template int check_stream_quantiles<float>(const SsTask&, uint64_t);

}  // namespace qor::statistics
