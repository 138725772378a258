// Teams of threads for tests: a hook of each runs items on the calling thread in order, in reverse
// order, or on plain threads, three of them where their number is left to the hook.
#pragma once

#include <cstdint>
#include <thread>
#include <vector>

#include "qor/thread_hook.h"

namespace qor::test {

template <int64_t Threads>
int64_t thread_count() {
  return Threads;
}

inline void run_in_order(int64_t items, int64_t threads, void* context, qor_item_routine routine) {
  for (int64_t i = 0; i < items; ++i) routine(i, 0, threads, context);
}

inline void run_in_reverse(int64_t items, int64_t threads, void* context,
                           qor_item_routine routine) {
  for (int64_t i = items; i-- > 0;) routine(i, threads - 1, threads, context);
}

inline void run_on_threads(int64_t items, int64_t threads, void* context,
                           qor_item_routine routine) {
  if (threads == 0) threads = 3;
  std::vector<std::thread> team;
  for (int64_t t = 0; t < threads; ++t) {
    team.emplace_back([=] {
      for (int64_t i = t; i < items; i += threads) routine(i, t, threads, context);
    });
  }
  for (std::thread& member : team) member.join();
}

using ItemRunner = void (*)(int64_t, int64_t, void*, qor_item_routine);

template <int64_t Threads>
constexpr ThreadHook hook_of(ItemRunner run) {
  return {run, run, nullptr, nullptr, thread_count<Threads>};
}

// A team whose members are run as items.
using TeamRunner = void (*)(int64_t, void*, qor_team_routine);
template <ItemRunner run>
void run_members(int64_t threads, void* context, qor_team_routine routine) {
  run(threads, threads, context, routine);
}

// Every runner with 1, 2, 3 and 7 threads.
inline std::vector<ThreadHook> test_hooks() {
  std::vector<ThreadHook> hooks;
  for (const ItemRunner run : {run_in_order, run_in_reverse, run_on_threads}) {
    hooks.insert(hooks.end(), {hook_of<1>(run), hook_of<2>(run), hook_of<3>(run), hook_of<7>(run)});
  }
  return hooks;
}

}  // namespace qor::test
