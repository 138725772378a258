// The kernels' symbols, declared from the row list: a kernel that is missing is a link error, one
// of the wrong shape a compile error.
#pragma once

#include <string_view>

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

namespace qor::kernels {

// Which kernel of a function serves the slots LA, HA, EP, from the row list.
struct RowKernels {
  std::string_view name;
  char of_slot[3];
};
inline constexpr RowKernels row_kernels[] = {
#define QOR_FUNCTION(t, name, shape, la, ha, ep, ...) {#t #name, {*#la, *#ha, *#ep}},
    QOR_FUNCTION_ROWS(QOR_FUNCTION)
#undef QOR_FUNCTION
};

// The slot of the contiguous row that the strided kernel of the same letter falls back on: that of
// its own accuracy, HA when one kernel serves all slots.
consteval int slot_of(std::string_view name, char kernel) {
  for (const RowKernels& row : row_kernels) {
    if (row.name != name) continue;
    for (int slot : {1, 0, 2}) {
      if (row.of_slot[slot] == kernel) return slot;
    }
  }
  return -1;
}

}  // namespace qor::kernels

// Fills a row: kernel `letter` of the function t##name and of its strided mate, by the function F;
// or one of the two alone.
#define QOR_FILL_CONTIGUOUS(t, name, shape, letter, F) \
  extern "C" void qor_kernel_##t##name##_##letter QOR_PARAMETERS_##shape(QOR_ELEMENT_##t, QOR_REAL_##t) { \
    constexpr qor::kernels::RowNames names{"v" #t #name, "v" #t #name "I"}; \
    qor::kernels::ContiguousCall<F>{names} QOR_ARGUMENTS_##shape; \
  }
#define QOR_FILL_STRIDED(t, name, shape, letter, F) \
  extern "C" void qor_kernel_##t##name##I_##letter QOR_PARAMETERS_##shape##_I(QOR_ELEMENT_##t, QOR_REAL_##t) { \
    constexpr qor::kernels::RowNames names{"v" #t #name, "v" #t #name "I"}; \
    constexpr int slot = qor::kernels::slot_of(#t #name, *#letter); \
    static_assert(slot >= 0, "the row list gives this kernel no slot"); \
    qor::kernels::strided_call<F>(names, qor_ark_kernel_##t##name##_ttab[slot]) QOR_ARGUMENTS_##shape##_I; \
  }
#define QOR_FILL_KERNEL(t, name, shape, letter, F) \
  QOR_FILL_CONTIGUOUS(t, name, shape, letter, F) \
  QOR_FILL_STRIDED(t, name, shape, letter, F)
// A row of one kernel.
#define QOR_FILL_ROW(t, name, shape, F) QOR_FILL_KERNEL(t, name, shape, A, F)

// Fills the row of a data mover by the function template instance F. No floating-point step.
#define QOR_FILL_PACK_ROW(t, name, shape, F) \
  extern "C" void qor_kernel_##t##name##_A QOR_PARAMETERS_##shape(QOR_ELEMENT_##t) { \
    F QOR_ARGUMENTS_##shape; \
  }
