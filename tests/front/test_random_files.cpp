// qor random where it goes wrong: what is bad is named, and what was there stays.

#include "tests/front/random_fixture.h"

namespace {

using namespace qor::test;

TEST_F(Random, FilesTakeTheirNamesAtTheEnd) {
  const std::string arguments = kMcg59 + "--distribution uniform --format raw -n 5 -o ";
  const std::string expected = uniform_bytes(new_stream(QOR_BRNG_MCG59), 5);
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
