// The kernels' symbols, declared from the row list: a kernel that is missing is a link error, one
// of the wrong shape a compile error.
#pragma once

#include "frame/arguments.h"
#include "kernels/frame.h"
#include "qor/vector_math.h"

// clang-format off
#define QOR_KERNELS(f, P) void qor_kernel_##f##_A P; void qor_kernel_##f##_B P; void qor_kernel_##f##_C P;
#define QOR_FUNCTION(t, name, shape, ...) \
  QOR_KERNELS(t##name, QOR_PARAMETERS_##shape(QOR_ELEMENT_##t, QOR_REAL_##t)) \
  QOR_KERNELS(t##name##I, QOR_PARAMETERS_##shape##_I(QOR_ELEMENT_##t, QOR_REAL_##t))
#define QOR_PACK(t, name, shape, ...) QOR_KERNELS(t##name, QOR_PARAMETERS_##shape(QOR_ELEMENT_##t))
extern "C" {
QOR_FUNCTION_ROWS(QOR_FUNCTION)
QOR_PACK_ROWS(QOR_PACK)
}
#undef QOR_FUNCTION
#undef QOR_PACK
#undef QOR_KERNELS

// Fills a row: kernel `letter` of the function t##name and of its strided mate, by the struct F.
// `slot` is the slot of the contiguous row that the strided kernel falls back on: that of its own
// accuracy, 1 when one kernel serves all slots.
#define QOR_FILL_ROW(t, name, shape, letter, slot, F) \
  extern "C" void qor_kernel_##t##name##_##letter QOR_PARAMETERS_##shape(QOR_ELEMENT_##t, QOR_REAL_##t) { \
    qor::kernels::contiguous<F> QOR_ARGUMENTS_##shape; \
  } \
  extern "C" void qor_kernel_##t##name##I_##letter QOR_PARAMETERS_##shape##_I(QOR_ELEMENT_##t, QOR_REAL_##t) { \
    qor::kernels::strided<F>(qor_ark_kernel_##t##name##_ttab[slot]) QOR_ARGUMENTS_##shape##_I; \
  }

// Fills the row of a data mover by the function template instance F. No floating-point step.
#define QOR_FILL_PACK_ROW(t, name, shape, F) \
  extern "C" void qor_kernel_##t##name##_A QOR_PARAMETERS_##shape(QOR_ELEMENT_##t) { \
    F QOR_ARGUMENTS_##shape; \
  }
