// A cubic cell from the values and first derivatives at its ends.
#pragma once

namespace qor::fitting {

inline constexpr int cubic_order = 4;

// Powers of the distance from the left end: value y, slope of the chord m, derivatives left and
// right at the ends. In terms of the differences from the chord, which are exact where they are
// small, so that data on a line give c2 = c3 = 0.
template <class Real>
inline void write_cubic_cell(Real* c, Real y, Real m, Real left, Real right, Real inverse_step) {
  const Real dl = left - m, dr = right - m;
  c[0] = y;
  c[1] = left;
  c[2] = -((dl + dl) + dr) * inverse_step;
  c[3] = (dl + dr) * inverse_step * inverse_step;
}

}  // namespace qor::fitting
