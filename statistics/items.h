// Work on variables through the caller's threads, item by item.
#pragma once

#include <algorithm>
#include <cstdint>

#include "qor/thread_hook.h"

namespace qor::statistics {

// Threads that the caller offers, at least 1.
inline int64_t threads_offered(const ThreadHook* hook) {
  if (hook == nullptr || hook->run_items == nullptr || hook->thread_count == nullptr) return 1;
  return std::max<int64_t>(hook->thread_count(), 1);
}

// work(item, thread index) for all items, on up to `threads` threads; 0 leaves their number to the
// hook. Without a hook, on the calling thread.
template <class Work>
void run_items(const ThreadHook* hook, int64_t items, int64_t threads, Work& work) {
  if (hook == nullptr || hook->run_items == nullptr) {
    for (int64_t item = 0; item < items; ++item) work(item, int64_t{0});
    return;
  }
  hook->run_items(items, threads, &work, [](int64_t item, int64_t thread, int64_t, void* context) {
    (*static_cast<Work*>(context))(item, thread);
  });
}

}  // namespace qor::statistics
