// Log10: the decimal logarithm, single and double.
//
// Method.   see core.h.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormals included; exact at powers of ten.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"

namespace qor::kernels {
namespace {

template <class T>
using Log10 = log_vector::Logarithm<T, log_vector::Decimal, log_vector::registers>;

}  // namespace

QOR_FILL_ROW(s, Log10, unary, Log10<float>)
QOR_FILL_ROW(d, Log10, unary, Log10<double>)

}  // namespace qor::kernels
