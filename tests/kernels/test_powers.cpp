// Roots and powers: special values in their order, codes, names and IEEE flags; the paths of Powx;
// results that have to be exact.

#include "tests/kernels/arithmetic_support.h"

namespace qor::test {
namespace {

class Powers : public testing::Test {
 protected:
  void SetUp() override { old_mode_ = _arkSetMode(QOR_MODE_KEEP_DENORMALS); }
  void TearDown() override { _arkSetMode(old_mode_); }

 private:
  uint32_t old_mode_ = 0;
};

// A function of one or two arguments, contiguous and strided.
template <class T>
struct Unary {
  std::string name, strided_name;
  void (*row)(int32_t, const T*, T*);
  void (*strided)(int32_t, const T*, int32_t, T*, int32_t);
  void run(int32_t n, const T* a, const T*, T* y) const { row(n, a, y); }
  void run(int32_t n, const T* a, const T*, T* y, int32_t inc) const { strided(n, a, 1, y, inc); }
};
template <class T>
struct Binary {
  std::string name, strided_name;
  void (*row)(int32_t, const T*, const T*, T*);
  void (*strided)(int32_t, const T*, int32_t, const T*, int32_t, T*, int32_t);
  void run(int32_t n, const T* a, const T* b, T* y) const { row(n, a, b, y); }
  void run(int32_t n, const T* a, const T* b, T* y, int32_t inc) const {
    strided(n, a, 1, b, 1, y, inc);
  }
};
template <class T>
struct ByScalar {
  std::string name, strided_name;
  void (*row)(int32_t, const T*, T, T*);
  void (*strided)(int32_t, const T*, int32_t, T, T*, int32_t);
  void run(int32_t n, const T* a, const T* b, T* y) const { row(n, a, *b, y); }
  void run(int32_t n, const T* a, const T* b, T* y, int32_t inc) const {
    strided(n, a, 1, *b, y, inc);
  }
};

template <class T>
struct Case {
  T a, b, result;
  int code;
  unsigned flags;
};

constexpr int kPlace = 2;  // where the case stands among harmless elements
constexpr int kCount = 35;

template <class F, class T>
void check(const F& f, const Case<T>& c, T harmless_b) {
  SCOPED_TRACE(f.name + " of " + std::to_string(c.a) + ", " + std::to_string(c.b));
  std::vector<T> a(kCount, T(1.25)), b(kCount, harmless_b), y(2 * kCount);
  a[kPlace] = c.a;
  b[kPlace] = c.b;
  for (const int inc : {1, 2}) {
    const Reports reports;
    clear_flags();
    if (inc == 1) {
      f.run(kCount, a.data(), b.data(), y.data());
    } else {
      f.run(kCount, a.data(), b.data(), y.data(), inc);
    }
    EXPECT_EQ(flags(), c.flags);
    const T result = y[static_cast<size_t>(kPlace * inc)];
    EXPECT_TRUE(same(result, c.result)) << result << " with increment " << inc;
    std::vector<Reports::Report> expected;
    if (c.code != 0) expected.push_back({c.code, kPlace, inc == 1 ? f.name : f.strided_name});
    EXPECT_EQ(Reports::list, expected);
  }
}

template <class F, class T>
void check_all(const F& f, const std::vector<Case<T>>& cases) {
  for (const Case<T>& c : cases) check(f, c, T(1.5));
}

// ---- Roots ----------------------------------------------------------------------------------

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

TEST_F(Powers, SpecialValuesOfRoots) {
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
TEST_F(Powers, SingleCubeRootKeepsTheCallersDenormalModes) {
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

TEST_F(Powers, SpecialValuesOfHypot) {
  check_all(Binary<float>{"vsHypot", "vsHypot", _arksHypot, _arksHypotI}, hypot_cases<float>());
  check_all(Binary<double>{"vdHypot", "vdHypot", _arkdHypot, _arkdHypotI}, hypot_cases<double>());
}

// ---- Pow and Powr ---------------------------------------------------------------------------

// A zero to a negative power is a domain error, underflow reports nothing; -1 has its own rule.
template <class T>
std::vector<Case<T>> pow_cases() {
  constexpr T inf = kInfinity<T>, nan = kNan<T>;
  const T least = std::log2(kDenormal<T>);
  return {{0, -1, inf, 1, kDivideByZero},
          {T(-0.0), -1, -inf, 1, kDivideByZero},
          {T(-0.0), -2, inf, 1, kDivideByZero},
          {0, -inf, inf, 1, kDivideByZero},
          {T(-0.0), 3, T(-0.0), 0, 0},
          {T(-0.0), 2, 0, 0, 0},
          {T(-0.0), inf, 0, 0, 0},
          {0, 0, 1, 0, 0},
          {0, nan, nan, 0, 0},
          {-1, inf, 1, 0, 0},
          {-1, -inf, 1, 0, 0},
          {-1, 3, -1, 0, 0},
          {-1, T(1e10), 1, 0, 0},
          {-1, nan, nan, 0, 0},
          {-1, T(0.5), nan, 1, kInvalid},
          {-8, T(1) / 3, nan, 1, kInvalid},
          {-2, inf, inf, 0, 0},
          {-2, -inf, 0, 0, 0},
          {T(-0.5), inf, 0, 0, 0},
          {-2, nan, nan, 0, 0},
          {-inf, T(0.5), inf, 0, 0},
          {-inf, -3, T(-0.0), 0, 0},
          {-inf, 3, -inf, 0, 0},
          {inf, T(-0.5), 0, 0, 0},
          {nan, 0, 1, 0, 0},
          {1, nan, 1, 0, 0},
          {1, -inf, 1, 0, 0},
          {-3, 3, -27, 0, 0},
          {kLargest<T>, 2, inf, 3, kOverflow},
          {-kLargest<T>, 3, -inf, 3, kOverflow},
          {kDenormal<T>, -1, inf, 3, kOverflow},
          {T(1.5), kLargest<T>, inf, 3, kOverflow},
          {kSmallest<T>, 2, 0, 0, kUnderflow},
          {T(1.5), -kLargest<T>, 0, 0, kUnderflow},
          {2, least, kDenormal<T>, 0, 0}};
}

// IEEE 754's powr, a pole being a domain error; overflow and underflow are both reported.
template <class T>
std::vector<Case<T>> powr_cases() {
  constexpr T inf = kInfinity<T>, nan = kNan<T>;
  const T least = std::log2(kDenormal<T>);
  return {{0, -1, inf, 1, kDivideByZero},
          {T(-0.0), -3, inf, 1, kDivideByZero},
          {0, -inf, inf, 0, 0},
          {T(-0.0), 3, 0, 0, 0},
          {0, 0, nan, 1, kInvalid},
          {inf, 0, nan, 1, kInvalid},
          {1, inf, nan, 1, kInvalid},
          {1, -inf, nan, 1, kInvalid},
          {-1, 2, nan, 1, kInvalid},
          {-inf, 1, nan, 1, kInvalid},
          {-1, nan, nan, 1, kInvalid},
          {nan, 0, nan, 0, 0},
          {1, nan, nan, 0, 0},
          {0, nan, nan, 0, 0},
          {2, inf, inf, 0, 0},
          {T(0.5), inf, 0, 0, 0},
          {inf, -1, 0, 0, 0},
          {3, 0, 1, 0, 0},
          {kLargest<T>, 2, inf, 3, kOverflow},
          {kSmallest<T>, 2, 0, 4, kUnderflow},
          {2, least, kDenormal<T>, 4, 0}};
}

TEST_F(Powers, SpecialValuesOfPow) {
  check_all(Binary<float>{"vsPow", "vsPow", _arksPow, _arksPowI}, pow_cases<float>());
  check_all(Binary<double>{"vdPow", "vdPow", _arkdPow, _arkdPowI}, pow_cases<double>());
  check_all(Binary<double>{"vdPow", "vdPow", _arkdPow_50, _arkdPowI_50}, pow_cases<double>());
}

TEST_F(Powers, SpecialValuesOfPowr) {
  check_all(Binary<float>{"vsPowr", "vsPowr", _arksPowr, _arksPowrI}, powr_cases<float>());
  check_all(Binary<double>{"vdPowr", "vdPowr", _arkdPowr, _arkdPowrI}, powr_cases<double>());
}

// In the mode that says so a denormal base is 0, and a denormal exponent too.
TEST_F(Powers, DenormalsAsZeros) {
  _arkSetMode(QOR_MODE_FLUSH_DENORMALS);
  const double a[2] = {-kDenormal<double>, 7}, b[2] = {-3, 2 * kDenormal<double>};
  double y[2];
  {
    const Reports reports;
    _arkdPow(2, a, b, y);
    EXPECT_EQ(Reports::list, (std::vector<Reports::Report>{{1, 0, "vdPow"}}));
  }
  EXPECT_EQ(y[0], -kInfinity<double>);
  EXPECT_EQ(y[1], 1);
  double root[2];
  _arkdSqrt(1, a, root);
  EXPECT_TRUE(same(root[0], -0.0));
}

TEST_F(Powers, DoublePowHasAnHighAccuracyKernelOfItsOwn) {
  EXPECT_EQ(qor_ark_kernel_dPow_ttab[0], qor_ark_kernel_dPow_ttab[2]);
  EXPECT_NE(qor_ark_kernel_dPow_ttab[0], qor_ark_kernel_dPow_ttab[1]);
}

// ---- Powx -----------------------------------------------------------------------------------

// A path that is another function's reports under that function's name and with its codes.
template <class T>
void check_powx(const std::string& v, const ByScalar<T>& powx) {
  struct Path {
    Case<T> c;
    std::string function, strided_function;
  };
  constexpr T inf = kInfinity<T>, nan = kNan<T>;
  const Path paths[] = {
      {{0, -1, inf, 2, kDivideByZero}, "Inv", "InvI"},
      {{nan, -1, nan, 0, 0}, "Inv", "InvI"},
      {{-1, T(0.5), nan, 1, kInvalid}, "Sqrt", "Sqrt"},
      {{-inf, T(0.5), nan, 1, kInvalid}, "Sqrt", "Sqrt"},
      {{0, T(-0.5), inf, 2, kDivideByZero}, "InvSqrt", "InvSqrt"},
      {{-1, T(1.5), nan, 1, kInvalid}, "Pow3o2", "Pow3o2"},
      {{kLargest<T>, T(1.5), inf, 0, kOverflow}, "Pow3o2", "Pow3o2"},
      {{nan, 0, 1, 0, 0}, "Powx", "Powx"},
      {{-inf, T(-0.0), 1, 0, 0}, "Powx", "Powx"},
      {{T(-0.0), 1, T(-0.0), 0, 0}, "Powx", "Powx"},
      {{kLargest<T>, 2, inf, 0, kOverflow}, "Powx", "Powx"},
      {{-3, 2, 9, 0, 0}, "Powx", "Powx"},
      {{0, -2, inf, 1, kDivideByZero}, "Powx", "Powx"},
      {{kLargest<T>, 3, inf, 3, kOverflow}, "Powx", "Powx"},
      {{-8, T(1) / 3, nan, 1, kInvalid}, "Powx", "Powx"},
      {{-1, inf, 1, 0, 0}, "Powx", "Powx"},
      {{2, nan, nan, 0, 0}, "Powx", "Powx"},
  };
  for (const Path& path : paths) {
    ByScalar<T> named = powx;
    named.name = v + path.function;
    named.strided_name = v + path.strided_function;
    if (std::isinf(path.c.b) || std::isnan(path.c.b)) {
      T y;
      named.row(1, &path.c.a, path.c.b, &y);
      EXPECT_TRUE(same(y, path.c.result));
    } else {
      check(named, path.c, path.c.b);
    }
  }
  T ones[3] = {};
  powx.row(3, nullptr, T(-0.0), ones);
  for (const T one : ones) EXPECT_EQ(one, 1);
}

TEST_F(Powers, PathsOfPowx) {
  check_powx<float>("vs", {"", "", _arksPowx, _arksPowxI});
  check_powx<double>("vd", {"", "", _arkdPowx, _arkdPowxI});
}

// The general path is Pow's, to the bit.
TEST_F(Powers, PowxAgreesWithPow) {
  std::vector<double> a(101), b(a.size(), 2.7), y(a.size()), z(a.size());
  for (size_t i = 0; i < a.size(); ++i) a[i] = std::ldexp(1.0 + 0.01 * static_cast<double>(i), 4);
  _arkdPow(101, a.data(), b.data(), y.data());
  _arkdPowx(101, a.data(), 2.7, z.data());
  EXPECT_EQ(y, z);
}

// ---- Exact results --------------------------------------------------------------------------

TEST_F(Powers, ExactCasesAreExact) {
  std::vector<double> x, y(1000), one(1000, 1.0), three(1000, 3.0);
  for (int i = 1; i <= 1000; ++i) x.push_back(i * 207.0);
  std::vector<double> cubes;
  for (const double r : x) cubes.push_back(-r * r * r);
  _arkdCbrt(1000, cubes.data(), y.data());
  for (size_t i = 0; i < 1000; ++i) EXPECT_EQ(y[i], -x[i]);
  _arkdPow(1000, cubes.data(), one.data(), y.data());
  EXPECT_EQ(y, cubes);
  _arkdPow(1000, x.data(), three.data(), y.data());
  for (size_t i = 0; i < 1000; ++i) EXPECT_EQ(y[i], -cubes[i]);

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

}  // namespace
}  // namespace qor::test
