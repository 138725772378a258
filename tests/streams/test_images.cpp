// Images: what is saved, what loads, and what is refused.

#include "tests/streams/image_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

std::vector<int32_t> ids_of(const Stream& stream) {
  std::vector<int32_t> ids;
  for (auto* c = reinterpret_cast<StreamChunk*>(static_cast<intptr_t>(stream->chunks));
       c != nullptr; c = c->next)
    ids.push_back(c->id);
  return ids;
}

void put(Bytes& image, size_t at, uint64_t value, size_t bytes) {
  for (size_t k = 0; k < bytes; ++k)
    image.at(at + k) = static_cast<unsigned char>(value >> (8 * k));
}

// An image of an MCG31M1 stream, byte by byte from the description of the format: x = 5, a = 7.
Bytes by_hand(unsigned version, uint32_t brng = 0x100000) {
  Bytes image(version == 2 ? 32 : 28, 0xEE);  // unused bytes may hold anything
  const size_t head = image.size() - 8;
  image[0] = static_cast<unsigned char>(version);
  put(image, 4, 0x474E52, 3);
  if (version == 2) {
    put(image, 8, 24, 2);
    put(image, 12, 8, 4);
    put(image, 16, 0, 2);
    put(image, 20, brng, 4);
  } else {
    put(image, 10, 8, 2);
    put(image, 12, 0, 2);
    put(image, 16, brng, 4);
  }
  put(image, head, 5, 4);
  put(image, head + 4, 7, 4);
  return image;
}

TEST(Images, StreamsGoOn) {
  for (int32_t brng : {0x100000, 0x200000, 0x300000, 0x400000, 0x500020, 276}) {
    const Stream stream = with_chunks(brng);
    words_of(stream, 77);
    const Bytes image = image_of(stream);
    Loaded memory = load_memory(image), file = load_file(image);
    ASSERT_EQ(memory.status, 0);
    ASSERT_EQ(file.status, 0);
    EXPECT_EQ(memory.stream->brng, brng);
    const auto next = words_of(stream, 50);
    EXPECT_EQ(words_of(memory.stream, 50), next);
    EXPECT_EQ(words_of(file.stream, 50), next);
  }
}

// Words that are no residues, as only an image can bring them, stand for their residues.
TEST(Images, WordsOfWhMayBeAnyOfTheirClass) {
  const Stream stream = new_stream(QOR_BRNG_WH);
  Bytes image = image_of(stream);
  const size_t state = image.size() - 8 * sizeof(uint32_t);
  const uint32_t moduli[4] = {16770647, 16770643, 16770623, 16770617};
  for (size_t j = 0; j < 8; ++j) {
    uint32_t word;
    std::memcpy(&word, image.data() + state + 4 * j, sizeof word);
    put(image, state + 4 * j, word + 200 * moduli[j % 4], sizeof word);
  }
  const Loaded loaded = load_memory(image);
  ASSERT_EQ(loaded.status, 0);
  for (const int n : {7, 100}) EXPECT_EQ(words_of(loaded.stream, n), words_of(stream, n)) << n;
}

TEST(Images, FileAndMemoryAreOneFormat) {
  const Stream stream = with_chunks(QOR_BRNG_MRG32K3A);
  const File file;
  ASSERT_EQ(__ostSaveStreamF(stream.get(), file.path.c_str(), -1), 0);
  EXPECT_EQ(file.read(), image_of(stream));
}

TEST(Images, WrittenByHandLoad) {
  for (unsigned version : {0u, 1u, 2u}) {
    for (const Loaded& loaded : {load_memory(by_hand(version)), load_file(by_hand(version))}) {
      ASSERT_EQ(loaded.status, 0) << version;
      EXPECT_EQ(next_word<uint32_t>(loaded.stream), 5u);
      EXPECT_EQ(next_word<uint32_t>(loaded.stream), 35u);
    }
  }
  // The magic in the first word, which makes the first byte an unknown version.
  Bytes image = by_hand(0x52);
  put(image, 0, 0x474E52, 3);
  put(image, 4, 0, 3);
  EXPECT_EQ(load_memory(image).status, 0);
  put(image, 12, 1, 2);
  image.resize(image.size() + 100, 0);
  EXPECT_EQ(load_memory(image).status, -1103);
  EXPECT_EQ(load_file(image).status, -1103);
  // Written ones say what by_hand says, unused bytes apart.
  const Stream stream = load_memory(by_hand(2)).stream;
  Bytes expected = by_hand(2);
  for (size_t unused : {1u, 2u, 3u, 7u, 10u, 11u, 18u, 19u}) expected[unused] = 0;
  EXPECT_EQ(image_of(stream), expected);
}

TEST(Images, ChunkRecordsByVersion) {
  for (unsigned version : {0u, 1u, 2u}) {
    Bytes image = by_hand(version);
    put(image, version == 2 ? 16 : 12, 1, 2);
    Bytes chunk(version == 0 ? 10 : 26, 0);
    put(chunk, 0, 77, 4);
    put(chunk, chunk.size() - 6, 2, 4);
    put(chunk, chunk.size() - 2, 0xBBAA, 2);
    image.insert(image.end(), chunk.begin(), chunk.end());
    for (const Loaded& loaded : {load_memory(image), load_file(image)}) {
      ASSERT_EQ(loaded.status, 0) << version;
      const auto* data = static_cast<unsigned char*>(__ostSearchChunk(loaded.stream.get(), 77));
      ASSERT_NE(data, nullptr);
      EXPECT_EQ(data[0], 0xAA);
      EXPECT_EQ(data[1], 0xBB);
    }
  }
}

TEST(Images, LoadingReversesTheChunks) {
  const Stream stream = with_chunks(QOR_BRNG_MCG59);
  EXPECT_EQ(ids_of(stream), (std::vector{2, 1}));
  const Stream once = load_memory(image_of(stream)).stream;
  EXPECT_EQ(ids_of(once), (std::vector{1, 2}));
  EXPECT_EQ(image_of(load_memory(image_of(once)).stream), image_of(stream));
}

TEST(Images, SpoiledOnesAreRefused) {
  struct Spoil {
    const char* what;
    size_t at;
    uint64_t value;
    size_t bytes;
    int32_t status;  // of the file form; 0 for one that loads
  };
  const Spoil spoils[] = {{"magic", 4, 0x474E53, 3, -1110},
                          {"header size 23", 8, 23, 2, -1110},
                          {"header size 25", 8, 25, 2, 0},
                          {"state size + 1", 12, 9, 4, -1110},
                          {"state size - 1", 12, 7, 4, -1110},
                          {"unknown generator", 20, 0x1200000, 4, -1110},
                          {"negative generator", 20, 0xFFFFFFFF, 4, -1110},
                          {"another generator", 20, 0x400000, 4, -1110},
                          {"member of no family", 20, 0x100001, 4, -1110},
                          {"older version byte", 0, 1, 1, -1110},
                          {"old numbering", 20, 0, 4, 0}};
  for (const Spoil& s : spoils) {
    Bytes image = by_hand(2);
    put(image, s.at, s.value, s.bytes);
    EXPECT_EQ(load_file(image).status, s.status) << s.what;
    EXPECT_EQ(load_memory(image).status, s.status == -1110 ? -1200 : s.status) << s.what;
  }
  // An empty row of the first numbering, with the state size that its zeros come to.
  Bytes image = by_hand(2, 279);
  put(image, 12, 0xFFFFFFF0, 4);
  EXPECT_EQ(load_memory(image).status, -1200);
  put(image, 12, 0, 4);
  EXPECT_EQ(load_memory(image).status, -1200);
}

TEST(Images, ChunksWithoutBytes) {
  const Stream stream = new_stream(QOR_BRNG_MCG31M1);
  __ostAddChunk(stream.get(), 1, nullptr, block_of({}), 0);
  const Loaded loaded = load_memory(image_of(stream));
  ASSERT_EQ(loaded.status, 0);
  EXPECT_EQ(ids_of(loaded.stream), std::vector{1});
  const File file;
  EXPECT_EQ(__ostSaveStreamF(stream.get(), file.path.c_str(), -1), -1102);
  EXPECT_EQ(load_file(image_of(stream)).status, -1103);
  // Only the last chunk's answer stands.
  const Stream behind = new_stream(QOR_BRNG_MCG31M1);
  __ostAddChunk(behind.get(), 2, nullptr, block_of({9}), 1);
  __ostAddChunk(behind.get(), 1, nullptr, block_of({}), 0);
  EXPECT_EQ(__ostSaveStreamF(behind.get(), file.path.c_str(), -1), 0);
  EXPECT_EQ(load_file(file.read()).status, 0);
}

TEST(Images, SharedDataStaysShared) {
  const long before = live_blocks();
  {
    const Stream stream = new_stream(QOR_BRNG_MCG31M1);
    qor_shared_id id{};
    __ostGenerateNewGlobalRODataTableEntryId(&id, 3);
    __ostAddChunk(stream.get(), 9, &id, block_of({1, 2, 3}), 3);
    const Bytes image = image_of(stream);
    const Loaded loaded = load_memory(image);
    ASSERT_EQ(loaded.status, 0);
    EXPECT_EQ(__ostSearchChunk(loaded.stream.get(), 9), __ostSearchChunk(stream.get(), 9));
    // An image that tells another size than the registered data has gets its own copy.
    Bytes longer = image;
    put(longer, 32 + 20, 5, 4);
    longer.insert(longer.end(), {4, 5});
    const Loaded own = load_memory(longer);
    ASSERT_EQ(own.status, 0);
    EXPECT_NE(__ostSearchChunk(own.stream.get(), 9), __ostSearchChunk(stream.get(), 9));
    EXPECT_EQ(image_of(own.stream).size(), longer.size());
  }
  EXPECT_EQ(live_blocks(), before);
}

}  // namespace
