// Editors: the fields of a task, one by one or the spline's all at once.

#include <algorithm>
#include <iterator>

#include "fitting/scratch.h"
#include "fitting/task.h"

namespace qor::fitting {
namespace {

constexpr int64_t kInternalConditionBit = 8;  // marks a condition beyond the listed codes

bool is_edited_type(int64_t type) { return (type >= 0 && type <= 5) || type == 9; }
bool is_internal_condition(int64_t code) {
  return (code >= 0 && code <= 2) || (code & kInternalConditionBit) != 0;
}

// A 64-bit field, what it accepts, and the status of the rest.
struct ValueField {
  int64_t code;
  int64_t DFTask::*field;
  bool (*accepts)(int64_t);
  int status;
};

constexpr ValueField kValueFields[] = {
    {QOR_DF_NX, &DFTask::nx, [](int64_t v) { return v >= 2; }, QOR_DF_BAD_NX},
    {QOR_DF_X_HINT, &DFTask::xhint, is_partition_form, QOR_DF_BAD_X_HINT},
    {QOR_DF_NY, &DFTask::ny, [](int64_t v) { return v >= 1; }, QOR_DF_BAD_NY},
    {QOR_DF_Y_HINT, &DFTask::yhint, is_storage_form, QOR_DF_BAD_Y_HINT},
    {QOR_DF_ORDER, &DFTask::s_order, [](int64_t v) { return v >= 0; }, QOR_DF_BAD_ORDER},
    {QOR_DF_TYPE, &DFTask::s_type, is_edited_type, QOR_DF_BAD_TYPE},
    {QOR_DF_IC_TYPE, &DFTask::ic_type, is_internal_condition, QOR_DF_BAD_IC_TYPE},
    {QOR_DF_BC_TYPE, &DFTask::bc_type, [](int64_t v) { return v >= 0; }, QOR_DF_BAD_BC_TYPE},
    {QOR_DF_SCOEFF_HINT, &DFTask::scoeffhint, is_storage_form, QOR_DF_BAD_SCOEFF_HINT},
};

const ValueField* value_field(int64_t code) {
  const auto* found = std::find_if(std::begin(kValueFields), std::end(kValueFields),
                                   [code](const ValueField& f) { return f.code == code; });
  return found == std::end(kValueFields) ? nullptr : found;
}

int rebuild_lookup_table(DFTask& task) {
  return task.precision == precision_of<double> ? build_lookup_table<double>(task)
                                                : build_lookup_table<float>(task);
}

int edit_value(DFTask& task, int64_t code, int64_t value) {
  if (code == QOR_DF_CHECK) {
    if (value != 0 && value != 1) return QOR_DF_BAD_CHECK;
    task.check = static_cast<int32_t>(value);
    return QOR_DF_OK;
  }
  const ValueField* field = value_field(code);
  if (field == nullptr) return QOR_DF_BAD_CODE;
  if (!field->accepts(value)) return field->status;
  task.*field->field = value;
  const bool rebuild = code == QOR_DF_X_HINT && value == QOR_DF_NON_UNIFORM;
  return rebuild ? rebuild_lookup_table(task) : QOR_DF_OK;
}

int query_value(const DFTask& task, int64_t code, void* result) {
  if (result == nullptr) return QOR_DF_NULL_RESULT;
  const ValueField* field = value_field(code);
  if (field == nullptr && code != QOR_DF_CHECK) return QOR_DF_BAD_CODE;
  const int64_t value = field != nullptr ? task.*field->field : int64_t{task.check};
  if (task.int_width != 0) {
    *static_cast<int64_t*>(result) = value;
  } else {
    *static_cast<int32_t*>(result) = static_cast<int32_t>(value);
  }
  return QOR_DF_OK;
}

int store(const void*& field, const void* pointer, int null_status) {
  if (pointer == nullptr) return null_status;
  field = pointer;
  return QOR_DF_OK;
}

int edit_pointer(DFTask& task, int64_t code, const void* pointer, int64_t size) {
  switch (code) {
    case QOR_DF_X:
      return store(task.x, pointer, QOR_DF_NULL_X);
    case QOR_DF_Y:
      return pointer == nullptr ? QOR_DF_NULL_Y : lay_out_functions(task, pointer, size);
    case QOR_DF_IC:
      return store(task.ic, pointer, QOR_DF_BAD_IC);
    case QOR_DF_BC:
      return store(task.bc, pointer, QOR_DF_NULL_BC);
    case QOR_DF_SCOEFF:
      return pointer == nullptr
                 ? QOR_DF_NULL_SCOEFF
                 : lay_out_coefficients(task, const_cast<void*>(pointer), task.scoeffhint, size);
    default:
      return QOR_DF_BAD_CODE;
  }
}

int query_pointer(const DFTask& task, int64_t code, void** result) {
  if (result == nullptr) return QOR_DF_NULL_RESULT;
  const void* found;
  switch (code) {
    case QOR_DF_X:
      found = task.x;
      break;
    case QOR_DF_Y:
      found = task.y != nullptr ? task.y[0] : nullptr;
      break;
    case QOR_DF_IC:
      found = task.ic;
      break;
    case QOR_DF_BC:
      found = task.bc;
      break;
    case QOR_DF_SCOEFF:
      found = task.scoeff != nullptr ? task.scoeff[0] : nullptr;
      break;
    default:
      return QOR_DF_BAD_CODE;
  }
  *result = const_cast<void*>(found);
  return QOR_DF_OK;
}

// Makes room for an entry per function: a task may get its first table here, or have more functions
// than it was made with.
template <class Pointer>
bool grow(Pointer*& table, int64_t& room, int64_t ny) {
  if (ny <= room) return true;
  auto* grown = allocate_values<Pointer>(counted_sum(ny, 1));
  if (grown == nullptr) return false;
  if (table != nullptr) std::copy_n(table, room, grown);
  std::fill(grown + room, grown + ny + 1, nullptr);
  qor_serv_deallocate(table);
  table = grown;
  room = ny;
  return true;
}

int edit_entry(DFTask& task, int64_t code, int64_t index, const void* pointer) {
  if (code != QOR_DF_Y && code != QOR_DF_SCOEFF) return QOR_DF_BAD_CODE;
  if (code == QOR_DF_Y && task.yhint == QOR_DF_INTERLEAVED) return QOR_DF_BAD_Y_HINT;
  if (index < 0 || index >= task.ny) return QOR_DF_BAD_INDEX;
  if (pointer == nullptr) return code == QOR_DF_Y ? QOR_DF_NULL_Y : QOR_DF_NULL_SCOEFF;
  if (code == QOR_DF_Y) {
    if (!grow(task.y, task.y_room, task.ny)) return QOR_DF_NO_MEMORY;
    task.y[index] = pointer;
  } else {
    if (!grow(task.scoeff, task.scoeff_room, task.ny)) return QOR_DF_NO_MEMORY;
    task.scoeff[index] = const_cast<void*>(pointer);
  }
  return QOR_DF_OK;
}

int query_entry(const DFTask& task, int64_t code, int64_t index, void** result) {
  if (result == nullptr) return QOR_DF_NULL_RESULT;
  if (code != QOR_DF_Y && code != QOR_DF_SCOEFF) return QOR_DF_BAD_CODE;
  if (index < 0 || index > task.ny) return QOR_DF_BAD_INDEX;
  if (code == QOR_DF_Y && task.yhint == QOR_DF_INTERLEAVED) return QOR_DF_BAD_Y_HINT;
  if (code == QOR_DF_Y) {
    *result = index < task.y_room ? const_cast<void*>(task.y[index]) : nullptr;
  } else {
    *result = index < task.scoeff_room ? task.scoeff[index] : nullptr;
  }
  return QOR_DF_OK;
}

bool boundary_needs_values(int64_t bc_type) {
  return bc_type != QOR_DF_BC_NONE && bc_type != QOR_DF_BC_NOT_A_KNOT &&
         bc_type != QOR_DF_BC_FREE && bc_type != QOR_DF_BC_PERIODIC;
}

template <class Real>
int edit_spline(DFTask& task, int64_t s_order, int64_t s_type, int64_t bc_type, const Real* bc,
                int64_t ic_type, const Real* ic, Real* scoeff, int64_t scoeffhint) {
  if (s_order < 0) return QOR_DF_BAD_ORDER;
  task.s_order = s_order;
  if (s_type < 0) return QOR_DF_BAD_TYPE;
  task.s_type = s_type;
  if (boundary_needs_values(bc_type) && bc == nullptr) return QOR_DF_NULL_BC;
  task.bc_type = bc_type;
  task.bc = bc;
  if (ic_type != 0 && ic == nullptr) return QOR_DF_BAD_IC;
  if (ic_type == 0 && ic != nullptr) return QOR_DF_BAD_IC_TYPE;
  task.ic_type = ic_type;
  task.ic = ic;
  if (scoeff != nullptr) {
    const int status = lay_out_coefficients(task, scoeff, scoeffhint, sizeof(Real));
    if (status != QOR_DF_OK) return status;
  }
  task.scoeffhint = scoeffhint;
  return QOR_DF_OK;
}

// The routine applied to a task that can take it: null has its status, and a task that is not valid
// is left alone.
template <class Task, class Routine>
int on_task(Task* task, Routine routine) {
  if (task == nullptr) return QOR_DF_NULL_TASK;
  return task->valid == 1 ? routine(*task) : QOR_DF_OK;
}

}  // namespace
}  // namespace qor::fitting

using namespace qor::fitting;

int qor_df_kernel_dEditPPSpline1D(DFTask* task, int64_t s_order, int64_t s_type, int64_t bc_type,
                                  const double* bc, int64_t ic_type, const double* ic,
                                  double* scoeff, int64_t scoeffhint) {
  return on_task(task, [=](DFTask& t) {
    return edit_spline(t, s_order, s_type, bc_type, bc, ic_type, ic, scoeff, scoeffhint);
  });
}
int qor_df_kernel_sEditPPSpline1D(DFTask* task, int64_t s_order, int64_t s_type, int64_t bc_type,
                                  const float* bc, int64_t ic_type, const float* ic, float* scoeff,
                                  int64_t scoeffhint) {
  return on_task(task, [=](DFTask& t) {
    return edit_spline(t, s_order, s_type, bc_type, bc, ic_type, ic, scoeff, scoeffhint);
  });
}

int qor_df_kernel_iEditVal(DFTask* task, int64_t code, int64_t value) {
  return on_task(task, [=](DFTask& t) { return edit_value(t, code, value); });
}
int qor_df_kernel_iQueryVal(const DFTask* task, int64_t code, void* result) {
  return on_task(task, [=](const DFTask& t) { return query_value(t, code, result); });
}

int qor_df_kernel_dEditPtr(DFTask* task, int64_t code, const void* pointer) {
  return on_task(task, [=](DFTask& t) { return edit_pointer(t, code, pointer, sizeof(double)); });
}
int qor_df_kernel_sEditPtr(DFTask* task, int64_t code, const void* pointer) {
  return on_task(task, [=](DFTask& t) { return edit_pointer(t, code, pointer, sizeof(float)); });
}
int qor_df_kernel_dQueryPtr(const DFTask* task, int64_t code, void** result) {
  return on_task(task, [=](const DFTask& t) { return query_pointer(t, code, result); });
}

int qor_df_kernel_dEditIdxPtr(DFTask* task, int64_t code, int64_t index, const void* pointer) {
  return on_task(task, [=](DFTask& t) { return edit_entry(t, code, index, pointer); });
}
int qor_df_kernel_dQueryIdxPtr(const DFTask* task, int64_t code, int64_t index, void** result) {
  return on_task(task, [=](const DFTask& t) { return query_entry(t, code, index, result); });
}

// Pointers have no precision: the entries of both are one.
[[gnu::alias("qor_df_kernel_dQueryPtr")]] int qor_df_kernel_sQueryPtr(const DFTask*, int64_t,
                                                                      void**);
[[gnu::alias("qor_df_kernel_dEditIdxPtr")]] int qor_df_kernel_sEditIdxPtr(DFTask*, int64_t, int64_t,
                                                                          const void*);
[[gnu::alias("qor_df_kernel_dQueryIdxPtr")]] int qor_df_kernel_sQueryIdxPtr(const DFTask*, int64_t,
                                                                            int64_t, void**);
