// What the limits of a family say to those who test and measure it: where its kernels change their
// way, and where their tables go from one row to the next.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace qor::kernels::limits {

// A range of numbers by their images (floats) or high words (doubles); both ends are inside.
struct Range {
  int32_t first, last;
};

// The float with an image; the first and the last double with a high word.
constexpr double from_image(int32_t image) {
  return static_cast<double>(std::bit_cast<float>(image));
}
constexpr double first_of(int32_t high_word) {
  return std::bit_cast<double>(static_cast<int64_t>(high_word) << 32);
}
constexpr double last_of(int32_t high_word) {
  return std::bit_cast<double>((static_cast<int64_t>(high_word) << 32) | 0xFFFFFFFF);
}

// A few values; constant where they are.
template <class T>
struct List {
  T at[8] = {};
  size_t count = 0;

  constexpr List() = default;
  constexpr List(std::initializer_list<T> values) {
    for (const T& value : values) at[count++] = value;
  }
  constexpr const T* begin() const { return at; }
  constexpr const T* end() const { return at + count; }
};

// Where the kernels of rows change their way: numbers on one side or the other.
struct Edges {
  List<std::string_view> rows;
  List<double> first, second = {};  // of the first argument, of the second
  List<double> log2_power = {};     // of the size of a power, |y log2 x|
};

// Where the tables of functions change rows, those of all precisions and levels together: at the
// multiples of `every`, or in each binade at those of 2^-bits and at the quotients by them.
struct Seams {
  List<std::string_view> functions;
  double every = 0;
  int bits = 0;
  double behind = 0;  // this much is added to the argument before
};

}  // namespace qor::kernels::limits
