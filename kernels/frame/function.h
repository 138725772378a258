// What a function is made of: the answers of its parts, and the constants that most share.
#pragma once

#include <cstdint>

#include "kernels/frame/environment.h"
#include "kernels/lanes.h"
#include "qor/vector_math.h"

namespace qor::kernels {

// What a scalar routine answers: the value and an error code, 0 for none.
template <class T>
struct Outcome {
  T value;
  int32_t code = QOR_ERROR_NONE;
};
template <class T>
struct TwoOutcomes {
  T first, second;
  int32_t code = QOR_ERROR_NONE;
};

// What a core answers that finds out on its way which lanes it cannot do, from an intermediate
// value that the input decides. Such lanes must raise no flag of their own.
template <class T>
struct Checked {
  typename lanes::Lanes<T>::V value;
  lanes::LaneSet<T> special;
};

// Constants that most functions share; a function's struct takes them from here and hides what it
// has otherwise.
template <class T, int input_count, int output_count>
struct Function {
  using Real = T;
  using V = typename lanes::Lanes<T>::V;
  using I = typename lanes::Lanes<T>::I;
  using M = typename lanes::Lanes<T>::M;
  using LaneSet = lanes::LaneSet<T>;
  static constexpr int inputs = input_count;
  static constexpr int outputs = output_count;
  static constexpr T stand_in = static_cast<T>(0.75);
  static constexpr Environment environment{};
  static constexpr Environment strided_environment{};
};
template <class T>
using Unary = Function<T, 1, 1>;
template <class T>
using Binary = Function<T, 2, 1>;

}  // namespace qor::kernels
