// What distribution entries have in common: where a block of variates lies, and the floating-point
// frame of those that call vector kernels.
#pragma once

#include <xmmintrin.h>

#include <cstdint>

#include "qor/vector_math.h"

namespace qor::distributions {

// Values made at a time, on the stack: the working set stays in the first level cache.
inline constexpr int32_t block_size = 1024;

// For the length of a scope: floating-point exceptions masked, x87 exception flags clear at both
// ends, and vector math errors handed to a substitute callback only, which makes results finite.
// The thread's mode, callback and control words come back as they were.
class FloatingPointFrame {
 public:
  explicit FloatingPointFrame(qor_error_callback substitute) : sse_(_mm_getcsr()) {
    asm volatile("fnclex\n\tfnstcw %0" : "=m"(x87_));
    set_x87(x87_, static_cast<uint16_t>(x87_ | kX87Masks));
    set_sse(sse_, sse_ | kSseMasks);
    mode_ = qor_ark_kernel_SetMode(QOR_MODE_ERRORS_CALLBACK);
    callback_ = qor_ark_kernel_SetErrorCallBack(substitute);
  }
  ~FloatingPointFrame() {
    // The callback first: setting it changes the mode.
    qor_ark_kernel_SetErrorCallBack(callback_);
    qor_ark_kernel_SetMode(mode_);
    asm volatile("fnclex");
    set_x87(static_cast<uint16_t>(x87_ | kX87Masks), x87_);
    set_sse(~sse_, sse_);
  }
  FloatingPointFrame(const FloatingPointFrame&) = delete;
  FloatingPointFrame& operator=(const FloatingPointFrame&) = delete;

 private:
  static constexpr uint16_t kX87Masks = 0x3F;
  static constexpr uint32_t kSseMasks = 0x1F80;

  // A control register is written only where it changes: the write is slow.
  static void set_x87(uint16_t now, uint16_t wanted) {
    if (now != wanted) asm volatile("fldcw %0" : : "m"(wanted));
  }
  static void set_sse(uint32_t now, uint32_t wanted) {
    if (now != wanted) _mm_setcsr(wanted);
  }

  uint16_t x87_ = 0;
  uint32_t sse_;
  uint32_t mode_ = 0;
  qor_error_callback callback_ = nullptr;
};

// The mode under which a distribution calls a vector kernel, around that one call.
class KernelMode {
 public:
  KernelMode() : mode_(qor_ark_kernel_SetMode(QOR_MODE_KEEP_DENORMALS)) {}
  ~KernelMode() { qor_ark_kernel_SetMode(mode_); }
  KernelMode(const KernelMode&) = delete;
  KernelMode& operator=(const KernelMode&) = delete;

 private:
  uint32_t mode_;
};

// What substitute callbacks put in place of the logarithm of 0: that of the smallest denormal.
inline constexpr double float_log_floor = -103.2789306640625;
inline constexpr double double_log_floor = -744.4400719213812;

}  // namespace qor::distributions
