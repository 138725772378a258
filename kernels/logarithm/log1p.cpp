// Log1p: ln(1 + x), single and double.
//
// Method.   1 + x = h + rest in two parts, and ln(h + rest), see core.h.
// Accuracy. see docs/accuracy.md; below 1 ulp, small and denormal arguments included.
// Special.  +-0 -> +-0; -1 -> -inf code 2; x < -1 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"
#include "kernels/logarithm/scalar.h"

namespace qor::kernels {
namespace {

using lanes::bits;
using lanes::from_bits;

// ln(1 + x) with the sign of x, which is that of the result, -0 included.
template <class T>
typename lanes::Lanes<T>::V log1p(typename lanes::Lanes<T>::V x) {
  constexpr auto sign_bit = std::numeric_limits<typename lanes::Lanes<T>::Integer>::min();
  const auto h = x + T{1};
  const log_vector::Rest<T> rest = {x - (h - T{1})};
  const auto y = log_vector::logarithm<log_vector::Natural<T>>(h, rest);
  return from_bits(bits(y) | (bits(x) & sign_bit));
}

// The arguments are -1 and less, large, infinite or NaN: the sum with 1 is exact or far from it.
template <class T>
Outcome<T> log1p_scalar(T x) {
  return log_scalar::logarithm<log_constants::Natural>(x + T{1});
}

struct SLog1p : Guarded<float(float)> {
  static constexpr int32_t sign_bit = std::numeric_limits<int32_t>::min();

  V core(V x) const { return log1p<float>(x); }
  LaneSet special(V x) const {
    return lanes::above(bits(x), limits::slog1p::last_image) |
           lanes::above(bits(x) ^ sign_bit, limits::slog1p::negative_image);
  }
  Outcome<float> scalar(float x) const { return log1p_scalar(x); }
};

struct DLog1p : Guarded<double(double)> {
  static constexpr int64_t sign_bit = std::numeric_limits<int64_t>::min();

  V core(V x) const { return log1p<double>(x); }
  LaneSet special(V x) const {
    return lanes::high_word_above(bits(x), limits::dlog1p::last_high_word) |
           lanes::high_word_above(bits(x) ^ sign_bit, limits::dlog1p::negative_high_word);
  }
  Outcome<double> scalar(double x) const { return log1p_scalar(x); }
};

}  // namespace

QOR_FILL_ROW(s, Log1p, unary, SLog1p)
QOR_FILL_ROW(d, Log1p, unary, DLog1p)

}  // namespace qor::kernels
