// Fuzz target: loading a stream from memory, then everything that walks what was loaded.

#include <cstdlib>

#include "qor/streams.h"
#include "tests/fuzz/stream_image.h"

namespace {

constexpr size_t kLimit = 1 << 20;

bool is_abstract(int32_t brng) { return brng >= QOR_BRNG_IABSTRACT && brng <= QOR_BRNG_SABSTRACT; }

// The image of a loaded stream loads too, and draws.
void use(StreamState* stream) {
  std::vector<uint8_t> image(static_cast<size_t>(__ostGetStreamSize(stream)));
  if (__ostSaveStreamM(stream, image.data()) != 0) std::abort();
  StreamState *again = nullptr, *copy = nullptr;
  if (__ostLoadStreamM(&again, image.data()) != 0) std::abort();
  if (__ostCopyStream(&copy, again) != 0) std::abort();
  __ostDeleteStream(&again);
  // The ring of an abstract stream is an address from the image: nothing to follow here.
  if (!is_abstract(copy->brng)) {
    BrngProperties row;
    if (__ostGetBrngProperties(copy->brng, &row) != 0) std::abort();
    uint32_t words[300 * 4];
    double reals[300];
    row.iBRng(copy, 300, words);
    row.dBRng(copy, 300, reals, 0, 1);
    row.iBRng(copy, 7, words);
  }
  __ostDeleteStream(&copy);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<uint8_t> image(data, data + size);
  // Filling up moves no field, but zeros behind the end may be sizes now: once more until it holds.
  for (size_t covered = qor::fuzz::covered_bytes(image, kLimit); covered != image.size();
       covered = qor::fuzz::covered_bytes(image, kLimit)) {
    if (covered > kLimit) return 0;
    if (covered < image.size()) break;
    image.resize(covered, 0);
  }
  if (image.size() < 24) image.resize(24, 0);
  StreamState* stream = nullptr;
  const int32_t status = __ostLoadStreamM(&stream, image.data());
  if ((status == 0) != (stream != nullptr)) std::abort();
  if (stream == nullptr) return 0;
  use(stream);
  __ostDeleteStream(&stream);
  return 0;
}
