// Cases of functions, one a line: result, code, reported name and IEEE flags, of the contiguous and
// the strided kernel.
#pragma once

#include <string>
#include <vector>

#include "tests/kernels/arithmetic_support.h"

namespace qor::test {

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
    strided(n, a, 1, b, inc, y, inc);
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

// Where the case stands among harmless elements: behind a whole register of any level, before the
// tail.
inline constexpr int kPlace = 17;
inline constexpr int kCount = 35;

template <class F, class T>
void check(const F& f, const Case<T>& c, T harmless_b) {
  SCOPED_TRACE(f.name + " of " + std::to_string(c.a) + ", " + std::to_string(c.b));
  for (const int inc : {1, 2}) {
    const auto place = static_cast<size_t>(kPlace * inc);
    std::vector<T> a(kCount, T(1.25)), b(2 * kCount, harmless_b), y(2 * kCount);
    a[kPlace] = c.a;
    b[place] = c.b;
    const Reports reports;
    clear_flags();
    if (inc == 1) {
      f.run(kCount, a.data(), b.data(), y.data());
    } else {
      f.run(kCount, a.data(), b.data(), y.data(), inc);
    }
    EXPECT_EQ(flags(), c.flags);
    EXPECT_TRUE(same(y[place], c.result)) << y[place] << " with increment " << inc;
    std::vector<Reports::Report> expected;
    if (c.code != 0) expected.push_back({c.code, kPlace, inc == 1 ? f.name : f.strided_name});
    EXPECT_EQ(Reports::list, expected);
    EXPECT_EQ(_arkGetErrStatus(), c.code);
  }
}

template <class F, class T>
void check_all(const F& f, const std::vector<Case<T>>& cases) {
  for (const Case<T>& c : cases) check(f, c, T(1.5));
}

// While one of these lives, kernels keep denormals.
class KeepingDenormals : public testing::Test {
 private:
  ModeScope mode_{QOR_MODE_KEEP_DENORMALS};
};

}  // namespace qor::test
