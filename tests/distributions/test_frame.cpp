// The floating-point frame around the work of a distribution.

#include <gtest/gtest.h>

#include <cfenv>

#include "distributions/frame.h"

namespace {

using namespace qor::distributions;

// The control words of both units, and the x87 exception flags.
struct Registers {
  uint32_t x87, sse, flags;
  Registers() : sse(_mm_getcsr() & 0xFFC0) {
    std::fenv_t environment;
    std::fegetenv(&environment);
    x87 = environment.__control_word;
    flags = environment.__status_word & 0x3F;
  }
};

int32_t substitute(ErrorContext*) { return 0; }
int32_t callers(ErrorContext*) { return 1; }

uint32_t mode(uint32_t field) { return qor_ark_kernel_GetMode() & field; }

TEST(FloatingPointFrame, MasksInsideAndRestores) {
  // The caller's own: overflow unmasked in both units, rounding to zero, a callback.
  std::fesetround(FE_TOWARDZERO);
  feenableexcept(FE_OVERFLOW);
  qor_ark_kernel_SetErrorCallBack(callers);
  const Registers own;
  const uint32_t own_mode = mode(QOR_MODE_ERRORS);
  {
    const FloatingPointFrame frame(substitute);
    const Registers inside;
    EXPECT_EQ(inside.x87, own.x87 | 0x3F);
    EXPECT_EQ(inside.sse, own.sse | 0x1F80);
    EXPECT_EQ(mode(QOR_MODE_ERRORS), QOR_MODE_ERRORS_CALLBACK);
    EXPECT_EQ(qor_ark_kernel_GetErrorCallBack(), substitute);
    {
      const KernelMode kernel;
      EXPECT_EQ(mode(QOR_MODE_DENORMALS), QOR_MODE_KEEP_DENORMALS);
    }
    EXPECT_EQ(mode(QOR_MODE_ERRORS), QOR_MODE_ERRORS_CALLBACK);
    // An exception of the work: its flag does not reach the caller's x87 unit.
    volatile long double zero = 0;
    zero = 1 / zero;
    EXPECT_NE(Registers().flags, 0u);
  }
  const Registers after;
  EXPECT_EQ(after.x87, own.x87);
  EXPECT_EQ(after.sse, own.sse);
  EXPECT_EQ(after.flags, 0u);
  EXPECT_EQ(qor_ark_kernel_GetErrorCallBack(), callers);
  EXPECT_EQ(mode(QOR_MODE_ERRORS), own_mode);
  qor_ark_kernel_ClearErrorCallBack();
  std::fesetenv(FE_DFL_ENV);
}

}  // namespace
