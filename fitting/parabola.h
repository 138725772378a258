// The derivative at the middle of three points of the parabola through them.
#pragma once

#include <cstdint>

namespace qor::fitting {

// At breakpoint i, whose left cell is at `place` of the window.
template <class Partition, class Window>
auto parabola_derivative(const Partition& x, const Window& w, int64_t i, int64_t place) {
  return (w.weight(place + 1) * w.slope[place] + w.weight(place) * w.slope[place + 1]) /
         x.weight_span(i - 1, i + 1);
}

}  // namespace qor::fitting
