// Files of streams: names, files that cannot be read or written, and memory that runs out.

#include <sys/resource.h>

#include <csignal>

#include "tests/streams/image_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

TEST(ImageFiles, FilesThatEndEarly) {
  const long before = live_blocks();
  const Bytes whole = image_of(with_chunks(QOR_BRNG_MCG31M1));
  for (size_t length = 0; length < whole.size(); ++length) {
    const Bytes part(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
    EXPECT_EQ(load_file(part).status, -1103) << length;
  }
  EXPECT_EQ(live_blocks(), before);
}

TEST(ImageFiles, AllocationFailuresLeaveNothingBehind) {
  const Stream stream = with_chunks(QOR_BRNG_MCG31M1);
  const Bytes image = image_of(stream);
  const File file(image);
  const auto length = static_cast<int32_t>(file.path.size());
  const long before = live_blocks();
  for (long allowed = 0; allowed < 6; ++allowed) {
    StreamState sentinel{}, *loaded = &sentinel;
    const FailingAllocations failing(allowed);
    // The name's block comes first, then the record and a payload and a chunk each.
    EXPECT_EQ(__ostLoadStreamF(&loaded, file.path.c_str(), length), -4) << allowed;
    EXPECT_EQ(loaded, nullptr);
    if (allowed < 5) {
      EXPECT_EQ(__ostLoadStreamM(&loaded, image.data()), -4);
      EXPECT_EQ(loaded, nullptr);
    }
    EXPECT_EQ(live_blocks(), before);
  }
  const FailingAllocations failing(0);
  EXPECT_EQ(__ostSaveStreamF(stream.get(), file.path.c_str(), length), -4);
}

TEST(ImageFiles, NamesOfGivenLength) {
  const File file;
  const std::string longer = file.path + "xyz";
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  ASSERT_EQ(__ostSaveStreamF(stream.get(), longer.c_str(), static_cast<int32_t>(file.path.size())),
            0);
  EXPECT_EQ(file.read(), image_of(stream));
  StreamState* loaded = nullptr;
  ASSERT_EQ(__ostLoadStreamF(&loaded, longer.c_str(), static_cast<int32_t>(file.path.size())), 0);
  __ostDeleteStream(&loaded);
  EXPECT_EQ(__ostSaveStreamF(stream.get(), "", 0), -1101);
}

TEST(ImageFiles, FilesThatCannotBeOpenedOrFilled) {
  const Stream stream = with_chunks(QOR_BRNG_R250);
  StreamState sentinel{}, *loaded = &sentinel;
  EXPECT_EQ(__ostSaveStreamF(stream.get(), "/nonexistent/stream", -1), -1101);
  EXPECT_EQ(__ostLoadStreamF(&loaded, "/nonexistent/stream", -1), -1101);
  EXPECT_EQ(loaded, nullptr);
  // A full device shows when the file is closed.
  EXPECT_EQ(__ostSaveStreamF(stream.get(), "/dev/full", -1), -1100);
  // A large payload is written at once: what a limit cuts off fails there.
  const Stream large = new_stream(QOR_BRNG_MCG31M1);
  __ostAddChunk(large.get(), 1, nullptr, block_of(Bytes(1 << 20, 1)), 1 << 20);
  const File file;
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{1 << 16, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const int32_t status = __ostSaveStreamF(large.get(), file.path.c_str(), -1);
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_EQ(status, -1102);
}

}  // namespace
