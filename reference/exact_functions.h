// How MPFR computes the functions of the row list, rounded to odd.
#pragma once

#include <mpfr.h>

#include <cmath>

#include "reference/reference.h"

namespace qor::reference::exact {

using Out = mpfr_ptr const*;
using In = mpfr_srcptr const*;

// Rounds a number that was truncated, with this ternary value, to odd instead.
inline void make_odd(mpfr_ptr x, int ternary) {
  if (ternary == 0 || !mpfr_regular_p(x) || mpfr_min_prec(x) == mpfr_get_prec(x)) return;
  ternary < 0 ? mpfr_nextabove(x) : mpfr_nextbelow(x);
}

template <int (*f)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
inline void one(Out out, In in, const Format&) {
  make_odd(out[0], f(out[0], in[0], MPFR_RNDZ));
}

template <int (*f)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>
inline void two(Out out, In in, const Format&) {
  make_odd(out[0], f(out[0], in[0], in[1], MPFR_RNDZ));
}

inline void inverse(Out out, In in, const Format&) {
  make_odd(out[0], mpfr_ui_div(out[0], 1, in[0], MPFR_RNDZ));
}

inline void square_root(Out out, In in, const Format& format) { one<mpfr_sqrt>(out, in, format); }

// The sign of a zero stays: 1 / x there.
inline void inverse_square_root(Out out, In in, const Format& format) {
  if (mpfr_zero_p(in[0])) return inverse(out, in, format);
  one<mpfr_rec_sqrt>(out, in, format);
}

inline void inverse_cube_root(Out out, In in, const Format& format) {
  if (mpfr_zero_p(in[0])) return inverse(out, in, format);
  make_odd(out[0], mpfr_rootn_si(out[0], in[0], -3, MPFR_RNDZ));
}

// Of the magnitude.
inline void power_2_3(Out out, In in, const Format&) {
  mpfr_sqr(out[0], in[0], MPFR_RNDZ);
  make_odd(out[0], mpfr_cbrt(out[0], out[0], MPFR_RNDZ));
}

inline void power_3_2(Out out, In in, const Format&) {
  mpfr_pow_ui(out[0], in[0], 3, MPFR_RNDZ);
  make_odd(out[0], mpfr_sqrt(out[0], out[0], MPFR_RNDZ));
  if (mpfr_zero_p(out[0])) mpfr_set_zero(out[0], +1);
}

// The exponents that have a kernel of their own go its way at zeros and negative numbers.
inline void power_by_scalar(Out out, In in, const Format& format) {
  constexpr struct {
    double exponent;
    Compute compute;
  } kDelegates[] = {
      {-1.0, inverse}, {0.5, square_root}, {-0.5, inverse_square_root}, {1.5, power_3_2}};
  for (const auto& delegate : kDelegates) {
    if (mpfr_cmp_d(in[1], delegate.exponent) == 0 && !mpfr_nan_p(in[1])) {
      return delegate.compute(out, in, format);
    }
  }
  two<mpfr_pow>(out, in, format);
}

// e^(y ln x): unlike pow, a NaN stays one whatever the other number.
inline void power_of_nonnegative(Out out, In in, const Format& format) {
  if (mpfr_nan_p(in[0]) || mpfr_nan_p(in[1])) return mpfr_set_nan(out[0]);
  two<mpfr_powr>(out, in, format);
}

// The exponent of the binade.
inline void binade(Out out, In in, const Format&) {
  if (mpfr_regular_p(in[0])) {
    mpfr_set_si(out[0], mpfr_get_exp(in[0]) - 1, MPFR_RNDZ);
  } else if (mpfr_zero_p(in[0])) {
    mpfr_set_inf(out[0], -1);
  } else {
    mpfr_abs(out[0], in[0], MPFR_RNDZ);
  }
}

// Parts with the sign of the argument.
inline void integral_and_fractional(Out out, In in, const Format&) {
  mpfr_modf(out[0], out[1], in[0], MPFR_RNDZ);
}
inline void fractional(Out out, In in, const Format&) { mpfr_frac(out[0], in[0], MPFR_RNDZ); }

inline void copied_sign(Out out, In in, const Format&) {
  mpfr_setsign(out[0], in[0], mpfr_signbit(in[1]), MPFR_RNDZ);
}

inline void neighbour(Out out, In in, const Format& format) {
  const double x = mpfr_get_d(in[0], MPFR_RNDN), y = mpfr_get_d(in[1], MPFR_RNDN);
  const bool single = format.digits == format_of<float>.digits;
  const double next =
      single ? static_cast<double>(std::nextafter(static_cast<float>(x), static_cast<float>(y)))
             : std::nextafter(x, y);
  mpfr_set_d(out[0], next, MPFR_RNDZ);
}

// Takes in[index].
inline void take(Out out, In in, int index) { mpfr_set(out[0], in[index], MPFR_RNDZ); }

// Whether a NaN decided between the two; it gives way to a number.
inline bool taken_by_nan(Out out, In in) {
  if (!mpfr_nan_p(in[0]) && !mpfr_nan_p(in[1])) return false;
  take(out, in, mpfr_nan_p(in[0]) ? 1 : 0);
  return true;
}

// As the processor: of equal numbers (zeros of either sign) the second.
inline void larger(Out out, In in, const Format&) {
  if (!taken_by_nan(out, in)) take(out, in, mpfr_greater_p(in[0], in[1]) ? 0 : 1);
}
inline void smaller(Out out, In in, const Format&) {
  if (!taken_by_nan(out, in)) take(out, in, mpfr_less_p(in[0], in[1]) ? 0 : 1);
}

// By magnitude; of equal ones the larger (smaller) number.
inline void larger_magnitude(Out out, In in, const Format& format) {
  if (taken_by_nan(out, in)) return;
  const int order = mpfr_cmpabs(in[0], in[1]);
  order == 0 ? larger(out, in, format) : take(out, in, order > 0 ? 0 : 1);
}
inline void smaller_magnitude(Out out, In in, const Format& format) {
  if (taken_by_nan(out, in)) return;
  const int order = mpfr_cmpabs(in[0], in[1]);
  order == 0 ? smaller(out, in, format) : take(out, in, order < 0 ? 0 : 1);
}

// (aScale a + aShift) / (bScale b + bShift); a vector with scale 0 is not looked at.
inline void linear_fraction(Out out, In in, const Format&) {
  const auto line = [in](mpfr_ptr to, int vector, int scale) {
    if (mpfr_zero_p(in[scale])) {
      mpfr_set(to, in[scale + 1], MPFR_RNDN);
    } else {
      mpfr_fma(to, in[vector], in[scale], in[scale + 1], MPFR_RNDN);
    }
  };
  line(out[0], 0, 2);
  line(out[1], 1, 4);
  mpfr_div(out[0], out[0], out[1], MPFR_RNDN);
}

}  // namespace qor::reference::exact
