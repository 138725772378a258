// Which error code an element is due, by its numbers and its exact result.
#pragma once

#include <cmath>

#include "kernels/exponential/limits.h"
#include "qor/vector_math.h"
#include "reference/reference.h"

namespace qor::reference::due {

inline bool among_numbers(const Element& e) {
  for (int k = 0; k < e.count; ++k) {
    if (std::isnan(e.in[k])) return false;
  }
  return true;
}
inline bool finite(const Element& e) {
  for (int k = 0; k < e.count; ++k) {
    if (!std::isfinite(e.in[k])) return false;
  }
  return true;
}
// A denormal or 0.
inline bool small(const Element& e) {
  return std::abs(e.result) < std::ldexp(1.0, e.format.min_exponent - 1);
}

inline int none(const Element&) { return QOR_ERROR_NONE; }

// No value for these numbers.
inline int undefined(const Element& e) {
  return std::isnan(e.result) && among_numbers(e) ? QOR_ERROR_DOMAIN : QOR_ERROR_NONE;
}

// Nor at a pole.
inline int undefined_or_pole(const Element& e) {
  if (std::isinf(e.result) && finite(e)) return QOR_ERROR_SINGULARITY;
  return undefined(e);
}

inline int inverse_of_zero(const Element& e) {
  return e.in[0] == 0 ? QOR_ERROR_SINGULARITY : QOR_ERROR_NONE;
}

// 0 / 0 too.
inline int division_by_zero(const Element& e) {
  return e.in[1] == 0 && !std::isnan(e.in[0]) ? QOR_ERROR_SINGULARITY : QOR_ERROR_NONE;
}

inline int domain_at_zero(const Element& e) {
  return e.in[0] == 0 ? QOR_ERROR_DOMAIN : QOR_ERROR_NONE;
}

inline int overflow(const Element& e) {
  return std::isinf(e.result) && finite(e) ? QOR_ERROR_OVERFLOW : QOR_ERROR_NONE;
}

inline int overflow_or_underflow(const Element& e) {
  if (!finite(e)) return QOR_ERROR_NONE;
  return small(e) ? QOR_ERROR_UNDERFLOW : overflow(e);
}

// At the limit of single itself the result overflows as it is narrowed, behind the limit's test.
inline int exp10(const Element& e) {
  const bool single = e.format.digits == format_of<float>.digits;
  if (single && e.in[0] == static_cast<double>(kernels::limits::sexp10::overflow)) {
    return QOR_ERROR_NONE;
  }
  return overflow_or_underflow(e);
}

// A pole is a domain error, underflow is not reported.
inline int power(const Element& e) {
  if (e.in[0] == 0 && e.in[1] < 0) return QOR_ERROR_DOMAIN;
  return std::isnan(e.result) ? undefined(e) : overflow(e);
}

// An exponent with a row of its own reports what that row does.
inline int power_by_scalar(const Element& e) {
  const double exponent = e.in[1];
  if (exponent == 0 || exponent == 1 || exponent == 2) return QOR_ERROR_NONE;
  if (exponent == -1) return inverse_of_zero(e);
  if (exponent == -0.5) return undefined_or_pole(e);
  if (exponent == 0.5 || exponent == 1.5) return undefined(e);
  return power(e);
}

// A negative base is outside the domain whatever the exponent, a NaN too. Extremes to a power are
// silent but for the pole of a finite one.
inline int power_of_nonnegative(const Element& e) {
  const double x = e.in[0], y = e.in[1];
  if (x < 0) return QOR_ERROR_DOMAIN;
  if (x == 0 && y < 0 && std::isfinite(y)) return QOR_ERROR_DOMAIN;
  if (std::isnan(e.result)) return undefined(e);
  return x == 0 ? QOR_ERROR_NONE : overflow_or_underflow(e);
}

inline int step(const Element& e) {
  if (!among_numbers(e) || e.in[0] == e.in[1]) return QOR_ERROR_NONE;
  if (std::isinf(e.result)) return QOR_ERROR_OVERFLOW;
  return small(e) ? QOR_ERROR_UNDERFLOW : QOR_ERROR_NONE;
}

// A zero divisor alone; an infinite dividend is silent.
inline int remainder(const Element& e) {
  return e.in[1] == 0 && !std::isnan(e.in[0]) ? QOR_ERROR_DOMAIN : QOR_ERROR_NONE;
}

inline int undefined_as_pole(const Element& e) {
  return undefined(e) != QOR_ERROR_NONE ? QOR_ERROR_SINGULARITY : QOR_ERROR_NONE;
}

}  // namespace qor::reference::due
