#include <gtest/gtest.h>

#include "qor/vector_math.h"
#include "tests/support/services_interposer.h"

namespace {

TEST(Mode, FirstValueAndVersion) {
  EXPECT_EQ(_arkGetMode(), 0x1A02u);
  EXPECT_EQ(dll_cpu_version(), 2);
  EXPECT_GT(qor::test::live_blocks(), 0);
}

}  // namespace
