// Fuzz target: loading a stream from a file of any bytes.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "qor/streams.h"

namespace {

// A file in memory that lives as long as the program, and its name.
struct Scratch {
  int descriptor = memfd_create("stream", 0);
  std::string name = "/proc/self/fd/" + std::to_string(descriptor);
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Scratch scratch;
  if (ftruncate(scratch.descriptor, 0) != 0 ||
      pwrite(scratch.descriptor, data, size, 0) != static_cast<ssize_t>(size))
    std::abort();
  StreamState* stream = nullptr;
  const int32_t status = __ostLoadStreamF(&stream, scratch.name.c_str(), -1);
  if ((status == 0) != (stream != nullptr)) std::abort();
  if (stream == nullptr) return 0;
  std::vector<uint8_t> image(static_cast<size_t>(__ostGetStreamSize(stream)));
  if (__ostSaveStreamM(stream, image.data()) != 0) std::abort();
  __ostDeleteStream(&stream);
  return 0;
}
