// The floating-point environment of a kernel: entry forms and the exit rule.
//
// Inside a kernel no arithmetic traps. The steps are volatile assembly with a memory clobber, and
// the loop between them is a function that is not inlined (frame/lane_loop.h), so that the compiler
// cannot move arithmetic across them.
#pragma once

#include <cstdint>

#include "frame/mode.h"

namespace qor::kernels {

// What a kernel asks of the x87 control word.
enum class X87 {
  none,                // left alone
  masks,               // all exceptions masked
  double_precision,    // and 53 bits, to nearest
  extended_precision,  // and 64 bits, to nearest
};

// What a kernel asks of MXCSR.
enum class Mxcsr {
  none,       // left alone
  mask,       // all exceptions masked; the caller's rounding and denormal modes stay
  from_mode,  // masked, to nearest, denormals flushed as the mode word says
};

struct Environment {
  X87 x87 = X87::masks;
  Mxcsr mxcsr = Mxcsr::from_mode;
};

struct FpEnvSave {
  uint16_t savedControlWord;
  uint32_t savedMxcsr;
  uint32_t changed;  // bit 0: x87 control word, bit 1: MXCSR
};

inline constexpr uint32_t changed_x87 = 1;
inline constexpr uint32_t changed_mxcsr = 2;

inline constexpr uint16_t x87_inexact = 0x20;

namespace detail {

inline uint16_t control_word() {
  uint16_t word;
  asm volatile("fnstcw %0" : "=m"(word) : : "memory");
  return word;
}
inline void set_control_word(uint16_t word) { asm volatile("fldcw %0" : : "m"(word) : "memory"); }
// Without pending flags there is nothing to clear, and to look is ten times cheaper. Nor is there
// when all that are pending are certain to be raised again.
inline void clear_x87_flags(uint16_t to_be_raised) {
  constexpr uint16_t pending = 0x80FF;
  uint16_t status;
  asm volatile("fnstsw %0" : "=a"(status) : : "memory");
  if ((status & pending & ~to_be_raised) != 0) asm volatile("fnclex" : : : "memory");
}

inline uint32_t mxcsr() {
  uint32_t word;
  asm volatile("stmxcsr %0" : "=m"(word) : : "memory");
  return word;
}
inline void set_mxcsr(uint32_t word) { asm volatile("ldmxcsr %0" : : "m"(word) : "memory"); }

// Pending x87 flags survive when nothing has to change, and only then.
template <X87 form>
inline void enter_x87(FpEnvSave& save, uint16_t to_be_raised) {
  if constexpr (form == X87::none) return;
  constexpr bool masks_only = form == X87::masks;
  constexpr uint16_t compared = masks_only ? 0x3F : 0xF3F;
  constexpr uint16_t required = masks_only ? 0x3F : (form == X87::double_precision ? 0x23F : 0x33F);
  save.savedControlWord = control_word();
  if ((save.savedControlWord & compared) == required) return;
  clear_x87_flags(to_be_raised);
  const uint16_t kept = masks_only ? save.savedControlWord : save.savedControlWord & 0xF0C0;
  set_control_word(static_cast<uint16_t>(kept | required));
  save.changed |= changed_x87;
}

inline constexpr uint32_t mxcsr_status = 0x3F;
inline constexpr uint32_t mxcsr_masks = 0x1F80;
inline constexpr uint32_t mxcsr_control = 0xFFC0;
inline constexpr uint32_t mxcsr_flush = 0x8040;  // flush to zero, denormals are zero

inline void change_mxcsr(FpEnvSave& save, uint32_t word) {
  set_mxcsr(word);
  save.changed |= changed_mxcsr;
}

inline void enter_mxcsr_from_mode(FpEnvSave& save) {
  const bool flush = (frame::mode() & QOR_MODE_DENORMALS) == QOR_MODE_FLUSH_DENORMALS;
  const uint32_t target = mxcsr_masks | (flush ? mxcsr_flush : 0);
  save.savedMxcsr = mxcsr();
  if ((save.savedMxcsr & mxcsr_control) == target) return;
  change_mxcsr(save, (save.savedMxcsr & ~mxcsr_control) | target);
}

inline void enter_mxcsr_mask(FpEnvSave& save) {
  save.savedMxcsr = mxcsr();
  if ((save.savedMxcsr & mxcsr_masks) == mxcsr_masks) return;
  change_mxcsr(save, save.savedMxcsr | mxcsr_masks);
}

}  // namespace detail

// Sets up the environment for arithmetic that is certain to raise the x87 flags `to_be_raised`.
template <Environment environment>
inline void enter(FpEnvSave& save, uint16_t to_be_raised = 0) {
  save.changed = 0;
  detail::enter_x87<environment.x87>(save, to_be_raised);
  if constexpr (environment.mxcsr == Mxcsr::from_mode) {
    detail::enter_mxcsr_from_mode(save);
  } else if constexpr (environment.mxcsr == Mxcsr::mask) {
    detail::enter_mxcsr_mask(save);
  }
}

// Whether denormal arguments count as zero in the environment in force.
inline bool denormals_are_zero() { return (detail::mxcsr() & 0x40) != 0; }

// Gives back what was changed; MXCSR flags raised inside survive.
inline void leave(const FpEnvSave& save) {
  if ((save.changed & changed_x87) != 0) detail::set_control_word(save.savedControlWord);
  if ((save.changed & changed_mxcsr) != 0) {
    detail::set_mxcsr(save.savedMxcsr | (detail::mxcsr() & detail::mxcsr_status));
  }
}

}  // namespace qor::kernels
