// qor random: the values are the library's, in every form and at every level.

#include "front/cli/csv.h"
#include "tests/front/random_fixture.h"

namespace {

using namespace qor::test;

constexpr size_t kMany = 40'000;  // more than two blocks, and no multiple of one
const std::string kSome = " -n 40000 --format raw";

template <class Value, class Draw>
std::string library(int32_t brng, size_t count, Draw draw) {
  const Stream stream = new_stream(brng);
  std::vector<Value> values(count);
  EXPECT_EQ(draw(stream.get(), static_cast<int32_t>(kMany), values.data()), 0);
  return bytes_of(values);
}

TEST_F(Random, EveryDistributionGivesTheLibrarysValues) {
  const int32_t brng = QOR_BRNG_MCG59;
  EXPECT_EQ(drawn(kMcg59 + "--distribution uniform --a=-2 --b 5e-1 --accurate" + kSome),
            library<double>(brng, kMany, [](StreamState* s, int32_t n, double* r) {
              return _ostdRngUniform(QOR_RNG_ACCURATE, s, n, r, -2, 0.5);
            }));
  EXPECT_EQ(drawn(kMcg59 + "--distribution uniform --type single" + kSome),
            library<float>(brng, kMany, [](StreamState* s, int32_t n, float* r) {
              return _ostsRngUniform(0, s, n, r, 0, 1);
            }));
  EXPECT_EQ(drawn(kMcg59 + "--distribution Uniform --type int --a -7 --b 2147483647" + kSome),
            library<int32_t>(brng, kMany, [](StreamState* s, int32_t n, int32_t* r) {
              return _ostiRngUniform(0, s, n, r, -7, 2147483647);
            }));
  EXPECT_EQ(drawn(kMcg59 + "--distribution uniformbits" + kSome),
            library<uint64_t>(brng, kMany, [](StreamState* s, int32_t n, uint64_t* r) {
              return _ostiRngUniformBits(0, s, n, r);
            }));
  EXPECT_EQ(drawn(kMcg59 + "--distribution uniformbits32" + kSome),
            library<uint32_t>(brng, kMany, [](StreamState* s, int32_t n, uint32_t* r) {
              return _ostiRngUniformBits32(0, s, n, r);
            }));
  EXPECT_EQ(drawn(kMcg59 + "--distribution uniformbits64" + kSome),
            library<uint64_t>(brng, kMany, [](StreamState* s, int32_t n, uint64_t* r) {
              return _ostiRngUniformBits64(0, s, n, r);
            }));
  EXPECT_EQ(drawn(kMcg59 + "--distribution bernoulli --p 0.25" + kSome),
            library<int32_t>(brng, kMany, [](StreamState* s, int32_t n, int32_t* r) {
              return _ostiRngBernoulli(0, s, n, r, 0.25);
            }));
}

TEST_F(Random, EveryGeneratorByItsName) {
  struct Case {
    const char* name;
    int32_t brng;
    size_t numbers;  // of 32 bits in a word
  };
  const Case cases[] = {{"mcg31m1", QOR_BRNG_MCG31M1, 1},
                        {"R250", QOR_BRNG_R250, 1},
                        {"Mrg32k3a", QOR_BRNG_MRG32K3A, 1},
                        {"MCG59", QOR_BRNG_MCG59, 2},
                        {"wh", QOR_BRNG_WH, 4},
                        {"WH:272", QOR_BRNG_WH + 272, 4}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(drawn(std::string("--generator ") + c.name +
                    " --seed 7777777 --distribution uniformbits" + kSome),
              library<uint32_t>(c.brng, c.numbers * kMany, [](StreamState* s, int32_t n, void* r) {
                return _ostiRngUniformBits(0, s, n, r);
              }));
  }
  const Stream seeded = new_stream(QOR_BRNG_MRG32K3A, {1, 0xFFFFFFFF, 3});
  EXPECT_EQ(drawn("--generator MRG32K3A --seed 1,0xffffffff,3 --distribution uniform -n 5 "
                  "--format raw"),
            uniform_bytes(seeded, 5));
}

TEST_F(Random, CsvReadsBackExactly) {
  const std::string text = drawn(kMcg59 + "--distribution uniform -n 20000");
  const qor::cli::Csv csv = qor::cli::parse_csv(text, "out");
  EXPECT_EQ(csv.header, std::vector<std::string>{"uniform"});
  EXPECT_EQ(bytes_of(qor::cli::numbers(csv, 0)), uniform_bytes(new_stream(QOR_BRNG_MCG59), 20000));
  EXPECT_EQ(drawn("--generator wh --seed 3,4,5,6 --distribution uniformbits -n 2"),
            "uniformbits1,uniformbits2,uniformbits3,uniformbits4\n3,4,5,6\n375,468,635,756\n");
  EXPECT_EQ(drawn(kMcg59 + "--distribution uniform -n 0"), "uniform\n");
}

TEST_F(Random, NpyIsTheBytesBehindTheirDescription) {
  struct Case {
    std::string arguments, type, shape;
  };
  const Case cases[] = {
      {kMcg59 + "--distribution uniform", "<f8", "(40000,)"},
      {kMcg59 + "--distribution uniform --type single", "<f4", "(40000,)"},
      {kMcg59 + "--distribution uniform --type int --a 0 --b 9", "<i4", "(40000,)"},
      {kMcg59 + "--distribution uniformbits", "<u8", "(40000,)"},
      {"--generator wh:4 --seed 1 --distribution uniformbits", "<u4", "(40000, 4)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments);
    const std::string npy = drawn(c.arguments + " -n 40000 --format npy");
    const std::string raw = drawn(c.arguments + kSome);
    ASSERT_GT(npy.size(), raw.size() + 10);
    const size_t head = npy.size() - raw.size();
    EXPECT_EQ(npy.substr(head), raw);
    EXPECT_EQ(head % 64, 0u);
    EXPECT_EQ(npy.substr(0, 8), std::string("\x93NUMPY\x01\x00", 8));
    EXPECT_EQ(static_cast<unsigned char>(npy[8]) + 256u * static_cast<unsigned char>(npy[9]),
              head - 10);
    const std::string dictionary =
        "{'descr': '" + c.type + "', 'fortran_order': False, 'shape': " + c.shape + ", }";
    EXPECT_EQ(npy.substr(10, dictionary.size()), dictionary);
    EXPECT_EQ(npy.substr(10 + dictionary.size(), head - 11 - dictionary.size()),
              std::string(head - 11 - dictionary.size(), ' '));
    EXPECT_EQ(npy[head - 1], '\n');
  }
}

TEST_F(Random, LeapfrogThenSkip) {
  const std::string whole = drawn(kMcg59 + "--distribution uniform --format raw -n 300");
  const std::string every_third =
      drawn(kMcg59 + "--distribution uniform --format raw -n 90 --leapfrog 2/3 --skip 10");
  for (size_t i = 0; i < 90; ++i) {
    ASSERT_EQ(every_third.substr(8 * i, 8), whole.substr(8 * (3 * (i + 10) + 2), 8)) << i;
  }
  // 2^64 * 3 + 5, which one word does not hold.
  const Stream far = new_stream(QOR_BRNG_MRG32K3A);
  const uint64_t count[] = {5, 3};
  ASSERT_EQ(__ostSkipAheadStreamEx(far.get(), 2, count), 0);
  EXPECT_EQ(drawn("--generator mrg32k3a --seed 7777777 --distribution uniform -n 20 --format raw"
                  " --skip 55340232221128654853"),
            uniform_bytes(far, 20));
}

TEST_F(Random, SavedStreamsGoOn) {
  for (const char* generator : {"mcg31m1", "r250", "mrg32k3a", "mcg59", "wh:9"}) {
    SCOPED_TRACE(generator);
    const std::string start = std::string("--generator ") + generator + " --seed 1,2,3 ";
    const std::string form = "--distribution uniform --format raw -n ";
    const std::string whole = drawn(start + form + "1500");
    std::string parts = drawn(start + form + "1000 --save-stream " + path("s"));
    // The file that is read may be the one that is written.
    parts +=
        drawn("--load-stream " + path("s") + " --save-stream " + path("s") + " " + form + "300");
    parts += drawn("--load-stream " + path("s") + " " + form + "200");
    EXPECT_EQ(parts, whole);
  }
  const Stream stream = new_stream(QOR_BRNG_MCG59);
  drawn(kMcg59 + "--distribution uniform -n 0 --save-stream " + path("s"));
  std::string image(static_cast<size_t>(__ostGetStreamSize(stream.get())), '\0');
  __ostSaveStreamM(stream.get(), image.data());
  EXPECT_EQ(content(path("s")), image);
  EXPECT_EQ(names(), "s ");
}

TEST_F(Random, StreamsGoOnAtAnotherLevel) {
  std::vector<std::string> levels;
  for (const auto& entry : fs::directory_iterator(QOR_BUILD_LIB "/../levels")) {
    const std::string level = entry.path().filename();
    if (level == "v3" && !__builtin_cpu_supports("x86-64-v3")) continue;
    if (level == "v4" && !__builtin_cpu_supports("x86-64-v4")) continue;
    levels.push_back(entry.path());
  }
  const auto at = [](const std::string& level) { setenv("LD_LIBRARY_PATH", level.c_str(), 1); };
  const std::string before = getenv("LD_LIBRARY_PATH") != nullptr ? getenv("LD_LIBRARY_PATH") : "";
  const std::string form = "--distribution uniform --format raw -n ";
  for (const char* generator : {"mcg31m1", "r250", "mrg32k3a", "mcg59", "wh:9"}) {
    const std::string start = std::string("--generator ") + generator + " --seed 1,2,3 ";
    const std::string whole = drawn(start + form + "20000");
    for (const std::string& from : levels) {
      at(from);
      const std::string first = drawn(start + form + "13001 --save-stream " + path("s"));
      for (const std::string& to : levels) {
        if (to == from && levels.size() > 1) continue;
        at(to);
        EXPECT_EQ(first + drawn("--load-stream " + path("s") + " " + form + "6999"), whole)
            << generator << " from " << from << " to " << to;
      }
    }
  }
  at(before);
}

TEST_F(Random, PlotShowsTheValues) {
  const std::string arguments =
      "--generator mcg59 --seed 1 --distribution bernoulli --p 0.25 -n 1000";
  const std::string values = drawn(arguments);
  const auto ones = std::count(values.begin(), values.end(), '1');
  const std::string plot = drawn(arguments + " --plot");
  EXPECT_EQ(plot.find("1000 values from 0 to 1, mean 0." + std::to_string(ones)), 0u) << plot;
  EXPECT_NE(plot.find("\n  0       " + std::to_string(1000 - ones)), std::string::npos) << plot;
  EXPECT_NE(plot.find(" %  " + std::string(50, '#') + "\n"), std::string::npos) << plot;
  // With a file, both.
  EXPECT_EQ(drawn(arguments + " --plot -o " + path("values")), plot);
  EXPECT_EQ(content(path("values")), values);
}

}  // namespace
