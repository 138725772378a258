// The sorting services: quicksort, every stride-th element, selection.

#include "statistics/quicksort.h"

#include <limits>

#include "qor/statistics.h"

namespace qor::statistics {
namespace {

template <class Array>
int32_t sort_array(int64_t count, Array a) {
  if (count > 1) sort_by_partition(a, count);
  return QOR_SS_OK;
}

template <class Real>
Real select_element(int64_t count, Real* a, int64_t k) {
  if (k < 0 || k >= count) return std::numeric_limits<Real>::quiet_NaN();
  return select_by_partition(a, count, k);
}

}  // namespace
}  // namespace qor::statistics

using namespace qor::statistics;

int32_t __ostdQSort(int64_t count, double* array) { return sort_array(count, array); }
int32_t __ostsQSort(int64_t count, float* array) { return sort_array(count, array); }

int32_t __ostdQSortStep(int64_t count, double* array, int64_t stride) {
  return sort_array(count, Strided<double>{array, stride});
}
int32_t __ostsQSortStep(int64_t count, float* array, int64_t stride) {
  return sort_array(count, Strided<float>{array, stride});
}

double __ostdQSortSelect(int64_t count, double* array, int64_t k) {
  return select_element(count, array, k);
}
float __ostsQSortSelect(int64_t count, float* array, int64_t k) {
  return select_element(count, array, k);
}
