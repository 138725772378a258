// Kernels whose every result is fixed to the bit: each is compared with a plain definition over
// edges and random values, and raises no flag that its elements do not call for.

#include "tests/kernels/arithmetic_support.h"

namespace qor::test {
namespace {

template <class T>
using UnaryRow = void (*)(int32_t, const T*, T*);
template <class T>
using BinaryRow = void (*)(int32_t, const T*, const T*, T*);
template <class T>
using UnaryDefinition = T (*)(T);
template <class T>
using BinaryDefinition = T (*)(T, T);

struct UnaryFunction {
  const char* name;
  UnaryRow<float> s;
  UnaryRow<double> d;
  UnaryDefinition<float> s_definition;
  UnaryDefinition<double> d_definition;
};

template <class Definition>
constexpr UnaryFunction unary(const char* name, UnaryRow<float> s, UnaryRow<double> d,
                              Definition definition) {
  return {name, s, d, definition, definition};
}

const UnaryFunction kUnary[] = {
    unary("Floor", _arksFloor, _arkdFloor, [](auto x) { return std::floor(x); }),
    unary("Ceil", _arksCeil, _arkdCeil, [](auto x) { return std::ceil(x); }),
    unary("Trunc", _arksTrunc, _arkdTrunc, [](auto x) { return std::trunc(x); }),
    unary("Round", _arksRound, _arkdRound, [](auto x) { return std::round(x); }),
    unary("Rint", _arksRint, _arkdRint, [](auto x) { return std::nearbyint(x); }),
    unary("NearbyInt", _arksNearbyInt, _arkdNearbyInt, [](auto x) { return std::nearbyint(x); }),
    unary("Frac", _arksFrac, _arkdFrac,
          [](auto x) {
            return std::isinf(x) ? std::copysign(decltype(x){0}, x)
                                 : std::copysign(x - std::trunc(x), x);
          }),
    unary("Abs", _arksAbs, _arkdAbs, [](auto x) { return std::abs(x); }),
};

struct BinaryFunction {
  const char* name;
  BinaryRow<float> s;
  BinaryRow<double> d;
  BinaryDefinition<float> s_definition;
  BinaryDefinition<double> d_definition;
  unsigned allowed_flags;
};

template <class Definition>
constexpr BinaryFunction binary(const char* name, BinaryRow<float> s, BinaryRow<double> d,
                                Definition definition, unsigned allowed_flags = 0) {
  return {name, s, d, definition, definition, allowed_flags};
}

// The number of two operands, of two NaN the second; else what `choose` takes of two numbers.
template <class T, class Choose>
T number_or(T a, T b, Choose choose) {
  if (std::isnan(a)) return b;
  if (std::isnan(b)) return a;
  return choose(a, b);
}

// By the x87 unit, whose result is exact: glibc 2.36 has wrong ties in double.
template <class T>
T exact_remainder(T a, T b) {
  return static_cast<T>(std::remainder(static_cast<long double>(a), static_cast<long double>(b)));
}

const BinaryFunction kBinary[] = {
    binary("Fmax", _arksFmax, _arkdFmax,
           [](auto a, auto b) {
             return number_or(a, b, [](auto x, auto y) { return x > y ? x : y; });
           }),
    binary("Fmin", _arksFmin, _arkdFmin,
           [](auto a, auto b) {
             return number_or(a, b, [](auto x, auto y) { return x < y ? x : y; });
           }),
    binary("MaxMag", _arksMaxMag, _arkdMaxMag,
           [](auto a, auto b) {
             return number_or(a, b, [](auto x, auto y) {
               if (std::abs(x) == std::abs(y)) return x > y ? x : y;
               return std::abs(x) > std::abs(y) ? x : y;
             });
           }),
    binary("MinMag", _arksMinMag, _arkdMinMag,
           [](auto a, auto b) {
             return number_or(a, b, [](auto x, auto y) {
               if (std::abs(x) == std::abs(y)) return x < y ? x : y;
               return std::abs(x) < std::abs(y) ? x : y;
             });
           }),
    binary(
        "Fdim", _arksFdim, _arkdFdim,
        [](auto a, auto b) {
          if (std::isnan(a) || std::isnan(b)) return a + b;
          return a > b ? a - b : decltype(a){0};
        },
        kOverflow),
    binary("CopySign", _arksCopySign, _arkdCopySign,
           [](auto a, auto b) { return std::copysign(a, b); }),
    binary(
        "NextAfter", _arksNextAfter, _arkdNextAfter,
        [](auto a, auto b) { return std::nextafter(a, b); }, kOverflow | kUnderflow),
    binary(
        "Fmod", _arksFmod, _arkdFmod, [](auto a, auto b) { return std::fmod(a, b); }, kInvalid),
    binary(
        "Remainder", _arksRemainder, _arkdRemainder,
        [](auto a, auto b) { return exact_remainder(a, b); }, kInvalid),
};

// Every pair of edges, and pairs of random values.
template <class T>
std::pair<std::vector<T>, std::vector<T>> pairs() {
  std::vector<T> a, b;
  for (const T x : edge_values<T>()) {
    for (const T y : edge_values<T>()) {
      a.push_back(x);
      b.push_back(y);
    }
  }
  const std::vector<T> more_a = random_values<T>(40001, 1), more_b = random_values<T>(40001, 2);
  a.insert(a.end(), more_a.begin(), more_a.end());
  b.insert(b.end(), more_b.begin(), more_b.end());
  return {a, b};
}

template <class T>
void check_unary(const char* name, UnaryRow<T> row, UnaryDefinition<T> definition) {
  SCOPED_TRACE(name);
  std::vector<T> x = edge_values<T>();
  const std::vector<T> more = random_values<T>(40001, 3);
  x.insert(x.end(), more.begin(), more.end());
  std::vector<T> y(x.size());
  clear_flags();
  row(static_cast<int32_t>(x.size()), x.data(), y.data());
  EXPECT_EQ(flags(), 0u);
  for (size_t i = 0; i < x.size(); ++i) {
    ASSERT_TRUE(same(y[i], definition(x[i])))
        << std::hexfloat << x[i] << " gives " << y[i] << " and not " << definition(x[i]);
  }
}

template <class T>
void check_binary(const char* name, BinaryRow<T> row, BinaryDefinition<T> definition,
                  unsigned allowed_flags) {
  SCOPED_TRACE(name);
  const auto [a, b] = pairs<T>();
  std::vector<T> y(a.size());
  clear_flags();
  row(static_cast<int32_t>(a.size()), a.data(), b.data(), y.data());
  EXPECT_EQ(flags() & ~allowed_flags, 0u);
  for (size_t i = 0; i < a.size(); ++i) {
    ASSERT_TRUE(same(y[i], definition(a[i], b[i])))
        << std::hexfloat << a[i] << ", " << b[i] << " give " << y[i] << " and not "
        << definition(a[i], b[i]);
  }
}

TEST(ArithmeticExact, Unary) {
  for (const UnaryFunction& f : kUnary) {
    check_unary<float>(f.name, f.s, f.s_definition);
    check_unary<double>(f.name, f.d, f.d_definition);
  }
}

TEST(ArithmeticExact, Binary) {
  for (const BinaryFunction& f : kBinary) {
    check_binary<float>(f.name, f.s, f.s_definition, f.allowed_flags);
    check_binary<double>(f.name, f.d, f.d_definition, f.allowed_flags);
  }
}

template <class T>
void check_modf(void (*row)(int32_t, const T*, T*, T*)) {
  const std::vector<T> x = edge_values<T>();
  std::vector<T> integral(x.size()), fraction(x.size());
  clear_flags();
  row(static_cast<int32_t>(x.size()), x.data(), integral.data(), fraction.data());
  EXPECT_EQ(flags(), 0u);
  for (size_t i = 0; i < x.size(); ++i) {
    T expected_integral;
    const T expected_fraction = std::modf(x[i], &expected_integral);
    ASSERT_TRUE(same(integral[i], expected_integral)) << std::hexfloat << x[i];
    ASSERT_TRUE(same(fraction[i], expected_fraction)) << std::hexfloat << x[i];
  }
}

TEST(ArithmeticExact, Modf) {
  check_modf<float>(_arksModf);
  check_modf<double>(_arkdModf);
}

// A signalling NaN comes out quiet from whatever computes, and raises invalid; CopySign moves bits.
template <class T>
void check_signalling_nan(UnaryRow<T> row, const char* name) {
  const T x = std::numeric_limits<T>::signaling_NaN();
  T y[1];
  clear_flags();
  row(1, &x, y);
  EXPECT_TRUE(same(y[0], kNan<T>)) << name;
  EXPECT_EQ(flags(), kInvalid) << name;
}

TEST(ArithmeticExact, SignallingNan) {
  for (const UnaryFunction& f : kUnary) {
    check_signalling_nan<float>(f.s, f.name);
    check_signalling_nan<double>(f.d, f.name);
  }
  const double x = std::numeric_limits<double>::signaling_NaN(), other = -1.0;
  for (const BinaryFunction& f : kBinary) {
    double y[1];
    clear_flags();
    f.d(1, &x, &x, y);
    const bool moves_bits = f.d == _arkdCopySign;
    EXPECT_EQ(flags(), moves_bits ? 0u : kInvalid) << f.name;
    EXPECT_EQ(same(y[0], kNan<double>), !moves_bits) << f.name;
  }
  double y[1];
  _arkdCopySign(1, &x, &other, y);
  EXPECT_EQ(image(y[0]), image(x) | image(-0.0));
}

// Of two NaN the second is the answer; sums and products keep the first, wherever they stand.
TEST(ArithmeticExact, WhichNan) {
  const auto nan = [](uint64_t payload) {
    return from_image<double>(0x7FF8000000000000 | payload);
  };
  constexpr int n = 23;
  std::vector<double> first(n, nan(1)), second(n, nan(2)), y(n);
  const BinaryRow<double> second_wins[] = {_arkdFmax, _arkdFmin, _arkdMaxMag, _arkdMinMag,
                                           _arkdFdim};
  const BinaryRow<double> first_wins[] = {_arkdAdd,       _arkdSub,  _arkdMul,      _arkdDiv,
                                          _arkdRemainder, _arkdFmod, _arkdNextAfter};
  for (const auto row : second_wins) {
    row(n, first.data(), second.data(), y.data());
    for (const double result : y) EXPECT_EQ(image(result), image(nan(2)));
  }
  for (const auto row : first_wins) {
    row(n, first.data(), second.data(), y.data());
    for (const double result : y) EXPECT_EQ(image(result), image(nan(1)));
  }
}

// Modulus of the 31-bit generators, against integer arithmetic.
TEST(ArithmeticExact, FmodByMersennePrime) {
  constexpr int64_t prime = 2147483647;
  std::mt19937_64 random(4);
  std::vector<double> x = {-7.0}, y(10000);
  while (x.size() < y.size()) x.push_back(static_cast<double>(random() >> (12 + random() % 40)));
  const std::vector<double> divisor(x.size(), static_cast<double>(prime));
  _arkdFmod(static_cast<int32_t>(x.size()), x.data(), divisor.data(), y.data());
  EXPECT_EQ(y[0], -7.0);
  for (size_t i = 1; i < x.size(); ++i) {
    ASSERT_EQ(y[i], static_cast<double>(static_cast<int64_t>(x[i]) % prime)) << x[i];
  }
}

// Quotients near halves and integers, where a rounded quotient is one off, at every distance of the
// exponents.
template <class T>
void check_near_ties(BinaryRow<T> row, BinaryDefinition<T> definition) {
  std::mt19937_64 random(5);
  std::vector<T> a, b;
  for (int i = 0; i < 60000; ++i) {
    const T divisor =
        std::ldexp(static_cast<T>(random() % 0xFFFFFF + 1), static_cast<int>(random() % 40));
    const int bits = static_cast<int>(random() % (std::numeric_limits<T>::digits + 4));
    const T quotient = static_cast<T>(random() >> (63 - bits)) / 2;
    T x = divisor * quotient;
    for (int step = static_cast<int>(random() % 3); step > 0; --step) x = std::nextafter(x, T{0});
    a.push_back((random() & 1) != 0 ? x : -x);
    b.push_back((random() & 1) != 0 ? divisor : -divisor);
  }
  std::vector<T> y(a.size());
  row(static_cast<int32_t>(a.size()), a.data(), b.data(), y.data());
  for (size_t i = 0; i < a.size(); ++i) {
    ASSERT_TRUE(same(y[i], definition(a[i], b[i])))
        << std::hexfloat << a[i] << ", " << b[i] << " give " << y[i];
  }
}

TEST(ArithmeticExact, QuotientsNearTies) {
  check_near_ties<float>(_arksFmod, std::fmod);
  check_near_ties<double>(_arkdFmod, std::fmod);
  check_near_ties<float>(_arksRemainder, exact_remainder);
  check_near_ties<double>(_arkdRemainder, exact_remainder);
}

}  // namespace
}  // namespace qor::test
