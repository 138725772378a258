// Functions in the processor's arithmetic, to sift arguments by: only where an estimate could make
// a new worst case is the exact function asked.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace qor::reference {

// Over n elements: number k of element i is in[k][i], output k is out[k][i].
template <class R>
using Estimate = void (*)(std::size_t n, const R* const* in, R* const* out);

// Relative errors below 8 units of the type's epsilon where the result is neither beyond its range
// nor among its denormals. Special values need not agree.
struct Estimates {
  Estimate<double> in_double = nullptr;
  Estimate<long double> in_extended = nullptr;
};

template <class R, auto f, std::size_t... k>
void estimate(std::size_t n, const R* const* in, R* const* out, std::index_sequence<k...>) {
  for (std::size_t i = 0; i < n; ++i) {
    const auto y = f(in[k][i]...);
    if constexpr (std::is_same_v<decltype(y), const R>) {
      out[0][i] = y;
    } else {
      out[0][i] = y[0];
      out[1][i] = y[1];
    }
  }
}

// f takes numbers of either type and gives one, or an array of two.
template <auto f, std::size_t inputs = 1>
inline constexpr Estimates estimates{
    [](std::size_t n, const double* const* in, double* const* out) {
      estimate<double, f>(n, in, out, std::make_index_sequence<inputs>());
    },
    [](std::size_t n, const long double* const* in, long double* const* out) {
      estimate<long double, f>(n, in, out, std::make_index_sequence<inputs>());
    }};

}  // namespace qor::reference
