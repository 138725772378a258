// The plain entries of the frame, each under both of its names.

#include "frame/mode.h"
#include "frame/thread_state.h"

using namespace qor::frame;

uint32_t qor_ark_kernel_GetMode() { return mode(); }
uint32_t qor_ark_kernel_SetMode(uint32_t newMode) { return merge_mode(thread_state(), newMode); }

int32_t qor_ark_kernel_GetTTableIndexM(uint32_t /*ignored*/, uint32_t mode) {
  return static_cast<int32_t>(mode & QOR_MODE_ACCURACY) - 1;
}
int32_t qor_ark_kernel_GetTTableIndex() { return qor_ark_kernel_GetTTableIndexM(0, mode()); }

int32_t dll_cpu_version() { return 2; }

int32_t qor_ark_kernel_GetErrStatus() { return thread_state().errStatus; }

int32_t qor_ark_kernel_SetErrStatus(int32_t status) {
  ThreadState& state = thread_state();
  const int32_t old = state.errStatus;
  state.errStatus = status;
  return old;
}

int32_t qor_ark_kernel_ClearErrStatus() { return qor_ark_kernel_SetErrStatus(QOR_ERROR_NONE); }

qor_error_callback qor_ark_kernel_GetErrorCallBack() { return thread_state().errCallback; }

qor_error_callback qor_ark_kernel_SetErrorCallBack(qor_error_callback callback) {
  constexpr uint32_t kBit = QOR_MODE_ERRORS_CALLBACK;
  ThreadState& state = thread_state();
  const qor_error_callback old = state.errCallback;
  const uint32_t word = mode_of(state);
  state.errCallback = callback;
  merge_mode(state, callback != nullptr ? word | kBit : word & ~kBit);
  return old;
}

qor_error_callback qor_ark_kernel_ClearErrorCallBack() {
  return qor_ark_kernel_SetErrorCallBack(nullptr);
}

const void* qor_ark_kernel_SetInterfInputVectorPointer(const void* pointer) {
  return thread_state().interfInputVector = pointer;
}

uint32_t _arkGetMode() { return qor_ark_kernel_GetMode(); }
uint32_t _arkSetMode(uint32_t newMode) { return qor_ark_kernel_SetMode(newMode); }
int32_t _arkGetErrStatus() { return qor_ark_kernel_GetErrStatus(); }
int32_t _arkSetErrStatus(int32_t status) { return qor_ark_kernel_SetErrStatus(status); }
int32_t _arkClearErrStatus() { return qor_ark_kernel_ClearErrStatus(); }
qor_error_callback _arkGetErrorCallBack() { return qor_ark_kernel_GetErrorCallBack(); }
qor_error_callback _arkSetErrorCallBack(qor_error_callback callback) {
  return qor_ark_kernel_SetErrorCallBack(callback);
}
qor_error_callback _arkClearErrorCallBack() { return qor_ark_kernel_ClearErrorCallBack(); }
const void* _arkSetInterfInputVectorPointer(const void* pointer) {
  return qor_ark_kernel_SetInterfInputVectorPointer(pointer);
}
