// Numbers of 400 bits: references that are as good as exact on small data. On large data long
// double takes their place.
#pragma once

#include <mpfr.h>

namespace qor::test {

class Exact {
 public:
  Exact(double value = 0) {
    mpfr_init2(value_, kBits);
    mpfr_set_d(value_, value, MPFR_RNDN);
  }
  Exact(const Exact& other) {
    mpfr_init2(value_, kBits);
    mpfr_set(value_, other.value_, MPFR_RNDN);
  }
  Exact& operator=(const Exact& other) {
    mpfr_set(value_, other.value_, MPFR_RNDN);
    return *this;
  }
  ~Exact() { mpfr_clear(value_); }

  friend Exact operator+(const Exact& a, const Exact& b) { return apply(mpfr_add, a, b); }
  friend Exact operator-(const Exact& a, const Exact& b) { return apply(mpfr_sub, a, b); }
  friend Exact operator*(const Exact& a, const Exact& b) { return apply(mpfr_mul, a, b); }
  friend Exact operator/(const Exact& a, const Exact& b) { return apply(mpfr_div, a, b); }
  Exact& operator+=(const Exact& b) { return *this = *this + b; }

  friend Exact sqrt(const Exact& a) {
    Exact r;
    mpfr_sqrt(r.value_, a.value_, MPFR_RNDN);
    return r;
  }
  friend double rounded(const Exact& a) { return mpfr_get_d(a.value_, MPFR_RNDN); }
  friend Exact abs(const Exact& a) {
    Exact r;
    mpfr_abs(r.value_, a.value_, MPFR_RNDN);
    return r;
  }

 private:
  static constexpr mpfr_prec_t kBits = 400;

  template <class Operation>
  static Exact apply(Operation operation, const Exact& a, const Exact& b) {
    Exact r;
    operation(r.value_, a.value_, b.value_, MPFR_RNDN);
    return r;
  }

  mpfr_t value_;
};

inline double rounded(long double a) { return static_cast<double>(a); }

template <class Number>
Number power(const Number& base, int exponent) {
  Number product = 1;
  for (int i = 0; i < exponent; ++i) product = product * base;
  return product;
}

}  // namespace qor::test
