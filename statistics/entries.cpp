// The compute entries: a null task is refused, then come the checks, then the estimator.

#include "statistics/checks.h"
#include "statistics/estimators.h"
#include "statistics/request.h"

namespace qor::statistics {
namespace {

// compute(), once a task is there and has passed its checks.
template <class Checks, class Compute>
int checked(const SsTask* task, Checks checks, Compute compute) {
  if (task == nullptr) return QOR_SS_NULL_TASK;
  const int status = checks();
  return status != QOR_SS_OK ? status : compute();
}

template <class Real>
int basic(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook* hook) {
  Request request;
  return checked(
      task, [&] { return read_request(*task, estimates, method, request); },
      [&] { return compute_basic<Real>(*task, request, hook); });
}

template <class Real>
int min_max(SsTask* task, uint64_t estimates, uint64_t method) {
  return checked(
      task, [&] { return check_min_max(*task, estimates, method); },
      [&] { return compute_min_max<Real>(*task, estimates); });
}

template <class Real>
int quantiles(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook* hook) {
  return checked(
      task, [&] { return check_quantiles<Real>(*task, estimates, method); },
      [&] { return compute_quantiles<Real>(*task, estimates, hook); });
}

template <class Real>
int stream_quantiles(SsTask* task, uint64_t method, const ThreadHook* hook) {
  return checked(
      task, [&] { return check_stream_quantiles<Real>(*task, method); },
      [&] { return compute_stream_quantiles<Real>(*task, method, hook); });
}

template <class Real>
int sort(SsTask* task, uint64_t method, const ThreadHook* hook) {
  return checked(
      task, [&] { return check_sort(*task, method); },
      [&] { return compute_sort<Real>(*task, hook); });
}

}  // namespace
}  // namespace qor::statistics

using namespace qor::statistics;

int32_t _ostdSSBasic(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook* hook) {
  return basic<double>(task, estimates, method, hook);
}
int32_t _ostsSSBasic(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook* hook) {
  return basic<float>(task, estimates, method, hook);
}
int32_t _ostdSSMinmax(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook*) {
  return min_max<double>(task, estimates, method);
}
int32_t _ostsSSMinmax(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook*) {
  return min_max<float>(task, estimates, method);
}
int32_t _ostdSSQuantiles(SsTask* task, uint64_t estimates, uint64_t method,
                         const ThreadHook* hook) {
  return quantiles<double>(task, estimates, method, hook);
}
int32_t _ostsSSQuantiles(SsTask* task, uint64_t estimates, uint64_t method,
                         const ThreadHook* hook) {
  return quantiles<float>(task, estimates, method, hook);
}
int32_t _ostdSSStreamQuantiles(SsTask* task, uint64_t, uint64_t method, const ThreadHook* hook) {
  return stream_quantiles<double>(task, method, hook);
}
int32_t _ostsSSStreamQuantiles(SsTask* task, uint64_t, uint64_t method, const ThreadHook* hook) {
  return stream_quantiles<float>(task, method, hook);
}
int32_t _ostdSSSort(SsTask* task, uint64_t, uint64_t method, const ThreadHook* hook) {
  return sort<double>(task, method, hook);
}
int32_t _ostsSSSort(SsTask* task, uint64_t, uint64_t method, const ThreadHook* hook) {
  return sort<float>(task, method, hook);
}
