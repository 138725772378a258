// The codes of a call: reported one by one where that can be told, else as far as their end effect
// needs.
//
// Without a callback, messages and traps a report sets the thread's status and errno, of which the
// last one stays, and a condition for each code that occurs. The last element with each code, in
// ascending order, then has the effect of all.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "frame/error.h"
#include "kernels/frame/environment.h"
#include "kernels/frame/function.h"
#include "kernels/scalar/signals.h"

namespace qor::kernels {

// Raises the flags of a code: invalid, divide by zero, overflow, underflow.
template <class T>
inline void raise_flags_of(int32_t code) {
  switch (code) {
    case QOR_ERROR_DOMAIN:
      return raise(undefined<T>());
    case QOR_ERROR_SINGULARITY:
      return raise(pole(T{1}));
    case QOR_ERROR_OVERFLOW:
      return raise(overflowed<T>());
    default:
      return raise(underflowed<T>());
  }
}

class Reports {
 public:
  // Whether each report counts. Asked at the first special lane, so that calls without one do not
  // pay. (Where denormals count as zero a report may change a denormal result.)
  bool one_by_one() {
    ask();
    return one_by_one_;
  }

  // Raises the flags of a wide form's code; once will do for the lanes of a call, unless a report
  // in between may take them back.
  template <class F>
  void raise(int32_t code) {
    if constexpr (F::traits.code_flags == CodeFlags::by_wide) return;
    ask();
    const uint32_t bit = uint32_t{1} << code;
    if ((raised_ & bit) != 0 && !one_by_one_) return;
    raised_ |= bit;
    if (F::traits.code_flags == CodeFlags::of_heard_codes && off_) return;
    raise_flags_of<typename F::Real>(code);
  }

  // Notes the lanes with a code of the block at element i, as bits.
  void note(int32_t code, uint32_t lanes, int64_t i) {
    if (lanes == 0) return;
    if (!is_noted_) std::fill_n(last_, 4, int64_t{-1});
    is_noted_ = true;
    last_[code - 1] = i + (31 - std::countl_zero(lanes));
  }

  // Reports what has been noted.
  template <class Vectors>
  void finish(const Vectors& vectors) const {
    if (!is_noted_) [[likely]]
      return;
    int64_t done = -1;
    for (;;) {
      int code = 0;
      for (int c = 1; c <= 4; ++c) {
        const bool is_next = last_[c - 1] > done && (code == 0 || last_[c - 1] < last_[code - 1]);
        if (is_next) code = c;
      }
      if (code == 0) return;
      done = last_[code - 1];
      vectors.report(code, done);
    }
  }

 private:
  void ask() {
    if (is_asked_) return;
    is_asked_ = true;
    one_by_one_ = frame::each_report_counts() || denormals_are_zero();
    off_ = frame::reports_are_off();
  }

  int64_t last_[4];  // of each code, -1 for none; set at the first note
  uint32_t raised_ = 0;
  bool is_asked_ = false, one_by_one_ = false, off_ = false, is_noted_ = false;
};

}  // namespace qor::kernels
