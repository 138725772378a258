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
  X(s, Exp,    unary, A, A, A, 15.62, 15.62, 15.62) \
  X(s, Expm1,  unary, A, A, A, 1.0, 1.0, 1.0) \
  X(s, Exp2,   unary, A, A, A, 220.3, 220.3, 220.3) \
  X(s, Exp10,  unary, A, A, A, 220.3, 220.3, 220.3) \
  X(d, Exp,    unary, A, A, A, 1.0, 1.0, 1.0) \
  X(d, Expm1,  unary, A, A, A, 1.0, 1.0, 1.0) \
  X(d, Exp2,   unary, A, A, A, 220.3, 220.3, 220.3) \
  X(d, Exp10,  unary, A, A, A, 220.3, 220.3, 220.3)

/* X(t, name, shape, kernel type, cost): the kernel may be that of another type of the same size. */
#define QOR_PACK_ROWS(X)
/* clang-format on */

#endif
