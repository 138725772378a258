// The dispatch rows: one array in table order in writable data, with every row's ttab and ctab as
// symbols inside it. Layout of a row: three kernel addresses, three floats, natural alignment.

#include "qor/vector_math_rows.h"

#ifdef __x86_64__
#define ALIGN_ROW .balign 8
#define ADDRESS .quad
#define TTAB_BYTES 24
#else
#define ALIGN_ROW .balign 4
#define ADDRESS .long
#define TTAB_BYTES 12
#endif

#define OBJECT(symbol, bytes) .globl symbol ; .type symbol, @object ; .size symbol, bytes ; symbol:
#define ROW(f, kernel, la, ha, ep, ...) \
  ALIGN_ROW ; \
  OBJECT(qor_ark_kernel_##f##_ttab, TTAB_BYTES) \
  ADDRESS qor_kernel_##kernel##_##la, qor_kernel_##kernel##_##ha, qor_kernel_##kernel##_##ep ; \
  OBJECT(qor_ark_kernel_##f##_ctab, 12) .float __VA_ARGS__ ;

#define FUNCTION(t, name, shape, la, ha, ep, ...) ROW(t##name, t##name, la, ha, ep, __VA_ARGS__)
#define STRIDED(t, name, shape, la, ha, ep, ...) ROW(t##name##I, t##name##I, la, ha, ep, __VA_ARGS__)
#define PACK(t, name, shape, owner, cost) ROW(t##name, owner##name, A, A, A, cost, cost, cost)

  .data
  QOR_FUNCTION_ROWS(FUNCTION)
  QOR_PACK_ROWS(PACK)
  QOR_FUNCTION_ROWS(STRIDED)

  .section .note.GNU-stack, "", @progbits
