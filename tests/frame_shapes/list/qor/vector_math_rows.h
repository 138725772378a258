/* A row list with every shape of argument list and every pattern of slots. */
#ifndef QOR_VECTOR_MATH_ROWS_H
#define QOR_VECTOR_MATH_ROWS_H

/* clang-format off */
#define QOR_FUNCTION_ROWS(X) \
  X(s, Sin,        unary,           A, B, A, 31.09, 34.21, 31.09) \
  X(d, CdfNorm,    unary,           A, B, C, 80.54, 112.49, 61.33) \
  X(c, Ln,         unary,           A, A, C, 72.69, 72.69, 59.53) \
  X(z, CIS,        real_to_complex, A, A, A, 1.0, 1.0, 1.0) \
  X(c, Arg,        complex_to_real, A, B, A, 30.84, 92.06, 30.84) \
  X(d, Pow,        binary,          A, B, A, 33.617, 35.876, 33.617) \
  X(s, Powx,       scalar_exponent, A, A, A, 1.0, 1.0, 1.0) \
  X(c, Powx,       scalar_exponent, A, A, A, 1.0, 1.0, 1.0) \
  X(z, Powx,       scalar_exponent, A, A, A, 1.0, 1.0, 1.0) \
  X(d, SinCos,     two_outputs,     A, A, A, 1.0, 1.0, 1.0) \
  X(d, LinearFrac, linear_fraction, A, A, A, 111.111, 111.111, 111.111)
#define QOR_PACK_ROWS(X) \
  X(s, PackI,   pack_increment,   s, 1111.0) \
  X(d, PackM,   pack_mask,        d, 1111.0) \
  X(c, PackM,   pack_mask,        d, 1111.0) \
  X(z, PackV,   pack_index,       z, 1111.0) \
  X(s, UnpackI, unpack_increment, s, 1111.0) \
  X(d, UnpackM, unpack_mask,      d, 1111.0) \
  X(z, UnpackV, unpack_index,     z, 1111.0)
/* clang-format on */

#endif
