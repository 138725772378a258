// Powers: what no other function has. (The paths of Powx by its exponent: special_values.txt.)

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

TEST(Pow, OfDoublesHasAKernelOfItsOwnForHighAccuracy) {
  EXPECT_EQ(qor_ark_kernel_dPow_ttab[LA], qor_ark_kernel_dPow_ttab[EP]);
  EXPECT_NE(qor_ark_kernel_dPow_ttab[LA], qor_ark_kernel_dPow_ttab[HA]);
  EXPECT_NE(qor_ark_kernel_dPowI_ttab[LA], qor_ark_kernel_dPowI_ttab[HA]);
}

TEST(Powx, OfAnExponentOfZeroDoesNotReadItsVector) {
  for (const double zero : {0.0, -0.0}) {
    double ones[3] = {}, spread[5] = {};
    _arkdPowx(3, nullptr, zero, ones);
    _arkdPowxI(3, nullptr, 1, zero, spread, 2);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(ones[i] + spread[2 * i], 2);
    float single[3] = {};
    _arksPowx(3, nullptr, static_cast<float>(zero), single);
    for (const float one : single) EXPECT_EQ(one, 1);
  }
}

// On the general path, to the bit.
TEST(Powx, AgreesWithPow) {
  std::vector<double> a(101), b(a.size(), 2.7), y(a.size()), z(a.size());
  for (size_t i = 0; i < a.size(); ++i) a[i] = std::ldexp(1.0 + 0.01 * static_cast<double>(i), 4);
  _arkdPow(101, a.data(), b.data(), y.data());
  _arkdPowx(101, a.data(), 2.7, z.data());
  EXPECT_TRUE(same_bits(z.data(), y));
}

}  // namespace
}  // namespace qor::test
