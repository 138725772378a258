// The linear generators as their plain recurrences, one step at a time, in integers of up to 128
// bits: what known answers are made from. Nothing of the library is used but the table of WH.
//
// Each has: Word; leapfrog, skip, word (the next), finish (after a call of n outputs); real (a word
// as a double) and before_single (what is rounded to single); state (its fields as they lie).
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "streams/generators/wh_table.h"

namespace qor::tools {

using Wide = unsigned __int128;
using Seed = std::vector<uint32_t>;

inline uint64_t power(uint64_t base, uint64_t e, uint64_t m) {
  Wide result = 1;
  for (; e > 0; --e) result = result * base % m;
  return static_cast<uint64_t>(result);
}

// The value of a seed that is not there is 0.
inline uint32_t at(const Seed& seed, size_t k) { return k < seed.size() ? seed[k] : 0; }

// u (b - a) unit + a, each operation rounded.
inline double affine(double u, double unit, double a, double b) { return u * ((b - a) * unit) + a; }

inline constexpr uint64_t kMersenne31 = (uint64_t{1} << 31) - 1, kTwo59 = uint64_t{1} << 59;

struct Mcg31m1 {
  using Word = uint32_t;
  uint64_t x, a = 1132489760;

  Mcg31m1(const Seed& seed, uint32_t) : x(at(seed, 0) % kMersenne31) {
    if (x == 0) x = 1;
  }
  void leapfrog(uint32_t k, uint32_t n) {
    skip(k);
    a = power(a, n, kMersenne31);
  }
  void skip(uint32_t count) { x = x * power(a, count, kMersenne31) % kMersenne31; }
  Word word() {
    const auto now = static_cast<Word>(x);
    skip(1);
    return now;
  }
  void finish(uint32_t) {}
  double real(Word u, double from, double to) const {
    return affine(u, 4.656612875245797e-10, from, to);
  }
  double before_single(Word u, double from, double to) const { return real(u, from, to); }
  std::array<uint32_t, 2> state() const {
    return {static_cast<uint32_t>(x), static_cast<uint32_t>(a)};
  }
};

struct Mcg59 {
  using Word = uint64_t;
  uint64_t x, a = power(13, 13, kTwo59);

  Mcg59(const Seed& seed, uint32_t) : x((at(seed, 0) + (uint64_t{at(seed, 1)} << 32)) % kTwo59) {
    if (x == 0) x = 1;
  }
  void leapfrog(uint32_t k, uint32_t n) {
    skip(k);
    a = power(a, n, kTwo59);
  }
  void skip(uint32_t count) {
    x = static_cast<uint64_t>(Wide{x} * power(a, count, kTwo59) % kTwo59);
  }
  Word word() {
    const Word now = x;
    skip(1);
    return now;
  }
  void finish(uint32_t) {}

  static double low(Word u) { return static_cast<double>(u % (uint64_t{1} << 32)); }
  static double high(Word u) { return static_cast<double>(u >> 32) * 0x1p32; }
  double real(Word u, double from, double to) const {
    const double scale = (to - from) * 0x1p-59;
    return (low(u) * scale + high(u) * scale) + from;
  }
  double before_single(Word u, double from, double to) const {
    return affine(low(u) + high(u), 0x1p-59, from, to);
  }
  std::array<uint64_t, 2> state() const { return {x, a}; }
};

struct Mrg32k3a {
  using Word = uint32_t;
  static constexpr int64_t m1 = 4294967087, m2 = 4294944443;
  std::array<int64_t, 6> s{1, 1, 1, 1, 1, 1};  // x, then y, oldest first

  Mrg32k3a(const Seed& seed, uint32_t) {
    for (size_t k = 0; k < 6 && k < seed.size(); ++k) s[k] = seed[k] % (k < 3 ? m1 : m2);
    if (s[0] == 0 && s[1] == 0 && s[2] == 0) s[0] = 1;
    if (s[3] == 0 && s[4] == 0 && s[5] == 0) s[3] = 1;
  }
  static void leapfrog(uint32_t, uint32_t) {}  // it has none
  void skip(uint32_t count) {
    for (; count > 0; --count) word();
  }
  Word word() {
    // The sums stay below 2^54 in size.
    const int64_t x = ((1403580 * s[1] - 810728 * s[0]) % m1 + m1) % m1;
    const int64_t y = ((527612 * s[5] - 1370589 * s[3]) % m2 + m2) % m2;
    s = {s[1], s[2], x, s[4], s[5], y};
    return static_cast<Word>(x >= y ? x - y : x - y + m1);
  }
  void finish(uint32_t) {}
  double real(Word u, double from, double to) const {
    return affine(u, 2.328306549837829e-10, from, to);
  }
  double before_single(Word u, double from, double to) const { return real(u, from, to); }
  std::array<uint32_t, 6> state() const {
    std::array<uint32_t, 6> fields;
    for (size_t k = 0; k < 6; ++k) fields[k] = static_cast<uint32_t>(s[k]);
    return fields;
  }
};

struct R250 {
  using Word = uint32_t;
  std::array<uint32_t, 252> s{};  // 250 words, the index of the oldest, that of the tap
  uint32_t &i = s[250], &j = s[251];

  R250(const Seed& seed, uint32_t) {
    const uint32_t only = at(seed, 0) != 0 ? at(seed, 0) : 1;
    for (uint32_t t = 0; t < 250; ++t) {
      s[t] = seed.size() >= 250
                 ? seed[t]
                 : static_cast<uint32_t>(only * power(69069, t + 1, uint64_t{1} << 32));
    }
    for (uint32_t k = 0; k < 32 && seed.size() < 250; ++k) {
      uint32_t& word = s[7 * k + 3];
      word = (word & (0xFFFFFFFFu >> k)) | (0x80000000u >> k);
    }
    j = 103;
  }
  static void leapfrog(uint32_t, uint32_t) {}  // it has none
  static void skip(uint32_t) {}
  Word word() {
    const Word now = s[i] ^= s[j];
    i = (i + 1) % 250;
    j = (j + 1) % 250;
    return now;
  }
  void finish(uint32_t n) {
    if (n < 250) return;
    const std::array<uint32_t, 252> before = s;
    for (uint32_t t = 0; t < 250; ++t) s[t] = before[(before[250] + t) % 250];
    i = 0;
    j = 103;
  }
  double real(Word u, double from, double to) const { return affine(u, 0x1p-32, from, to); }
  double before_single(Word u, double from, double to) const { return real(u, from, to); }
  std::array<uint32_t, 252> state() const { return s; }
};

struct Wh {
  using Word = std::array<uint32_t, 4>;
  const qor::streams::WhRow& row;
  Word x, a;

  Wh(const Seed& seed, uint32_t member) : row(qor::streams::wh_rows[member]) {
    for (size_t j = 0; j < 4; ++j) {
      x[j] = at(seed, j) % row.m[j];
      if (x[j] == 0) x[j] = 1;
      a[j] = row.a[j];
    }
  }
  void leapfrog(uint32_t k, uint32_t n) {
    skip(k);
    for (size_t j = 0; j < 4; ++j) a[j] = static_cast<uint32_t>(power(a[j], n, row.m[j]));
  }
  void skip(uint32_t count) {
    for (size_t j = 0; j < 4; ++j)
      x[j] = static_cast<uint32_t>(x[j] * power(a[j], count, row.m[j]) % row.m[j]);
  }
  Word word() {
    const Word now = x;
    skip(1);
    return now;
  }
  void finish(uint32_t) {}
  double real(const Word& u, double from, double to) const {
    double sum = 0;
    for (size_t j = 0; j < 4; ++j) {
      // 1 / m rounded toward zero: 53 bits of 2^76 / m.
      const auto truncated = static_cast<uint64_t>((Wide{1} << 76) / row.m[j]);
      sum = sum + static_cast<double>(truncated) * 0x1p-76 * u[j];
    }
    return (sum - static_cast<double>(static_cast<int64_t>(sum))) * (to - from) + from;
  }
  double before_single(const Word& u, double from, double to) const { return real(u, from, to); }
  std::array<uint32_t, 8> state() const { return {x[0], x[1], x[2], x[3], a[0], a[1], a[2], a[3]}; }
};

}  // namespace qor::tools
