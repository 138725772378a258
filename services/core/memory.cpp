// Memory services: aligned blocks and the checked copy.

#include <cstdlib>
#include <cstring>

#include "qor/services.h"

namespace {

constexpr int kInvalidArgument = 22;
constexpr int kOutOfRange = 34;

bool is_power_of_two(size_t value) { return value != 0 && (value & (value - 1)) == 0; }

}  // namespace

void* qor_serv_allocate(size_t size, size_t alignment) {
  if (!is_power_of_two(alignment)) return nullptr;
  if (alignment < sizeof(void*)) alignment = sizeof(void*);
  void* block = nullptr;
  return posix_memalign(&block, alignment, size == 0 ? 1 : size) == 0 ? block : nullptr;
}

void qor_serv_deallocate(void* block) { std::free(block); }

int qor_serv_memcpy_s(void* destination, size_t destination_size, const void* source,
                      size_t count) {
  if (count == 0) return 0;
  if (destination == nullptr) return kInvalidArgument;
  if (source == nullptr || count > destination_size) {
    std::memset(destination, 0, destination_size);
    return source == nullptr ? kInvalidArgument : kOutOfRange;
  }
  std::memcpy(destination, source, count);
  return 0;
}
