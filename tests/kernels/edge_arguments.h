// Arguments that a family of functions gets beside those of all: where its kernels change their
// way, and where its results have to be exact.
#pragma once

#include "kernels/power/limits.h"
#include "tests/kernels/engine.h"

namespace qor::test {

template <class T>
void add(Batch<T>& batch, T a, T b = 0) {
  batch.in[0].push_back(a);
  batch.in[1].push_back(b);
}

template <class T>
std::array<T, 3> with_neighbours(T x) {
  return {at_position<T>(position(x) - 1), x, at_position<T>(position(x) + 1)};
}

// From a kernel's limit: the image of a float, the high word of a double.
template <class T>
T from_limit(int32_t limit) {
  if constexpr (sizeof(T) == sizeof(float)) return std::bit_cast<float>(limit);
  return static_cast<T>(std::bit_cast<double>(int64_t{limit} << 32));
}

// Beside 1 and ever further from it, where the size of the result itself is what counts; both sides
// of every multiple of 2^-11, where rows and cells of tables change, in two binades.
template <class T>
void add_edges_of_logarithms(Batch<T>& batch) {
  constexpr T epsilon = std::numeric_limits<T>::epsilon();
  for (T step = epsilon; step < T(0.3); step = std::max(step + epsilon, step * T(1.01))) {
    add(batch, 1 + step);
    add(batch, 1 - step / 2);
  }
  for (int i = 1024; i < 4096; ++i) {
    for (const int exponent : {-11, format_of<T>.max_exponent - 14}) {
      const T border = std::ldexp(static_cast<T>(i), exponent);
      add(batch, border);
      add(batch, std::nextafter(border, T{0}));
    }
  }
}

// Exponents on both sides of where the vector path ends: by themselves, and by y log2 x.
template <class T>
void add_edges_of_powers(Batch<T>& batch) {
  namespace limits = kernels::limits;
  constexpr bool single = sizeof(T) == sizeof(float);
  const auto bases = single ? limits::spow::base : limits::dpow::base;
  const auto exponents = single ? limits::spow::exponent : limits::dpow::exponent;
  const T product = single ? static_cast<T>(limits::spow::exponent_of_result + 0.5)
                           : from_limit<T>(limits::dpow::product_high_word + 1);
  const T near_one = 1 + 64 * std::numeric_limits<T>::epsilon();
  for (const T edge :
       {from_limit<T>(bases.first), std::numeric_limits<T>::max(), near_one, T(0.3), T(17)}) {
    for (const T x : with_neighbours(edge)) {
      const T last = from_limit<T>(exponents.last + 1);
      for (const T exponent : {product / std::log2(x), T{1}, last}) {
        for (const T y : with_neighbours(exponent)) {
          add(batch, x, y);
          add(batch, x, -y);
        }
      }
    }
  }
}

// Bases near 1, whose logarithms have the fewest bits to spare, to powers just below a power of two
// at either end of the range, where an ulp is smallest: some at every distance from 1, and those
// that a search found.
template <class T>
void add_small_logarithms(Batch<T>& batch) {
  constexpr T found[][2] = {
      {T(0x1.00200ff59b474p+0), T(-0x1.59a3c6194035bp+20)},
      {T(0x1.00208eb806de6p+0), T(0x1.540a89029da0cp+20)},
      {T(0x1.00202ee97518bp+0), T(-0x1.57ffe6e7446a1p+20)},
      {T(0x1.ffffffffffffap-1), T(0x1.cd2c956f5e1bcp+59)},
      {T(0x1.0000004000095p+0), T(0x1.59e1271187052p+35)},
  };
  for (const auto& [x, y] : found) add(batch, x, y);
  const int last = format_of<T>.max_exponent * 31 / 32;
  std::mt19937_64 random(11);
  for (int i = 0; i < 4096; ++i) {
    const int e = -3 - i % (format_of<T>.digits - 4);
    const T away = std::ldexp(1 + static_cast<T>(random() % 1000) / 1000, e);
    const T x = (i & 64) != 0 ? 1 - away : 1 + away;
    const T product = static_cast<T>((i & 128) != 0 ? last : -last) - T(0.005);
    add(batch, x, product / std::log2(x));
  }
}

// Lengths whose one side is beside a limit of the vector path.
template <class T>
void add_edges_of_hypot(Batch<T>& batch) {
  namespace hypot = kernels::limits::hypot;
  const auto middle = sizeof(T) == sizeof(float) ? hypot::middle_float : hypot::middle_double;
  for (const int32_t edge : {middle.first, middle.last + 1}) {
    for (const T near : with_neighbours(from_limit<T>(edge))) {
      for (const T ratio : {T(1), T(0.3), T(3), T(0x1p-9), T(0x1p+9), T(0x1p+25)}) {
        add(batch, near, -near * ratio);
      }
    }
  }
}

// Quotients near halves and integers, where a rounded quotient is one off, at every distance of the
// exponents; and the modulus of the 31-bit generators.
template <class T>
void add_edges_of_quotients(Batch<T>& batch) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 30000; ++i) {
    const T divisor =
        std::ldexp(static_cast<T>(random() % 0xFFFFFF + 1), static_cast<int>(random() % 40));
    const int bits = static_cast<int>(random() % (format_of<T>.digits + 4));
    T x = divisor * (static_cast<T>(random() >> (63 - bits)) / 2);
    for (auto step = random() % 3; step > 0; --step) x = std::nextafter(x, T{0});
    add(batch, (random() & 1) != 0 ? x : -x, (random() & 1) != 0 ? divisor : -divisor);
    if (i % 6 == 0) add(batch, static_cast<T>(random() >> (12 + random() % 40)), T(2147483647));
  }
}

// All pairs of numbers where an exact function of two may change its way, and their neighbours.
template <class T>
void add_pairs(Batch<T>& batch) {
  using Limits = std::numeric_limits<T>;
  std::vector<T> values;
  for (const T x : {T(0), Limits::denorm_min(), Limits::min(), T(0.25), T(0.5), T(1), T(1.5),
                    T(2.5), T(3), T(7), T(1e10), 1 / Limits::epsilon(), Limits::max()}) {
    for (const T near : with_neighbours(x)) values.insert(values.end(), {near, -near});
  }
  for (const T a : values) {
    for (const T b : values) add(batch, a, b);
  }
}

template <class T>
Batch<T> edge_arguments(const Row<T>& row) {
  const std::string_view base = row.base;
  Batch<T> batch;
  if (row.shape.inputs == 2 && row.bound(HA) == 0) add_pairs(batch);
  if (base == "Ln" || base == "Log2" || base == "Log10") add_edges_of_logarithms(batch);
  if (base == "Pow" || base == "Powr") {
    add_edges_of_powers(batch);
    add_small_logarithms(batch);
  }
  if (base == "Hypot") add_edges_of_hypot(batch);
  if (base == "Fmod" || base == "Remainder") add_edges_of_quotients(batch);
  return batch;
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
