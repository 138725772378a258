// Rows and stubs of every shape: a list of the test's own, the library's rows and stubs, and
// kernels that note what reaches them.

#include <gtest/gtest.h>

#include <cstring>

#include "qor/vector_math.h"

namespace {

// What the last kernel was and what it was given.
struct Arrival {
  const char* kernel = nullptr;
  int64_t n = 0;
  const void *a = nullptr, *b = nullptr, *y = nullptr, *z = nullptr;
  int64_t inca = 0, incb = 0, incy = 0, incz = 0;
  double scalars[4] = {};
  int32_t flag = 0;
};
Arrival last;

using cf = qor_complex_float;
using zd = qor_complex_double;

}  // namespace

extern "C" {
#define UNARY(f, T, R) \
  void qor_kernel_##f(int32_t n, const T* a, R* y) { last = {#f, n, a, nullptr, y}; }
#define UNARY_I(f, T, R)                                                         \
  void qor_kernel_##f(int32_t n, const T* a, int32_t inca, R* y, int32_t incy) { \
    last = {#f, n, a, nullptr, y, nullptr, inca, 0, incy};                       \
  }
UNARY(sSin_A, float, float)
UNARY(sSin_B, float, float)
UNARY(dCdfNorm_A, double, double)
UNARY(dCdfNorm_B, double, double)
UNARY(dCdfNorm_C, double, double)
UNARY(cLn_A, cf, cf)
UNARY(cLn_C, cf, cf)
UNARY(zCIS_A, double, zd)
UNARY(cArg_A, cf, float)
UNARY(cArg_B, cf, float)
UNARY_I(sSinI_A, float, float)
UNARY_I(sSinI_B, float, float)
UNARY_I(dCdfNormI_A, double, double)
UNARY_I(dCdfNormI_B, double, double)
UNARY_I(dCdfNormI_C, double, double)
UNARY_I(cLnI_A, cf, cf)
UNARY_I(cLnI_C, cf, cf)
UNARY_I(zCISI_A, double, zd)
UNARY_I(cArgI_A, cf, float)
UNARY_I(cArgI_B, cf, float)

#define BINARY(k)                                                                      \
  void qor_kernel_dPow_##k(int32_t n, const double* a, const double* b, double* y) {   \
    last = {"dPow_" #k, n, a, b, y};                                                   \
  }                                                                                    \
  void qor_kernel_dPowI_##k(int32_t n, const double* a, int32_t inca, const double* b, \
                            int32_t incb, double* y, int32_t incy) {                   \
    last = {"dPowI_" #k, n, a, b, y, nullptr, inca, incb, incy};                       \
  }
BINARY(A)
BINARY(B)

#define POWX(t, T, re, im)                                                                     \
  void qor_kernel_##t##Powx_A(int32_t n, const T* a, T b, T* y) {                              \
    last = {#t "Powx_A", n, a, nullptr, y, nullptr, 0, 0, 0, 0, {re, im}};                     \
  }                                                                                            \
  void qor_kernel_##t##PowxI_A(int32_t n, const T* a, int32_t inca, T b, T* y, int32_t incy) { \
    last = {#t "PowxI_A", n, a, nullptr, y, nullptr, inca, 0, incy, 0, {re, im}};              \
  }
POWX(s, float, static_cast<double>(b), 0)
POWX(c, cf, static_cast<double>(b.re), static_cast<double>(b.im))
POWX(z, zd, b.re, b.im)

void qor_kernel_dSinCos_A(int32_t n, const double* a, double* y, double* z) {
  last = {"dSinCos_A", n, a, nullptr, y, z};
}
void qor_kernel_dSinCosI_A(int32_t n, const double* a, int32_t inca, double* y, int32_t incy,
                           double* z, int32_t incz) {
  last = {"dSinCosI_A", n, a, nullptr, y, z, inca, 0, incy, incz};
}
void qor_kernel_dLinearFrac_A(int32_t n, const double* a, const double* b, double as, double at,
                              double bs, double bt, double* y) {
  last = {"dLinearFrac_A", n, a, b, y, nullptr, 0, 0, 0, 0, {as, at, bs, bt}};
}
void qor_kernel_dLinearFracI_A(int32_t n, const double* a, int32_t inca, const double* b,
                               int32_t incb, double as, double at, double bs, double bt, double* y,
                               int32_t incy) {
  last = {"dLinearFracI_A", n, a, b, y, nullptr, inca, incb, incy, 0, {as, at, bs, bt}};
}

void qor_kernel_sPackI_A(int64_t n, const float* a, int64_t inca, float* y, int32_t flag) {
  last = {"sPackI_A", n, a, nullptr, y, nullptr, inca, 0, 0, 0, {}, flag};
}
void qor_kernel_dPackM_A(int64_t n, const double* a, const void* ma, double* y, int32_t flag) {
  last = {"dPackM_A", n, a, ma, y, nullptr, 0, 0, 0, 0, {}, flag};
}
void qor_kernel_zPackV_A(int64_t n, const zd* a, const void* ia, zd* y, int32_t flag) {
  last = {"zPackV_A", n, a, ia, y, nullptr, 0, 0, 0, 0, {}, flag};
}
void qor_kernel_sUnpackI_A(int64_t n, const float* a, float* y, int64_t incy, int32_t flag) {
  last = {"sUnpackI_A", n, a, nullptr, y, nullptr, 0, 0, incy, 0, {}, flag};
}
void qor_kernel_dUnpackM_A(int64_t n, const double* a, double* y, const void* my, int32_t flag) {
  last = {"dUnpackM_A", n, a, my, y, nullptr, 0, 0, 0, 0, {}, flag};
}
void qor_kernel_zUnpackV_A(int64_t n, const zd* a, zd* y, const void* iy, int32_t flag) {
  last = {"zUnpackV_A", n, a, iy, y, nullptr, 0, 0, 0, 0, {}, flag};
}
}  // extern "C"

namespace {

#define EXPECT_KERNEL(name) EXPECT_STREQ(last.kernel, name)

float s1[1], s2[1];
double d1[1], d2[1], d3[1];
cf c1[1], c2[1];
zd z1[1], z2[1];
int32_t indices[1];

TEST(Shapes, SlotsOfTheAccuracyPatterns) {
  _arksSin(3, s1, s2);
  EXPECT_KERNEL("sSin_B");
  EXPECT_EQ(last.n, 3);
  EXPECT_EQ(last.a, s1);
  EXPECT_EQ(last.y, s2);
  _arksSin_21(1, s1, s2);
  EXPECT_KERNEL("sSin_A");
  _arksSin_11(1, s1, s2);
  EXPECT_KERNEL("sSin_A");
  _arkcLn(1, c1, c2);
  EXPECT_KERNEL("cLn_A");
  _arkcLn_21(1, c1, c2);
  EXPECT_KERNEL("cLn_A");
  _arkcLn_11(1, c1, c2);
  EXPECT_KERNEL("cLn_C");
  _arkdCdfNorm_50(1, d1, d2);
  EXPECT_KERNEL("dCdfNorm_A");
  _arkdCdfNorm_HA(1, d1, d2);
  EXPECT_KERNEL("dCdfNorm_B");
  _arkdCdfNorm_26(1, d1, d2);
  EXPECT_KERNEL("dCdfNorm_C");
  EXPECT_EQ(qor_ark_kernel_dCdfNorm_ctab[1], 112.49f);
  EXPECT_EQ(qor_ark_kernel_dCdfNormI_ctab[2], 61.33f);
}

TEST(Shapes, ArgumentsArriveInPlace) {
  _arksSinI(5, s1, -2, s2, 3);
  EXPECT_KERNEL("sSinI_B");
  EXPECT_EQ(last.inca, -2);
  EXPECT_EQ(last.incy, 3);
  _arkzCIS(1, d1, z1);
  EXPECT_EQ(last.y, z1);
  _arkcArgI_11(1, c1, 2, s1, 4);
  EXPECT_KERNEL("cArgI_A");
  EXPECT_EQ(last.incy, 4);
  _arkdPow_50(2, d1, d2, d3);
  EXPECT_KERNEL("dPow_A");
  EXPECT_EQ(last.b, d2);
  EXPECT_EQ(last.y, d3);
  _arkdPowI(2, d1, 1, d2, 2, d3, 3);
  EXPECT_KERNEL("dPowI_B");
  EXPECT_EQ(last.incb, 2);
  EXPECT_EQ(last.incy, 3);
  _arkdSinCosI(1, d1, 1, d2, 2, d3, 3);
  EXPECT_EQ(last.z, d3);
  EXPECT_EQ(last.incz, 3);
}

TEST(Shapes, ScalarsArriveByValue) {
  _arksPowx(1, s1, 2.5f, s2);
  EXPECT_EQ(last.scalars[0], 2.5);
  _arkcPowxI(1, c1, 7, {1.5f, -2.5f}, c2, 8);
  EXPECT_EQ(last.scalars[0], 1.5);
  EXPECT_EQ(last.scalars[1], -2.5);
  EXPECT_EQ(last.inca, 7);
  EXPECT_EQ(last.incy, 8);
  _arkzPowx_26(1, z1, {1.5, -2.5}, z2);
  EXPECT_KERNEL("zPowx_A");
  EXPECT_EQ(last.scalars[1], -2.5);
  EXPECT_EQ(last.y, z2);
  _arkdLinearFracI(1, d1, 2, d2, 3, 4.0, 5.0, 6.0, 7.0, d3, 8);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(last.scalars[i], 4.0 + i);
  EXPECT_EQ(last.y, d3);
  EXPECT_EQ(last.incy, 8);
}

TEST(Shapes, PackStubsPutOneIntoTheReservedWord) {
  constexpr int64_t large = (int64_t{3} << 32) + 5;
  _arksPackI(large, s1, -large, s2, 77);
  EXPECT_EQ(last.n, large);
  EXPECT_EQ(last.inca, -large);
  EXPECT_EQ(last.flag, 1);
  _arkcPackM(1, c1, indices, c2, 0);
  EXPECT_KERNEL("dPackM_A");
  EXPECT_EQ(last.b, indices);
  EXPECT_EQ(last.flag, 1);
  _arkzPackV_26(1, z1, indices, z2, 0);
  EXPECT_EQ(last.flag, 1);
  _arksUnpackI(1, s1, s2, 9, 0);
  EXPECT_EQ(last.incy, 9);
  EXPECT_EQ(last.flag, 1);
  _arkdUnpackM(1, d1, d2, indices, 0);
  EXPECT_EQ(last.flag, 1);
  _arkzUnpackV(1, z1, z2, indices, 0);
  EXPECT_EQ(last.flag, 1);
  // Through the row the word arrives as the caller set it.
  qor_ark_kernel_sPackI_ttab[1](1, s1, 1, s2, 5);
  EXPECT_EQ(last.flag, 5);
  EXPECT_EQ(reinterpret_cast<void*>(qor_ark_kernel_dPackM_ttab[0]),
            reinterpret_cast<void*>(qor_ark_kernel_cPackM_ttab[2]));
}

}  // namespace
