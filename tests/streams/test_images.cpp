// Images: what is saved, what loads, and what is refused; and files that cannot be read or written.

#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

#include "tests/fuzz/memory_file.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

// The name of the one file, with these contents now, and what it holds.
std::string file_of(const Bytes& contents = {}) {
  return qor::fuzz::file_of(contents.data(), contents.size());
}
Bytes contents_of(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

Answer load_file(const Bytes& image) {
  return answer_of(__ostLoadStreamF, file_of(image).c_str(), -1);
}

// The same through a pipe, whose length nobody knows.
Answer load_pipe(const Bytes& image) {
  int ends[2] = {-1, -1};
  EXPECT_EQ(pipe(ends), 0);
  std::thread writer([&] {
    for (size_t sent = 0; sent < image.size();) {
      const ssize_t count = write(ends[1], image.data() + sent, image.size() - sent);
      if (count <= 0) break;
      sent += static_cast<size_t>(count);
    }
    close(ends[1]);
  });
  Answer answer =
      answer_of(__ostLoadStreamF, ("/proc/self/fd/" + std::to_string(ends[0])).c_str(), -1);
  close(ends[0]);
  writer.join();
  return answer;
}

Stream with_chunks(int32_t brng) {
  Stream stream = new_stream(brng);
  add_chunk(stream, 1, {1, 2, 3});
  add_chunk(stream, 2, {4, 5, 6, 7, 8});
  return stream;
}

// Loads the images of images.txt: the sound ones, which it saves again, or those that are refused.
void load_written_images(bool sound) {
  std::vector<Bytes> images;
  for (const auto& [place, text] : table_lines("streams/images.txt", 10)) {
    SCOPED_TRACE(place);
    std::istringstream in(text);
    std::string from_file, from_memory;
    size_t saved_as = 0;
    in >> from_file >> from_memory >> saved_as;
    Bytes& image = images.emplace_back();
    for (std::string field; in >> field && field != "#";) {
      for (size_t k = 0; k < field.size(); k += 2)
        image.push_back(static_cast<unsigned char>(std::stoi(field.substr(k, 2), nullptr, 16)));
    }
    if (sound != (saved_as != 0)) continue;
    const Answer file = load_file(image), memory = load_memory(image);
    EXPECT_EQ(file.what, from_file + (sound ? " made" : " null"));
    EXPECT_EQ(memory.what, from_memory + (sound ? " made" : " null"));
    for (const Stream* loaded : {&file.stream, &memory.stream}) {
      if (*loaded == nullptr) continue;
      EXPECT_EQ(image_of(*loaded), images.at(saved_as - 1));
    }
  }
}

TEST(Images, StreamsGoOn) {
  for (int32_t brng : {0x100000, 0x200000, 0x300000, 0x400000, 0x500020, 276}) {
    const Stream stream = with_chunks(brng);
    words_of(stream, 77);
    const Bytes image = image_of(stream);
    const std::string file = file_of();
    ASSERT_EQ(__ostSaveStreamF(stream.get(), file.c_str(), -1), 0);
    EXPECT_EQ(contents_of(file), image);
    EXPECT_EQ(ids_of(stream), (std::vector{2, 1}));
    const Stream loaded[] = {load_memory(image).stream, load_file(image).stream, copy_of(stream)};
    const Bytes next = words_of(stream, 50);
    for (const Stream& each : loaded) {
      ASSERT_NE(each, nullptr);
      EXPECT_EQ(each->brng, brng);
      EXPECT_EQ(ids_of(each), (std::vector{1, 2}));
      EXPECT_EQ(image_of(load_memory(image_of(each)).stream), image);
      EXPECT_EQ(words_of(each, 50), next);
    }
  }
}

TEST(Images, WrittenByHandLoad) { load_written_images(true); }
TEST(Images, SpoiledOnesAreRefused) { load_written_images(false); }

TEST(Images, ChunksWithoutBytes) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1), behind = new_stream(QOR_BRNG_MCG31M1);
  add_chunk(stream, 1, {});
  EXPECT_EQ(ids_of(load_memory(image_of(stream)).stream), std::vector{1});
  const std::string file = file_of();
  EXPECT_EQ(__ostSaveStreamF(stream.get(), file.c_str(), -1), -1102);
  EXPECT_EQ(load_file(image_of(stream)).what, "-1103 null");
  // Only the last chunk's answer stands.
  add_chunk(behind, 2, {9});
  add_chunk(behind, 1, {});
  EXPECT_EQ(__ostSaveStreamF(behind.get(), file.c_str(), -1), 0);
  EXPECT_EQ(load_file(contents_of(file)).what, "0 made");
}

TEST(Images, WhatDoesNotFitTheFormatIsNotWritten) {
  const Bytes sentinel = {1, 2, 3};
  const std::string file = file_of(sentinel);
  const auto expect_not_in_memory = [](const Stream& stream) {
    Bytes memory(100);
    EXPECT_EQ(__ostSaveStreamM(stream.get(), memory.data()), -1102);
    EXPECT_EQ(memory, Bytes(100));
  };
  const auto expect_refused = [&](const Stream& stream) {
    EXPECT_EQ(__ostSaveStreamF(stream.get(), file.c_str(), -1), -1102);
    EXPECT_EQ(contents_of(file), sentinel);
    expect_not_in_memory(stream);
  };
  const Stream many = new_stream(QOR_BRNG_MCG31M1);
  for (int k = 0; k < 65535; ++k) add_chunk(many, k, {7});
  EXPECT_EQ(ids_of(load_memory(image_of(many)).stream).size(), 65535u);
  add_chunk(many, 65535, {7});
  expect_refused(many);
  // Memory has to be asked for by a size that 32 bits hold.
  const Stream large = new_stream(QOR_BRNG_MCG31M1);
  ASSERT_EQ(__ostAddChunk(large.get(), 1, nullptr, qor_serv_allocate(1, 128), 0x80000000), 0);
  EXPECT_EQ(__ostGetStreamSize(large.get()), -1102);
  expect_not_in_memory(large);
}

TEST(Images, SharedDataStaysShared) {
  const BlocksInBalance balance;
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  const qor_shared_id id{5, 6};
  const void* data = add_chunk(stream, 9, {1, 2, 3}, &id);
  Bytes image = image_of(stream);
  const Stream loaded = load_memory(image).stream;
  EXPECT_EQ(__ostSearchChunk(loaded.get(), 9), data);
  // An image that tells another size than the registered data has gets its own copy.
  image[32 + 20] = 5;
  image.insert(image.end(), {4, 5});
  const Stream own = load_memory(image).stream;
  EXPECT_NE(__ostSearchChunk(own.get(), 9), data);
  EXPECT_EQ(image_of(own).size(), image.size());
}

TEST(ImageFiles, FilesThatEndEarly) {
  const Bytes whole = image_of(with_chunks(QOR_BRNG_MCG31M1));
  const BlocksInBalance balance;
  for (auto end = whole.begin(); end != whole.end(); ++end)
    EXPECT_EQ(load_file(Bytes(whole.begin(), end)).what, "-1103 null") << end - whole.begin();
}

TEST(ImageFiles, APayloadThatIsNotThereIsNotAllocated) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  add_chunk(stream, 1, {1, 2, 3});
  Bytes image = image_of(stream);
  std::fill_n(image.begin() + 32 + 20, 4, 0xFF);  // of 4 GB
  for (const auto& load : {load_file, load_pipe}) {
    const FailingAllocations none(-1);
    EXPECT_EQ(load(image).what, "-1103 null");
    EXPECT_LE(none.largest(), size_t{1} << 20);
  }
}

TEST(ImageFiles, PipesOfAnyLength) {
  const Stream stream = with_chunks(QOR_BRNG_R250);
  Bytes payload(5'000'001);
  for (size_t i = 0; i < payload.size(); ++i) payload[i] = static_cast<unsigned char>(i % 251);
  add_chunk(stream, 3, payload);
  const Bytes image = image_of(stream);
  const BlocksInBalance balance;
  const Stream loaded = load_pipe(image).stream;
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(image_of(load_memory(image_of(loaded)).stream), image);
  EXPECT_EQ(load_pipe(Bytes(image.begin(), image.end() - 100)).what, "-1103 null");
  EXPECT_EQ(load_pipe(Bytes(image.begin(), image.begin() + 3'000'000)).what, "-1103 null");
}

TEST(ImageFiles, AllocationFailuresLeaveNothingBehind) {
  const Stream stream = with_chunks(QOR_BRNG_MCG31M1);
  const Bytes image = image_of(stream);
  const std::string file = file_of(image);
  const auto length = static_cast<int32_t>(file.size());
  for (long allowed = 0; allowed < 7; ++allowed) {
    const BlocksInBalance balance;
    const auto load = [allowed](auto... arguments) {
      const FailingAllocations failing(allowed);
      return answer_of(arguments...).what;
    };
    // The name's block comes first, then the record and a payload and a chunk each.
    EXPECT_EQ(load(__ostLoadStreamF, file.c_str(), length), allowed < 6 ? "-4 null" : "0 made");
    EXPECT_EQ(load(__ostLoadStreamM, image.data()), allowed < 5 ? "-4 null" : "0 made");
  }
  const FailingAllocations failing(0);
  EXPECT_EQ(__ostSaveStreamF(stream.get(), file.c_str(), length), -4);
}

TEST(ImageFiles, NamesOfGivenLength) {
  const std::string file = file_of();
  const auto length = static_cast<int32_t>(file.size());
  const std::string longer = file + "xyz";
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  ASSERT_EQ(__ostSaveStreamF(stream.get(), longer.c_str(), length), 0);
  EXPECT_EQ(contents_of(file), image_of(stream));
  made(__ostLoadStreamF, longer.c_str(), length);
  EXPECT_EQ(__ostSaveStreamF(stream.get(), "", 0), -1101);
}

TEST(ImageFiles, FilesThatCannotBeOpenedOrFilled) {
  const Stream stream = with_chunks(QOR_BRNG_R250);
  EXPECT_EQ(__ostSaveStreamF(stream.get(), "/nonexistent/stream", -1), -1101);
  EXPECT_EQ(answer_of(__ostLoadStreamF, "/nonexistent/stream", -1).what, "-1101 null");
  // A full device shows when the file is closed.
  EXPECT_EQ(__ostSaveStreamF(stream.get(), "/dev/full", -1), -1100);
  // A large payload is written at once: what a limit cuts off fails there.
  const Stream large = new_stream(QOR_BRNG_MCG31M1);
  add_chunk(large, 1, Bytes(1 << 20));
  const std::string file = file_of();
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{1 << 16, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const int32_t status = __ostSaveStreamF(large.get(), file.c_str(), -1);
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_EQ(status, -1102);
}

}  // namespace
