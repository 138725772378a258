// The per-thread block: mode word, error status, error callback, input vector pointer.
#pragma once

#include <cstdint>

#include "qor/vector_math.h"

namespace qor::frame {

struct ThreadState {
  uint32_t mode;  // 0: not computed yet on this thread
  int32_t errStatus;
  qor_error_callback errCallback;
  uint32_t spare0, spare1;        // cleared at creation, never used
  const void* interfInputVector;  // left as allocated until it is set
};
static_assert(sizeof(void*) == 8 || sizeof(ThreadState) == 24);

// The calling thread's block, made at its first use. Never null: a block that cannot be had ends
// the process with status 3.
ThreadState& thread_state();

// Notices of the loader, in the shape of a library entry; 1 for success.
enum class Notice : uint32_t {
  process_detach = 0,
  process_attach = 1,
  thread_attach = 2,
  thread_detach = 3
};
int32_t library_entry(void* instance, Notice notice, void* reserved);

}  // namespace qor::frame
