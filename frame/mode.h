// The mode word of the calling thread.
#pragma once

#include <cstdint>

#include "frame/thread_state.h"

namespace qor::frame {

// Computes the word of a thread that has none yet, and stores it.
uint32_t first_mode(ThreadState& state);

inline uint32_t mode_of(ThreadState& state) {
  return state.mode != 0 ? state.mode : first_mode(state);
}
inline uint32_t mode() { return mode_of(thread_state()); }

// Replaces the fields that are not zero in `fields`; returns the word as it was.
uint32_t merge_mode(ThreadState& state, uint32_t fields);

}  // namespace qor::frame
