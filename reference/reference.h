// The functions of the row list as functions of real numbers, in arbitrary precision: what the
// kernels are measured and tested against.
//
// One line of reference.cpp per base name says how MPFR computes the function, which error it may
// have, which codes it reports, by what name peers have it, how the processor estimates it and
// where it rises. A row of the list without its line does not compile.
#pragma once

#include <mpfr.h>

#include "reference/estimates.h"

namespace qor::reference {

// The format that results are rounded to.
struct Format {
  int digits;        // of the significand
  int max_exponent;  // numbers are below 2^max_exponent
  int min_exponent;  // the smallest normal number is 2^(min_exponent - 1)
};

// Computes out from in, rounded to odd in the precision of out: a later rounding to a shorter
// format, denormals included, is then the correct one. Numbers of an element stand in the order of
// the kernel's arguments, a complex one as two, the scalars of a call behind them.
using Compute = void (*)(mpfr_ptr const* out, mpfr_srcptr const* in, const Format& format);

// How arguments are drawn where one vector is not all.
enum class Pairing {
  near_exponents,  // exponents whose difference matters to the result
  power,           // x^y inside the range of the format
  near_one,        // all positive and near one: no sum cancels
};

// An element: its numbers, and its exact result (the first output) rounded to the format.
struct Element {
  const double* in;
  int count;
  double result;
  const Format& format;
};

// The error code that an element is due, 0 for none.
using DueCode = int (*)(const Element&);

// Whether the first result rises (+1) or falls (-1) with a single argument, below 0 and above.
struct Slopes {
  int below = 0, above = 0;
};
inline constexpr Slopes rising{1, 1}, falling{-1, -1}, valley{-1, 1}, neither{};

struct Reference {
  Compute compute;
  double bound_s,
      bound_d;  // promised HA error in ulp, exclusive; 0: the result is the correctly rounded one
  DueCode due_code;
  const char* libm;  // the C library's name of the double function, null without one
  Estimates estimates = {};
  Slopes slopes = neither;
  Pairing pairing = Pairing::near_exponents;
};

namespace references {
extern const Reference Exp, Exp2, Exp10, Expm1, Ln, Log2, Log10, Log1p, Logb;
extern const Reference Inv, Div, Sqrt, InvSqrt, Cbrt, InvCbrt, Pow2o3, Pow3o2, Pow, Powx, Powr,
    Hypot;
extern const Reference Add, Sub, Mul, Sqr, Abs, Floor, Ceil, Round, Trunc, Rint, NearbyInt;
extern const Reference Frac, Modf, CopySign, NextAfter, Fdim, Fmax, Fmin, MaxMag, MinMag, Remainder,
    Fmod, LinearFrac;
}  // namespace references

template <class T>
inline constexpr Format format_of = sizeof(T) == sizeof(float) ? Format{24, 128, -125}
                                                               : Format{53, 1024, -1021};

// The value of a function at one point.
template <class T>
class Value {
 public:
  static constexpr int most_inputs = 6;
  static constexpr int most_outputs = 2;
  // x^3 is exact, and what is not has more than T's digits again to spare.
  static constexpr mpfr_prec_t precision = 3 * format_of<T>.digits + 8;

  Value();
  ~Value();
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;

  // Computes the function at numbers in[0 .. inputs).
  void compute(const Reference& reference, const T* in, int inputs);

  // Output k, correctly rounded.
  T rounded(int k) const;

  // The code that the element computed last is due.
  int due_code(const Reference& reference, const T* in, int inputs) const;

  // The distance of `computed` from output k in ulp, the spacing of T's numbers in the binade of
  // the output, or of denormals below. Infinity where a NaN, an infinity or the sign of a zero is
  // wrong. An infinity counts as the number behind the largest.
  double error(int k, T computed) const;

 private:
  mpfr_t in_[most_inputs], out_[most_outputs];
  mutable mpfr_t distance_;
};

extern template class Value<float>;
extern template class Value<double>;

}  // namespace qor::reference
