// What scalar routines ask of a number's image: no comparison here raises a flag.
#pragma once

#include <bit>
#include <limits>

#include "kernels/lanes.h"

namespace qor::kernels {

template <class T>
using Image = typename lanes::Lanes<T>::Integer;

template <class T>
inline constexpr Image<T> infinity_image =
    std::bit_cast<Image<T>>(std::numeric_limits<T>::infinity());
template <class T>
inline constexpr Image<T> sign_image = std::numeric_limits<Image<T>>::min();

template <class T>
inline Image<T> image_of(T x) {
  return std::bit_cast<Image<T>>(x);
}
template <class T>
inline T magnitude(T x) {
  return std::bit_cast<T>(image_of(x) & ~sign_image<T>);
}
template <class T>
inline bool is_negative(T x) {
  return image_of(x) < 0;
}
template <class T>
inline bool is_nan(T x) {
  return image_of(magnitude(x)) > infinity_image<T>;
}
template <class T>
inline bool is_infinite(T x) {
  return image_of(magnitude(x)) == infinity_image<T>;
}
template <class T>
inline bool is_finite(T x) {
  return image_of(magnitude(x)) < infinity_image<T>;
}

// 2^n, normal.
template <class T>
constexpr T power_of_two(int n) {
  constexpr int bias = std::numeric_limits<T>::max_exponent - 1;
  return std::bit_cast<T>(static_cast<Image<T>>(bias + n) << (std::numeric_limits<T>::digits - 1));
}

}  // namespace qor::kernels
