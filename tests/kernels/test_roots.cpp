// Roots and lengths: special values, codes, names and IEEE flags; results that have to be exact.

#include "kernels/root_limits.h"
#include "tests/kernels/function_cases.h"

namespace qor::test {
namespace {

namespace limits = kernels::limits;
using Roots = KeepingDenormals;

template <class T>
void check_roots(const std::string& v, const Unary<T>& sqrt, const Unary<T>& inv_sqrt,
                 const Unary<T>& cbrt, const Unary<T>& inv_cbrt, const Unary<T>& pow2o3,
                 const Unary<T>& pow3o2) {
  SCOPED_TRACE(v);
  constexpr T inf = kInfinity<T>, nan = kNan<T>;
  check_all(sqrt, std::vector<Case<T>>{{T(-0.0), 0, T(-0.0), 0, 0},
                                       {-1, 0, nan, 1, kInvalid},
                                       {-kDenormal<T>, 0, nan, 1, kInvalid},
                                       {-inf, 0, nan, 1, kInvalid},
                                       {inf, 0, inf, 0, 0},
                                       {nan, 0, nan, 0, 0}});
  check_all(inv_sqrt, std::vector<Case<T>>{{0, 0, inf, 2, kDivideByZero},
                                           {T(-0.0), 0, -inf, 2, kDivideByZero},
                                           {-4, 0, nan, 1, kInvalid},
                                           {-inf, 0, nan, 1, kInvalid},
                                           {inf, 0, 0, 0, 0},
                                           {nan, 0, nan, 0, 0}});
  check_all(cbrt, std::vector<Case<T>>{{T(-0.0), 0, T(-0.0), 0, 0},
                                       {-inf, 0, -inf, 0, 0},
                                       {nan, 0, nan, 0, 0},
                                       {-27, 0, -3, 0, 0}});
  check_all(inv_cbrt, std::vector<Case<T>>{{0, 0, inf, 2, kDivideByZero},
                                           {T(-0.0), 0, -inf, 2, kDivideByZero},
                                           {-inf, 0, T(-0.0), 0, 0},
                                           {nan, 0, nan, 0, 0},
                                           {-8, 0, T(-0.5), 0, 0}});
  check_all(
      pow2o3,
      std::vector<Case<T>>{
          {-8, 0, 4, 0, 0}, {T(-0.0), 0, 0, 0, 0}, {-inf, 0, inf, 0, 0}, {nan, 0, nan, 0, 0}});
  check_all(pow3o2, std::vector<Case<T>>{{4, 0, 8, 0, 0},
                                         {-1, 0, nan, 1, kInvalid},
                                         {-inf, 0, nan, 1, kInvalid},
                                         {T(-0.0), 0, 0, 0, 0},
                                         {inf, 0, inf, 0, 0},
                                         {kLargest<T>, 0, inf, 0, kOverflow},
                                         {kSmallest<T>, 0, 0, 0, kUnderflow},
                                         {nan, 0, nan, 0, 0}});
}

TEST_F(Roots, SpecialValuesOfRoots) {
  check_roots<float>("s", {"vsSqrt", "vsSqrt", _arksSqrt, _arksSqrtI},
                     {"vsInvSqrt", "vsInvSqrt", _arksInvSqrt, _arksInvSqrtI},
                     {"vsCbrt", "vsCbrtI", _arksCbrt, _arksCbrtI},
                     {"vsInvCbrt", "vsInvCbrtI", _arksInvCbrt, _arksInvCbrtI},
                     {"vsPow2o3", "vsPow2o3", _arksPow2o3, _arksPow2o3I},
                     {"vsPow3o2", "vsPow3o2", _arksPow3o2, _arksPow3o2I});
  check_roots<double>("d", {"vdSqrt", "vdSqrt", _arkdSqrt, _arkdSqrtI},
                      {"vdInvSqrt", "vdInvSqrt", _arkdInvSqrt, _arkdInvSqrtI},
                      {"vdCbrt", "vdCbrt", _arkdCbrt, _arkdCbrtI},
                      {"vdInvCbrt", "vdInvCbrt", _arkdInvCbrt, _arkdInvCbrtI},
                      {"vdPow2o3", "vdPow2o3", _arkdPow2o3, _arkdPow2o3I},
                      {"vdPow3o2", "vdPow3o2", _arkdPow3o2, _arkdPow3o2I});
}

// The contiguous single cube root works in the caller's denormal modes, all others in those of the
// mode word.
TEST_F(Roots, SingleCubeRootKeepsTheCallersDenormalModes) {
  const float x[2] = {-0x1p-147f, 1};
  float y[4];
  const unsigned before = _mm_getcsr();
  _mm_setcsr(before | 0x8040);
  _arksCbrt(2, x, y);
  const float flushed = y[0];
  _arksCbrtI(2, x, 1, y, 2);
  EXPECT_EQ(_mm_getcsr() & 0xFFC0, (before | 0x8040) & 0xFFC0);
  _mm_setcsr(before);
  EXPECT_TRUE(same(flushed, -0.0f));
  EXPECT_EQ(y[0], -0x1p-49f);
}

template <class T>
std::vector<Case<T>> hypot_cases() {
  constexpr T inf = kInfinity<T>, nan = kNan<T>;
  const T large = std::ldexp(T{1}, std::numeric_limits<T>::max_exponent - 4);
  return {{-inf, nan, inf, 0, 0},
          {nan, inf, inf, 0, 0},
          {nan, 1, nan, 0, 0},
          {0, T(-0.0), 0, 0, 0},
          {-3, 0, 3, 0, 0},
          {kDenormal<T> * 3, kDenormal<T> * 4, kDenormal<T> * 5, 0, 0},
          {3 * large, 4 * large, 5 * large, 0, 0},
          {kLargest<T>, kDenormal<T>, kLargest<T>, 0, 0},
          {kLargest<T>, kLargest<T>, inf, 0, kOverflow}};
}

TEST_F(Roots, SpecialValuesOfHypot) {
  check_all(Binary<float>{"vsHypot", "vsHypot", _arksHypot, _arksHypotI}, hypot_cases<float>());
  check_all(Binary<double>{"vdHypot", "vdHypot", _arkdHypot, _arkdHypotI}, hypot_cases<double>());
}

// ---- Exact results --------------------------------------------------------------------------

TEST_F(Roots, CubesAndTriples) {
  std::vector<double> root, cube, y(1000);
  for (int i = 1; i <= 1000; ++i) {
    root.push_back(i * -207.0);
    cube.push_back(root.back() * root.back() * root.back());
  }
  _arkdCbrt(1000, cube.data(), y.data());
  EXPECT_EQ(y, root);

  // m^2 - n^2, 2 m n, m^2 + n^2
  std::vector<double> a, b, c;
  for (int m = 2; m <= 41; ++m) {
    for (int n = 1; n <= 25; ++n) {
      a.push_back(m * m - n * n);
      b.push_back(2.0 * m * n);
      c.push_back(m * m + n * n);
    }
  }
  _arkdHypot(1000, a.data(), b.data(), y.data());
  EXPECT_EQ(y, c);
  const std::vector<float> af(a.begin(), a.end()), bf(b.begin(), b.end()), cf(c.begin(), c.end());
  std::vector<float> yf(1000);
  _arksHypot(1000, af.data(), bf.data(), yf.data());
  EXPECT_EQ(yf, cf);
}

// ---- Where the vector path ends -------------------------------------------------------------

// Lengths whose larger or smaller side is beside a limit of the vector path.
template <class T>
void check_hypot_edges(Binary<T> hypot, T first, T last) {
  std::vector<T> a, b;
  for (const T edge : {first, last}) {
    for (const T near : with_neighbours(edge)) {
      for (const T ratio : {T(1), T(0.3), T(3), T(0x1p-9), T(0x1p+9), T(0x1p+25)}) {
        a.push_back(near);
        b.push_back(-near * ratio);
      }
    }
  }
  std::vector<T> y(a.size());
  hypot.row(static_cast<int32_t>(a.size()), a.data(), b.data(), y.data());
  for (size_t i = 0; i < a.size(); ++i) {
    const long double exact = std::hypot(static_cast<long double>(a[i]), b[i]);
    EXPECT_LT(places_off(y[i], exact), 1.0) << hypot.name << " " << a[i] << ", " << b[i];
  }
}

TEST_F(Roots, HypotIsAccurateWhereTheVectorPathEnds) {
  const auto s = limits::hypot::middle_float;
  const auto d = limits::hypot::middle_double;
  check_hypot_edges<float>({"sHypot", "", _arksHypot, _arksHypotI}, from_image<float>(s.first),
                           from_image<float>(s.last));
  check_hypot_edges<double>({"dHypot", "", _arkdHypot, _arkdHypotI},
                            from_image<double>(static_cast<uint64_t>(d.first) << 32),
                            from_image<double>(static_cast<uint64_t>(d.last + 1) << 32));
}

}  // namespace
}  // namespace qor::test
