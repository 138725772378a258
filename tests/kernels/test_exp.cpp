// The exponentials where only they know what is due: both sides of every limit, with code, flags
// and reported name; exact results; the shortcut when nobody listens; x87 and SSE forms of Expm1.

#include <fenv.h>

#include "kernels/exp_limits.h"
#include "tests/kernels/function_cases.h"

namespace qor::test {
namespace {

namespace limits = kernels::limits;

const Unary<float> kExpS{"vsExp", "vsExp", _arksExp, _arksExpI};
const Unary<float> kExp2S{"vsExp2", "vsExp2", _arksExp2, _arksExp2I};
const Unary<float> kExp10S{"vsExp10", "vsExp10", _arksExp10, _arksExp10I};
const Unary<float> kExpm1S{"vsExpm1", "vsExpm1", _arksExpm1, _arksExpm1I};
const Unary<double> kExpD{"vdExp", "vdExp", _arkdExp, _arkdExpI};
const Unary<double> kExp2D{"vdExp2", "vdExp2", _arkdExp2, _arkdExp2I};
const Unary<double> kExp10D{"vdExp10", "vdExp10", _arkdExp10, _arkdExp10I};
const Unary<double> kExpm1D{"vdExpm1", "vdExpm1I", _arkdExpm1, _arkdExpm1I};

// What a result must be like; `normal` is a finite number that is neither denormal nor 0.
enum class Kind { normal, denormal, zero, infinite };

Kind kind_of(double x, double smallest) {
  if (x == 0) return Kind::zero;
  if (std::isinf(x)) return Kind::infinite;
  return std::abs(x) < smallest ? Kind::denormal : Kind::normal;
}

template <class T>
struct Edge {
  T x;
  Kind kind;
  int code;
};

// Runs the argument among harmless ones, contiguous or strided; `result` gets its result.
template <class T>
std::vector<Reports::Report> run(const Unary<T>& f, T x, bool strided, T& result) {
  std::vector<T> a(kCount, T(0.5)), y(3 * kCount);
  a[kPlace] = x;
  const Reports reports;
  feclearexcept(FE_ALL_EXCEPT);
  if (strided) {
    f.strided(kCount, a.data(), 1, y.data(), 3);
  } else {
    f.row(kCount, a.data(), y.data());
  }
  result = y[strided ? 3 * kPlace : kPlace];
  return Reports::list;
}

template <class T>
void check_edges(const Unary<T>& f, const std::vector<Edge<T>>& edges) {
  for (const auto& edge : edges) {
    for (const bool strided : {false, true}) {
      SCOPED_TRACE(f.name + (strided ? "I of " : " of ") + std::to_string(edge.x));
      T y;
      const auto reports = run(f, edge.x, strided, y);
      EXPECT_EQ(kind_of(y, kSmallest<T>), edge.kind) << y;
      std::vector<Reports::Report> expected;
      const std::string& name = strided ? f.strided_name : f.name;
      if (edge.code != 0) expected.push_back({edge.code, kPlace, name});
      EXPECT_EQ(reports, expected);
      EXPECT_EQ(fetestexcept(FE_OVERFLOW) != 0, edge.kind == Kind::infinite);
      EXPECT_TRUE(edge.kind != Kind::zero || fetestexcept(FE_UNDERFLOW));
      EXPECT_FALSE(fetestexcept(FE_INVALID | FE_DIVBYZERO));
    }
  }
}

template <class T>
T above(T x) {
  return std::nextafter(x, kLargest<T>);
}
template <class T>
T below(T x) {
  return std::nextafter(x, -kLargest<T>);
}

// Limits: the last argument with a finite, a positive and a normal result.
template <class T>
std::vector<Edge<T>> edges(T finite, T positive, T normal) {
  return {{finite, Kind::normal, 0},
          {above(finite), Kind::infinite, QOR_ERROR_OVERFLOW},
          {kLargest<T>, Kind::infinite, QOR_ERROR_OVERFLOW},
          {normal, Kind::normal, 0},
          {below(normal), Kind::denormal, QOR_ERROR_UNDERFLOW},
          {positive, Kind::denormal, QOR_ERROR_UNDERFLOW},
          {below(positive), Kind::zero, QOR_ERROR_UNDERFLOW},
          {-kLargest<T>, Kind::zero, QOR_ERROR_UNDERFLOW}};
}

using Exponentials = KeepingDenormals;

TEST_F(Exponentials, Limits) {
  check_edges(kExpS,
              edges(limits::sexp::overflow, limits::sexp::underflow, limits::sexp::denormal));
  check_edges(kExpD,
              edges(limits::dexp::overflow, limits::dexp::underflow, limits::dexp::denormal));
  check_edges(kExp2S, edges(below(limits::sexp2::overflow), above(limits::sexp2::underflow),
                            limits::sexp2::denormal));
  check_edges(kExp2D, edges(below(limits::dexp2::overflow), above(limits::dexp2::underflow),
                            limits::dexp2::denormal));
  check_edges(kExp10D,
              edges(limits::dexp10::overflow, limits::dexp10::underflow, limits::dexp10::denormal));
  auto decimal =
      edges(limits::sexp10::overflow, limits::sexp10::underflow, limits::sexp10::denormal);
  decimal[0] = {below(limits::sexp10::overflow), Kind::normal, 0};
  decimal.push_back({limits::sexp10::overflow, Kind::infinite, 0});
  check_edges(kExp10S, decimal);
}

TEST_F(Exponentials, LimitsOfExpm1) {
  check_edges<float>(kExpm1S, {{limits::sexpm1::overflow, Kind::normal, 0},
                               {above(limits::sexpm1::overflow), Kind::infinite, 3},
                               {-kLargest<float>, Kind::normal, 0}});
  check_edges<double>(kExpm1D, {{limits::dexpm1::overflow, Kind::normal, 0},
                                {above(limits::dexpm1::overflow), Kind::infinite, 3},
                                {-kLargest<double>, Kind::normal, 0}});
}

template <class T>
void check_special(const Unary<T>& f, T at_minus_infinity, T at_minus_zero) {
  struct {
    T x, y;
  } const cases[] = {{kInfinity<T>, kInfinity<T>},
                     {-kInfinity<T>, at_minus_infinity},
                     {kNan<T>, kNan<T>},
                     {-kNan<T>, kNan<T>},
                     {T(-0.0), at_minus_zero}};
  for (const auto& c : cases) {
    for (const bool strided : {false, true}) {
      SCOPED_TRACE(f.name + std::string(" of ") + std::to_string(c.x));
      T y;
      EXPECT_TRUE(run(f, c.x, strided, y).empty());
      EXPECT_TRUE(same(y, c.y)) << y;
      EXPECT_FALSE(fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT));
    }
  }
}

TEST_F(Exponentials, SpecialValues) {
  for (const auto* f : {&kExpS, &kExp2S, &kExp10S}) check_special<float>(*f, 0, 1);
  for (const auto* f : {&kExpD, &kExp2D, &kExp10D}) check_special<double>(*f, 0, 1);
  check_special(kExpm1S, -1.0f, -0.0f);
  check_special(kExpm1D, -1.0, -0.0);
}

TEST_F(Exponentials, ExactResults) {
  for (int k = -149; k < 128; ++k) {
    const auto x = static_cast<float>(k);
    float y;
    run(kExp2S, x, false, y);
    EXPECT_EQ(y, std::ldexp(1.0f, k));
  }
  for (int k = -1074; k < 1024; ++k) {
    double y;
    run(kExp2D, static_cast<double>(k), false, y);
    EXPECT_EQ(y, std::ldexp(1.0, k));
  }
  double power = 1;
  for (int k = 0; k <= 22; ++k, power *= 10) {
    double y;
    run(kExp10D, static_cast<double>(k), false, y);
    EXPECT_EQ(y, power);
    if (k > 10) continue;
    float single;
    run(kExp10S, static_cast<float>(k), false, single);
    EXPECT_EQ(static_cast<double>(single), power);
  }
}

// With nobody to hear of errors the values are the same, and the scalar routine (which raises the
// flags of overflow and underflow) is not called.
template <class T>
void check_shortcut(const Unary<T>& f, T far) {
  const std::vector<T> a = {far, -far, kInfinity<T>, -kInfinity<T>, 1, above(far), below(-far)};
  std::vector<T> loud(a.size()), quiet(a.size());
  const auto n = static_cast<int32_t>(a.size());
  const uint32_t old = _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  f.row(n, a.data(), loud.data());
  _arkSetMode(QOR_MODE_ERRORS_NOERR);
  _arkSetErrStatus(77);
  feclearexcept(FE_ALL_EXCEPT);
  f.row(n, a.data(), quiet.data());
  EXPECT_FALSE(fetestexcept(FE_OVERFLOW | FE_UNDERFLOW));
  EXPECT_EQ(_arkGetErrStatus(), 77);
  EXPECT_EQ(quiet, loud);
  _arkSetMode(old);
  _arkClearErrStatus();
}

TEST_F(Exponentials, ShortcutWithoutReports) {
  check_shortcut(kExpS, 200.0f);
  check_shortcut(kExpD, 2000.0);
}

// Expm1 of doubles: x87 arithmetic in the contiguous kernel, SSE in the strided one, and neither
// sees the caller's control words.
TEST_F(Exponentials, FormsOfExpm1Agree) {
  constexpr int n = 20000;
  std::vector<double> a(n), expected(2 * n), y(n), strided(2 * n);
  std::mt19937_64 random(1);
  for (double& x : a) {
    const double mantissa = static_cast<double>(random() >> 11) * 0x1p-53 + 1;
    x = std::ldexp(random() % 2 != 0 ? mantissa : -mantissa, static_cast<int>(random() % 72) - 62);
  }
  const uint32_t old_mode = _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  const unsigned old_mxcsr = _mm_getcsr();
  _arkdExpm1I(n, a.data(), 1, expected.data(), 2);
  constexpr unsigned flush = 0x8040, upward = 0x4000, trapping = 0x0000, masked = 0x1F80;
  for (const unsigned mxcsr : {masked, masked | upward, masked | flush, trapping | upward}) {
    _mm_setcsr(mxcsr);
    fesetenv(FE_DFL_ENV);
    _mm_setcsr(mxcsr);
    _arkdExpm1(n, a.data(), y.data());
    _arkdExpm1I(n, a.data(), 1, strided.data(), 2);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(old_mxcsr);
    EXPECT_EQ(after & ~0x3Fu, mxcsr);
    for (int i = 0; i < n; ++i) {
      ASSERT_EQ(image(y[i]), image(expected[2 * i])) << a[i] << " at " << std::hex << mxcsr;
      ASSERT_EQ(image(strided[2 * i]), image(expected[2 * i])) << a[i];
    }
  }
  fesetenv(FE_DFL_ENV);
  _arkSetMode(old_mode);
}

}  // namespace
}  // namespace qor::test
