// Known answers of the generators, read from golden.txt.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qor::test {

struct GoldenCase {
  std::string line;  // as it stands in the file, for messages
  int32_t brng;
  std::vector<uint32_t> seed;
  int32_t leap_k = 0, leap_n = 0;  // none when leap_n is 0
  uint64_t skip = 0;
  int32_t n = 0;
  double a = 0, b = 0;
  uint64_t first = 0;
  uint64_t words = 0, doubles = 0, singles = 0, state = 0;  // hashes
};

std::vector<GoldenCase> golden_cases();

// FNV-1a, 64 bits.
uint64_t hash(const void* bytes, size_t count);

}  // namespace qor::test
