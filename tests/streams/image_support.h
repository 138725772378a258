// Images of streams for tests, in memory and in files that go with them.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/streams/stream_support.h"

namespace qor::test {

using Bytes = std::vector<unsigned char>;

inline Bytes image_of(const Stream& stream) {
  Bytes image(static_cast<size_t>(__ostGetStreamSize(stream.get())));
  EXPECT_EQ(__ostSaveStreamM(stream.get(), image.data()), 0);
  return image;
}

// A file that goes with the test.
class File {
 public:
  explicit File(const Bytes& contents = {}) {
    char name[] = "/tmp/qor_stream_XXXXXX";
    const int descriptor = mkstemp(name);
    EXPECT_GE(descriptor, 0);
    close(descriptor);
    path = name;
    write(contents);
  }
  ~File() { std::remove(path.c_str()); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  void write(const Bytes& contents) const {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(contents.data()),
               static_cast<std::streamsize>(contents.size()));
  }
  Bytes read() const {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  std::string path;
};

struct Loaded {
  int32_t status;
  Stream stream;
};

inline Loaded load_memory(const Bytes& image) {
  StreamState sentinel{}, *stream = &sentinel;
  const int32_t status = __ostLoadStreamM(&stream, image.data());
  EXPECT_EQ(status == 0, stream != nullptr);
  return {status, Stream(stream)};
}

inline Loaded load_file(const Bytes& image) {
  const File file(image);
  StreamState sentinel{}, *stream = &sentinel;
  const int32_t status = __ostLoadStreamF(&stream, file.path.c_str(), -1);
  EXPECT_EQ(status == 0, stream != nullptr);
  return {status, Stream(stream)};
}

inline Stream with_chunks(int32_t brng) {
  Stream stream = new_stream(brng);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({1, 2, 3}), 3);
  __ostAddChunk(stream.get(), 2, nullptr, block_of({4, 5, 6, 7, 8}), 5);
  return stream;
}

}  // namespace qor::test
