// The rows of the list as data: what a test, a tool or a benchmark walks, with one way to call them
// all. Pack rows have no values of their own and are not here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "reference/reference.h"

namespace qor::reference {

inline constexpr int slots = 3;  // LA, HA, EP
inline constexpr int LA = 0, HA = 1, EP = 2;

// The arguments of a call. A complex element is two numbers; increments count elements.
template <class T>
struct Call {
  int32_t n = 0;
  std::array<const T*, 2> in{};
  std::array<T*, 2> out{};
  std::array<int32_t, 2> in_inc{1, 1}, out_inc{1, 1};
  std::array<T, 4> scalar{};
};

struct Shape {
  int inputs, scalars, outputs;           // vectors, numbers, vectors
  int input_parts = 1, output_parts = 1;  // numbers of an element

  int numbers_in() const { return inputs * input_parts + scalars; }
};

template <class T>
struct Row {
  using Real = T;
  using Run = void (*)(int slot, const Call<T>& call);

  char letter;            // s d c z
  std::string_view base;  // Exp
  Shape shape;
  std::array<char, slots> kernels;  // which kernel serves a slot: A, B or C
  const Reference* reference;
  Run run, run_strided;  // through the row of the function, and of its strided mate
  void (*run_kernel)(void* kernel, const Call<T>& call);  // a contiguous kernel found elsewhere
  const float* costs;

  std::string name() const { return std::string(1, letter).append(base); }

  // The slots that have a kernel of their own, by the first that it serves.
  std::vector<int> distinct_slots() const;
  // The slots that share the kernel of this one, as "LA HA EP".
  std::string sharing(int slot) const;
  // The error in ulp that the kernel of a slot must stay below, 0 for correctly rounded results:
  // the strictest of the slots that it serves.
  double bound(int slot) const;
};

using AnyRow = std::variant<Row<float>, Row<double>>;

// All function rows, in table order.
const std::vector<AnyRow>& rows();

// The names that a row's kernels report: that of the strided one carries the I only in some rows.
std::string reported_name(std::string_view row, bool strided);

}  // namespace qor::reference
