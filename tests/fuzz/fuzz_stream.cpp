// Fuzz target: loading a stream from a file, from a pipe with the same bytes, and from memory, then
// everything that walks what was loaded.

#include <cstring>
#include <vector>

#include "qor/distributions.h"
#include "qor/streams.h"
#include "tests/fuzz/memory_file.h"

namespace {

using namespace qor::fuzz;
using Image = std::vector<uint8_t>;
// Bytes of an image that are filled up at most, and that a pipe takes at once.
constexpr size_t kLimit = 1 << 16;

// The bytes that an image with these sizes covers; walks headers and chunk records only. Sizes
// beyond the limit end the walk.
size_t covered_bytes(const Image& image) {
  const auto field = [&](size_t at, size_t bytes) {
    uint32_t value = 0;
    if (at + bytes <= image.size()) std::memcpy(&value, image.data() + at, bytes);
    return size_t{value};
  };
  const size_t version = field(0, 1), record = version == 0 ? 8 : 24;
  const bool current = version == 2;
  const size_t chunks = current ? field(16, 2) : field(12, 2);
  size_t end = current ? 24 + field(12, 4) : 20 + field(10, 2);
  if (version > 2) return end + (chunks != 0 ? 4 : 0);
  for (size_t k = 0; k < chunks && end <= kLimit; ++k) end += record + field(end + record - 4, 4);
  return end;
}

// A reader of a memory image cannot know its length, so what the image's own sizes cover is made to
// be there. False when it would be too long.
bool complete(Image& image) {
  // Filling up moves no field, but zeros behind the end may be sizes now: once more until it holds.
  for (size_t covered = covered_bytes(image); covered > image.size();
       covered = covered_bytes(image)) {
    if (covered > kLimit) return false;
    image.resize(covered, 0);
  }
  if (image.size() < 24) image.resize(24, 0);
  return true;
}

template <class... Where>
StreamState* loaded(int32_t entry(StreamState**, Where...), Where... where) {
  StreamState* stream = nullptr;
  const int32_t status = entry(&stream, where...);
  require((status == 0) == (stream != nullptr));
  return stream;
}

Image image_of(const StreamState* stream) {
  Image image(static_cast<size_t>(__ostGetStreamSize(stream)));
  require(__ostSaveStreamM(stream, image.data()) == 0);
  return image;
}

// The image of a loaded stream loads too, and draws.
void use(const StreamState* stream) {
  StreamState *again = loaded<const void*>(__ostLoadStreamM, image_of(stream).data()),
              *copy = nullptr;
  require(again != nullptr && __ostCopyStream(&copy, again) == 0);
  __ostDeleteStream(&again);
  BrngProperties row;
  require(__ostGetBrngProperties(copy->brng, &row) == 0);
  // The ring of an abstract stream is an address from the image: nothing to follow here.
  if (copy->brng < QOR_BRNG_IABSTRACT || copy->brng > QOR_BRNG_SABSTRACT) {
    uint32_t words[300 * 4];
    double reals[300];
    int32_t integers[300];
    row.iBRng(copy, 300, words);
    row.dBRng(copy, 300, reals, 0, 1);
    row.iBRng(copy, 7, words);
    _ostiRngUniform(0, copy, 300, integers, -3, 3);
    // Rounding may give the upper end of reals.
    for (const double u : reals) require(u >= 0 && u <= 1);
    for (const int32_t k : integers) require(k >= -3 && k < 3);
  }
  __ostDeleteStream(&copy);
}

StreamState* loaded_from_file(const std::string& name) {
  return loaded<const char*, int32_t>(__ostLoadStreamF, name.c_str(), -1);
}

StreamState* loaded_from_pipe(const uint8_t* data, size_t size) {
  int ends[2];
  require(pipe(ends) == 0);
  require(write(ends[1], data, size) == static_cast<ssize_t>(size));
  close(ends[1]);
  StreamState* stream = loaded_from_file("/proc/self/fd/" + std::to_string(ends[0]));
  close(ends[0]);
  return stream;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  StreamState* stream = loaded_from_file(file_of(data, size));
  if (size <= kLimit) {
    StreamState* again = loaded_from_pipe(data, size);
    require((stream != nullptr) == (again != nullptr));
    if (again != nullptr) {
      require(image_of(again) == image_of(stream));
      __ostDeleteStream(&again);
    }
  }
  if (stream != nullptr) {
    image_of(stream);
    __ostDeleteStream(&stream);
  }
  Image image(data, data + size);
  if (!complete(image)) return 0;
  stream = loaded<const void*>(__ostLoadStreamM, image.data());
  if (stream != nullptr) {
    use(stream);
    __ostDeleteStream(&stream);
  }
  return 0;
}
