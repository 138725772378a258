// Rows and stubs of every shape: a list of the test's own, the library's rows and stubs, and
// kernels that note what reaches them.

#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>
#include <vector>

#include "qor/vector_math.h"

// The kernels that the rows name. They are places alone: tests put their own into the rows.
asm(".pushsection .data\n"
    ".irp f, sSin_A, sSin_B, dCdfNorm_A, dCdfNorm_B, dCdfNorm_C, cLn_A, cLn_C, zCIS_A, cArg_A,"
    " cArg_B, dPow_A, dPow_B, sPowx_A, cPowx_A, zPowx_A, dSinCos_A, dLinearFrac_A,"
    " sSinI_A, sSinI_B, dCdfNormI_A, dCdfNormI_B, dCdfNormI_C, cLnI_A, cLnI_C, zCISI_A, cArgI_A,"
    " cArgI_B, dPowI_A, dPowI_B, sPowxI_A, cPowxI_A, zPowxI_A, dSinCosI_A, dLinearFracI_A,"
    " sPackI_A, dPackM_A, zPackV_A, sUnpackI_A, dUnpackM_A, zUnpackV_A\n"
    ".globl qor_kernel_\\f\n"
    "qor_kernel_\\f: .byte 0\n"
    ".endr\n"
    ".popsection");
extern "C" char qor_kernel_sSin_A, qor_kernel_sSin_B, qor_kernel_dCdfNormI_A,
    qor_kernel_dCdfNormI_B, qor_kernel_dCdfNormI_C, qor_kernel_cLn_A, qor_kernel_cLn_C,
    qor_kernel_dPackM_A;

namespace {

template <class Row>
void expect_kernels(const Row& row, const char& la, const char& ha, const char& ep) {
  const char* const kernels[] = {&la, &ha, &ep};
  for (int slot = 0; slot < 3; ++slot) {
    EXPECT_EQ(reinterpret_cast<const char*>(row[slot]), kernels[slot]) << slot;
  }
}

TEST(Shapes, SlotsOfTheAccuracyPatterns) {
  expect_kernels(qor_ark_kernel_sSin_ttab, qor_kernel_sSin_A, qor_kernel_sSin_B, qor_kernel_sSin_A);
  expect_kernels(qor_ark_kernel_cLn_ttab, qor_kernel_cLn_A, qor_kernel_cLn_A, qor_kernel_cLn_C);
  expect_kernels(qor_ark_kernel_dCdfNormI_ttab, qor_kernel_dCdfNormI_A, qor_kernel_dCdfNormI_B,
                 qor_kernel_dCdfNormI_C);
  // A pack row of one type may be another's.
  expect_kernels(qor_ark_kernel_cPackM_ttab, qor_kernel_dPackM_A, qor_kernel_dPackM_A,
                 qor_kernel_dPackM_A);
  EXPECT_EQ(qor_ark_kernel_dCdfNorm_ctab[1], 112.49f);
  EXPECT_EQ(qor_ark_kernel_dCdfNormI_ctab[2], 61.33f);
}

// Arguments as numbers: pointers by their addresses, complex ones by both parts.
template <class T>
void add(std::vector<double>& numbers, const T& argument) {
  if constexpr (std::is_pointer_v<T>) {
    numbers.push_back(static_cast<double>(reinterpret_cast<uintptr_t>(argument)));
  } else if constexpr (std::is_class_v<T>) {
    add(numbers, argument.re);
    add(numbers, argument.im);
  } else {
    numbers.push_back(static_cast<double>(argument));
  }
}

// Arguments of which no two are alike.
int made = 0;
template <class T>
T make() {
  ++made;
  if constexpr (std::is_pointer_v<T>) {
    static char places[1 << 12];
    return reinterpret_cast<T>(places + 16 * (made % 256));
  } else if constexpr (std::is_class_v<T>) {
    return {make<decltype(T::re)>(), make<decltype(T::im)>()};
  } else if constexpr (sizeof(T) == 8 && std::is_integral_v<T>) {
    return (T{3} << 32) + made;
  } else {
    return static_cast<T>(std::is_signed_v<T> ? -made : made);
  }
}

int called = -1;
std::vector<double> arrived;

template <int slot, class... A>
void note(A... arguments) {
  called = slot;
  (add(arrived, arguments), ...);
}

// All arguments of an entry arrive in place in the kernel of its slot; the last one as 1 where it
// is the reserved word of a pack entry.
template <int slot, class... A>
void check(const char* name, void (*entry)(A...), void (*(&row)[3])(A...), bool reserved) {
  row[0] = note<0, A...>;
  row[1] = note<1, A...>;
  row[2] = note<2, A...>;
  const std::tuple<A...> arguments{make<A>()...};
  std::vector<double> expected;
  std::apply([&](const auto&... argument) { (add(expected, argument), ...); }, arguments);
  if (reserved) expected.back() = 1;
  arrived.clear();
  std::apply(entry, arguments);
  EXPECT_EQ(called, slot) << name;
  EXPECT_EQ(arrived, expected) << name;
}

// clang-format off
#define CHECK(f, la, ep, reserved) \
  check<1>(#f, _ark##f, qor_ark_kernel_##f##_ttab, reserved); \
  check<1>(#f "_HA", _ark##f##_HA, qor_ark_kernel_##f##_ttab, reserved); \
  check<0>(#f #la, _ark##f##la, qor_ark_kernel_##f##_ttab, reserved); \
  check<2>(#f #ep, _ark##f##ep, qor_ark_kernel_##f##_ttab, reserved);
#define CHECK_s(f, reserved) CHECK(f, _21, _11, reserved)
#define CHECK_c(f, reserved) CHECK(f, _21, _11, reserved)
#define CHECK_d(f, reserved) CHECK(f, _50, _26, reserved)
#define CHECK_z(f, reserved) CHECK(f, _50, _26, reserved)
#define FUNCTION(t, name, ...) CHECK_##t(t##name, false) CHECK_##t(t##name##I, false)
#define PACK(t, name, ...) CHECK_##t(t##name, true)
// clang-format on

TEST(Shapes, ArgumentsArriveInPlace){QOR_FUNCTION_ROWS(FUNCTION)}

TEST(Shapes, PackStubsPutOneIntoTheReservedWord) {
  QOR_PACK_ROWS(PACK)
}

}  // namespace
