// The kernel frame, by functions of every shape: each element against what it shall be, for every
// length of the rest, strided, in place; the reports one by one, and their end effect.

#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <random>
#include <vector>

#include "frame/error.h"
#include "frame/mode.h"
#include "frame/thread_state.h"
#include "tests/kernel_frame/functions.h"

namespace qor::kernels::test {
namespace {

std::vector<ErrorContext> reports;
int32_t note_report(ErrorContext* context) {
  reports.push_back(*context);
  context->result1 += 0.5;  // what the callback changes is the result
  return 0;
}

bool same(float x, float y) { return x == y; }
bool same(double x, double y) { return x == y; }
template <class E>
bool same(E x, E y) {
  return x.re == y.re && x.im == y.im;
}
double real_of(float x) { return static_cast<double>(x); }
double real_of(double x) { return x; }
template <class E>
double real_of(E x) {
  return static_cast<double>(x.re);
}
double imaginary_of(float) { return 0; }
double imaginary_of(double) { return 0; }
template <class E>
double imaginary_of(E x) {
  return static_cast<double>(x.im);
}
void shift(float& x) { x += 0.5f; }
void shift(double& x) { x += 0.5; }
template <class E>
void shift(E& x) {
  x.re += static_cast<decltype(x.re)>(0.5);
}
void draw(std::mt19937& engine, float& x) { x = static_cast<float>(engine() % 8); }
void draw(std::mt19937& engine, double& x) { x = static_cast<double>(engine() % 8); }
template <class E>
void draw(std::mt19937& engine, E& x) {
  draw(engine, x.re);
  draw(engine, x.im);
}

// A value's elements: itself, or both of two.
template <class E>
E part_of(const E& value, int) {
  return value;
}
template <class E>
E part_of(const Two<E>& value, int k) {
  return k == 0 ? value.first : value.second;
}

template <class F>
class Frame : public testing::Test {
 protected:
  using In = typename F::Input;
  using Out = typename F::Output;
  static constexpr int longest = 100;
  static constexpr int middle = 256;  // element 0 of a vector, so that increments may be negative

  std::vector<In> in[3];
  std::vector<Out> out[2];
  std::mt19937 engine{7};

  void SetUp() override {
    for (auto& vector : in) {
      vector.resize(2 * middle);
      for (In& x : vector) draw(engine, x);
    }
    // A stretch without special lanes, after which the wide loop gives way to the fast one.
    for (auto& vector : out) vector.resize(2 * middle);
    frame::thread_state().errCallback = note_report;
    set_mode(QOR_MODE_ERRORS_CALLBACK);
  }
  static void set_mode(uint32_t errors) {
    auto& mode = frame::thread_state().mode;
    mode = (frame::mode() & ~uint32_t{QOR_MODE_ERRORS | QOR_MODE_TRAPS}) | errors;
  }

  void clear() {
    reports.clear();
    frame::thread_state().errStatus = 0;
    for (auto& vector : out) std::fill(vector.begin(), vector.end(), Out{});
  }

  Outcome<typename F::Value> expected(int64_t i, int32_t inc) const {
    return [&]<int... k>(std::integer_sequence<int, k...>) {
      return F::expected(in[k][static_cast<size_t>(middle + i * inc)]...);
    }
    (std::make_integer_sequence<int, F::inputs>{});
  }

  void call_contiguous(int n) {
    Contiguous<F> vectors{{}, {}, "name"};
    for (int k = 0; k < F::inputs; ++k) vectors.in[k] = &in[k][middle];
    for (int k = 0; k < F::outputs; ++k) vectors.out[k] = &out[k][middle];
    run<Environment{}>(F{}, vectors, n);
  }
  void call_strided(int n, int32_t in_inc, int32_t out_inc) {
    Strided<F> vectors{{}, {}, {}, {}, "nameI"};
    for (int k = 0; k < F::inputs; ++k) {
      vectors.in[k] = &in[k][middle];
      vectors.in_inc[k] = in_inc;
    }
    for (int k = 0; k < F::outputs; ++k) {
      vectors.out[k] = &out[k][middle];
      vectors.out_inc[k] = out_inc;
    }
    run<Environment{}>(F{}, vectors, n);
  }

  // Results with their reports, in ascending order; nothing else is written.
  void expect_results(int n, int32_t in_inc, int32_t out_inc) {
    size_t reported = 0;
    std::vector<Out> wanted[2] = {std::vector<Out>(2 * middle), std::vector<Out>(2 * middle)};
    for (int64_t i = 0; i < n; ++i) {
      const auto outcome = expected(i, in_inc);
      for (int k = 0; k < F::outputs; ++k) {
        Out value = part_of(outcome.value, k);
        if (k == 0 && outcome.code != 0) shift(value);
        wanted[k][static_cast<size_t>(middle + i * out_inc)] = value;
      }
      if (outcome.code == 0) continue;
      ASSERT_LT(reported, reports.size());
      const ErrorContext& report = reports[reported++];
      const In a = in[0][static_cast<size_t>(middle + i * in_inc)];
      EXPECT_EQ(report.code, outcome.code);
      EXPECT_EQ(report.index, i);
      EXPECT_EQ(report.arg1, real_of(a));
      EXPECT_EQ(report.arg1Im, imaginary_of(a));
      EXPECT_EQ(report.result1, real_of(part_of(outcome.value, 0)));
      EXPECT_EQ(report.result1Im, imaginary_of(part_of(outcome.value, 0)));
      EXPECT_EQ(report.result2, real_of(part_of(outcome.value, F::outputs - 1)));
    }
    EXPECT_EQ(reported, reports.size());
    for (int k = 0; k < F::outputs; ++k) {
      for (size_t i = 0; i < wanted[k].size(); ++i) {
        EXPECT_TRUE(same(out[k][i], wanted[k][i])) << "output " << k << " at " << i << " of " << n;
      }
    }
  }
};

using Functions =
    testing::Types<Conjugate<float>, Conjugate<double>, Product<float>, Product<double>,
                   OnCircle<float>, OnCircle<double>, Size<float>, Size<double>,
                   SumAndDifference<float>, SumAndDifference<double>, Total<float>, Total<double>>;
TYPED_TEST_SUITE(Frame, Functions);

TYPED_TEST(Frame, EveryLength) {
  for (int n = 0; n <= this->longest; ++n) {
    this->clear();
    this->call_contiguous(n);
    this->expect_results(n, 1, 1);
  }
}

TYPED_TEST(Frame, EveryIncrement) {
  for (const int32_t in_inc : {0, 1, 2, -1}) {
    for (const int32_t out_inc : {1, 2, -1}) {
      for (const int n : {1, 7, 33, this->longest}) {
        this->clear();
        this->call_strided(n, in_inc, out_inc);
        this->expect_results(n, in_inc, out_inc);
      }
    }
  }
}

TYPED_TEST(Frame, InPlace) {
  if constexpr (std::is_same_v<typename TypeParam::Input, typename TypeParam::Output>) {
    using E = typename TypeParam::Input;
    frame::thread_state().errCallback = nullptr;
    const auto original = this->in[0];
    Contiguous<TypeParam> vectors{{}, {}, "name"};
    for (int k = 0; k < TypeParam::inputs; ++k) vectors.in[k] = &this->in[k][this->middle];
    vectors.out[0] = &this->in[0][this->middle];
    if constexpr (TypeParam::outputs == 2) vectors.out[1] = &this->out[1][this->middle];
    run<Environment{}>(TypeParam{}, vectors, this->longest);
    const std::vector<E> results = this->in[0];
    this->in[0] = original;
    for (int i = 0; i < this->longest; ++i) {
      const E wanted = part_of(this->expected(i, 1).value, 0);
      EXPECT_TRUE(same(results[static_cast<size_t>(this->middle + i)], wanted)) << i;
    }
  }
}

// Without a callback, messages and traps the last report of a call shows in the status and in
// errno, the flags of all codes of a wide form in MXCSR.
TYPED_TEST(Frame, EndEffectOfReports) {
  frame::thread_state().errCallback = nullptr;
  for (const uint32_t mode : {QOR_MODE_ERRORS_IGNORE, QOR_MODE_ERRORS_DEFAULT,
                              QOR_MODE_ERRORS_NOERR, QOR_MODE_ERRORS_ERRNO}) {
    this->set_mode(mode);
    for (int n = 0; n <= this->longest; ++n) {
      this->clear();
      errno = 0;
      this->call_contiguous(n);
      int32_t last = 0;
      for (int i = 0; i < n; ++i) {
        const auto outcome = this->expected(i, 1);
        if (outcome.code != 0) last = outcome.code;
        for (int k = 0; k < TypeParam::outputs; ++k) {
          EXPECT_TRUE(
              same(this->out[k][static_cast<size_t>(this->middle + i)], part_of(outcome.value, k)));
        }
      }
      EXPECT_EQ(frame::thread_state().errStatus, mode == QOR_MODE_ERRORS_NOERR ? 0 : last) << n;
      const bool sets_errno = (mode & QOR_MODE_ERRORS_ERRNO) != 0 && last != 0;
      EXPECT_EQ(errno, !sets_errno ? 0 : last == QOR_ERROR_DOMAIN ? EDOM : ERANGE) << n;
    }
  }
}

TEST(WideForm, FlagsGoWithTheCodes) {
  using F = Total<double>;
  struct {
    double a, b, c;
    int flag;
  } const cases[] = {{1, 5, 0, FE_INVALID},  {1, 7, 0, FE_DIVBYZERO},
                     {6, 0, 1, FE_OVERFLOW}, {6, 0, 2, FE_UNDERFLOW},
                     {1, 4, 0, 0},           {0, 0, 0, 0}};
  frame::thread_state().errCallback = nullptr;
  for (const auto& c : cases) {
    double y = 0;
    std::feclearexcept(FE_ALL_EXCEPT);
    run<Environment{}>(F{}, Contiguous<F>{{&c.a, &c.b, &c.c}, {&y}, "name"}, 1);
    EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT), c.flag);
  }
}

}  // namespace
}  // namespace qor::kernels::test
