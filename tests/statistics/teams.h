// Teams of threads for tests: members run in order, in reverse, or on plain threads.
#pragma once

#include <cstdint>
#include <thread>
#include <vector>

#include "qor/thread_hook.h"

namespace qor::test {

inline int64_t offered_threads = 1;
inline int64_t last_team_size = 0;  // of a team that ran in order

using TeamRunner = void (*)(int64_t, void*, qor_team_routine);

inline void run_team_in_order(int64_t threads, void* context, qor_team_routine routine) {
  last_team_size = threads;
  for (int64_t t = 0; t < threads; ++t) routine(t, 0, threads, context);
}
inline void run_team_in_reverse(int64_t threads, void* context, qor_team_routine routine) {
  for (int64_t t = threads; t-- > 0;) routine(t, 0, threads, context);
}
inline void run_team_on_threads(int64_t threads, void* context, qor_team_routine routine) {
  std::vector<std::thread> team;
  for (int64_t t = 0; t < threads; ++t) team.emplace_back(routine, t, 0, threads, context);
  for (std::thread& member : team) member.join();
}

// A hook that offers so many threads; the last one made tells how many all of them offer.
inline ThreadHook team_hook(int64_t threads, TeamRunner run) {
  offered_threads = threads;
  return {nullptr, nullptr, run, nullptr, [] { return offered_threads; }};
}

}  // namespace qor::test
