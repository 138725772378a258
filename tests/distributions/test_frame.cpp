// The floating-point frame around the work of a distribution.

#include <gtest/gtest.h>

#include <cfenv>
#include <utility>

#include "distributions/frame.h"

namespace {

using namespace qor::distributions;

// The control words of both units.
std::pair<uint32_t, uint32_t> controls() {
  std::fenv_t environment;
  std::fegetenv(&environment);
  return {environment.__control_word, _mm_getcsr() & 0xFFC0};
}

int32_t substitute(ErrorContext*) { return 0; }
int32_t callers(ErrorContext*) { return 1; }

uint32_t mode(uint32_t field) { return qor_ark_kernel_GetMode() & field; }

TEST(FloatingPointFrame, MasksInsideAndRestores) {
  // The caller's own: overflow unmasked in both units, rounding to zero, a callback.
  std::fesetround(FE_TOWARDZERO);
  feenableexcept(FE_OVERFLOW);
  qor_ark_kernel_SetErrorCallBack(callers);
  const auto own = controls();
  const uint32_t own_mode = mode(QOR_MODE_ERRORS);
  {
    const FloatingPointFrame frame(substitute);
    EXPECT_EQ(controls(), std::pair(own.first | 0x3F, own.second | 0x1F80));
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
  }
  EXPECT_EQ(controls(), own);
  EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO), 0);
  EXPECT_EQ(qor_ark_kernel_GetErrorCallBack(), callers);
  EXPECT_EQ(mode(QOR_MODE_ERRORS), own_mode);
  qor_ark_kernel_ClearErrorCallBack();
  std::fesetenv(FE_DFL_ENV);
}

}  // namespace
