// Complex numbers in lanes: a register for each part.
#pragma once

#include <utility>

#include "kernels/lanes/types.h"

namespace qor::lanes {

template <class V>
struct ComplexLanes {
  V re, im;
};

// Of two registers that hold pairs one behind the other, the firsts and the seconds; and back.
template <class V>
inline ComplexLanes<V> part(V lower, V upper) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    return ComplexLanes<V>{__builtin_shufflevector(lower, upper, 2 * lane...),
                           __builtin_shufflevector(lower, upper, (2 * lane + 1)...)};
  }
  (std::make_integer_sequence<int, sizeof(V) / sizeof lower[0]>{});
}
template <class V>
inline Two<V> join(ComplexLanes<V> z) {
  return [&]<int... lane>(std::integer_sequence<int, lane...>) {
    constexpr int count = sizeof...(lane);
    return Two<V>{
        __builtin_shufflevector(z.re, z.im, (lane / 2 + lane % 2 * count)...),
        __builtin_shufflevector(z.re, z.im, (count / 2 + lane / 2 + lane % 2 * count)...)};
  }
  (std::make_integer_sequence<int, sizeof(V) / sizeof z.re[0]>{});
}

}  // namespace qor::lanes
