// A start of 1 / sqrt(x): by an integer difference of bits and a step of plain arithmetic, which
// give the same bits on every processor. (The processors' own estimates differ between makers.)
#pragma once

#include "kernels/lanes.h"
#include "kernels/root/tables/root_polynomials.h"

namespace qor::kernels {

// 1 / sqrt(x), x positive and normal, to a relative error below 2^-9.9: more above than
// below, so that cut to 12 bits it is as near from either side.
inline lanes::f32 inverse_root_start(lanes::f32 x) {
  using namespace tables;
  const lanes::f32 z =
      lanes::from_bits(inverse_root_magic_float - lanes::shift_right(lanes::bits(x), 1));
  return z * lanes::multiply_add(-(x * z), z, inverse_root_step);
}

// The same to 2^-15.1.
inline lanes::f64 inverse_root_start(lanes::f64 x) {
  const lanes::f64 z =
      lanes::from_bits(tables::inverse_root_magic_double - lanes::shift_right(lanes::bits(x), 1));
  const lanes::f64 w = lanes::multiply_add(x * z, z, -1.0);
  return z * lanes::horner(w, tables::inverse_root_start);
}

}  // namespace qor::kernels
