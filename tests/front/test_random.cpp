// qor random: the values are the library's, in every form and at every level.

#include "qor/distributions.h"
#include "tests/front/command_fixture.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

constexpr int32_t kMany = 40'000;  // more than two blocks, and no multiple of one
const std::string kSome = " -n 40000 --format raw";
const std::string kMcg59 = "--generator mcg59 --seed 7777777 ";
const std::string kUniform = "--distribution uniform --format raw -n ";
const char* const kGenerators[] = {"mcg31m1", "r250", "mrg32k3a", "mcg59", "wh:9"};

template <class Value>
std::string bytes_of(const std::vector<Value>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value)};
}

std::string uniform_bytes(const Stream& stream, int32_t n) {
  std::vector<double> values(static_cast<size_t>(n));
  EXPECT_EQ(_ostdRngUniform(0, stream.get(), n, values.data(), 0, 1), 0);
  return bytes_of(values);
}

class Random : public Command {
 protected:
  static std::string drawn(const std::string& arguments) { return output("random " + arguments); }

  // `draw` gives kMany values of so many numbers each.
  template <class Number>
  static void expect_drawn(const std::string& generator, int32_t brng, const std::string& form,
                           size_t numbers, auto draw) {
    std::vector<Number> values(numbers * kMany);
    const Stream stream = new_stream(brng);
    EXPECT_EQ(draw(stream.get(), kMany, values.data()), 0);
    EXPECT_TRUE(drawn("--generator " + generator + " --seed 7777777 --distribution " + form +
                      kSome) == bytes_of(values))
        << generator << " " << form;
  }
};

TEST_F(Random, EveryDistributionGivesTheLibrarysValues) {
  const auto expect = [&]<class Number>(Number, const std::string& form, auto draw) {
    expect_drawn<Number>("mcg59", QOR_BRNG_MCG59, form, 1, draw);
  };
  expect(double{}, "uniform --a=-2 --b 5e-1 --accurate",
         [](auto... to) { return _ostdRngUniform(QOR_RNG_ACCURATE, to..., -2, 0.5); });
  expect(float{}, "uniform --type single",
         [](auto... to) { return _ostsRngUniform(0, to..., 0, 1); });
  expect(int32_t{}, "Uniform --type int --a -7 --b 2147483647",
         [](auto... to) { return _ostiRngUniform(0, to..., -7, 2147483647); });
  expect(uint64_t{}, "uniformbits", [](auto... to) { return _ostiRngUniformBits(0, to...); });
  expect(uint32_t{}, "uniformbits32", [](auto... to) { return _ostiRngUniformBits32(0, to...); });
  expect(uint64_t{}, "uniformbits64", [](auto... to) { return _ostiRngUniformBits64(0, to...); });
  expect(int32_t{}, "bernoulli --p 0.25",
         [](auto... to) { return _ostiRngBernoulli(0, to..., 0.25); });
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
    expect_drawn<uint32_t>(c.name, c.brng, "uniformbits", c.numbers,
                           [](auto... to) { return _ostiRngUniformBits(0, to...); });
  }
  EXPECT_EQ(drawn("--generator MRG32K3A --seed 1,0xffffffff,3 " + kUniform + "5"),
            uniform_bytes(new_stream(QOR_BRNG_MRG32K3A, {1, 0xFFFFFFFF, 3}), 5));
}

TEST_F(Random, CsvReadsBackExactly) {
  const auto csv = table_of(drawn(kMcg59 + "--distribution uniform -n 20000"));
  EXPECT_EQ(csv.header, std::vector<std::string>{"uniform"});
  EXPECT_EQ(bytes_of(numbers(csv, 0)), uniform_bytes(new_stream(QOR_BRNG_MCG59), 20000));
}

TEST_F(Random, LongSkips) {
  // 2^64 * 3 + 5, which one word does not hold.
  const Stream far = new_stream(QOR_BRNG_MRG32K3A);
  const uint64_t count[] = {5, 3};
  ASSERT_EQ(__ostSkipAheadStreamEx(far.get(), 2, count), 0);
  EXPECT_EQ(
      drawn("--generator mrg32k3a --seed 7777777 --skip 55340232221128654853 " + kUniform + "20"),
      uniform_bytes(far, 20));
}

std::string text_of(const Bytes& image) { return {image.begin(), image.end()}; }

TEST_F(Random, FilesOfStreamsAreTheirImages) {
  drawn(kMcg59 + kUniform + "0 --save-stream s");
  EXPECT_EQ(content("s"), text_of(image_of(new_stream(QOR_BRNG_MCG59))));
  StreamState* abstract = nullptr;
  uint32_t ring[2] = {};
  __ostiNewAbstractStream(&abstract, 2, ring, [](auto...) { return 0; });
  write("abstract", text_of(image_of(Stream(abstract))));
  const Result refused = shell("qor random --load-stream abstract " + kUniform + "9");
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.err.find("qor: --load-stream: \"abstract\": is of an abstract stream"), 0u);
}

// The paths of the levels that are built and that this machine can run.
std::vector<std::string> levels() {
  std::vector<std::string> all;
  for (const auto& entry : fs::directory_iterator(QOR_BUILD_LIB "/../levels")) {
    const std::string level = entry.path().filename();
    if (level == "v3" && !__builtin_cpu_supports("x86-64-v3")) continue;
    if (level == "v4" && !__builtin_cpu_supports("x86-64-v4")) continue;
    all.push_back(entry.path());
  }
  return all;
}

TEST_F(Random, StreamsGoOnAtAnotherLevel) {
  const auto at = [](const std::string& level) { setenv("LD_LIBRARY_PATH", level.c_str(), 1); };
  const std::string before = getenv("LD_LIBRARY_PATH") != nullptr ? getenv("LD_LIBRARY_PATH") : "";
  const std::vector<std::string> all = levels();
  for (const std::string generator : kGenerators) {
    const std::string start = "--generator " + generator + " --seed 1,2,3 " + kUniform;
    const std::string whole = drawn(start + "20000");
    for (const std::string& from : all) {
      for (const std::string& to : all) {
        if (to == from && all.size() > 1) continue;
        at(from);
        std::string parts = drawn(start + "13001 --save-stream s");
        at(to);
        // The file that is read may be the one that is written.
        parts += drawn("--load-stream s --save-stream s " + kUniform + "999");
        parts += drawn("--load-stream s " + kUniform + "6000");
        EXPECT_TRUE(parts == whole) << generator << " from " << from << " to " << to;
      }
    }
  }
  at(before);
}

}  // namespace
