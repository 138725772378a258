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
  X(s, Ceil,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Floor,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Frac,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, NearbyInt,  unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Rint,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Round,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Trunc,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Abs,        unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Inv,        unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Sqrt,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, InvSqrt,    unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Cbrt,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, InvCbrt,    unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Exp,        unary,           A, A, A, 15.62, 15.62, 15.62) \
  X(s, Ln,         unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Log10,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Sqr,        unary,           A, A, A, 1111.0, 1111.0, 1111.0) \
  X(s, Expm1,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Log1p,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Pow3o2,     unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Pow2o3,     unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(s, Exp2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Exp10,      unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Log2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Logb,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Ceil,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Floor,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Frac,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, NearbyInt,  unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Rint,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Round,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Trunc,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Abs,        unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Inv,        unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Sqrt,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, InvSqrt,    unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Cbrt,       unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, InvCbrt,    unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Exp,        unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Ln,         unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Log10,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Sqr,        unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Expm1,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Log1p,      unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Pow3o2,     unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Pow2o3,     unary,           A, A, A, 1.0, 1.0, 1.0) \
  X(d, Exp2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Exp10,      unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Log2,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(d, Logb,       unary,           A, A, A, 220.3, 220.3, 220.3) \
  X(s, Div,        binary,          A, A, A, 1.0, 1.0, 1.0) \
  X(s, Pow,        binary,          A, A, A, 1.0, 1.0, 1.0) \
  X(s, Hypot,      binary,          A, A, A, 1.0, 1.0, 1.0) \
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
  X(d, Div,        binary,          A, A, A, 1.0, 1.0, 1.0) \
  X(d, Pow,        binary,          A, B, A, 33.617, 35.876, 33.617) \
  X(d, Hypot,      binary,          A, A, A, 1.0, 1.0, 1.0) \
  X(d, Add,        binary,          A, A, A, 1.85, 1.85, 1.85) \
  X(d, Sub,        binary,          A, A, A, 1.0, 1.0, 1.0) \
  X(d, Mul,        binary,          A, A, A, 1.0, 1.0, 1.0) \
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
  X(s, Powx,       scalar_exponent, A, A, A, 1.0, 1.0, 1.0) \
  X(d, Powx,       scalar_exponent, A, A, A, 1.0, 1.0, 1.0) \
  X(s, Modf,       two_outputs,     A, A, A, 1.0, 1.0, 1.0) \
  X(d, Modf,       two_outputs,     A, A, A, 1.0, 1.0, 1.0) \
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
