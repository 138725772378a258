// Monotone functions are monotone in floating point: a larger argument never gives a smaller
// result.

#include <limits>
#include <random>

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

// All arguments from one position to another (reference/), as often as needed.
template <class T, class Kernel>
class Walk {
 public:
  Walk(const char* name, Kernel kernel) : name_(name), kernel_(kernel) {}

  // The greatest result that an argument below the next one gave is `last`.
  void expect_rising(int64_t first, int64_t count, T last = -std::numeric_limits<T>::infinity()) {
    constexpr int64_t block = 1 << 16;
    for (int64_t done = 0; done < count; done += block) {
      const auto n = static_cast<size_t>(std::min(block, count - done));
      x_.resize(n);
      y_.resize(n);
      for (size_t i = 0; i < n; ++i) x_[i] = at_position<T>(first + done + static_cast<int64_t>(i));
      kernel_(static_cast<int32_t>(n), x_.data(), y_.data());
      for (size_t i = 0; i < n; ++i) {
        if (std::isnan(y_[i])) continue;
        ASSERT_GE(y_[i], last) << name_ << std::hexfloat << " at " << x_[i];
        last = y_[i];
      }
    }
  }
  void expect_rising_around(T x, int64_t reach = 64) {
    expect_rising(position(x) - reach, 2 * reach);
  }

  // Where the result changes next above x: between the two positions that bisection ends with.
  T next_change(T x) {
    T y;
    kernel_(1, &x, &y);
    int64_t below = position(x), above = position(x + std::abs(x) / 8);
    while (above - below > 1) {
      const int64_t middle = below + (above - below) / 2;
      const T at = at_position<T>(middle);
      T result;
      kernel_(1, &at, &result);
      (result > y ? above : below) = middle;
    }
    return at_position<T>(above);
  }

 private:
  const char* name_;
  Kernel kernel_;
  std::vector<T> x_, y_;
};

// ---- Places ---------------------------------------------------------------------------------

// Arguments beside which a reduced argument and a rounded factor change against each other; and the
// steps of the reductions, at whose odd halves the table's rows change.
template <class T>
struct Places {
  const char* name;
  void (*kernel)(int32_t, const T*, T*);
  std::vector<T> arguments;
  std::vector<double> steps;
};

constexpr double kLn2 = 0x1.62e42fefa39efp-1, kLog2 = 0x1.34413509f79ffp-2;  // ln 2, log10 2

const Places<float> kFloats[] = {
    {"sExp2",
     _arksExp2,
     {-0x1.fe3f96p-6f, -0x1.fd6508p-6f, -0x1.fa3f7ap-6f, -0x1.fad232p-8f, -0x1.aa6da2p-8f},
     {1.0 / 16, 1.0 / 64}},
    {"sExp10",
     _arksExp10,
     {-0x1.d3bbbcp-11f, -0x1.c54df6p-11f, -0x1.c925c2p-12f, -0x1.82e3bep-12f, -0x1.f6d6bp-15f},
     {kLog2 / 16, kLog2 / 128}},
    {"sExp", _arksExp, {}, {kLn2 / 16, kLn2 / 128}},
    {"sExpm1", _arksExpm1, {}, {kLn2 / 16, kLn2 / 64}},
};
const Places<double> kDoubles[] = {
    {"dExp2",
     _arkdExp2,
     {-0x1.8c3cfd5ddaa1dp-8, -0x1.e6670dc42b55fp-8, -0x1.bbb42c4f186ddp-8, -0x1.8042a50b2efbp-9,
      -0x1.f93b51dcab927p-8, -0x1.a9fd5beb293cep-8, -0x1.ed2655367ff38p-9},
     {1.0 / 16, 1.0 / 64}},
    {"dExp10",
     _arkdExp10,
     {-0x1.dc7b195809f61p-12, -0x1.cd48ec456e043p-11, -0x1.358b0e5a27809p-11,
      -0x1.6bf13de86e6d9p-12, -0x1.cddcc422ac7e8p-12},
     {kLog2 / 16, kLog2 / 128}},
    {"dExp", _arkdExp, {}, {kLn2 / 16, kLn2 / 64}},
    {"dExpm1", _arkdExpm1, {}, {kLn2 / 128}},
};

template <class T>
void expect_rising_at(const Places<T>& places) {
  Walk<T, decltype(places.kernel)> walk(places.name, places.kernel);
  for (const T x : places.arguments) walk.expect_rising_around(x);
  for (const double step : places.steps) {
    for (int k = -200; k < 200; ++k) walk.expect_rising_around(static_cast<T>((k + 0.5) * step));
  }
  std::mt19937_64 random(7);
  std::uniform_real_distribution<T> mantissa(1, 2);
  for (int i = 0; i < 2000; ++i) {
    const T x = std::ldexp(mantissa(random), -12 + i % 14);
    walk.expect_rising_around(walk.next_change(i % 4 == 0 ? x : -x), 16);
  }
}

TEST(Monotone, WhereResultsAndRowsChange) {
  for (const auto& places : kFloats) expect_rising_at(places);
  for (const auto& places : kDoubles) expect_rising_at(places);
}

// ---- Over all floats ------------------------------------------------------------------------

TEST(Monotone, DISABLED_OverAllFloats) {
  const std::pair<const char*, void (*)(int32_t, const float*, float*)> functions[] = {
      {"sExp", _arksExp},   {"sExp2", _arksExp2}, {"sExp10", _arksExp10}, {"sExpm1", _arksExpm1},
      {"sLn", _arksLn},     {"sLog2", _arksLog2}, {"sLog10", _arksLog10}, {"sLog1p", _arksLog1p},
      {"sSqrt", _arksSqrt}, {"sCbrt", _arksCbrt}};
  const ModeScope quiet(QOR_MODE_ERRORS_IGNORE);
  const int64_t last = position(std::numeric_limits<float>::infinity());
  for (const auto& [name, kernel] : functions) {
    Walk<float, decltype(kernel)>(name, kernel).expect_rising(-last, 2 * last + 1);
  }
}

}  // namespace
}  // namespace qor::test
