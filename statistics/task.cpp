// Tasks: their making and their end.

#include "statistics/task.h"

#include "services/scratch.h"
#include "statistics/view.h"

namespace qor::statistics {
namespace {

template <class Real>
int new_task(SsTask** result, const void* p, const void* n, const void* x_storage, const Real* x,
             const Real* weights, const void* indices, int32_t index_width) {
  if (result == nullptr) return QOR_SS_NULL_TASK;
  const bool wide = index_width != 0;
  const auto value = [wide](const void* field) { return Integers{field, wide}[0]; };
  if (p == nullptr || value(p) <= 0) return QOR_SS_BAD_P;
  if (x != nullptr) {
    if (x_storage == nullptr) return QOR_SS_NULL_STORAGE;
    if (!is_exact_data_storage(value(x_storage))) return QOR_SS_BAD_STORAGE;
    if (n == nullptr || value(n) <= 0) return QOR_SS_BAD_N;
  }
  auto* task = services::allocate_values<SsTask>(1);
  if (task == nullptr) return QOR_SS_NO_MEMORY;
  *task = SsTask{};
  task->index_width = index_width;
  task->kind = task_kind;
  task->precision = precision_of<Real>;
  task->p = p;
  task->n = n;
  task->indices = indices;
  task->x = const_cast<Real*>(x);
  task->weights = const_cast<Real*>(weights);
  task->x_storage = x_storage;
  *result = task;
  return QOR_SS_OK;
}

}  // namespace
}  // namespace qor::statistics

using namespace qor::statistics;

int32_t __ostdSSNewTask(SsTask** task, const void* p, const void* n, const void* x_storage,
                        const double* x, const double* weights, const void* indices,
                        int32_t index_width) {
  return new_task(task, p, n, x_storage, x, weights, indices, index_width);
}
int32_t __ostsSSNewTask(SsTask** task, const void* p, const void* n, const void* x_storage,
                        const float* x, const float* weights, const void* indices,
                        int32_t index_width) {
  return new_task(task, p, n, x_storage, x, weights, indices, index_width);
}

int32_t __ostSSDeleteTask(SsTask** pointer) {
  if (pointer == nullptr) return QOR_SS_NULL_TASK;
  SsTask* task = *pointer;
  qor_serv_deallocate(task->saved_means);
  for (int32_t i = 0; i < task->cleanup_count; ++i) task->cleanup[i](task);
  qor_serv_deallocate(task);
  *pointer = nullptr;
  return QOR_SS_OK;
}
