// Arithmetic that rounds, out of reach of the traps that a caller has enabled.
#pragma once

#include <cstdint>

namespace qor::streams {

// While one lives, no floating-point exception of vector registers traps; where one could have, the
// caller's control and status word comes back as it was.
class MaskedExceptions {
 public:
  MaskedExceptions() {
    asm volatile("stmxcsr %0" : "=m"(callers_) : : "memory");
    traps_ = (callers_ & kMasks) != kMasks;
    if (traps_) set(callers_ | kMasks);
  }
  ~MaskedExceptions() {
    if (traps_) set(callers_);
  }
  MaskedExceptions(const MaskedExceptions&) = delete;
  MaskedExceptions& operator=(const MaskedExceptions&) = delete;

  // The value, for arithmetic that may not be done before the masks are set.
  template <class Real>
  Real hold(Real value) const {
    asm volatile("" : "+x"(value));
    return value;
  }

 private:
  static constexpr uint32_t kMasks = 0x1F80;
  static void set(uint32_t word) { asm volatile("ldmxcsr %0" : : "m"(word) : "memory"); }

  bool traps_;
  uint32_t callers_ = 0;
};

}  // namespace qor::streams
