/* The rows of vector math: the one list that names, rows, stubs, export map, tests, benchmarks and
   the accuracy page expand. Only functions whose kernels exist are here, in table order.

   X(t, name, shape, LA, HA, EP, costs...)
     t           type letter: s float, d double, c complex float, z complex double
     shape       argument list, see QOR_PARAMETERS_<shape> in vector_math.h
     LA, HA, EP  which kernel of the function serves the slot: A, B or C
     costs       a figure for LA, HA and EP: given ones as given (220.3, 1111.0, 111.3 and such are
                 fillers), the others made by tools/cost, cycles per element at x86-64-v1

   A function row stands for its strided mate too: the same line with I behind the name. */
#ifndef QOR_VECTOR_MATH_ROWS_H
#define QOR_VECTOR_MATH_ROWS_H

/* clang-format off */
#define QOR_FUNCTION_ROWS(X) \
  X(s, Ceil,       unary,           A, A, A, 1.58, 1.58, 1.58) \
  X(s, Floor,      unary,           A, A, A, 1.56, 1.56, 1.56) \
  X(s, Frac,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, NearbyInt,  unary,           A, A, A, 1.08, 1.08, 1.08) \
  X(s, Rint,       unary,           A, A, A, 1.06, 1.06, 1.06) \
  X(s, Round,      unary,           A, A, A, 1.56, 1.56, 1.56) \
  X(s, Trunc,      unary,           A, A, A, 1.45, 1.45, 1.45) \
  X(s, Abs,        unary,           A, A, A, 0.40, 0.40, 0.40) \
  X(s, Inv,        unary,           A, A, A, 0.84, 0.84, 0.84) \
  X(s, Sqrt,       unary,           A, A, A, 0.85, 0.85, 0.85) \
  X(s, InvSqrt,    unary,           A, A, A, 1.93, 1.93, 1.93) \
  X(s, Cbrt,       unary,           A, A, A, 6.35, 6.35, 6.35) \
  X(s, InvCbrt,    unary,           A, A, A, 7.75, 7.75, 7.75) \
  X(s, Exp,        unary,           A, A, A, 15.62, 15.62, 15.62) \
  X(s, Ln,         unary,           A, A, A, 5.26, 5.26, 5.26) \
  X(s, Log10,      unary,           A, A, A, 6.43, 6.43, 6.43) \
  X(s, Sqr,        unary,           A, A, A, 1111.0, 1111.0, 1111.0) \
  X(s, Expm1,      unary,           A, A, A, 7.57, 7.57, 7.57) \
  X(s, Log1p,      unary,           A, A, A, 6.91, 6.91, 6.91) \
  X(s, Pow3o2,     unary,           A, A, A, 6.67, 6.67, 6.67) \
  X(s, Pow2o3,     unary,           A, A, A, 7.35, 7.35, 7.35) \
  X(s, Exp2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Exp10,      unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Log2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Logb,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Ceil,       unary,           A, A, A, 3.33, 3.33, 3.33) \
  X(d, Floor,      unary,           A, A, A, 3.28, 3.28, 3.28) \
  X(d, Frac,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, NearbyInt,  unary,           A, A, A, 2.31, 2.31, 2.31) \
  X(d, Rint,       unary,           A, A, A, 2.35, 2.35, 2.35) \
  X(d, Round,      unary,           A, A, A, 3.26, 3.26, 3.26) \
  X(d, Trunc,      unary,           A, A, A, 3.03, 3.03, 3.03) \
  X(d, Abs,        unary,           A, A, A, 0.76, 0.76, 0.76) \
  X(d, Inv,        unary,           A, A, A, 2.08, 2.08, 2.08) \
  X(d, Sqrt,       unary,           A, A, A, 3.08, 3.08, 3.08) \
  X(d, InvSqrt,    unary,           A, A, A, 9.20, 9.20, 9.20) \
  X(d, Cbrt,       unary,           A, A, A, 17.33, 17.33, 17.33) \
  X(d, InvCbrt,    unary,           A, A, A, 13.29, 13.29, 13.29) \
  X(d, Exp,        unary,           A, A, A, 6.62, 6.62, 6.62) \
  X(d, Ln,         unary,           A, A, A, 12.87, 12.87, 12.87) \
  X(d, Log10,      unary,           A, A, A, 14.45, 14.45, 14.45) \
  X(d, Sqr,        unary,           A, A, A, 0.44, 0.44, 0.44) \
  X(d, Expm1,      unary,           A, A, A, 25.84, 25.84, 25.84) \
  X(d, Log1p,      unary,           A, A, A, 15.95, 15.95, 15.95) \
  X(d, Pow3o2,     unary,           A, A, A, 15.52, 15.52, 15.52) \
  X(d, Pow2o3,     unary,           A, A, A, 15.92, 15.92, 15.92) \
  X(d, Exp2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Exp10,      unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Log2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Logb,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Div,        binary,          A, A, A, 0.86, 0.86, 0.86) \
  X(s, Pow,        binary,          A, A, A, 17.72, 17.72, 17.72) \
  X(s, Hypot,      binary,          A, A, A, 4.90, 4.90, 4.90) \
  X(s, Add,        binary,          A, A, A, 0.79, 0.79, 0.79) \
  X(s, Sub,        binary,          A, A, A, 0.79, 0.79, 0.79) \
  X(s, Mul,        binary,          A, A, A, 0.79, 0.79, 0.79) \
  X(s, CopySign,   binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, NextAfter,  binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Fdim,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Fmax,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Fmin,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, MaxMag,     binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, MinMag,     binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Powr,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Remainder,  binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Fmod,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Div,        binary,          A, A, A, 2.11, 2.11, 2.11) \
  X(d, Pow,        binary,          A, B, A, 33.617, 35.876, 33.617) \
  X(d, Hypot,      binary,          A, A, A, 20.00, 20.00, 20.00) \
  X(d, Add,        binary,          A, A, A, 1.85, 1.85, 1.85) \
  X(d, Sub,        binary,          A, A, A, 0.51, 0.51, 0.51) \
  X(d, Mul,        binary,          A, A, A, 0.51, 0.51, 0.51) \
  X(d, CopySign,   binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, NextAfter,  binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Fdim,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Fmax,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Fmin,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, MaxMag,     binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, MinMag,     binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Powr,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Remainder,  binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(d, Fmod,       binary,          A, A, A, 220.3, 220.3, 220.3) \
  X(s, Powx,       scalar_exponent, A, A, A, 19.29, 19.29, 19.29) \
  X(d, Powx,       scalar_exponent, A, A, A, 32.90, 32.90, 32.90) \
  X(s, Modf,       two_outputs,     A, A, A, 1.84, 1.84, 1.84) \
  X(d, Modf,       two_outputs,     A, A, A, 3.75, 3.75, 3.75) \
  X(s, LinearFrac, linear_fraction, A, A, A, 111.0, 111.0, 111.0) \
  X(d, LinearFrac, linear_fraction, A, A, A, 111.111, 111.111, 111.111)

/* X(t, name, shape, kernel type, cost): the kernel may be that of another type of the same size. */
#define QOR_PACK_ROWS(X) \
  X(s, PackI,   pack_increment,   s, 1111.0) \
  X(d, PackI,   pack_increment,   d, 1111.0) \
  X(c, PackI,   pack_increment,   c, 1111.0) \
  X(z, PackI,   pack_increment,   z, 1111.0) \
  X(s, PackM,   pack_mask,        s, 1111.0) \
  X(d, PackM,   pack_mask,        d, 1111.0) \
  X(c, PackM,   pack_mask,        d, 1111.0) \
  X(z, PackM,   pack_mask,        z, 1111.0) \
  X(s, PackV,   pack_index,       s, 1111.0) \
  X(d, PackV,   pack_index,       d, 1111.0) \
  X(c, PackV,   pack_index,       c, 1111.0) \
  X(z, PackV,   pack_index,       z, 1111.0) \
  X(s, UnpackI, unpack_increment, s, 1111.0) \
  X(d, UnpackI, unpack_increment, d, 1111.0) \
  X(c, UnpackI, unpack_increment, c, 1111.0) \
  X(z, UnpackI, unpack_increment, z, 1111.0) \
  X(s, UnpackM, unpack_mask,      s, 1111.0) \
  X(d, UnpackM, unpack_mask,      d, 1111.0) \
  X(c, UnpackM, unpack_mask,      d, 1111.0) \
  X(z, UnpackM, unpack_mask,      z, 1111.0) \
  X(s, UnpackV, unpack_index,     s, 1111.0) \
  X(d, UnpackV, unpack_index,     d, 1111.0) \
  X(c, UnpackV, unpack_index,     c, 1111.0) \
  X(z, UnpackV, unpack_index,     z, 1111.0)
/* clang-format on */

#endif
