// The argument names of every shape, to pass on what QOR_PARAMETERS_<shape> declares.
#pragma once

// clang-format off
#define QOR_ARGUMENTS_unary             (n, a, y)
#define QOR_ARGUMENTS_unary_I           (n, a, inca, y, incy)
#define QOR_ARGUMENTS_real_to_complex   (n, a, y)
#define QOR_ARGUMENTS_real_to_complex_I (n, a, inca, y, incy)
#define QOR_ARGUMENTS_complex_to_real   (n, a, y)
#define QOR_ARGUMENTS_complex_to_real_I (n, a, inca, y, incy)
#define QOR_ARGUMENTS_binary            (n, a, b, y)
#define QOR_ARGUMENTS_binary_I          (n, a, inca, b, incb, y, incy)
#define QOR_ARGUMENTS_scalar_exponent   (n, a, b, y)
#define QOR_ARGUMENTS_scalar_exponent_I (n, a, inca, b, y, incy)
#define QOR_ARGUMENTS_two_outputs       (n, a, y, z)
#define QOR_ARGUMENTS_two_outputs_I     (n, a, inca, y, incy, z, incz)
#define QOR_ARGUMENTS_linear_fraction   (n, a, b, aScale, aShift, bScale, bShift, y)
#define QOR_ARGUMENTS_linear_fraction_I (n, a, inca, b, incb, aScale, aShift, bScale, bShift, y, incy)
#define QOR_ARGUMENTS_pack_increment    (n, a, inca, y, flag)
#define QOR_ARGUMENTS_pack_mask         (n, a, ma, y, flag)
#define QOR_ARGUMENTS_pack_index        (n, a, ia, y, flag)
#define QOR_ARGUMENTS_unpack_increment  (n, a, y, incy, flag)
#define QOR_ARGUMENTS_unpack_mask       (n, a, y, my, flag)
#define QOR_ARGUMENTS_unpack_index      (n, a, y, iy, flag)
