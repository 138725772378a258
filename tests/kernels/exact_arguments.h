// Arguments whose results have to be exact.
#pragma once

#include "tests/kernels/engine.h"

namespace qor::test {

template <class T>
void add(Batch<T>& batch, T a, T b = 0) {
  batch.in[0].push_back(a);
  batch.in[1].push_back(b);
}

// Powers of two and ten and their exponents, cubes, Pythagorean triples, arguments so small that
// they are the result.
template <class T>
Batch<T> arguments_with_exact_results(std::string_view base) {
  constexpr bool single = sizeof(T) == sizeof(float);
  Batch<T> batch;
  for (int k = format_of<T>.min_exponent - format_of<T>.digits; k < format_of<T>.max_exponent;
       ++k) {
    if (base == "Exp2") add(batch, static_cast<T>(k));
    if (base == "Log2" || base == "Logb") add(batch, std::ldexp(T{1}, k));
  }
  T power = 1;
  for (int k = 0; k <= (single ? 10 : 22); ++k, power *= 10) {
    if (base == "Exp10") add(batch, static_cast<T>(k));
    if (base == "Log10") add(batch, power);
  }
  for (int i = 1; i <= (single ? 255 : 1000); ++i) {
    const T root = static_cast<T>(single ? i : 207 * i), cube = root * root * root;
    if (base == "Cbrt") add(batch, -cube);
    if (base != "Pow") continue;
    add(batch, root, T{3});
    add(batch, cube, T{1});
    add(batch, -cube, T{1});
  }
  for (int m = 2; m <= 41 && base == "Hypot"; ++m) {
    for (int n = 1; n <= 25; ++n)
      add(batch, static_cast<T>(m * m - n * n), static_cast<T>(2 * m * n));
  }
  for (T x = std::numeric_limits<T>::denorm_min();
       x < std::numeric_limits<T>::epsilon() / 4 && base == "Log1p"; x *= T(2.5)) {
    add(batch, x);
    add(batch, -x);
  }
  return batch;
}

}  // namespace qor::test
