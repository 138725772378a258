// A value by its reference, and the distances of what was computed from it.

#include <algorithm>
#include <cmath>
#include <limits>

#include "reference/reference.h"

namespace qor::reference {
namespace {

// The sign of a NaN included, which functions that copy signs look at.
void set_exactly(mpfr_ptr to, double x) {
  mpfr_set_d(to, x, MPFR_RNDN);
  mpfr_setsign(to, to, std::signbit(x), MPFR_RNDN);
}

}  // namespace

template <class T>
Value<T>::Value() {
  for (auto& x : in_) mpfr_init2(x, format_of<T>.digits);
  for (auto& y : out_) mpfr_init2(y, precision);
  mpfr_init2(distance_, precision);
}

template <class T>
Value<T>::~Value() {
  for (auto& x : in_) mpfr_clear(x);
  for (auto& y : out_) mpfr_clear(y);
  mpfr_clear(distance_);
}

template <class T>
void Value<T>::compute(const Reference& reference, const T* in, int inputs) {
  mpfr_srcptr arguments[most_inputs];
  for (int k = 0; k < inputs; ++k) {
    set_exactly(in_[k], static_cast<double>(in[k]));
    arguments[k] = in_[k];
  }
  mpfr_ptr const results[most_outputs] = {out_[0], out_[1]};
  reference.compute(results, arguments, format_of<T>);
}

template <class T>
T Value<T>::rounded(int k) const {
  if constexpr (sizeof(T) == sizeof(float)) {
    return mpfr_get_flt(out_[k], MPFR_RNDN);
  } else {
    return mpfr_get_d(out_[k], MPFR_RNDN);
  }
}

template <class T>
int Value<T>::due_code(const Reference& reference, const T* in, int inputs) const {
  double numbers[most_inputs];
  std::copy_n(in, inputs, numbers);
  return reference.due_code({numbers, inputs, static_cast<double>(rounded(0)), format_of<T>});
}

template <class T>
double Value<T>::error(int k, T computed) const {
  constexpr double kWrong = std::numeric_limits<double>::infinity();
  constexpr Format format = format_of<T>;
  const mpfr_srcptr exact = out_[k];
  if (mpfr_nan_p(exact) || std::isnan(computed)) {
    return mpfr_nan_p(exact) && std::isnan(computed) ? 0.0 : kWrong;
  }
  const bool negative = mpfr_signbit(exact) != 0;
  if ((computed == 0 || std::isinf(computed)) && std::signbit(computed) != negative) return kWrong;
  const bool beyond =
      !mpfr_zero_p(exact) && (mpfr_inf_p(exact) || mpfr_get_exp(exact) > format.max_exponent);
  if (std::isinf(computed)) {
    if (beyond) return 0.0;
    mpfr_set_si_2exp(distance_, negative ? -1 : 1, format.max_exponent, MPFR_RNDN);
  } else {
    if (mpfr_inf_p(exact)) return kWrong;
    set_exactly(distance_, static_cast<double>(computed));
  }
  mpfr_sub(distance_, distance_, exact, MPFR_RNDN);
  const auto exponent =
      mpfr_zero_p(exact)
          ? mpfr_exp_t{format.min_exponent}
          : std::clamp<mpfr_exp_t>(mpfr_get_exp(exact), format.min_exponent, format.max_exponent);
  mpfr_mul_2si(distance_, distance_, format.digits - exponent, MPFR_RNDN);
  return std::fabs(mpfr_get_d(distance_, MPFR_RNDN));
}

template class Value<float>;
template class Value<double>;

}  // namespace qor::reference
