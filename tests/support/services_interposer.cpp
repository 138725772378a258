#include "tests/support/services_interposer.h"

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <utility>

#include "qor/services.h"

namespace qor::test {
namespace {

constexpr long kNever = -1;
std::atomic<long> first_failing_allocation{kNever};
std::atomic<long> asked_allocations{0};
std::atomic<size_t> largest_allocation{0};
std::atomic<long> blocks{0};

std::mutex messages_mutex;
std::vector<PrintedMessage> messages;

template <class Function>
Function* next_in_line(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FailingAllocations::FailingAllocations(long first_failing) {
  asked_allocations = 0;
  largest_allocation = 0;
  first_failing_allocation = first_failing;
}
FailingAllocations::~FailingAllocations() { first_failing_allocation = kNever; }
long FailingAllocations::asked() const { return asked_allocations; }
size_t FailingAllocations::largest() const { return largest_allocation; }

long live_blocks() { return blocks; }

std::vector<PrintedMessage> take_printed_messages() {
  std::lock_guard guard(messages_mutex);
  return std::exchange(messages, {});
}

}  // namespace qor::test

extern "C" {

// Visible to the library although the program itself is linked without -rdynamic.
__attribute__((visibility("default"))) void* qor_serv_allocate(size_t size, size_t alignment) {
  using namespace qor::test;
  static auto* const next = next_in_line<void*(size_t, size_t)>("qor_serv_allocate");
  errno = ENOMEM;  // as an allocator may leave it that asked the system twice
  size_t known = largest_allocation;
  while (size > known && !largest_allocation.compare_exchange_weak(known, size)) {
  }
  const long number = asked_allocations++;
  const long failing = first_failing_allocation;
  if (failing >= 0 && number >= failing) return nullptr;
  void* block = next(size, alignment);
  if (block != nullptr) ++blocks;
  return block;
}

__attribute__((visibility("default"))) void qor_serv_deallocate(void* block) {
  using namespace qor::test;
  static auto* const next = next_in_line<void(void*)>("qor_serv_deallocate");
  if (block != nullptr) --blocks;
  next(block);
}

__attribute__((visibility("default"))) void qor_serv_print(int level, int message, int count, ...) {
  using namespace qor::test;
  std::lock_guard guard(messages_mutex);
  messages.push_back({level, message, count});
  errno = EBADF;  // as after printing on a stream that is closed
}

// A sanitizer's allocator answers for sizes beyond memory as the system's does.
__attribute__((visibility("default"))) const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}
__attribute__((visibility("default"))) const char* __tsan_default_options() {
  return "allocator_may_return_null=1";
}

}  // extern "C"
