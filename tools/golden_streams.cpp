// Makes tests/streams/golden.txt: known answers of the linear generators from their plain
// recurrences (plain_generators.h).
//
//   golden_streams > tests/streams/golden.txt
//
// A line: origin, identifier, initial values, leapfrog k/n or -, skip count, outputs n, interval a
// b, then the first word (of WH the first of four), and hashes (FNV-1a, 64 bits) of the words,
// doubles and singles of one call of n outputs and of the generator state after it.

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "tools/plain_generators.h"

namespace {

using namespace qor::tools;

struct Case {
  uint32_t brng;
  Seed seed;
  uint32_t leap_k, leap_n;  // none when leap_n is 0
  uint32_t skip, n;
  double a, b;
};

template <class Values>
uint64_t hash_of(const Values& values) {
  uint64_t h = 0xCBF29CE484222325;
  for (const auto& value : values) {
    unsigned char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    for (const unsigned char byte : bytes) h = (h ^ byte) * 0x100000001B3;
  }
  return h;
}

uint64_t first_of(const Wh::Word& word) { return word[0]; }
uint64_t first_of(uint64_t word) { return word; }

// With a fraction always, as 0.0 or -7.25.
std::string decimal(double x) {
  char text[32];
  std::snprintf(text, sizeof text, x == static_cast<int>(x) ? "%.1f" : "%g", x);
  return text;
}

std::string list_of(const Seed& seed) {
  std::string text;
  for (const uint32_t value : seed) text += (text.empty() ? "" : ",") + std::to_string(value);
  return text.empty() ? "-" : text;
}

template <class Generator>
void print_line(const Case& c, uint32_t member) {
  Generator g(c.seed, member);
  if (c.leap_n != 0) g.leapfrog(c.leap_k, c.leap_n);
  g.skip(c.skip);
  std::vector<typename Generator::Word> words;
  std::vector<double> doubles;
  std::vector<float> singles;
  for (uint32_t t = 0; t < c.n; ++t) {
    const auto word = g.word();
    words.push_back(word);
    doubles.push_back(g.real(word, c.a, c.b));
    singles.push_back(static_cast<float>(g.before_single(word, c.a, c.b)));
  }
  g.finish(c.n);
  const std::string leap =
      c.leap_n != 0 ? std::to_string(c.leap_k) + "/" + std::to_string(c.leap_n) : "-";
  std::printf("recurrence 0x%" PRIx32 " %s %s %" PRIu32 " %" PRIu32 " %s %s %" PRIu64, c.brng,
              list_of(c.seed).c_str(), leap.c_str(), c.skip, c.n, decimal(c.a).c_str(),
              decimal(c.b).c_str(), first_of(words[0]));
  for (const uint64_t h : {hash_of(words), hash_of(doubles), hash_of(singles), hash_of(g.state())})
    std::printf(" %016" PRIx64, h);
  std::printf("\n");
}

void print_line(const Case& c) {
  const uint32_t row = c.brng >> 20;
  switch (row) {
    case 1:
      return print_line<Mcg31m1>(c, 0);
    case 2:
      return print_line<R250>(c, 0);
    case 3:
      return print_line<Mrg32k3a>(c, 0);
    case 4:
      return print_line<Mcg59>(c, 0);
    default:  // WH, in the new numbering or from 4 on in the first
      return print_line<Wh>(c, row != 0 ? c.brng & 0xFFFFF : c.brng - 4);
  }
}

std::vector<Case> cases() {
  Seed key;  // 250 words
  for (uint32_t k = 1; k <= 250; ++k)
    key.push_back(static_cast<uint32_t>(power(1664525, k, uint64_t{1} << 32)));
  const Seed key_less_one(key.begin(), key.end() - 1);
  constexpr uint32_t m1 = Mrg32k3a::m1, m2 = Mrg32k3a::m2, ones = 0xFFFFFFFF;
  std::vector<Case> list;
  for (const uint32_t n : {1u, 37u, 1000u, 5003u, 20011u}) {
    for (uint32_t row = 1; row <= 5; ++row)
      list.push_back({row << 20, {7777777}, 0, 0, 0, n, 0, 1});
  }
  const Case special[] = {
      {0x100000, {}, 0, 0, 0, 100, -1.5, 2.25},
      {0x100000, {0x7FFFFFFF}, 0, 0, 0, 100, 0, 1},
      {0x100000, {0x80000000}, 0, 0, 0, 100, 0, 1},
      {0x100000, {1}, 2, 3, 5, 333, 0, 3},
      {0x200000, {}, 0, 0, 0, 250, -1.5, 2.25},
      {0x200000, {0}, 0, 0, 0, 249, 0, 1},
      {0x200000, key, 0, 0, 0, 600, 0, 1},
      {0x200000, key_less_one, 0, 0, 0, 600, 0, 1},
      {0x300000, Seed(6, 12345), 0, 0, 0, 1000, 0, 1},
      {0x300000, Seed(7, m1), 0, 0, 0, 100, 0, 1},
      {0x300000, {5, 4, 3, m2, m2, m2}, 0, 0, 0, 100, -7.5, -7.25},
      {0x300000, {1, 2, 3}, 0, 0, 1001, 500, 0, 1},
      {0x400000, {0, 0x8000000}, 0, 0, 0, 100, 0, 1},
      {0x400000, {ones, ones}, 0, 0, 0, 1000, -1, 1},
      {0x400000, {3, 4}, 1, 7, 9, 333, 0, 1},
  };
  list.insert(list.end(), std::begin(special), std::end(special));
  for (const uint32_t member : {1u, 2u, 100u, 200u, 272u, 50u})
    list.push_back({0x500000 + member, {1, 2, 3, 4}, 0, 0, 0, 1000, 0, 1});
  list.push_back({0x500000, {}, 3, 4, 10, 333, -1, 1});
  list.push_back({4 + 272, {16766363, 0, 5}, 0, 0, 0, 64, 0, 1});
  return list;
}

}  // namespace

int main() {
  std::printf(
      "# Made by tools/golden_streams, which has the meaning of a line. Not to be edited.\n");
  for (const Case& c : cases()) print_line(c);
  return 0;
}
