#include <algorithm>
#include <cmath>

#include "reference/arguments.h"

namespace qor::reference {
namespace {

template <class T>
void add(Batch<T>& batch, T a, T b = 0) {
  batch.in[0].push_back(a);
  batch.in[1].push_back(b);
}

// ---- Seams ----------------------------------------------------------------------------------

// At multiples, 256 of which are a factor of two: where results are neither 0 nor infinite.
template <class T>
void add_multiples(std::vector<T>& to, double every) {
  constexpr int kLast = 256 * (format_of<T>.max_exponent + format_of<T>.digits + 2);
  for (int i = -kLast; i <= kLast; ++i) to.push_back(static_cast<T>(i * every));
}

// In the binades around 1, three in a row as cube roots go, and one towards either end.
template <class T>
void add_cells(std::vector<T>& to, int bits, double behind) {
  constexpr int kFar = format_of<T>.max_exponent - 14;
  const int first = 1 << bits;
  for (const int exponent : {-kFar, -2, -1, 0, 1, kFar}) {
    for (int i = first; i < 2 * first; ++i) {
      const double multiple = std::ldexp(i, exponent - bits);
      const double quotient = std::ldexp(1.0 / i, exponent + bits + 1);
      to.push_back(static_cast<T>(multiple - behind));
      if (multiple != quotient) to.push_back(static_cast<T>(quotient - behind));
    }
  }
}

// ---- One argument ---------------------------------------------------------------------------

// Beside 1 and ever further from it, where the size of the result itself is what counts.
template <class T>
void add_numbers_beside_one(Batch<T>& batch) {
  constexpr T epsilon = std::numeric_limits<T>::epsilon();
  for (T step = epsilon; step < T(0.3); step = std::max(step + epsilon, step * T(1.01))) {
    add(batch, 1 + step);
    add(batch, 1 - step / 2);
  }
}

template <class T>
void add_sides_of_seams(Batch<T>& batch, const std::vector<T>& seams) {
  constexpr size_t kMost = 8192;
  const size_t step = 1 + seams.size() / kMost;
  for (size_t i = 0; i < seams.size(); i += step) {
    add(batch, seams[i]);
    add(batch, std::nextafter(seams[i], -std::numeric_limits<T>::infinity()));
  }
}

// ---- Two arguments --------------------------------------------------------------------------

// Either argument beside an edge, the other at distances that matter.
template <class T>
void add_edges_of_pairs(Batch<T>& batch, const kernels::limits::Edges& edges) {
  for (const auto& list : {edges.first, edges.second}) {
    for (const double edge : list) {
      for (const T near : with_neighbours(static_cast<T>(edge))) {
        for (const double ratio : {1.0, 0.3, 3.0, 0x1p-9, 0x1p+9, 0x1p+25}) {
          add(batch, near, static_cast<T>(static_cast<double>(-near) * ratio));
          add(batch, static_cast<T>(static_cast<double>(-near) * ratio), near);
        }
      }
    }
  }
}

// Exponents at their edges and where the size of the power is at one. With the exponent a scalar,
// bases for it.
template <class T>
void add_edges_of_powers(Batch<T>& batch, const kernels::limits::Edges& edges, bool scalar) {
  std::vector<T> bases = {1 + 64 * std::numeric_limits<T>::epsilon(), T(0.3), T(17)};
  for (const double edge : edges.first) bases.push_back(static_cast<T>(edge));
  if (scalar) batch.scalar[0] = T(2.5);
  for (const double size : edges.log2_power) {
    for (const T x : with_neighbours(static_cast<T>(std::exp2(size / 2.5)))) {
      if (scalar) add(batch, x);
    }
  }
  for (const T edge : bases) {
    for (const T x : with_neighbours(edge)) {
      if (scalar) {
        add(batch, x);
        continue;
      }
      std::vector<double> exponents = {1.0};
      for (const double y : edges.second) exponents.push_back(y);
      const double logarithm = std::log2(static_cast<double>(x));
      for (const double size : edges.log2_power) exponents.push_back(size / logarithm);
      for (const double exponent : exponents) {
        for (const T y : with_neighbours(static_cast<T>(exponent))) {
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

}  // namespace

template <class T>
std::vector<T> seams(const Row<T>& row) {
  const kernels::limits::Seams at = table_seams(row.base);
  std::vector<T> list;
  if (at.every != 0) add_multiples(list, at.every);
  if (at.bits != 0) add_cells(list, at.bits, at.behind);
  std::sort(list.begin(), list.end());
  return list;
}

template <class T>
Batch<T> edge_arguments(const Row<T>& row) {
  const kernels::limits::Edges edges = branch_edges(row.name());
  const bool power = row.reference->pairing == Pairing::power;
  Batch<T> batch;
  if (power) {
    add_edges_of_powers(batch, edges, row.shape.inputs == 1);
    if (row.shape.inputs == 2) add_small_logarithms(batch);
  } else if (row.shape.inputs == 2) {
    if (row.bound(HA) == 0) add_pairs(batch);
    add_edges_of_pairs(batch, edges);
    if (row.base == "Fmod" || row.base == "Remainder") add_edges_of_quotients(batch);
  } else {
    add_sides_of_seams(batch, seams(row));
    if (table_seams(row.base).bits != 0) add_numbers_beside_one(batch);
  }
  return batch;
}

template std::vector<float> seams(const Row<float>&);
template std::vector<double> seams(const Row<double>&);
template Batch<float> edge_arguments(const Row<float>&);
template Batch<double> edge_arguments(const Row<double>&);

}  // namespace qor::reference
