#include "reference/reference.h"

#include <cmath>

namespace qor::reference {
namespace {

using Out = mpfr_ptr const*;
using In = mpfr_srcptr const*;

// ---- How functions are computed ---------------------------------------------------------------

// Rounds a number that was truncated, with this ternary value, to odd instead.
void make_odd(mpfr_ptr x, int ternary) {
  if (ternary == 0 || !mpfr_regular_p(x) || mpfr_min_prec(x) == mpfr_get_prec(x)) return;
  ternary < 0 ? mpfr_nextabove(x) : mpfr_nextbelow(x);
}

template <int (*f)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)>
void one(Out out, In in, const Format&) {
  make_odd(out[0], f(out[0], in[0], MPFR_RNDZ));
}

template <int (*f)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t)>
void two(Out out, In in, const Format&) {
  make_odd(out[0], f(out[0], in[0], in[1], MPFR_RNDZ));
}

void inverse(Out out, In in, const Format&) {
  make_odd(out[0], mpfr_ui_div(out[0], 1, in[0], MPFR_RNDZ));
}

void square_root(Out out, In in, const Format& format) { one<mpfr_sqrt>(out, in, format); }

// The sign of a zero stays: 1 / x there.
void inverse_square_root(Out out, In in, const Format& format) {
  if (mpfr_zero_p(in[0])) return inverse(out, in, format);
  one<mpfr_rec_sqrt>(out, in, format);
}

void inverse_cube_root(Out out, In in, const Format& format) {
  if (mpfr_zero_p(in[0])) return inverse(out, in, format);
  make_odd(out[0], mpfr_rootn_si(out[0], in[0], -3, MPFR_RNDZ));
}

// Of the magnitude.
void power_2_3(Out out, In in, const Format&) {
  mpfr_sqr(out[0], in[0], MPFR_RNDZ);
  make_odd(out[0], mpfr_cbrt(out[0], out[0], MPFR_RNDZ));
}

void power_3_2(Out out, In in, const Format&) {
  mpfr_pow_ui(out[0], in[0], 3, MPFR_RNDZ);
  make_odd(out[0], mpfr_sqrt(out[0], out[0], MPFR_RNDZ));
  if (mpfr_zero_p(out[0])) mpfr_set_zero(out[0], +1);
}

// The exponents that have a kernel of their own go its way at zeros and negative numbers.
void power_by_scalar(Out out, In in, const Format& format) {
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
void power_of_nonnegative(Out out, In in, const Format& format) {
  if (mpfr_nan_p(in[0]) || mpfr_nan_p(in[1])) return mpfr_set_nan(out[0]);
  two<mpfr_powr>(out, in, format);
}

// The exponent of the binade.
void binade(Out out, In in, const Format&) {
  if (mpfr_regular_p(in[0])) {
    mpfr_set_si(out[0], mpfr_get_exp(in[0]) - 1, MPFR_RNDZ);
  } else if (mpfr_zero_p(in[0])) {
    mpfr_set_inf(out[0], -1);
  } else {
    mpfr_abs(out[0], in[0], MPFR_RNDZ);
  }
}

// Parts with the sign of the argument.
void integral_and_fractional(Out out, In in, const Format&) {
  mpfr_modf(out[0], out[1], in[0], MPFR_RNDZ);
}
void fractional(Out out, In in, const Format&) { mpfr_frac(out[0], in[0], MPFR_RNDZ); }

void copied_sign(Out out, In in, const Format&) {
  mpfr_setsign(out[0], in[0], mpfr_signbit(in[1]), MPFR_RNDZ);
}

void neighbour(Out out, In in, const Format& format) {
  const double x = mpfr_get_d(in[0], MPFR_RNDN), y = mpfr_get_d(in[1], MPFR_RNDN);
  const bool single = format.digits == format_of<float>.digits;
  const double next =
      single ? static_cast<double>(std::nextafter(static_cast<float>(x), static_cast<float>(y)))
             : std::nextafter(x, y);
  mpfr_set_d(out[0], next, MPFR_RNDZ);
}

// Takes in[index].
void take(Out out, In in, int index) { mpfr_set(out[0], in[index], MPFR_RNDZ); }

// Whether a NaN decided between the two; it gives way to a number.
bool taken_by_nan(Out out, In in) {
  if (!mpfr_nan_p(in[0]) && !mpfr_nan_p(in[1])) return false;
  take(out, in, mpfr_nan_p(in[0]) ? 1 : 0);
  return true;
}

// As the processor: of equal numbers (zeros of either sign) the second.
void larger(Out out, In in, const Format&) {
  if (!taken_by_nan(out, in)) take(out, in, mpfr_greater_p(in[0], in[1]) ? 0 : 1);
}
void smaller(Out out, In in, const Format&) {
  if (!taken_by_nan(out, in)) take(out, in, mpfr_less_p(in[0], in[1]) ? 0 : 1);
}

// By magnitude; of equal ones the larger (smaller) number.
void larger_magnitude(Out out, In in, const Format& format) {
  if (taken_by_nan(out, in)) return;
  const int order = mpfr_cmpabs(in[0], in[1]);
  order == 0 ? larger(out, in, format) : take(out, in, order > 0 ? 0 : 1);
}
void smaller_magnitude(Out out, In in, const Format& format) {
  if (taken_by_nan(out, in)) return;
  const int order = mpfr_cmpabs(in[0], in[1]);
  order == 0 ? smaller(out, in, format) : take(out, in, order < 0 ? 0 : 1);
}

// (aScale a + aShift) / (bScale b + bShift); a vector with scale 0 is not looked at.
void linear_fraction(Out out, In in, const Format&) {
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

// ---- The same in double, for functions without a name in the C library -------------------------

double inverse_of(double x) { return 1.0 / x; }
double inverse_square_root_of(double x) { return 1.0 / std::sqrt(x); }
double inverse_cube_root_of(double x) { return 1.0 / std::cbrt(x); }
double power_2_3_of(double x) { return std::cbrt(x * x); }
double power_3_2_of(double x) { return x * std::sqrt(x); }
double square_of(double x) { return x * x; }
double fractional_of(double x) {
  return std::isinf(x) ? std::copysign(0.0, x) : std::copysign(x - std::trunc(x), x);
}

constexpr uint32_t kSilent = 0;

}  // namespace

// ---- One line per base name --------------------------------------------------------------------
// computation, HA bound s, d (0: correctly rounded), codes, C library name, in double, pairing

namespace references {

// clang-format off
const Reference Exp{one<mpfr_exp>, 1.0, 0.55, codes({3, 4}), "exp", std::exp};
const Reference Exp2{one<mpfr_exp2>, 1.0, 1.0, codes({3, 4}), "exp2", std::exp2};
const Reference Exp10{one<mpfr_exp10>, 1.0, 1.0, codes({3, 4}), "exp10", ::exp10};
const Reference Expm1{one<mpfr_expm1>, 1.0, 1.0, codes({3, 4}), "expm1", std::expm1};
const Reference Ln{one<mpfr_log>, 1.0, 0.55, codes({1, 2}), "log", std::log};
const Reference Log2{one<mpfr_log2>, 1.0, 1.0, codes({1, 2}), "log2", std::log2};
const Reference Log10{one<mpfr_log10>, 1.0, 1.0, codes({1, 2}), "log10", std::log10};
const Reference Log1p{one<mpfr_log1p>, 1.0, 1.0, codes({1, 2}), "log1p", std::log1p};
const Reference Logb{binade, 0.0, 0.0, codes({1}), "logb", std::logb};

const Reference Inv{inverse, 0.0, 0.0, codes({2}), nullptr, inverse_of};
const Reference Div{two<mpfr_div>, 0.0, 0.0, codes({2}), nullptr};
const Reference Sqrt{square_root, 1.0, 0.0, codes({1}), "sqrt", std::sqrt};
const Reference InvSqrt{inverse_square_root, 1.0, 1.0, codes({1, 2}), nullptr, inverse_square_root_of};
const Reference Cbrt{one<mpfr_cbrt>, 1.0, 1.0, kSilent, "cbrt", std::cbrt};
const Reference InvCbrt{inverse_cube_root, 1.0, 1.0, codes({2}), nullptr, inverse_cube_root_of};
const Reference Pow2o3{power_2_3, 1.0, 1.0, kSilent, nullptr, power_2_3_of};
const Reference Pow3o2{power_3_2, 1.0, 1.0, codes({1}), nullptr, power_3_2_of};
const Reference Pow{two<mpfr_pow>, 1.0, 0.6, codes({1, 3}), "pow", nullptr, Pairing::power};
const Reference Powx{power_by_scalar, 1.0, 1.0, codes({1, 2, 3}), nullptr, nullptr, Pairing::power};
const Reference Powr{power_of_nonnegative, 1.0, 1.0, codes({1, 3, 4}), nullptr, nullptr, Pairing::power};
const Reference Hypot{two<mpfr_hypot>, 1.0, 1.0, kSilent, "hypot"};

const Reference Add{two<mpfr_add>, 0.0, 0.0, kSilent, nullptr};
const Reference Sub{two<mpfr_sub>, 0.0, 0.0, kSilent, nullptr};
const Reference Mul{two<mpfr_mul>, 0.0, 0.0, kSilent, nullptr};
const Reference Sqr{one<mpfr_sqr>, 0.0, 0.0, kSilent, nullptr, square_of};
const Reference Abs{one<mpfr_abs>, 0.0, 0.0, kSilent, "fabs", std::fabs};
const Reference Floor{one<mpfr_rint_floor>, 0.0, 0.0, kSilent, "floor", std::floor};
const Reference Ceil{one<mpfr_rint_ceil>, 0.0, 0.0, kSilent, "ceil", std::ceil};
const Reference Round{one<mpfr_rint_round>, 0.0, 0.0, kSilent, "round", std::round};
const Reference Trunc{one<mpfr_rint_trunc>, 0.0, 0.0, kSilent, "trunc", std::trunc};
const Reference Rint{one<mpfr_rint_roundeven>, 0.0, 0.0, kSilent, "rint", std::rint};
const Reference NearbyInt{one<mpfr_rint_roundeven>, 0.0, 0.0, kSilent, "nearbyint", std::nearbyint};
const Reference Frac{fractional, 0.0, 0.0, kSilent, nullptr, fractional_of};
const Reference Modf{integral_and_fractional, 0.0, 0.0, kSilent, nullptr, std::trunc,
                     Pairing::near_exponents, fractional_of};
const Reference CopySign{copied_sign, 0.0, 0.0, kSilent, "copysign"};
const Reference NextAfter{neighbour, 0.0, 0.0, codes({3, 4}), "nextafter"};
const Reference Fdim{two<mpfr_dim>, 0.0, 0.0, kSilent, "fdim"};
const Reference Fmax{larger, 0.0, 0.0, kSilent, "fmax"};
const Reference Fmin{smaller, 0.0, 0.0, kSilent, "fmin"};
const Reference MaxMag{larger_magnitude, 0.0, 0.0, kSilent, nullptr};
const Reference MinMag{smaller_magnitude, 0.0, 0.0, kSilent, nullptr};
const Reference Remainder{two<mpfr_remainder>, 0.0, 0.0, codes({1}), "remainder"};
const Reference Fmod{two<mpfr_fmod>, 0.0, 0.0, codes({2}), "fmod"};
// Less than 1 ulp for each of two roundings in either line, half of one for the division.
const Reference LinearFrac{linear_fraction, 4.5, 4.5, kSilent, nullptr, nullptr, Pairing::near_one};
// clang-format on

}  // namespace references

}  // namespace qor::reference
