// The kernel frame: environment, loops, masked parts, special lanes, reports, strided form, once
// for all functions.
//
// A function is a struct that derives from its form, which names its signature:
//
//   struct DExp : Guarded<double(double)>                       one input, one output
//   struct DModf : Everywhere<Two<double>(double)>              two outputs
//   struct ZMul : Guarded<Complex<double>(Complex<double>, Complex<double>)>
//   struct ZAbs : Guarded<double(Complex<double>)>              any count of inputs of one type
//
// and has the members of its form (kernels/frame/forms.h checks them where a row is filled):
//
//   Y core(X x...) const                       the vector path, no branch. X and Y are registers,
//   of
//                                              complex elements one for each part, of two outputs
//                                              Two<Y>; Checked<Result> when it finds special lanes
//                                              itself
//   LaneSet special(X x...) const              lanes that the core cannot do, from the input. A
//   lane
//                                              whose plain result is right is not special.
//   Wide<Result> wide(X x..., LaneSet special) const   the same block with its special lanes, still
//                                              in registers (below)
//   Outcome<Result> scalar(Input x...) const   one lane: correctly signalled value, and a code
//   static constexpr Traits traits{...}        what is otherwise than with most functions
//
// The wide form. A vector with many special lanes, as missing values make it, stays in registers: a
// block with a special lane starts a run that ends some blocks after the last one. `wide` takes a
// block, gives ordinary lanes the bits that the core gives them, and
//
//   - puts an ordinary argument into special lanes (select by `special`) before it calls the core's
//     steps: with another scale, where that makes a denormal normal;
//   - selects the values of the others (pass_through where an infinity passes) and names those with
//     a code as domain, pole, overflow, underflow: the frame raises the flag that goes with
//     the code (trait code_flags) and reports it;
//   - names in `left` what only the scalar routine does. With none left it answers Complete, and
//     the function has no scalar routine.
//
// With the trait nan_passes NaN are the frame's: `wide` sees the stand-in in their place. Otherwise
// mind that ordered comparisons raise a flag at a NaN (lanes::above, equal, unordered do not).
#pragma once

#include "kernels/frame/forms.h"
#include "kernels/frame/function.h"
#include "kernels/frame/lane_loop.h"
#include "kernels/frame/shapes.h"
#include "kernels/frame/vectors.h"
