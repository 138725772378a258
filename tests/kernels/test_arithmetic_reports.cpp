// What the arithmetic kernels report, under which name, and with which IEEE flags; and whose
// rounding mode they work in.

#include <fenv.h>

#include "tests/kernels/function_cases.h"

namespace qor::test {
namespace {

template <class T>
using BinaryRow = void (*)(int32_t, const T*, const T*, T*);
template <class T>
using StridedRow = void (*)(int32_t, const T*, int32_t, const T*, int32_t, T*, int32_t);

template <class T>
std::vector<Case<T>> division_cases() {
  return {{1, 0, kInfinity<T>, 2, kDivideByZero},
          {-1, 0, -kInfinity<T>, 2, kDivideByZero},
          {1, T(-0.0), -kInfinity<T>, 2, kDivideByZero},
          {kInfinity<T>, 0, kInfinity<T>, 2, 0},
          {0, 0, kNan<T>, 2, kInvalid},
          {kNan<T>, 0, kNan<T>, 0, 0},
          {1, kNan<T>, kNan<T>, 0, 0},
          {0, kInfinity<T>, 0, 0, 0}};
}

template <class T>
std::vector<Case<T>> next_after_cases() {
  const T largest_denormal = std::nextafter(kSmallest<T>, T{0});
  return {{0, -1, -kDenormal<T>, 4, kUnderflow},
          {T(-0.0), 1, kDenormal<T>, 4, kUnderflow},
          {T(-0.0), 0, 0, 0, 0},
          {-kDenormal<T>, 1, T(-0.0), 4, kUnderflow},
          {kSmallest<T>, 0, largest_denormal, 4, kUnderflow},
          {largest_denormal, 1, kSmallest<T>, 0, 0},
          {kDenormal<T>, kDenormal<T>, kDenormal<T>, 0, 0},
          {kLargest<T>, kInfinity<T>, kInfinity<T>, 3, kOverflow},
          {-kLargest<T>, -kInfinity<T>, -kInfinity<T>, 3, kOverflow},
          {kInfinity<T>, 0, kLargest<T>, 0, 0},
          {kInfinity<T>, kInfinity<T>, kInfinity<T>, 0, 0},
          {kNan<T>, 0, kNan<T>, 0, 0}};
}

// Only a zero divisor is reported: an infinite dividend stays silent.
template <class T>
std::vector<Case<T>> remainder_cases() {
  return {{5, 3, -1, 0, 0},
          {5, 2, 1, 0, 0},
          {7, 2, -1, 0, 0},
          {-4, 2, T(-0.0), 0, 0},
          {5, 0, kNan<T>, 1, kInvalid},
          {kInfinity<T>, 0, kNan<T>, 1, kInvalid},
          {kInfinity<T>, 1, kNan<T>, 0, kInvalid},
          {kNan<T>, 0, kNan<T>, 0, 0},
          {5, kNan<T>, kNan<T>, 0, 0},
          {-5, kInfinity<T>, -5, 0, 0}};
}

template <class T>
std::vector<Case<T>> fmod_cases() {
  return {{-7, T(2147483647), -7, 0, 0},
          {-4, 2, T(-0.0), 0, 0},
          {T(-2.5), 1, T(-0.5), 0, 0},
          {5, 0, kNan<T>, 2, kInvalid},
          {kInfinity<T>, 1, kNan<T>, 2, kInvalid},
          {kNan<T>, 0, kNan<T>, 0, 0},
          {5, kNan<T>, kNan<T>, 0, 0},
          {-5, kInfinity<T>, -5, 0, 0}};
}

TEST(ArithmeticReports, CodesNamesAndFlags) {
  check_all(Binary<float>{"vsDiv", "vsDivI", _arksDiv, _arksDivI}, division_cases<float>());
  check_all(Binary<double>{"vdDiv", "vdDivI", _arkdDiv, _arkdDivI}, division_cases<double>());
  check_all(Binary<float>{"vsNextAfter", "vsNextAfter", _arksNextAfter, _arksNextAfterI},
            next_after_cases<float>());
  check_all(Binary<double>{"vdNextAfter", "vdNextAfter", _arkdNextAfter, _arkdNextAfterI},
            next_after_cases<double>());
  check_all(Binary<float>{"vsRemainder", "vsRemainder", _arksRemainder, _arksRemainderI},
            remainder_cases<float>());
  check_all(Binary<double>{"vdRemainder", "vdRemainder", _arkdRemainder, _arkdRemainderI},
            remainder_cases<double>());
  check_all(Binary<float>{"vsFmod", "vsFmod", _arksFmod, _arksFmodI}, fmod_cases<float>());
  check_all(Binary<double>{"vdFmod", "vdFmod", _arkdFmod, _arkdFmodI}, fmod_cases<double>());
}

TEST(ArithmeticReports, InverseOfZero) {
  std::vector<double> x(21, 4.0), y(42);
  for (const int place : {0, 9, 20}) x[static_cast<size_t>(place)] = place == 9 ? -0.0 : 0.0;
  const auto reported = [](const char* name) {
    return std::vector<Reports::Report>{{2, 0, name}, {2, 9, name}, {2, 20, name}};
  };
  {
    const Reports reports;
    _arkdInv(21, x.data(), y.data());
    EXPECT_EQ(Reports::list, reported("vdInv"));
  }
  EXPECT_EQ(y[0], kInfinity<double>);
  EXPECT_EQ(y[9], -kInfinity<double>);
  EXPECT_EQ(y[1], 0.25);
  {
    const Reports reports;
    _arkdInvI(21, x.data(), 1, y.data(), 2);
    EXPECT_EQ(Reports::list, reported("vdInvI"));
  }
  const std::vector<float> single(x.begin(), x.end());
  std::vector<float> single_y(42);
  const Reports reports;
  _arksInvI(21, single.data(), 1, single_y.data(), 2);
  EXPECT_EQ(Reports::list, reported("vsInvI"));
}

// Denormals are zeros to a division in the mode that says so, and to nothing that works on images.
TEST(ArithmeticReports, DenormalsAsZeros) {
  const ModeScope mode(QOR_MODE_FLUSH_DENORMALS);
  const float one = 1, denormal = 3 * kDenormal<float>, step = 2 * kDenormal<float>;
  float quotient, rest, next;
  {
    const Reports reports;
    _arksDiv(1, &one, &denormal, &quotient);
    EXPECT_EQ(Reports::list, (std::vector<Reports::Report>{{2, 0, "vsDiv"}}));
    EXPECT_EQ(quotient, kInfinity<float>);
  }
  const Reports reports;
  _arksFmod(1, &denormal, &step, &rest);
  _arksNextAfter(1, &denormal, &one, &next);
  EXPECT_EQ(image(rest), 1u);
  EXPECT_EQ(image(next), 4u);
  EXPECT_EQ(Reports::list, (std::vector<Reports::Report>{{4, 0, "vsNextAfter"}}));
}

class RoundingUpwards : public testing::Test {
 protected:
  void SetUp() override { fesetround(FE_UPWARD); }
  void TearDown() override {
    EXPECT_EQ(fegetround(), FE_UPWARD);
    fesetround(FE_TONEAREST);
  }
};

// 1 + a little, rounded upwards or to nearest, contiguous and strided.
template <class T>
std::pair<bool, bool> rounds_up(BinaryRow<T> row, StridedRow<T> strided, T a, T b, T nearest) {
  std::vector<T> av(12, a), bv(12, b), y(12), z(12);
  row(12, av.data(), bv.data(), y.data());
  strided(6, av.data(), 2, bv.data(), 2, z.data(), 2);
  for (const T result : y) EXPECT_EQ(result, y[0]);
  return {y[0] != nearest, z[0] != nearest};
}

using UpContiguousAndStrided = std::pair<bool, bool>;

TEST_F(RoundingUpwards, IsKeptByTheMaskForm) {
  const float ds = 0x1p-30f;
  const double dd = 0x1p-60;
  const UpContiguousAndStrided kept{true, false}, nearest{false, false};
  EXPECT_EQ(rounds_up<float>(_arksAdd, _arksAddI, 1, ds, 1), kept);
  EXPECT_EQ(rounds_up<float>(_arksSub, _arksSubI, 1, -ds, 1), kept);
  EXPECT_EQ(rounds_up<float>(_arksMul, _arksMulI, 1 + 0x1p-23f, 1 + 0x1p-23f, 1 + 0x1p-22f), kept);
  EXPECT_EQ(rounds_up<float>(_arksDiv, _arksDivI, 2, 3, 0x1.555556p-1f), nearest);
  EXPECT_EQ(rounds_up<double>(_arkdAdd, _arkdAddI, 1, dd, 1), nearest);
  EXPECT_EQ(rounds_up<double>(_arkdSub, _arkdSubI, 1, -dd, 1), nearest);
  EXPECT_EQ(rounds_up<double>(_arkdMul, _arkdMulI, 1 + 0x1p-52, 1 + 0x1p-52, 1 + 0x1p-51), nearest);
  EXPECT_EQ(rounds_up<double>(_arkdDiv, _arkdDivI, 1, 3, 0x1.5555555555555p-2), kept);
}

TEST_F(RoundingUpwards, IsNotSeenByRint) {
  const double x[4] = {2.5, -2.5, 3.5, 0.5};
  const double expected[4] = {2.0, -2.0, 4.0, 0.0};
  double y[4], z[4];
  _arkdRint(4, x, y);
  _arkdNearbyInt(4, x, z);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(y[i], expected[i]);
    EXPECT_EQ(z[i], expected[i]);
  }
}

}  // namespace
}  // namespace qor::test
