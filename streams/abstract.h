// The state of an abstract stream: a ring of the caller's numbers and the call that refills it.
#pragma once

#include <cstdint>
#include <type_traits>

#include "qor/streams.h"

namespace qor::streams {

template <class Element>
using Refill = int32_t (*)(StreamState* stream, int32_t* n, Element* buffer, int32_t* wanted,
                           int32_t* room, int32_t* position);

// The bounds that the ring's reals lie between; words have none.
template <class Element>
struct RingBounds {
  alignas(sizeof(Element)) Element low;
  Element high;
};
template <>
struct RingBounds<uint32_t> {};

// Offsets are those of the persisted format. The n - free unread elements start at `next`.
template <class Element>
struct alignas(8) Ring {
  int32_t n;     // elements in the ring
  int32_t next;  // the element to read next
  int32_t free;  // elements without an unread number
  [[no_unique_address]] RingBounds<Element> bounds;
  Element* buffer;
  Refill<Element> refill;
};

template <class Element>
inline constexpr int32_t record_bytes_of_ring = static_cast<int32_t>(sizeof(StreamState) +
                                                                     sizeof(Ring<Element>));

// The figures of 32-bit pointers, and two pointers' worth more where they are wider.
inline constexpr int32_t wider_pointers = 2 * (static_cast<int32_t>(sizeof(void*)) - 4);
static_assert(record_bytes_of_ring<uint32_t> == 40 + wider_pointers);
static_assert(record_bytes_of_ring<double> == 56 + wider_pointers);
static_assert(record_bytes_of_ring<float> == 48 + wider_pointers);

}  // namespace qor::streams
