// The requirement tables of Basic, and its checks.

#include "statistics/request.h"

#include <bit>
#include <iterator>

#include "statistics/checks.h"

namespace qor::statistics {
namespace {

struct FieldRow {
  void* SsTask::*array;
  int missing;
};

// By Field.
constexpr FieldRow kFields[] = {
    {&SsTask::mean, QOR_SS_NULL_MEAN},
    {&SsTask::raw_2, QOR_SS_NULL_RAW_2},
    {&SsTask::raw_3, QOR_SS_NULL_RAW_3},
    {&SsTask::raw_4, QOR_SS_NULL_RAW_4},
    {&SsTask::central_2, QOR_SS_NULL_CENTRAL_2},
    {&SsTask::central_3, QOR_SS_NULL_CENTRAL_3},
    {&SsTask::central_4, QOR_SS_NULL_CENTRAL_4},
    {&SsTask::cov, QOR_SS_NULL_COV},
    {&SsTask::cor, QOR_SS_NULL_COR},
    {&SsTask::kurtosis, QOR_SS_NULL_KURTOSIS},
    {&SsTask::skewness, QOR_SS_NULL_SKEWNESS},
    {&SsTask::variation, QOR_SS_NULL_VARIATION},
    {&SsTask::sum, QOR_SS_NULL_SUM},
    {&SsTask::raw_sum_2, QOR_SS_NULL_RAW_SUM_2},
    {&SsTask::raw_sum_3, QOR_SS_NULL_RAW_SUM_3},
    {&SsTask::raw_sum_4, QOR_SS_NULL_RAW_SUM_4},
    {&SsTask::central_sum_2, QOR_SS_NULL_CENTRAL_SUM_2},
    {&SsTask::central_sum_3, QOR_SS_NULL_CENTRAL_SUM_3},
    {&SsTask::central_sum_4, QOR_SS_NULL_CENTRAL_SUM_4},
    {&SsTask::cp, QOR_SS_NULL_CP},
};
static_assert(std::size(kFields) == field_never);

// An estimate and the fields that it needs, by method.
struct RequirementRow {
  uint64_t estimate;
  uint32_t one_pass;  // and about given means
  uint32_t fast;
  uint32_t from_sums;
};

constexpr RequirementRow kRequirements[] = {
    {QOR_SS_ESTIMATE_MEAN, 0x1, 0x1, 0x1001},
    {QOR_SS_ESTIMATE_RAW_2, 0x2, 0x2, 0x2002},
    {QOR_SS_ESTIMATE_RAW_3, 0x4, 0x4, 0x4004},
    {QOR_SS_ESTIMATE_RAW_4, 0x8, 0x8, 0x8008},
    {QOR_SS_ESTIMATE_CENTRAL_2, 0x13, 0x13, 0x10010},
    {QOR_SS_ESTIMATE_CENTRAL_3, 0x27, 0x27, 0x20020},
    {QOR_SS_ESTIMATE_CENTRAL_4, 0x4F, 0x4F, 0x40040},
    {QOR_SS_ESTIMATE_COVARIANCE, 0x81, 0x81, 0x80080},
    {QOR_SS_ESTIMATE_CORRELATION, 0x101, 0x101, 0x80100},
    {QOR_SS_ESTIMATE_KURTOSIS, 0x25F, 0x25F, 0x251},
    {QOR_SS_ESTIMATE_SKEWNESS, 0x437, 0x437, 0x431},
    {QOR_SS_ESTIMATE_VARIATION, 0x813, 0x813, 0x811},
    {QOR_SS_ESTIMATE_SUM, 0x1000, 0x1000, 0x100000},
    {QOR_SS_ESTIMATE_RAW_SUM_2, 0x2000, 0x2000, 0x100000},
    {QOR_SS_ESTIMATE_RAW_SUM_3, 0x4000, 0x4000, 0x100000},
    {QOR_SS_ESTIMATE_RAW_SUM_4, 0x8000, 0x8000, 0x100000},
    {QOR_SS_ESTIMATE_CENTRAL_SUM_2, 0x10001, 0x10003, 0x100000},
    {QOR_SS_ESTIMATE_CENTRAL_SUM_3, 0x20001, 0x20007, 0x100000},
    {QOR_SS_ESTIMATE_CENTRAL_SUM_4, 0x40001, 0x4000F, 0x100000},
    {QOR_SS_ESTIMATE_CP, 0x80001, 0x80001, 0x100000},
};

constexpr uint64_t kDataMethods =
    QOR_SS_METHOD_FAST | QOR_SS_METHOD_ONE_PASS | QOR_SS_METHOD_GIVEN_MEANS;
constexpr uint64_t kSumMethods = QOR_SS_METHOD_FROM_SUMS | QOR_SS_METHOD_FROM_SUMS_2;

// False for no method, or several over data.
bool read_method(uint64_t word, Method& method) {
  switch (word & kDataMethods) {
    case 0:
      method = Method::from_sums;
      return has_method(word, kSumMethods);
    case QOR_SS_METHOD_FAST:
      method = Method::fast;
      return true;
    case QOR_SS_METHOD_ONE_PASS:
      method = Method::one_pass;
      return true;
    case QOR_SS_METHOD_GIVEN_MEANS:
      method = Method::given_means;
      return true;
    default:
      return false;
  }
}

uint32_t needed_fields(const RequirementRow& row, Method method) {
  switch (method) {
    case Method::fast:
      return row.fast;
    case Method::from_sums:
      return row.from_sums;
    default:
      return row.one_pass;
  }
}

uint32_t registered_fields(const SsTask& task) {
  uint32_t fields = 0;
  for (int f = 0; f < field_never; ++f) fields |= uint32_t{field_array(task, f) != nullptr} << f;
  return fields;
}

int check_source(const SsTask& task, Method method) {
  if (method == Method::from_sums) {
    const bool counted = task.n != nullptr && task.weights == nullptr;
    return task.accumulated_weights != nullptr || counted ? QOR_SS_OK
                                                          : QOR_SS_BAD_ACCUMULATED_WEIGHTS;
  }
  if (!has_observations(task)) return QOR_SS_BAD_N;
  if (task.x == nullptr) return QOR_SS_NULL_X;
  return check_data_storage(task, task.x_storage);
}

int check_matrix_storage(const SsTask& task, const Request& request) {
  const bool missing = (request.has(field_cov) && task.cov_storage == nullptr) ||
                       (request.has(field_cor) && task.cor_storage == nullptr) ||
                       (request.has(field_cp) && task.cp_storage == nullptr);
  return missing ? QOR_SS_NULL_STORAGE : QOR_SS_OK;
}

}  // namespace

void* field_array(const SsTask& task, int field) { return task.*kFields[field].array; }

int read_request(const SsTask& task, uint64_t estimates, uint64_t method, Request& request) {
  if (!read_method(method, request.method)) return QOR_SS_BAD_METHOD;
  request.fields = 0;
  for (const RequirementRow& row : kRequirements) {
    if ((estimates & row.estimate) != 0) request.fields |= needed_fields(row, request.method);
  }
  if (const uint32_t missing = request.fields & ~registered_fields(task); missing != 0) {
    const int lowest = std::countr_zero(missing);
    return lowest == field_never ? QOR_SS_BAD_METHOD : kFields[lowest].missing;
  }
  if (const int status = check_source(task, request.method)) return status;
  if (!has_variables(task)) return QOR_SS_BAD_P;
  if (request.method == Method::given_means && request.has(field_sum) && task.mean == nullptr) {
    return QOR_SS_NULL_MEAN;
  }
  return check_matrix_storage(task, request);
}

}  // namespace qor::statistics
