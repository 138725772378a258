// The kernel frame: environment, lane loop, masked tail, side path, strided form, once for all.
//
// A function is a struct F of constants and functions:
//
//   using Real = double;                      element type
//   static constexpr int inputs, outputs;     1 or 2 each
//   static constexpr const char* name;        reported name; strided_name where that differs
//   static constexpr Real stand_in;             an argument of the fast path, for lanes not in use
//   V core(V x) const                         the vector path, no branch (Two<V> for two outputs,
//                                             Checked<Real> when it finds special lanes
//                                             itself)
//   LaneSet<Real> special(V x) const               lanes that the vector path cannot do, from the
//   input Outcome<Real> scalar(Real x) const        such a lane: correctly signalled value, and a
//   code
//
// and, where they differ from the usual: environment, strided_environment, registers (see
// run_calm_groups), settle (see settle_lanes). A function without `special` has no side path. One
// without a vector path has, in place of core, special and scalar,
//
//   int32_t evaluate(const Real& x, Real& y) const   sets y to the value of an element; its code
//   bool raises_x87_inexact(const Real& x) const     where that is done in the x87 unit: whether it
//                                                    is certain to be inexact there
#pragma once

#include "kernels/frame/function.h"
#include "kernels/frame/lane_loop.h"
#include "kernels/frame/shapes.h"
#include "kernels/frame/side_path.h"
#include "kernels/frame/vectors.h"
