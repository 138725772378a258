// Rows and stubs from outside: order, layout, names, and slots that are loaded at every call.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "qor/vector_math.h"
#include "tests/support/tables.h"

namespace {

#define QOR_FUNCTION(t, name, ...) #t #name,
#define QOR_STRIDED(t, name, ...) #t #name "I",
const std::vector<std::string> kRows = {QOR_FUNCTION_ROWS(QOR_FUNCTION) QOR_PACK_ROWS(QOR_FUNCTION)
                                            QOR_FUNCTION_ROWS(QOR_STRIDED)};
#undef QOR_FUNCTION
#undef QOR_STRIDED

constexpr size_t kRowBytes = sizeof(void*) == 8 ? 40 : 24;

const char* symbol(const std::string& name) {
  return static_cast<const char*>(dlsym(RTLD_DEFAULT, name.c_str()));
}

// The file holds every name of the finished table, in order.
TEST(Rows, StandInTableOrder) {
  const auto names = qor::test::table_lines("frame/table_order.txt");
  auto row = kRows.begin();
  for (const auto& [place, line] : names) {
    if (row != kRows.end() && *row == line) ++row;
  }
  EXPECT_EQ(names.size(), 440u);
  EXPECT_TRUE(row == kRows.end()) << *row << " is unknown, or stands before its place";
}

TEST(Rows, FormOneArray) {
  const char* place = symbol("qor_ark_kernel_" + kRows[0] + "_ttab");
  ASSERT_NE(place, nullptr);
  for (const std::string& row : kRows) {
    ASSERT_EQ(symbol("qor_ark_kernel_" + row + "_ttab"), place) << row;
    EXPECT_EQ(symbol("qor_ark_kernel_" + row + "_ctab"), place + 3 * sizeof(void*)) << row;
    for (int slot = 0; slot < 3; ++slot) {
      EXPECT_NE(reinterpret_cast<void* const*>(place)[slot], nullptr) << row;
      EXPECT_GT(reinterpret_cast<const float*>(place + 3 * sizeof(void*))[slot], 0) << row;
    }
    place += kRowBytes;
  }
}

TEST(Rows, CostsOfAFunctionAndItsStridedMateAreEqual) {
  for (const std::string& row : kRows) {
    const char* plain = symbol("qor_ark_kernel_" + row + "_ctab");
    const char* strided = symbol("qor_ark_kernel_" + row + "I_ctab");
    EXPECT_TRUE(strided == nullptr || std::memcmp(plain, strided, 3 * sizeof(float)) == 0) << row;
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

int called = -1;
template <int slot>
void mark(int32_t, const double*, double*) {
  called = slot;
}

TEST(Stubs, LoadTheirSlotAtEveryCallWhateverTheModeSays) {
  using Kernel = void (*)(int32_t, const double*, double*);
  const Kernel marks[3] = {mark<0>, mark<1>, mark<2>};
  Kernel saved[3];
  std::copy_n(qor_ark_kernel_dExp_ttab, 3, saved);
  std::copy_n(marks, 3, qor_ark_kernel_dExp_ttab);
  const uint32_t mode = _arkSetMode(QOR_MODE_LA);
  const double x = 0.0;
  double y = 0.0;
  const std::pair<Kernel, int> entries[] = {
      {_arkdExp, 1}, {_arkdExp_HA, 1}, {_arkdExp_50, 0}, {_arkdExp_26, 2}};
  for (const auto& [entry, slot] : entries) {
    entry(1, &x, &y);
    EXPECT_EQ(called, slot);
  }
  // The strided kernel of one kernel in all slots falls back on slot 1.
  _arkdExpI_26(1, &x, 1, &y, 1);
  EXPECT_EQ(called, 1);
  std::copy_n(saved, 3, qor_ark_kernel_dExp_ttab);
  _arkSetMode(mode);
  _arkdExp(1, &x, &y);
  EXPECT_EQ(y, 1.0);
}

}  // namespace
