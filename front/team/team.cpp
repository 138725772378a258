#include "front/team/team.h"

#include <omp.h>

#include <algorithm>

namespace {

// As many as asked for, and all there are for 0.
int team_size(int64_t threads) {
  const int64_t most = omp_get_max_threads();
  return static_cast<int>(threads == 0 ? most : std::clamp<int64_t>(threads, 1, most));
}

// Items are handed out one by one, as they may differ in length.
void run_items(int64_t items, int64_t threads, void* context, qor_item_routine routine) {
#pragma omp parallel for num_threads(team_size(threads)) schedule(dynamic, 1)
  for (int64_t item = 0; item < items; ++item) {
    routine(item, omp_get_thread_num(), threads, context);
  }
}

// Every member is called, even when OpenMP grants fewer threads than there are members.
void run_team(int64_t threads, void* context, qor_team_routine routine) {
#pragma omp parallel for num_threads(team_size(threads)) schedule(static, 1)
  for (int64_t member = 0; member < threads; ++member) routine(member, 0, threads, context);
}

int64_t thread_count() { return omp_get_max_threads(); }

constexpr ThreadHook kTeam = {run_items, run_items, run_team, nullptr, thread_count};

}  // namespace

const ThreadHook* qor_team_openmp() { return &kTeam; }
