// The entry stubs: each loads its slot of its row at every call and jumps there. The name fixes the
// slot; the mode word is not consulted. The name without a suffix and the one with _HA are one.

#include "qor/vector_math.h"

namespace {
constexpr int kLa = 0, kHa = 1, kEp = 2;
constexpr int32_t kIntegers32 = 1;  // the flag that pack stubs put into the reserved word
}  // namespace

// clang-format off
#define ARGUMENTS_unary             (n, a, y)
#define ARGUMENTS_unary_I           (n, a, inca, y, incy)
#define ARGUMENTS_real_to_complex   (n, a, y)
#define ARGUMENTS_real_to_complex_I (n, a, inca, y, incy)
#define ARGUMENTS_complex_to_real   (n, a, y)
#define ARGUMENTS_complex_to_real_I (n, a, inca, y, incy)
#define ARGUMENTS_binary            (n, a, b, y)
#define ARGUMENTS_binary_I          (n, a, inca, b, incb, y, incy)
#define ARGUMENTS_scalar_exponent   (n, a, b, y)
#define ARGUMENTS_scalar_exponent_I (n, a, inca, b, y, incy)
#define ARGUMENTS_two_outputs       (n, a, y, z)
#define ARGUMENTS_two_outputs_I     (n, a, inca, y, incy, z, incz)
#define ARGUMENTS_linear_fraction   (n, a, b, aScale, aShift, bScale, bShift, y)
#define ARGUMENTS_linear_fraction_I (n, a, inca, b, incb, aScale, aShift, bScale, bShift, y, incy)
#define ARGUMENTS_pack_increment    (n, a, inca, y, flag)
#define ARGUMENTS_pack_mask         (n, a, ma, y, flag)
#define ARGUMENTS_pack_index        (n, a, ia, y, flag)
#define ARGUMENTS_unpack_increment  (n, a, y, incy, flag)
#define ARGUMENTS_unpack_mask       (n, a, y, my, flag)
#define ARGUMENTS_unpack_index      (n, a, y, iy, flag)

// The three stubs and the alias of a row f with the parameters P and the arguments A.
#define STUB(entry, f, slot, before, P, A) void entry P { before qor_ark_kernel_##f##_ttab[slot] A; }
#define STUBS(f, la, ep, before, P, A) \
  STUB(_ark##f##_HA, f, kHa, before, P, A) \
  STUB(_ark##f##la, f, kLa, before, P, A) \
  STUB(_ark##f##ep, f, kEp, before, P, A) \
  [[gnu::alias("_ark" #f "_HA")]] void _ark##f P;
#define STUBS_s(f, ...) STUBS(f, _21, _11, __VA_ARGS__)
#define STUBS_c(f, ...) STUBS(f, _21, _11, __VA_ARGS__)
#define STUBS_d(f, ...) STUBS(f, _50, _26, __VA_ARGS__)
#define STUBS_z(f, ...) STUBS(f, _50, _26, __VA_ARGS__)

#define FUNCTION(t, name, shape, ...) \
  STUBS_##t(t##name, , QOR_PARAMETERS_##shape(QOR_ELEMENT_##t, QOR_REAL_##t), ARGUMENTS_##shape)
#define STRIDED(t, name, shape, ...) \
  STUBS_##t(t##name##I, , QOR_PARAMETERS_##shape##_I(QOR_ELEMENT_##t, QOR_REAL_##t), ARGUMENTS_##shape##_I)
#define PACK(t, name, shape, ...) \
  STUBS_##t(t##name, flag = kIntegers32;, QOR_PARAMETERS_##shape(QOR_ELEMENT_##t), ARGUMENTS_##shape)

extern "C" {
QOR_FUNCTION_ROWS(FUNCTION)
QOR_PACK_ROWS(PACK)
QOR_FUNCTION_ROWS(STRIDED)
}
