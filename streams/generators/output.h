// From generator words to the caller's array.
//
// A generator gives its words; real output is made of them in blocks that stay in the first level
// cache. Arrays may have any alignment, hence the copies in place of plain loads and stores. Counts
// have 64 bits, for blocks step beyond the last of 2^31 - 1 values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qor::streams {

template <class T>
inline void store(void* r, int64_t i, T value) {
  std::memcpy(static_cast<char*>(r) + static_cast<ptrdiff_t>(i) * static_cast<ptrdiff_t>(sizeof(T)),
              &value, sizeof(T));
}
template <class T>
inline T load(const void* r, int64_t i) {
  T value;
  std::memcpy(
      &value,
      static_cast<const char*>(r) + static_cast<ptrdiff_t>(i) * static_cast<ptrdiff_t>(sizeof(T)),
      sizeof(T));
  return value;
}

template <class Word>
inline void* at(void* r, int64_t i) {
  return static_cast<char*>(r) + static_cast<ptrdiff_t>(i) * static_cast<ptrdiff_t>(sizeof(Word));
}

// The interval from a to b for words u of the unit `unit`: value = u * scale + a, in double,
// rounded once more where the result is single.
struct Affine {
  double scale, a;
  Affine(double a_, double b, double unit) : scale((b - a_) * unit), a(a_) {}
};

// A 32-bit word as a double, by the signed conversion that all levels have; every step is exact.
inline double to_double(uint32_t word) {
  return static_cast<double>(static_cast<int32_t>(word ^ 0x80000000u)) + 0x1p31;
}

// Words of 32 bits or, where the top one is never set, of 31, whose conversion takes less.
template <int bits>
struct MapWords {
  using Word = uint32_t;
  Affine map;
  template <class Real>
  void operator()(const uint32_t* words, int32_t n, Real* r) const {
    for (int32_t i = 0; i < n; ++i) {
      const double u =
          bits == 32 ? to_double(words[i]) : static_cast<double>(static_cast<int32_t>(words[i]));
      store(r, i, static_cast<Real>(u * map.scale + map.a));
    }
  }
};
using MapWords31 = MapWords<31>;
using MapWords32 = MapWords<32>;

// n reals of a generator, from blocks of its words: words(n, Word* out), then map(words, n, Real*).
template <class Real, class Words, class Map>
void fill_reals(int64_t n, Real* r, Words words, Map map) {
  constexpr int64_t block = 8192 / sizeof(typename Map::Word);
  alignas(64) typename Map::Word buffer[block];
  for (int64_t done = 0; done < n;) {
    const auto count = static_cast<int32_t>(std::min(n - done, block));
    words(count, buffer);
    map(buffer, count, static_cast<Real*>(at<Real>(r, done)));
    done += count;
  }
}

}  // namespace qor::streams
