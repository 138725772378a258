// Host services: lock words, forks, environment, end of the process, processor test.

#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "qor/services.h"

void qor_serv_lock(int32_t* word) {
  constexpr int kSpins = 100;
  std::atomic_ref<int32_t> lock(*word);
  for (int spin = 0; lock.exchange(1, std::memory_order_acquire) != 0; ++spin) {
    if (spin < kSpins) {
      __builtin_ia32_pause();
    } else {
      sched_yield();
    }
  }
}

void qor_serv_unlock(int32_t* word) {
  std::atomic_ref<int32_t>(*word).store(0, std::memory_order_release);
}

namespace {

int32_t process_locks[QOR_SERV_PROCESS_LOCKS];

void lock_all() {
  for (int32_t& word : process_locks) qor_serv_lock(&word);
}
void unlock_all() {
  for (int32_t& word : process_locks) qor_serv_unlock(&word);
}

[[gnu::constructor]] void watch_for_forks() { pthread_atfork(lock_all, unlock_all, unlock_all); }

}  // namespace

int32_t* qor_serv_process_lock(int number) { return &process_locks[number]; }

int qor_serv_getenv(const char* name, char* buffer, int size) {
  if (size <= 0) return 0;
  buffer[0] = '\0';
  const char* value = std::getenv(name);
  if (value == nullptr) return 0;
  const size_t length = std::strlen(value);
  if (length >= static_cast<size_t>(size)) return 0;
  std::memcpy(buffer, value, length + 1);
  return static_cast<int>(length);
}

namespace {

std::atomic<int> process_ending{0};

// An exit handler of the process: this library stays loaded until then (it is linked nodelete).
[[gnu::constructor]] void watch_for_exit() {
  std::atexit([] { process_ending.store(1, std::memory_order_relaxed); });
}

}  // namespace

int qor_serv_process_ending() { return process_ending.load(std::memory_order_relaxed); }

void qor_serv_exit(int status) { std::exit(status); }

int qor_serv_cpu_feature_test(int feature) {
  __builtin_cpu_init();
  switch (feature) {
    case 0:
      return __builtin_cpu_supports("sse2") != 0;
    case 1:
      return __builtin_cpu_supports("aes") != 0;
    case 2:
      return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
    case 3:
      return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
             __builtin_cpu_supports("avx512cd") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
             __builtin_cpu_supports("avx512vl") != 0;
    case 4:
      return __builtin_cpu_supports("vaes") != 0;
    case 5:
      return __builtin_cpu_supports("rdrnd") != 0;
    default:
      return 0;
  }
}
