// The entry stubs: each loads its slot of its row at every call and jumps there. The name fixes the
// slot; the mode word is not consulted. The name without a suffix and the one with _HA are one.

#include "frame/arguments.h"
#include "qor/vector_math.h"

namespace {
[[maybe_unused]] constexpr int kLa = 0, kHa = 1, kEp = 2;
[[maybe_unused]] constexpr int32_t kIntegers32 =
    1;  // the flag that pack stubs put into the reserved word
}  // namespace

// clang-format off

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
  STUBS_##t(t##name, , QOR_PARAMETERS_##shape(QOR_ELEMENT_##t, QOR_REAL_##t), QOR_ARGUMENTS_##shape)
#define STRIDED(t, name, shape, ...) \
  STUBS_##t(t##name##I, , QOR_PARAMETERS_##shape##_I(QOR_ELEMENT_##t, QOR_REAL_##t), QOR_ARGUMENTS_##shape##_I)
#define PACK(t, name, shape, ...) \
  STUBS_##t(t##name, flag = kIntegers32;, QOR_PARAMETERS_##shape(QOR_ELEMENT_##t), QOR_ARGUMENTS_##shape)

extern "C" {
QOR_FUNCTION_ROWS(FUNCTION)
QOR_PACK_ROWS(PACK)
QOR_FUNCTION_ROWS(STRIDED)
}
