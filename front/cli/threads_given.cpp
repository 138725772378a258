#include "front/cli/threads_given.h"

#include "front/cli/numbers_given.h"
#ifdef QOR_HAS_TEAM
#include "front/team/team.h"
#endif

namespace qor::cli {

#ifdef QOR_HAS_TEAM

const ThreadHook* lent_threads(int64_t threads) {
  static int64_t lent;
  static ThreadHook hook;
  if (threads == 1) return nullptr;
  lent = threads;
  hook = *qor_team_openmp();
  hook.thread_count = [] { return lent; };
  return &hook;
}

#else

const ThreadHook* lent_threads(int64_t) { return nullptr; }

#endif

int64_t threads_given(std::string_view option, std::string_view text) {
  const auto threads = static_cast<int64_t>(whole_number(option, text, 1, kMostThreads));
#ifndef QOR_HAS_TEAM
  if (threads > 1) {
    refuse_value(option, text, "1, as this command is built without threads (OpenMP),");
  }
#endif
  return threads;
}

}  // namespace qor::cli
