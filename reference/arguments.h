// Arguments to try a function at: random ones by exponent, and the places where faults hide.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "kernels/edges.h"
#include "reference/rows.h"

namespace qor::reference {

// The numbers of a type in their order as integers: neighbours differ by 1, both zeros are 0.
inline int64_t position(float x) {
  const auto image = std::bit_cast<int32_t>(x);
  return image < 0 ? -int64_t{image & 0x7FFFFFFF} : int64_t{image};
}
inline int64_t position(double x) {
  const auto image = std::bit_cast<int64_t>(x);
  return image < 0 ? -(image & 0x7FFFFFFFFFFFFFFF) : image;
}
template <class T>
T at_position(int64_t position) {
  using Image = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
  constexpr Image kSign = Image{1} << (8 * sizeof(T) - 1);
  return position < 0 ? std::bit_cast<T>(static_cast<Image>(kSign | static_cast<Image>(-position)))
                      : std::bit_cast<T>(static_cast<Image>(position));
}
template <class T>
std::array<T, 3> with_neighbours(T x) {
  return {at_position<T>(position(x) - 1), x, at_position<T>(position(x) + 1)};
}
template <class T>
inline constexpr int64_t last_position =
    (int64_t{format_of<T>.max_exponent} - format_of<T>.min_exponent + 2)
    << (format_of<T>.digits - 1);  // that of infinity

// Arguments of one call, element after element.
template <class T>
struct Batch {
  std::array<std::vector<T>, 2> in;
  std::array<T, 4> scalar{};
};

template <class T>
class Arguments {
 public:
  explicit Arguments(const Row<T>& row, uint64_t seed = 1);

  // Zeros, infinities, NaN, the ends of the range, powers of two, small integers and halves with
  // their neighbours, and a function's edges: where the class of its result (NaN, zero, denormal,
  // normal, infinite) or the way of its kernel changes. Of two inputs, all pairs of the extremes.
  Batch<T> hard() const;

  // `count` random elements: for one input, half of them by exponent, every one as likely, the
  // others evenly between two edges or close to one; for two as the function's pairing says.
  Batch<T> random(size_t count);

  // Elements with these first numbers, the others drawn to them.
  Batch<T> with_others(std::vector<T> first_numbers);

  // The nearest number that the function's pairing allows.
  T kept_in_domain(T x) const;

  // `count` elements between -20 and 20 where the results are finite: what the time of a call
  // is measured with.
  Batch<T> ordinary(size_t count);

 private:
  T by_exponent();
  T between_edges();
  T near(T x);
  T near_one();
  T first();
  T second(T first);
  T exponent_for(T base);
  void add_scalars(Batch<T>& batch);
  size_t below(size_t n) { return static_cast<size_t>(engine_() % n); }
  double unit() { return std::ldexp(static_cast<double>(engine_() >> 11), -53); }

  const Row<T>& row_;
  std::mt19937_64 engine_;
  std::vector<T> edges_;         // of the first number, ascending
  std::vector<T> second_edges_;  // of the second
};

extern template class Arguments<float>;
extern template class Arguments<double>;

// From the limits of the kernels' families: where the kernels of a row change their way, and where
// the tables of a function change rows. Empty for what has none.
kernels::limits::Edges branch_edges(std::string_view row);
kernels::limits::Seams table_seams(std::string_view function);

// The seams of a row's function as numbers of its type, ascending, those of one argument or of the
// base of a power: all within the range of ordinary results, those of a binade in some binades.
template <class T>
std::vector<T> seams(const Row<T>& row);

// Elements at the edges of two arguments and both sides of seams (of very many some), and where
// exact functions may go wrong: beside what hard arguments have.
template <class T>
Batch<T> edge_arguments(const Row<T>& row);

}  // namespace qor::reference
