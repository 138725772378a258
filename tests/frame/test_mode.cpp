// Mode word: first value from the environment, merge of the set operation, one word per thread.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "qor/vector_math.h"
#include "tests/support/tables.h"

namespace {

constexpr const char* kVariable = "QOR_ARK_MODE";

// The first word of a new thread while the variable has the value.
uint32_t first_mode(const std::string& value) {
  setenv(kVariable, value.c_str(), 1);
  uint32_t mode = 0;
  std::thread([&] { mode = _arkGetMode(); }).join();
  unsetenv(kVariable);
  return mode;
}

TEST(Mode, FirstValueFromTheEnvironment) {
  for (const auto& [place, line] : qor::test::table_lines("frame/modes.txt", 30)) {
    const size_t quote = line.find('"');
    const std::string value = line.substr(quote + 1, line.size() - quote - 2);
    EXPECT_EQ(first_mode(value), std::stoul(line, nullptr, 16)) << place;
  }
}

TEST(Mode, ValueLengthLimit) {
  std::string value = "ARK_LA";
  while (value.size() + 7 <= 255) value += ",ARK_LA";
  // The last keyword may not reach the end of the buffer of 256: 252 + 2 still fits.
  EXPECT_EQ(first_mode(value), 0x1A01u) << value.size();
  EXPECT_EQ(first_mode(value + ",ARK_LA"), 0x1A02u);
}

TEST(Mode, SetReplacesFieldsThatAreNotZero) {
  // What is set on a new thread, and the word from then on; bits that are nobody's drop out.
  const std::pair<uint32_t, uint32_t> steps[] = {
      {0, 0x1A02},
      {0x30, 0x1A02},
      {QOR_MODE_ERRORS_IGNORE, 0x102},
      {QOR_MODE_EP, 0x103},
      {QOR_MODE_FLUSH_DENORMALS, 0x280103},
      {QOR_MODE_KEEP_DENORMALS, 0x140103},
      {QOR_MODE_TRAP_INVALID, 0x1140103},
      {0xF0C000C0u | 0x20000u, 0x1160103},
      {0xF, 0x116010F},
  };
  std::thread([&] {
    uint32_t before = 0x1A02;
    for (const auto& [fields, word] : steps) {
      EXPECT_EQ(qor_ark_kernel_SetMode(fields), before);
      EXPECT_EQ(qor_ark_kernel_GetMode(), word);
      before = word;
    }
    EXPECT_EQ(qor_ark_kernel_GetTTableIndex(), 14);
  }).join();
  EXPECT_EQ(_arkGetMode(), 0x1A02u);  // each thread has its own
}

TEST(Mode, ConsistencyBitsComeFromTheEnvironmentOnlyAndStay) {
  setenv(kVariable, "ARK_RESTORE", 1);
  std::thread([] {
    _arkSetMode(0x1101);
    EXPECT_EQ(_arkGetMode(), 0x1131u);
  }).join();
  unsetenv(kVariable);
}

TEST(Mode, TableIndex) {
  EXPECT_EQ(qor_ark_kernel_GetTTableIndex(), 1);
  EXPECT_EQ(qor_ark_kernel_GetTTableIndexM(7, 0x1A03), 2);
  EXPECT_EQ(qor_ark_kernel_GetTTableIndexM(0, 0), -1);
  EXPECT_EQ(dll_cpu_version(), 2);
}

}  // namespace
