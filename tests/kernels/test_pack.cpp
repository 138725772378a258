// The data movers, against their definition as loops over elements. Source, target and what lies
// round them are one buffer, compared whole: overlap and stray writes show.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "qor/vector_math.h"

namespace qor::test {
namespace {

constexpr int kSlot = 1;

template <class E>
struct Movers;

#define QOR_MOVERS(E, t)                                                       \
  template <>                                                                  \
  struct Movers<E> {                                                           \
    static auto pack_i() { return qor_ark_kernel_##t##PackI_ttab[kSlot]; }     \
    static auto pack_m() { return qor_ark_kernel_##t##PackM_ttab[kSlot]; }     \
    static auto pack_v() { return qor_ark_kernel_##t##PackV_ttab[kSlot]; }     \
    static auto unpack_i() { return qor_ark_kernel_##t##UnpackI_ttab[kSlot]; } \
    static auto unpack_m() { return qor_ark_kernel_##t##UnpackM_ttab[kSlot]; } \
    static auto unpack_v() { return qor_ark_kernel_##t##UnpackV_ttab[kSlot]; } \
  };
QOR_MOVERS(float, s)
QOR_MOVERS(double, d)
QOR_MOVERS(qor_complex_float, c)
QOR_MOVERS(qor_complex_double, z)
#undef QOR_MOVERS

// What a pack does, one element after the other; an unpack does it the other way.
struct Move {
  int64_t to, from;  // elements
};

template <class E>
class Pack : public testing::Test, protected Movers<E> {
 protected:
  // `pack` and `unpack` take the source and the target.
  template <class PackCall, class UnpackCall>
  static void check(const std::vector<Move>& moves, PackCall pack, UnpackCall unpack) {
    constexpr size_t kCells = 400;
    std::mt19937 random(6);
    // Random bytes: among them signalling NaN, which a mover must not touch.
    std::vector<unsigned char> bytes(kCells * sizeof(E));
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    for (const int64_t target : {320, 90, 200, 201, 199, 203}) {
      constexpr int64_t kSource = 200;
      for (const bool packs : {true, false}) {
        SCOPED_TRACE(testing::Message() << (packs ? "pack" : "unpack") << " to cell " << target);
        std::vector<unsigned char> expected = bytes, actual = bytes;
        for (const auto& [dense, spread] : moves) {
          const int64_t to = target + (packs ? dense : spread);
          const int64_t from = kSource + (packs ? spread : dense);
          std::memcpy(&expected[static_cast<size_t>(to) * sizeof(E)],
                      &expected[static_cast<size_t>(from) * sizeof(E)], sizeof(E));
        }
        E* cells = reinterpret_cast<E*>(actual.data());
        packs ? pack(cells + kSource, cells + target) : unpack(cells + kSource, cells + target);
        ASSERT_EQ(actual, expected);
      }
    }
  }
};

using Elements = testing::Types<float, double, qor_complex_float, qor_complex_double>;
TYPED_TEST_SUITE(Pack, Elements);

constexpr int64_t kCounts[] = {0, 1, 2, 7, 8, 23, -4};

TYPED_TEST(Pack, ByIncrement) {
  using E = TypeParam;
  for (const int64_t n : kCounts) {
    for (const int64_t inc : {1, 2, 3, 0, -1, -3}) {
      SCOPED_TRACE(testing::Message() << n << " elements, increment " << inc);
      std::vector<Move> moves;
      for (int64_t i = 0; i < n; ++i) moves.push_back({i, i * inc});
      this->check(
          moves, [&](const E* a, E* y) { this->pack_i()(n, a, inc, y, 0); },
          [&](const E* a, E* y) { this->unpack_i()(n, a, y, inc, 0); });
      // Of 32-bit arguments only the low words count.
      const auto wide = [](int64_t x) { return (int64_t{0x7654} << 32) | (x & 0xFFFFFFFF); };
      this->check(
          moves, [&](const E* a, E* y) { this->pack_i()(wide(n), a, wide(inc), y, 1); },
          [&](const E* a, E* y) { this->unpack_i()(wide(n), a, y, wide(inc), 1); });
    }
  }
}

TYPED_TEST(Pack, ByMask) {
  using E = TypeParam;
  std::mt19937 random(7);
  for (const int64_t n : kCounts) {
    for (const unsigned kept_of_4 : {0u, 1u, 3u, 4u}) {
      std::vector<int64_t> mask(32);
      // Any value but zero counts, also one whose low word is zero.
      for (auto& word : mask) word = random() % 4 < kept_of_4 ? int64_t{-1} << (random() % 20) : 0;
      const std::vector<int32_t> mask32(mask.begin(), mask.end());
      if (kept_of_4 == 4) mask[3] = int64_t{1} << 40;
      std::vector<Move> moves;
      for (int64_t i = 0; i < n; ++i) {
        if (mask[static_cast<size_t>(i)] != 0) moves.push_back({std::ssize(moves), i});
      }
      for (const int32_t flag : {1, 7}) {
        const void* words = flag == 1 ? static_cast<const void*>(mask32.data()) : mask.data();
        this->check(
            moves, [&](const E* a, E* y) { this->pack_m()(n, a, words, y, flag); },
            [&](const E* a, E* y) { this->unpack_m()(n, a, y, words, flag); });
      }
    }
  }
}

TYPED_TEST(Pack, ByIndex) {
  using E = TypeParam;
  std::mt19937 random(8);
  std::vector<int64_t> index(32);
  for (auto& i : index) i = static_cast<int64_t>(random() % 12) - 4;  // repeated, and negative
  const std::vector<int32_t> index32(index.begin(), index.end());
  for (const int64_t n : kCounts) {
    std::vector<Move> moves;
    for (int64_t i = 0; i < n; ++i) moves.push_back({i, index[static_cast<size_t>(i)]});
    for (const int32_t flag : {1, 0}) {
      const void* words = flag == 1 ? static_cast<const void*>(index32.data()) : index.data();
      this->check(
          moves, [&](const E* a, E* y) { this->pack_v()(n, a, words, y, flag); },
          [&](const E* a, E* y) { this->unpack_v()(n, a, y, words, flag); });
    }
  }
}

TEST(PackRows, FlagOfTheEntries) {
  const double a[4] = {1, 2, 3, 4};
  const int32_t index[4] = {3, 2, 1, 0};
  double y[4] = {};
  _arkdPackV(4, a, index, y, 0);  // the entry makes the flag 1
  EXPECT_EQ(y[0], 4.0);
  EXPECT_EQ(y[3], 1.0);
}

// Addresses that are no multiple of the element's size.
TEST(PackRows, AnyAlignment) {
  std::vector<unsigned char> from(800), to(800);
  for (size_t i = 0; i < from.size(); ++i) from[i] = static_cast<unsigned char>(i * 37);
  const auto pack = reinterpret_cast<void (*)(int64_t, const void*, int64_t, void*, int32_t)>(
      qor_ark_kernel_dPackI_ttab[kSlot]);
  pack(30, from.data() + 3, 3, to.data() + 1, 1);
  for (size_t i = 0; i < 30; ++i) {
    EXPECT_EQ(std::memcmp(&to[1 + 8 * i], &from[3 + 24 * i], 8), 0) << i;
  }
  EXPECT_EQ(to[0], 0);
  EXPECT_EQ(to[1 + 8 * 30], 0);
}

}  // namespace
}  // namespace qor::test
