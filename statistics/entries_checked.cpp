// Entries whose estimators this version does not have: their arguments are checked as promised, and
// what is good ends in one place.

#include "statistics/checks.h"
#include "statistics/estimators.h"

namespace qor::statistics {
namespace {

template <class Check, class... Arguments>
int check_only(Check check, const SsTask* task, Arguments... arguments) {
  if (task == nullptr) return QOR_SS_NULL_TASK;
  const int status = check(*task, arguments...);
  return status != QOR_SS_OK ? status : not_built();
}

}  // namespace
}  // namespace qor::statistics

using namespace qor::statistics;

int32_t _ostdSSMAD(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook*) {
  return check_only(check_absolute_deviations, task, estimates, method);
}
int32_t _ostsSSMAD(SsTask* task, uint64_t estimates, uint64_t method, const ThreadHook*) {
  return check_only(check_absolute_deviations, task, estimates, method);
}
int32_t _ostdSSMissingValues(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_missing_values, task, method);
}
int32_t _ostsSSMissingValues(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_missing_values, task, method);
}
int32_t _ostdSSOutliersDetection(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_outliers, task, method);
}
int32_t _ostsSSOutliersDetection(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_outliers, task, method);
}
int32_t _ostdSSPartialCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                 const ThreadHook*) {
  return check_only(check_partial_covariance, task, estimates, method);
}
int32_t _ostsSSPartialCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                 const ThreadHook*) {
  return check_only(check_partial_covariance, task, estimates, method);
}
int32_t _ostdSSPooledCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                const ThreadHook*) {
  return check_only(check_pooled_covariance, task, estimates, method);
}
int32_t _ostsSSPooledCovariance(SsTask* task, uint64_t estimates, uint64_t method,
                                const ThreadHook*) {
  return check_only(check_pooled_covariance, task, estimates, method);
}
int32_t _ostdSSRobustCovariance(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_robust_covariance, task, method);
}
int32_t _ostsSSRobustCovariance(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_robust_covariance, task, method);
}
int32_t _ostdSSCorParametrization(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_parametrization, task, method);
}
int32_t _ostsSSCorParametrization(SsTask* task, uint64_t, uint64_t method, const ThreadHook*) {
  return check_only(check_parametrization, task, method);
}
int32_t _ostdSSWMedian(SsTask* task) { return check_only(check_weighted_median, task); }
int32_t _ostsSSWMedian(SsTask* task) { return check_only(check_weighted_median, task); }
int32_t _ostdSSMahDistance(SsTask* task) { return check_only(check_distances, task); }
int32_t _ostsSSMahDistance(SsTask* task) { return check_only(check_distances, task); }
