// The output functions of an abstract stream that are of another type than its ring: one function
// under six names. It looks at no argument, so the callers' own argument lists do (they clear their
// arguments away themselves); hence this file does not see the header that declares those.

#include <cstdint>

extern "C" {

[[gnu::used]] int32_t qor_abstract_refusal() noexcept {
  constexpr int32_t kWrongType = -1122;
  return kWrongType;
}

#define QOR_REFUSAL [[gnu::visibility("default"), gnu::alias("qor_abstract_refusal")]] int32_t
QOR_REFUSAL __ostsBRngiAbstract() noexcept;
QOR_REFUSAL __ostdBRngiAbstract() noexcept;
QOR_REFUSAL __ostsBRngdAbstract() noexcept;
QOR_REFUSAL __ostiBRngdAbstract() noexcept;
QOR_REFUSAL __ostdBRngsAbstract() noexcept;
QOR_REFUSAL __ostiBRngsAbstract() noexcept;
#undef QOR_REFUSAL

}  // extern "C"
