// The threads that a command lends to the library.
#pragma once

#include <cstdint>
#include <string_view>

#include "qor/thread_hook.h"

namespace qor::cli {

inline constexpr int64_t kMostThreads = 1024;

// The number of an option, from 1 to kMostThreads; above 1 an InputError where the command is built
// without the team of threads.
int64_t threads_given(std::string_view option, std::string_view text);

// A hook that the library uses so many threads of, until the next call; null for 1. The team runs
// them on as many as OpenMP has, and the results depend on the number asked for alone.
const ThreadHook* lent_threads(int64_t threads);

}  // namespace qor::cli
