#include "tests/streams/golden_file.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace qor::test {
namespace {

GoldenCase parse(const std::string& line) {
  GoldenCase c{};
  c.line = line;
  std::istringstream in(line);
  std::string origin, brng, seed, leap;
  in >> origin >> brng >> seed >> leap >> c.skip >> c.n >> c.a >> c.b >> c.first >> std::hex >>
      c.words >> c.doubles >> c.singles >> c.state;
  if (!in) throw std::runtime_error("golden.txt: cannot read " + line);
  c.brng = static_cast<int32_t>(std::stol(brng, nullptr, 0));
  std::istringstream values(seed == "-" ? "" : seed);
  for (std::string value; std::getline(values, value, ',');)
    c.seed.push_back(static_cast<uint32_t>(std::stoul(value)));
  if (leap != "-") {
    c.leap_k = std::stoi(leap);
    c.leap_n = std::stoi(leap.substr(leap.find('/') + 1));
  }
  return c;
}

}  // namespace

std::vector<GoldenCase> golden_cases() {
  std::ifstream file(QOR_GOLDEN_STREAMS);
  if (!file) throw std::runtime_error("cannot open " QOR_GOLDEN_STREAMS);
  std::vector<GoldenCase> cases;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') cases.push_back(parse(line));
  }
  return cases;
}

uint64_t hash(const void* bytes, size_t count) {
  uint64_t h = 0xCBF29CE484222325;
  for (size_t i = 0; i < count; ++i)
    h = (h ^ static_cast<const unsigned char*>(bytes)[i]) * 0x100000001B3;
  return h;
}

}  // namespace qor::test
