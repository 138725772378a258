// Mode word: first value from the environment, merge of the set operation, one word per thread.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "qor/vector_math.h"

namespace {

constexpr const char* kVariable = "QOR_ARK_MODE";

// Runs `work` on a thread of its own, whose block is new.
template <class Work>
void on_new_thread(Work work) {
  std::thread(work).join();
}

// The first word of a thread started while the variable has the value (null: unset).
uint32_t first_mode(const char* value) {
  if (value != nullptr) {
    setenv(kVariable, value, 1);
  } else {
    unsetenv(kVariable);
  }
  uint32_t mode = 0;
  on_new_thread([&] { mode = _arkGetMode(); });
  unsetenv(kVariable);
  return mode;
}

TEST(Mode, FirstValueFromTheEnvironment) {
  const struct {
    const char* value;
    uint32_t mode;
  } cases[] = {
      {nullptr, 0x1A02},
      {"", 0x1A02},
      {"ARK_LA", 0x1A01},
      {"ARK_EP", 0x1A03},
      {"ARK_LA,ARK_HA", 0x1A03},
      {"ARK_ERRMODE_IGNORE", 0x102},
      {"ARK_ERRMODE_NOERR,ARK_LA", 0x2001},
      {"ARK_ERRMODE_STDERR,ARK_ERRMODE_ERRNO", 0x602},
      {"ARK_ERRMODE_EXCEPT,ARK_ERRMODE_CALLBACK", 0x1802},
      {"ARK_RESTORE,ARK_EP", 0x1A33},
      {"ARK_FLOAT_CONSISTENT", 0x1A12},
      {"ARK_DOUBLE_CONSISTEN", 0x1A22},
      {"ARK_TRAP_INVALID", 0x1001A02},
      {"ARK_TRAP_DIVBYZERO,ARK_TRAP_OVERFLOW,ARK_TRAP_UNDERFLOW", 0xE001A02},
      {"ARK_DEFAULT_PRECISION", 0x1A02},
      {"ARK_ERRMODE_DEFAULT,ARK_LA", 0x1A01},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(first_mode(c.value), c.mode) << (c.value != nullptr ? c.value : "unset");
  }
}

TEST(Mode, ValueThatIsNotUnderstoodCountsAsUnset) {
  for (const char* value : {"ARK_LA,", ",ARK_LA", "ARK_LA, ARK_ERRMODE_IGNORE", "ARK_LA ", "ark_la",
                            "ARK_la", "LA", "ARK_DOUBLE_CONSISTENT", "ARK_LA,ARK_NOTHING", "ARK_",
                            "A", "ARK_LA;ARK_EP", "BRK_LA", "ARK_LA,ARK", "ARK_LAX"}) {
    EXPECT_EQ(first_mode(value), 0x1A02u) << value;
  }
}

TEST(Mode, ValueLengthLimit) {
  std::string value = "ARK_LA";
  while (value.size() + 7 <= 255) value += ",ARK_LA";
  ASSERT_LE(value.size(), 255u);
  // The last keyword may not reach the end of the buffer of 256: 252 + 2 still fits.
  EXPECT_EQ(first_mode(value.c_str()), 0x1A01u) << value.size();
  EXPECT_EQ(first_mode((value + ",ARK_LA").c_str()), 0x1A02u);
}

TEST(Mode, SetReplacesFieldsThatAreNotZero) {
  on_new_thread([] {
    EXPECT_EQ(_arkSetMode(0), 0x1A02u);  // computes the word of a fresh thread
    EXPECT_EQ(_arkSetMode(0x30), 0x1A02u);
    EXPECT_EQ(_arkSetMode(QOR_MODE_ERRORS_IGNORE), 0x1A02u);
    EXPECT_EQ(_arkSetMode(QOR_MODE_EP), 0x102u);
    EXPECT_EQ(_arkSetMode(QOR_MODE_FLUSH_DENORMALS), 0x103u);
    EXPECT_EQ(_arkSetMode(QOR_MODE_KEEP_DENORMALS), 0x280103u);
    EXPECT_EQ(_arkSetMode(QOR_MODE_TRAP_INVALID), 0x140103u);
    EXPECT_EQ(_arkSetMode(0xF0C000C0u | 0x20000u), 0x1140103u);  // bits that are nobody's drop out
    EXPECT_EQ(qor_ark_kernel_SetMode(0xF), 0x1160103u);
    EXPECT_EQ(qor_ark_kernel_GetMode(), 0x116010Fu);
    EXPECT_EQ(qor_ark_kernel_GetTTableIndex(), 14);
  });
  EXPECT_EQ(_arkGetMode(), 0x1A02u);  // each thread has its own
}

TEST(Mode, ConsistencyBitsComeFromTheEnvironmentOnlyAndStay) {
  setenv(kVariable, "ARK_RESTORE", 1);
  on_new_thread([] {
    _arkSetMode(0x1101);
    EXPECT_EQ(_arkGetMode(), 0x1131u);
  });
  unsetenv(kVariable);
}

TEST(Mode, TableIndex) {
  EXPECT_EQ(qor_ark_kernel_GetTTableIndex(), 1);
  EXPECT_EQ(qor_ark_kernel_GetTTableIndexM(7, 0x1A03), 2);
  EXPECT_EQ(qor_ark_kernel_GetTTableIndexM(0, 0x1A01), 0);
  EXPECT_EQ(qor_ark_kernel_GetTTableIndexM(0, 0), -1);
  EXPECT_EQ(dll_cpu_version(), 2);
}

}  // namespace
