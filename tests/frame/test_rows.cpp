// Rows and stubs from outside: order, layout, names, and slots that are loaded at every call.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "qor/vector_math.h"

namespace {

#define QOR_FUNCTION(t, name, ...) #t #name,
#define QOR_STRIDED(t, name, ...) #t #name "I",
const std::vector<std::string> kRows = {QOR_FUNCTION_ROWS(QOR_FUNCTION) QOR_PACK_ROWS(QOR_FUNCTION)
                                            QOR_FUNCTION_ROWS(QOR_STRIDED)};
#undef QOR_FUNCTION
#undef QOR_STRIDED

constexpr size_t kRowBytes = sizeof(void*) == 8 ? 40 : 24;

void* symbol(const std::string& name) { return dlsym(RTLD_DEFAULT, name.c_str()); }

void** slots(const std::string& row) {
  return static_cast<void**>(symbol("qor_ark_kernel_" + row + "_ttab"));
}

// Every name of the finished table, in order.
std::vector<std::string> table_order() {
  std::ifstream file(QOR_SOURCE "/tests/frame/table_order.txt");
  std::vector<std::string> names;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') names.push_back(line);
  }
  return names;
}

TEST(Rows, StandInTableOrder) {
  const std::vector<std::string> order = table_order();
  ASSERT_EQ(order.size(), 440u);
  auto at = order.begin();
  for (const std::string& row : kRows) {
    const auto found = std::find(at, order.end(), row);
    ASSERT_NE(found, order.end()) << row << " is unknown, or stands before its place";
    at = found + 1;
  }
}

TEST(Rows, FormOneArray) {
  const char* first = reinterpret_cast<char*>(slots(kRows[0]));
  ASSERT_NE(first, nullptr);
  for (size_t i = 0; i < kRows.size(); ++i) {
    const char* ttab = reinterpret_cast<char*>(slots(kRows[i]));
    ASSERT_NE(ttab, nullptr) << kRows[i];
    EXPECT_EQ(ttab, first + i * kRowBytes) << kRows[i];
    EXPECT_EQ(symbol("qor_ark_kernel_" + kRows[i] + "_ctab"), ttab + 3 * sizeof(void*));
    for (int slot = 0; slot < 3; ++slot) EXPECT_NE(slots(kRows[i])[slot], nullptr) << kRows[i];
  }
}

TEST(Rows, CostsOfAFunctionAndItsStridedMateAreEqual) {
  for (const std::string& row : kRows) {
    const void* strided = symbol("qor_ark_kernel_" + row + "I_ctab");
    if (strided == nullptr) continue;
    const void* plain = symbol("qor_ark_kernel_" + row + "_ctab");
    EXPECT_EQ(std::memcmp(plain, strided, 3 * sizeof(float)), 0) << row;
  }
  EXPECT_EQ(qor_ark_kernel_sExp_ctab[0], 15.62f);
}

TEST(Stubs, EveryRowHasItsFourNames) {
  for (const std::string& row : kRows) {
    const bool single = row[0] == 's' || row[0] == 'c';
    const std::string entry = "_ark" + row;
    EXPECT_NE(symbol(entry), nullptr) << entry;
    EXPECT_EQ(symbol(entry), symbol(entry + "_HA")) << entry;
    EXPECT_NE(symbol(entry + (single ? "_21" : "_50")), nullptr) << entry;
    EXPECT_NE(symbol(entry + (single ? "_11" : "_26")), nullptr) << entry;
    EXPECT_EQ(symbol(entry + (single ? "_50" : "_21")), nullptr) << entry;
  }
}

TEST(Stubs, LoadTheirSlotAtEveryCallWhateverTheModeSays) {
  static int called = -1;
  using Kernel = void (*)(int32_t, const double*, double*);
  const Kernel marks[3] = {[](int32_t, const double*, double*) { called = 0; },
                           [](int32_t, const double*, double*) { called = 1; },
                           [](int32_t, const double*, double*) { called = 2; }};
  Kernel saved[3];
  std::copy_n(qor_ark_kernel_dExp_ttab, 3, saved);
  std::copy_n(marks, 3, qor_ark_kernel_dExp_ttab);
  const uint32_t mode = _arkSetMode(QOR_MODE_LA);
  const double x = 1.0;
  double y = 0.0;
  _arkdExp(1, &x, &y);
  EXPECT_EQ(called, 1);
  _arkdExp_HA(1, &x, &y);
  EXPECT_EQ(called, 1);
  _arkdExp_50(1, &x, &y);
  EXPECT_EQ(called, 0);
  _arkdExp_26(1, &x, &y);
  EXPECT_EQ(called, 2);
  // The strided kernel of one kernel in all slots falls back on slot 1.
  _arkdExpI_26(1, &x, 1, &y, 1);
  EXPECT_EQ(called, 1);
  std::copy_n(saved, 3, qor_ark_kernel_dExp_ttab);
  _arkSetMode(mode);
  _arkdExp(1, &x, &y);
  EXPECT_NEAR(y, 2.718281828459045, 1e-15);
}

}  // namespace
