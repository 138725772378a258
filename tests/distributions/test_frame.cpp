// The floating-point frame around the work of a distribution.

#include <gtest/gtest.h>

#include "distributions/frame.h"

namespace {

using namespace qor::distributions;

uint16_t x87_control() {
  uint16_t word = 0;
  asm volatile("fnstcw %0" : "=m"(word));
  return word;
}
uint16_t x87_status() {
  uint16_t word = 0;
  asm volatile("fnstsw %0" : "=m"(word));
  return word;
}
void set_x87_control(uint16_t word) { asm volatile("fldcw %0" : : "m"(word)); }

int32_t substitute(ErrorContext*) { return 0; }
int32_t callers(ErrorContext*) { return 1; }

TEST(FloatingPointFrame, MasksInsideAndRestores) {
  const uint16_t x87 = x87_control();
  const uint32_t sse = _mm_getcsr();
  // The caller's own: overflow unmasked in both units, rounding to zero, a callback, its mode.
  const uint16_t own_x87 = static_cast<uint16_t>((x87 & ~0x8) | 0xC00);
  const uint32_t own_sse = (sse & ~0x400u) | 0x6000;
  set_x87_control(own_x87);
  _mm_setcsr(own_sse);
  qor_ark_kernel_SetErrorCallBack(callers);
  const uint32_t own_mode = qor_ark_kernel_GetMode();
  {
    const FloatingPointFrame frame(substitute);
    EXPECT_EQ(x87_control() & 0x3F, 0x3F);
    EXPECT_EQ(x87_control() & 0xC00, 0xC00);
    EXPECT_EQ(_mm_getcsr() & 0x1F80, 0x1F80u);
    EXPECT_EQ(qor_ark_kernel_GetMode() & QOR_MODE_ERRORS, QOR_MODE_ERRORS_CALLBACK);
    EXPECT_EQ(qor_ark_kernel_GetErrorCallBack(), substitute);
    const uint32_t inside = qor_ark_kernel_GetMode();
    {
      const KernelMode kernel;
      EXPECT_EQ(qor_ark_kernel_GetMode() & QOR_MODE_DENORMALS, QOR_MODE_KEEP_DENORMALS);
    }
    EXPECT_EQ(qor_ark_kernel_GetMode() & QOR_MODE_ERRORS, inside & QOR_MODE_ERRORS);
    // An exception of the work: its flag does not reach the caller's x87 unit.
    asm volatile("fld1\n\tfldz\n\tfdivrp\n\tfstp %%st(0)" ::: "st");
    EXPECT_NE(x87_status() & 0x4, 0);
  }
  EXPECT_EQ(x87_control(), own_x87);
  EXPECT_EQ(x87_status() & 0x3F, 0);
  EXPECT_EQ(_mm_getcsr() & 0xFFC0, own_sse & 0xFFC0);
  EXPECT_EQ(qor_ark_kernel_GetErrorCallBack(), callers);
  EXPECT_EQ(qor_ark_kernel_GetMode() & QOR_MODE_ERRORS, own_mode & QOR_MODE_ERRORS);
  qor_ark_kernel_ClearErrorCallBack();
  set_x87_control(x87);
  _mm_setcsr(sse);
}

}  // namespace
