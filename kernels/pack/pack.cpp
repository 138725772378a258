// PackI PackM PackV, UnpackI UnpackM UnpackV: elements between a dense vector and one with an
// increment, a mask or indices.
//
// Data move as bytes, with no floating-point step. All six are defined as a loop over elements in
// ascending order, and overlapping vectors get what that loop gives.

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "kernels/frame/rows.h"

namespace qor::kernels {
namespace {

using Byte = unsigned char;

// The flag of the shapes: the counts, increments, masks and indices are of 32 bits.
constexpr int32_t kIntegers32 = 1;

int64_t integer_of_flag(int64_t argument, int32_t flag) {
  return flag == kIntegers32 ? static_cast<int32_t>(argument) : argument;
}

const Byte* bytes_of(const void* p) { return static_cast<const Byte*>(p); }
Byte* bytes_of(void* p) { return static_cast<Byte*>(p); }

template <int size>
void move_element(Byte* to, const Byte* from) {
  std::memcpy(to, from, size);
}

// ---- By increment ---------------------------------------------------------------------------

// Elements `step` bytes apart.
struct Sequence {
  uintptr_t first, end;  // the addresses that the elements cover
};
template <int size>
Sequence sequence(const Byte* start, int64_t step, int64_t n) {
  const auto first = reinterpret_cast<uintptr_t>(start);
  const auto last = reinterpret_cast<uintptr_t>(start + (n - 1) * step);
  return {std::min(first, last), std::max(first, last) + size};
}

// A few elements at once, all read before the first is written.
template <int size, int count>
void move_elements(Byte* to, int64_t to_step, const Byte* from, int64_t from_step) {
  Byte element[count][size];
  for (int i = 0; i < count; ++i) move_element<size>(element[i], from + i * from_step);
  for (int i = 0; i < count; ++i) move_element<size>(to + i * to_step, element[i]);
}

template <int size>
void move_sequence(int64_t n, Byte* to, int64_t to_step, const Byte* from, int64_t from_step) {
  if (n <= 0) return;
  const Sequence source = sequence<size>(from, from_step, n);
  const Sequence target = sequence<size>(to, to_step, n);
  const bool apart = source.end <= target.first || target.end <= source.first;
  if (apart && from_step == size && to_step == size) {
    std::memcpy(to, from, static_cast<size_t>(n) * size);
    return;
  }
  // Elements that hardly share cache lines go one by one: a single load that steps through memory
  // is what the processor fetches ahead of.
  constexpr int at_once = 8;
  constexpr int64_t far = 48;  // bytes
  const bool close = std::abs(from_step) < far && std::abs(to_step) < far;
  int64_t i = 0;
  if (apart && close) {
    for (; i + at_once <= n; i += at_once) {
      move_elements<size, at_once>(to + i * to_step, to_step, from + i * from_step, from_step);
    }
  }
  for (; i < n; ++i) move_element<size>(to + i * to_step, from + i * from_step);
}

template <int size>
void pack_increment(int64_t n, const void* a, int64_t inca, void* y, int32_t flag) {
  move_sequence<size>(integer_of_flag(n, flag), bytes_of(y), size, bytes_of(a),
                      integer_of_flag(inca, flag) * size);
}

template <int size>
void unpack_increment(int64_t n, const void* a, void* y, int64_t incy, int32_t flag) {
  move_sequence<size>(integer_of_flag(n, flag), bytes_of(y), integer_of_flag(incy, flag) * size,
                      bytes_of(a), size);
}

// ---- By mask and by index -------------------------------------------------------------------

// Calls `move` with the mask or index vector as the integers that the flag names.
template <class Move>
void with_integers(const void* integers, int32_t flag, Move move) {
  if (flag == kIntegers32) return move(static_cast<const int32_t*>(integers));
  move(static_cast<const int64_t*>(integers));
}

template <int size>
void pack_mask(int64_t n, const void* a, const void* ma, void* y, int32_t flag) {
  with_integers(ma, flag, [=](const auto* mask) {
    const Byte* from = bytes_of(a);
    Byte* to = bytes_of(y);
    for (int64_t i = 0, count = integer_of_flag(n, flag); i < count; ++i, from += size) {
      if (mask[i] == 0) continue;
      move_element<size>(to, from);
      to += size;
    }
  });
}

template <int size>
void unpack_mask(int64_t n, const void* a, void* y, const void* my, int32_t flag) {
  with_integers(my, flag, [=](const auto* mask) {
    const Byte* from = bytes_of(a);
    Byte* to = bytes_of(y);
    for (int64_t i = 0, count = integer_of_flag(n, flag); i < count; ++i, to += size) {
      if (mask[i] == 0) continue;
      move_element<size>(to, from);
      from += size;
    }
  });
}

template <int size>
void pack_index(int64_t n, const void* a, const void* ia, void* y, int32_t flag) {
  with_integers(ia, flag, [=](const auto* index) {
    Byte* to = bytes_of(y);
#pragma GCC unroll 4
    for (int64_t i = 0, count = integer_of_flag(n, flag); i < count; ++i, to += size) {
      move_element<size>(to, bytes_of(a) + int64_t{index[i]} * size);
    }
  });
}

template <int size>
void unpack_index(int64_t n, const void* a, void* y, const void* iy, int32_t flag) {
  with_integers(iy, flag, [=](const auto* index) {
    const Byte* from = bytes_of(a);
#pragma GCC unroll 4
    for (int64_t i = 0, count = integer_of_flag(n, flag); i < count; ++i, from += size) {
      move_element<size>(bytes_of(y) + int64_t{index[i]} * size, from);
    }
  });
}

}  // namespace

QOR_FILL_PACK_ROW(s, PackI, pack_increment, pack_increment<4>)
QOR_FILL_PACK_ROW(d, PackI, pack_increment, pack_increment<8>)
QOR_FILL_PACK_ROW(c, PackI, pack_increment, pack_increment<8>)
QOR_FILL_PACK_ROW(z, PackI, pack_increment, pack_increment<16>)
QOR_FILL_PACK_ROW(s, PackM, pack_mask, pack_mask<4>)
QOR_FILL_PACK_ROW(d, PackM, pack_mask, pack_mask<8>)
QOR_FILL_PACK_ROW(z, PackM, pack_mask, pack_mask<16>)
QOR_FILL_PACK_ROW(s, PackV, pack_index, pack_index<4>)
QOR_FILL_PACK_ROW(d, PackV, pack_index, pack_index<8>)
QOR_FILL_PACK_ROW(c, PackV, pack_index, pack_index<8>)
QOR_FILL_PACK_ROW(z, PackV, pack_index, pack_index<16>)
QOR_FILL_PACK_ROW(s, UnpackI, unpack_increment, unpack_increment<4>)
QOR_FILL_PACK_ROW(d, UnpackI, unpack_increment, unpack_increment<8>)
QOR_FILL_PACK_ROW(c, UnpackI, unpack_increment, unpack_increment<8>)
QOR_FILL_PACK_ROW(z, UnpackI, unpack_increment, unpack_increment<16>)
QOR_FILL_PACK_ROW(s, UnpackM, unpack_mask, unpack_mask<4>)
QOR_FILL_PACK_ROW(d, UnpackM, unpack_mask, unpack_mask<8>)
QOR_FILL_PACK_ROW(z, UnpackM, unpack_mask, unpack_mask<16>)
QOR_FILL_PACK_ROW(s, UnpackV, unpack_index, unpack_index<4>)
QOR_FILL_PACK_ROW(d, UnpackV, unpack_index, unpack_index<8>)
QOR_FILL_PACK_ROW(c, UnpackV, unpack_index, unpack_index<8>)
QOR_FILL_PACK_ROW(z, UnpackV, unpack_index, unpack_index<16>)

}  // namespace qor::kernels
