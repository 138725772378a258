// The caller's threads, and how work is cut for them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "qor/thread_hook.h"

namespace qor::fitting {

// Sites and pairs of limits go in blocks of this size; up to `most_alone` of them stay on the
// calling thread.
inline constexpr int64_t block_size = 256;
inline constexpr int64_t most_alone = 4096;

inline int64_t block_count(int64_t elements) {
  return elements <= 0 ? 0 : (elements - 1) / block_size + 1;
}

// Threads to use for the elements; 1 means the calling thread.
inline int64_t threads_for(const ThreadHook* hook, int64_t elements) {
  if (hook == nullptr || hook->run_items == nullptr || hook->thread_count == nullptr) return 1;
  if (elements <= most_alone) return 1;
  return std::clamp<int64_t>(hook->thread_count(), 1, block_count(elements));
}

// work(first block, end block, slice) over all blocks, in `threads` contiguous slices.
template <class Work>
void share_blocks(const ThreadHook* hook, int64_t threads, int64_t blocks, Work& work) {
  if (threads < 2) return work(0, blocks, 0);
  struct Shared {
    Work& work;
    int64_t blocks, slices;
  } shared{work, blocks, threads};
  hook->run_items(threads, threads, &shared, [](int64_t item, int64_t, int64_t, void* context) {
    const Shared& s = *static_cast<Shared*>(context);
    // The first `longer` slices have one block more than the others.
    const int64_t share = s.blocks / s.slices, longer = s.blocks % s.slices;
    const int64_t first = item * share + std::min(item, longer);
    s.work(first, first + share + (item < longer ? 1 : 0), item);
  });
}

}  // namespace qor::fitting
