// Log2: the binary logarithm, single and double.
//
// Method.   see core.h.
// Accuracy. see docs/accuracy.md; below 1 ulp, denormals included; exact at powers of two.
// Special.  +-0 -> -inf code 2; x < 0 -> NaN code 1; +inf -> +inf; NaN -> quiet NaN.

#include "kernels/frame/rows.h"
#include "kernels/logarithm/core.h"

namespace qor::kernels {
namespace {

template <class T>
using Log2 = log_vector::Logarithm<T, log_vector::Binary, log_vector::registers>;

}  // namespace

QOR_FILL_ROW(s, Log2, unary, Log2<float>)
QOR_FILL_ROW(d, Log2, unary, Log2<double>)

}  // namespace qor::kernels
