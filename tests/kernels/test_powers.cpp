// Powers: special values in their order, codes, names and IEEE flags; the paths of Powx; results
// that have to be exact.

#include "kernels/pow_limits.h"
#include "tests/kernels/function_cases.h"

namespace qor::test {
namespace {

namespace limits = kernels::limits;
using Powers = KeepingDenormals;

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

TEST_F(Powers, CubesAndFirstPowers) {
  std::vector<double> x, cubes, y(1000), one(1000, 1.0), three(1000, 3.0);
  for (int i = 1; i <= 1000; ++i) {
    x.push_back(i * 207.0);
    cubes.push_back(x.back() * x.back() * x.back());
  }
  _arkdPow(1000, cubes.data(), one.data(), y.data());
  EXPECT_EQ(y, cubes);
  _arkdPow(1000, x.data(), three.data(), y.data());
  EXPECT_EQ(y, cubes);
  for (double& cube : cubes) cube = -cube;
  _arkdPow(1000, cubes.data(), one.data(), y.data());
  EXPECT_EQ(y, cubes);
}

// ---- Where the vector path ends -------------------------------------------------------------

// Powers of the bases and their neighbours with exponents on both sides of where the vector path
// ends: by the exponent itself, and by the product y log2 x.
template <class T>
void check_branch_edges(Binary<T> pow, const std::vector<T>& bases, T largest_exponent,
                        T largest_product, double bound) {
  std::vector<T> x, y;
  const auto add = [&](T base, T exponent) {
    for (const T near : with_neighbours(exponent)) {
      x.insert(x.end(), 2, base);
      y.insert(y.end(), {near, -near});
    }
  };
  for (const T edge : bases) {
    for (const T base : with_neighbours(edge)) {
      add(base, largest_product / std::log2(base));
      add(base, 1);
      add(base, largest_exponent);
    }
  }
  std::vector<T> z(x.size());
  pow.row(static_cast<int32_t>(x.size()), x.data(), y.data(), z.data());
  for (size_t i = 0; i < x.size(); ++i) {
    SCOPED_TRACE(testing::Message() << pow.name << " " << std::hexfloat << x[i] << " to " << y[i]);
    const long double exact = std::pow(static_cast<long double>(x[i]), y[i]);
    if (exact > kLargest<T> || exact < kDenormal<T>) {
      EXPECT_TRUE(same(z[i], exact > 1 ? kInfinity<T> : static_cast<T>(exact))) << z[i];
    } else {
      EXPECT_LT(places_off(z[i], exact), bound) << z[i];
    }
  }
}

TEST_F(Powers, AccurateWhereTheVectorPathEnds) {
  check_branch_edges<float>({"sPow", "", _arksPow, _arksPowI},
                            {from_image<float>(limits::spow::base.first),
                             from_image<float>(limits::spow::base.last), 1 + 0x1p-16f, 0.3f, 17},
                            from_image<float>(limits::spow::exponent.last),
                            limits::spow::exponent_of_result + 0.5f, 1.0);
  const auto of_high_word = [](int32_t word) {
    return from_image<double>(static_cast<uint64_t>(word) << 32);
  };
  const std::vector<double> bases = {of_high_word(limits::dpow::base.first),
                                     of_high_word(limits::dpow::base.last + 1), 1 + 0x1p-50, 0.3,
                                     17};
  const double exponent = of_high_word(limits::dpow::exponent.last + 1);
  const double product = of_high_word(limits::dpow::product_high_word + 1);
  check_branch_edges<double>({"dPow", "", _arkdPow_50, _arkdPowI_50}, bases, exponent, product, 1);
  check_branch_edges<double>({"dPow_HA", "", _arkdPow_HA, _arkdPowI_HA}, bases, exponent, product,
                             0.6);
}

}  // namespace
}  // namespace qor::test
