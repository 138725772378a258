// qor random: the values are the library's, in every form; what goes wrong destroys nothing.

#include <cstring>

#include "front/cli/csv.h"
#include "qor/distributions.h"
#include "tests/front/command_fixture.h"

namespace {

using qor::test::Result;
namespace fs = std::filesystem;

struct DeleteStream {
  void operator()(StreamState* stream) const { __ostDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

Stream stream_of(int32_t brng, const std::vector<uint32_t>& seed = {7777777}) {
  StreamState* stream = nullptr;
  EXPECT_EQ(__ostNewStreamEx(&stream, brng, static_cast<int32_t>(seed.size()), seed.data()), 0);
  return Stream(stream);
}

template <class Value>
std::string bytes_of(const std::vector<Value>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value)};
}

std::string uniform_bytes(const Stream& stream, size_t n) {
  std::vector<double> values(n);
  _ostdRngUniform(0, stream.get(), static_cast<int32_t>(n), values.data(), 0, 1);
  return bytes_of(values);
}

class Random : public qor::test::Command {
 protected:
  // Runs a drawing that must succeed and returns what it wrote to standard output.
  std::string drawn(const std::string& arguments) const {
    const Result result = run("random " + arguments);
    EXPECT_EQ(result.status, 0) << arguments << "\n" << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  std::string path(const std::string& name) const { return folder_ / name; }
  // The names in the folder but for the two that a run makes.
  std::string names() const {
    std::string all;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      const std::string name = entry.path().filename();
      if (name != "out" && name != "err") all += name + " ";
    }
    return all;
  }
};

constexpr size_t kMany = 40'000;  // more than two blocks, and no multiple of one
const std::string kMcg59 = "--generator mcg59 --seed 7777777 ";
const std::string kSome = " -n 40000 --format raw";

template <class Value, class Draw>
std::string library(int32_t brng, size_t count, Draw draw) {
  const Stream stream = stream_of(brng);
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
  const Stream seeded = stream_of(QOR_BRNG_MRG32K3A, {1, 0xFFFFFFFF, 3});
  EXPECT_EQ(drawn("--generator MRG32K3A --seed 1,0xffffffff,3 --distribution uniform -n 5 "
                  "--format raw"),
            uniform_bytes(seeded, 5));
}

TEST_F(Random, CsvReadsBackExactly) {
  const std::string text = drawn(kMcg59 + "--distribution uniform -n 20000");
  const qor::cli::Csv csv = qor::cli::parse_csv(text, "out");
  EXPECT_EQ(csv.header, std::vector<std::string>{"uniform"});
  EXPECT_EQ(bytes_of(qor::cli::numbers(csv, 0)), uniform_bytes(stream_of(QOR_BRNG_MCG59), 20000));
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
  const Stream far = stream_of(QOR_BRNG_MRG32K3A);
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
  const Stream stream = stream_of(QOR_BRNG_MCG59);
  drawn(kMcg59 + "--distribution uniform -n 0 --save-stream " + path("s"));
  std::string image(static_cast<size_t>(__ostGetStreamSize(stream.get())), '\0');
  __ostSaveStreamM(stream.get(), image.data());
  EXPECT_EQ(content(path("s")), image);
  EXPECT_EQ(names(), "s ");
}

TEST_F(Random, FilesTakeTheirNamesAtTheEnd) {
  const std::string arguments = kMcg59 + "--distribution uniform --format raw -n 5 -o ";
  const std::string expected = uniform_bytes(stream_of(QOR_BRNG_MCG59), 5);
  const std::string there = file("there", "what was there is longer than what comes, by a bit");
  fs::permissions(there, fs::perms(0640));
  fs::create_symlink("there", path("link"));
  EXPECT_EQ(drawn(arguments + path("link")), "");
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(content(there), expected);
  EXPECT_EQ(fs::status(there).permissions(), fs::perms(0640));
  EXPECT_EQ(drawn(arguments + path("new")), "");
  EXPECT_EQ(content(path("new")), expected);
  EXPECT_EQ(drawn(arguments + "/dev/null"), "");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Random, AnInterruptedRunLeavesWhatWasThere) {
  const std::string there = file("there", "old");
  const std::string line = "timeout -s INT 0.3 " QOR_COMMAND " random " + kMcg59 +
                           "--distribution uniform -n 100000000000 --save-stream " + path("s") +
                           " -o " + there;
  EXPECT_NE(std::system(line.c_str()), 0);
  EXPECT_EQ(content(there), "old");
  EXPECT_EQ(names(), "there ");
}

TEST_F(Random, AFullDeviceIsNotSuccess) {
  const std::string there = file("there", "old");
  const std::string draw = kMcg59 + "--distribution uniform -n 100000 ";
  for (const std::string& arguments : {draw + "-o /dev/full --save-stream " + there,
                                       draw + "-o " + there + " --save-stream /dev/full"}) {
    const Result result = run("random " + arguments);
    EXPECT_EQ(result.status, 1) << arguments;
    EXPECT_EQ(result.err, "qor: /dev/full: No space left on device\n");
    EXPECT_EQ(content(there), "old");
    EXPECT_EQ(names(), "there ");
  }
  const std::string line = QOR_COMMAND " random " + draw + ">/dev/full 2>/dev/null";
  EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 1);
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

TEST_F(Random, BadInputIsNamedAndNothingIsWritten) {
  const std::string out = file("there", "old"), saved = file("saved", "old too");
  const std::string abstract_image = file("abstract", [] {
    StreamState* stream = nullptr;
    uint32_t ring[2] = {};
    __ostiNewAbstractStream(&stream, 2, ring, [](auto...) { return 0; });
    std::string image(static_cast<size_t>(__ostGetStreamSize(stream)), '\0');
    __ostSaveStreamM(stream, image.data());
    __ostDeleteStream(&stream);
    return image;
  }());
  const std::string uniform = "--distribution uniform -n 9 ", mcg = "--generator mcg31m1 --seed 1 ";
  struct Case {
    std::string arguments;
    std::vector<std::string> named;
  };
  const Case cases[] = {
      {mcg + "-n 9", {"--distribution is missing"}},
      {mcg + "--distribution uniform", {"-n is missing"}},
      {uniform + "--seed 1", {"--generator is missing", "MCG59", "--load-stream"}},
      {uniform + "--generator r250", {"--seed is missing", "below 2^32"}},
      {uniform + "--generator r251 --seed 1", {"--generator", "\"r251\"", "R250", "WH:0-272"}},
      {uniform + "--generator wh:273 --seed 1", {"--generator", "\"273\"", "from 0 to 272"}},
      {uniform + "--generator r250:1 --seed 1", {"--generator", "\"r250:1\""}},
      {uniform + "--generator sobol --seed 1", {"--generator", "\"sobol\""}},
      {uniform + "--generator r250 --seed 1,,2", {"--seed", "\"\"", "4294967295"}},
      {uniform + "--generator r250 --seed 4294967296", {"--seed", "\"4294967296\""}},
      {uniform + "--generator r250 --seed -1", {"--seed", "\"-1\"", "from 0"}},
      {mcg + "--distribution normal -n 9", {"--distribution", "\"normal\"", "uniformbits32"}},
      {mcg + "--distribution uniform -n 1.5", {"-n", "\"1.5\"", "from 0"}},
      {mcg + "--distribution uniform -n -1", {"-n", "\"-1\""}},
      {mcg + uniform + "--type word", {"--type", "\"word\"", "double, single, int"}},
      {mcg + uniform + "--type int --a 1", {"--b is missing", "--a, --b"}},
      {mcg + uniform + "--type int --a 1 --b 2.5", {"--b", "\"2.5\"", "whole"}},
      {mcg + uniform + "--type int --a 1 --b 3e9", {"--b", "\"3e9\"", "2147483647"}},
      {mcg + uniform + "--type int --a 1 --b 1", {"--a 1, --b 1", "--a below --b"}},
      {mcg + uniform + "--a 2", {"--a 2, --b 1", "--a below --b"}},
      {mcg + uniform + "--a nan", {"--a", "\"nan\"", "a number from"}},
      {mcg + uniform + "--a -1e308 --b 1e308", {"--a -1e308, --b 1e308"}},
      {mcg + uniform + "--type single --b 1e39", {"--b", "\"1e39\"", "3.4"}},
      {mcg + uniform + "--type single --a 1 --b 1.00000001", {"--b 1.00000001"}},
      {mcg + uniform + "--p 0.5", {"--p", "\"0.5\"", "--a, --b"}},
      {mcg + uniform + "--accurate=yes", {"--accurate", "no value"}},
      {mcg + "--distribution bernoulli -n 9", {"--p is missing"}},
      {mcg + "--distribution bernoulli -n 9 --p 1.01", {"--p", "\"1.01\"", "from 0 to 1"}},
      {mcg + "--distribution bernoulli -n 9 --p 0.5 --accurate", {"--accurate", "bernoulli"}},
      {mcg + "--distribution uniformbits64 -n 9", {"uniformbits64", "MCG31M1", "uniformbits"}},
      {mcg + uniform + "--skip 1e3", {"--skip", "\"1e3\""}},
      {mcg + uniform + "--skip 18446744073709551616", {"--skip", "MCG31M1", "accept it: MRG32K3A"}},
      {"--generator r250 --seed 1 " + uniform + "--skip 4",
       {"--skip", "R250", "MCG31M1, MRG32K3A"}},
      {"--generator r250 --seed 1 " + uniform + "--leapfrog 0/2", {"--leapfrog", "R250", "WH"}},
      {mcg + uniform + "--leapfrog 3/3", {"--leapfrog", "\"3\"", "from 0 to 2"}},
      {mcg + uniform + "--leapfrog 3", {"--leapfrog", "\"3\"", "K/N"}},
      {mcg + uniform + "--leapfrog 0/0", {"--leapfrog", "\"0\"", "from 1"}},
      {mcg + uniform + "--format xml", {"--format", "\"xml\"", "csv, npy, raw"}},
      {mcg + uniform + "--load-stream " + saved, {"--generator", "--load-stream"}},
      {uniform + "--load-stream /no/such", {"--load-stream", "/no/such", "No such file"}},
      {uniform + "--load-stream " + saved, {"--load-stream", "saved", "ends early"}},
      {uniform + "--load-stream " QOR_EXAMPLE_DATA "/iris.csv", {"--load-stream", "no image"}},
      {uniform + "--load-stream " + folder_.string(), {"--load-stream", "cannot be read"}},
      {uniform + "--load-stream " + abstract_image, {"--load-stream", "abstract stream"}},
      {mcg + uniform + "--save-stream /no/such/s", {"--save-stream", "/no/such/s", "No such file"}},
      {mcg + uniform + "--save-stream " + out, {"-o", "there", "--save-stream"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("qor random " + c.arguments);
    const Result result = run("random " + c.arguments + " -o " + out);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.find("qor: "), 0u);
    for (const std::string& name : c.named) {
      EXPECT_NE(result.err.find(name), std::string::npos) << name << " in " << result.err;
    }
    EXPECT_EQ(content(out), "old");
    EXPECT_EQ(content(saved), "old too");
  }
  for (const std::string& bad : {std::string("/no/such/x"), std::string("''"), folder_.string()}) {
    const Result result = run("random " + mcg + uniform + "-o " + bad);
    EXPECT_EQ(result.status, 2) << bad;
    EXPECT_EQ(result.err.find("qor: -o: "), 0u) << result.err;
  }
}

}  // namespace
