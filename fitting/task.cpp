// Tasks: their making, their end, and the tables of pointers that they own.

#include "fitting/task.h"

#include <algorithm>

#include "fitting/scratch.h"

namespace qor::fitting {
namespace {

// The array `index` arrays of `length` values of `size` bytes behind `first`. In whole numbers, as
// lengths that no memory holds may be told before their arrays are.
template <class Pointer>
Pointer nth_array(Pointer first, int64_t index, int64_t length, int64_t size) {
  const uint64_t distance =
      static_cast<uint64_t>(index) * static_cast<uint64_t>(length) * static_cast<uint64_t>(size);
  return reinterpret_cast<Pointer>(reinterpret_cast<uintptr_t>(first) +
                                   static_cast<uintptr_t>(distance));
}

// A table of `room` entries and a null one behind them, the first `set` of them laid out from
// `first`; null without memory.
template <class Pointer>
Pointer* lay_out(Pointer first, int64_t room, int64_t set, int64_t length, int64_t size) {
  auto* table = allocate_values<Pointer>(counted_sum(room, 1));
  if (table == nullptr) return nullptr;
  for (int64_t i = 0; i < set; ++i) table[i] = nth_array(first, i, length, size);
  std::fill(table + set, table + room + 1, nullptr);
  return table;
}

// Whether the table has its first `count` entries.
template <class Pointer>
bool is_complete(Pointer* table, int64_t room, int64_t count) {
  return count <= room && std::find(table, table + count, nullptr) == table + count;
}

int check_arguments(int64_t nx, const void* x, int64_t xhint, int64_t ny, const void* y,
                    int64_t yhint) {
  if (nx < 2) return QOR_DF_BAD_NX;
  if (x == nullptr) return QOR_DF_NULL_X;
  if (!is_partition_form(xhint)) return QOR_DF_BAD_X_HINT;
  if (ny != 0 && y == nullptr) return QOR_DF_NULL_Y;
  if (ny <= 0 && y != nullptr) return QOR_DF_BAD_NY;
  return is_storage_form(yhint) ? QOR_DF_OK : QOR_DF_BAD_Y_HINT;
}

void release(DFTask* task) {
  qor_serv_deallocate(task->y);
  qor_serv_deallocate(task->scoeff);
  qor_serv_deallocate(task->lut);
  qor_serv_deallocate(task);
}

template <class Real>
int new_task(DFTask** result, int64_t nx, const Real* x, int64_t xhint, int64_t ny, const Real* y,
             int64_t yhint, int32_t int_width) {
  if (result == nullptr) return QOR_DF_NULL_TASK;
  int status = check_arguments(nx, x, xhint, ny, y, yhint);
  if (status != QOR_DF_OK) return status;
  auto* task = allocate_values<DFTask>(1);
  if (task == nullptr) return QOR_DF_NO_MEMORY;
  *task = DFTask{};
  task->int_width = int_width;
  task->kind = task_kind;
  task->precision = precision_of<Real>;
  task->valid = 1;
  task->nx = nx;
  task->x = x;
  task->xhint = xhint;
  task->ny = ny;
  task->yhint = yhint;
  if (y != nullptr) status = lay_out_functions(*task, y, sizeof(Real));
  if (status == QOR_DF_OK && xhint != QOR_DF_UNIFORM_PARTITION) {
    status = build_lookup_table<Real>(*task);
  }
  if (status != QOR_DF_OK) {
    release(task);
    return status;
  }
  *result = task;
  return QOR_DF_OK;
}

}  // namespace

int lay_out_functions(DFTask& task, const void* first, int64_t size) {
  if (task.ny == 0) return QOR_DF_BAD_NY;
  const bool one = task.yhint == QOR_DF_INTERLEAVED || task.yhint == QOR_DF_FIRST_POINTER;
  const int64_t room = task.yhint == QOR_DF_INTERLEAVED ? 1 : task.ny;
  auto* table = lay_out(first, room, one ? 1 : room, task.nx, size);
  if (table == nullptr) return QOR_DF_NO_MEMORY;
  qor_serv_deallocate(task.y);
  task.y = table;
  task.y_room = room;
  return QOR_DF_OK;
}

int lay_out_coefficients(DFTask& task, void* first, int64_t hint, int64_t size) {
  if (task.ny == 0) return QOR_DF_BAD_NY;
  const int64_t cells = task.s_type == 1 ? task.nx : task.nx - 1;
  const bool one = (hint & 0xFF) == QOR_DF_FIRST_POINTER;
  const auto length =
      static_cast<int64_t>(static_cast<uint64_t>(task.s_order) * static_cast<uint64_t>(cells));
  auto* table = lay_out(first, task.ny, one ? 1 : task.ny, length, size);
  if (table == nullptr) return QOR_DF_NO_MEMORY;
  qor_serv_deallocate(task.scoeff);
  task.scoeff = table;
  task.scoeff_room = task.ny;
  return QOR_DF_OK;
}

int check_arrays(const DFTask& task, unsigned kinds) {
  if ((kinds & inner_conditions) != 0 && task.ic == nullptr) return QOR_DF_BAD_IC;
  const int64_t functions = std::max<int64_t>(task.ny, 0);
  const int64_t values =
      task.yhint == QOR_DF_INTERLEAVED ? std::min<int64_t>(functions, 1) : functions;
  if ((kinds & function_values) != 0 && !is_complete(task.y, task.y_room, values)) {
    return QOR_DF_NULL_Y;
  }
  const bool coefficients = is_complete(task.scoeff, task.scoeff_room, functions);
  return (kinds & coefficient_arrays) != 0 && !coefficients ? QOR_DF_NULL_SCOEFF : QOR_DF_OK;
}

}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dNewTask1D(DFTask** task, int64_t nx, const double* x, int64_t xhint, int64_t ny,
                             const double* y, int64_t yhint, int32_t int_width) {
  return new_task(task, nx, x, xhint, ny, y, yhint, int_width);
}
int qor_df_kernel_sNewTask1D(DFTask** task, int64_t nx, const float* x, int64_t xhint, int64_t ny,
                             const float* y, int64_t yhint, int32_t int_width) {
  return new_task(task, nx, x, xhint, ny, y, yhint, int_width);
}

int qor_df_kernel_DeleteTask(DFTask** task) {
  if (task == nullptr || *task == nullptr) return QOR_DF_NULL_TASK;
  release(*task);
  *task = nullptr;
  return QOR_DF_OK;
}
