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

template <class E>
struct Movers {
  void (*pack_i)(int64_t, const E*, int64_t, E*, int32_t);
  void (*pack_m)(int64_t, const E*, const void*, E*, int32_t);
  void (*pack_v)(int64_t, const E*, const void*, E*, int32_t);
  void (*unpack_i)(int64_t, const E*, E*, int64_t, int32_t);
  void (*unpack_m)(int64_t, const E*, E*, const void*, int32_t);
  void (*unpack_v)(int64_t, const E*, E*, const void*, int32_t);
};

constexpr int kSlot = 1;
constexpr int kCells = 400, kMiddle = 200;

template <class E>
class Pack : public testing::Test {
 protected:
  using Buffer = std::vector<unsigned char>;

  static Movers<E> movers();

  // Random bytes: among them signalling NaN, which a mover must not touch.
  static Buffer random_cells() {
    std::mt19937 random(6);
    Buffer bytes(kCells * sizeof(E) + 1);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
  }

  static void move(Buffer& bytes, int64_t to, int64_t from) {
    std::memcpy(bytes.data() + to * int64_t{sizeof(E)}, bytes.data() + from * int64_t{sizeof(E)},
                sizeof(E));
  }

  // Runs a mover on cells from `source` and `target` on and compares with the definition.
  template <class Kernel, class Definition>
  static void check(Kernel kernel, Definition definition) {
    const std::pair<int, int> places[] = {{kMiddle, 320},         {kMiddle, 90},
                                          {kMiddle, kMiddle},     {kMiddle, 201},
                                          {kMiddle, kMiddle - 1}, {kMiddle, 203}};
    for (const auto& [source, target] : places) {
      SCOPED_TRACE(testing::Message() << "from cell " << source << " to " << target);
      Buffer expected = random_cells(), actual = expected;
      definition(expected, source, target);
      E* cells = reinterpret_cast<E*>(actual.data());
      kernel(cells + source, cells + target);
      ASSERT_EQ(actual, expected);
    }
  }
};

template <>
Movers<float> Pack<float>::movers() {
  return {qor_ark_kernel_sPackI_ttab[kSlot],   qor_ark_kernel_sPackM_ttab[kSlot],
          qor_ark_kernel_sPackV_ttab[kSlot],   qor_ark_kernel_sUnpackI_ttab[kSlot],
          qor_ark_kernel_sUnpackM_ttab[kSlot], qor_ark_kernel_sUnpackV_ttab[kSlot]};
}
template <>
Movers<double> Pack<double>::movers() {
  return {qor_ark_kernel_dPackI_ttab[kSlot],   qor_ark_kernel_dPackM_ttab[kSlot],
          qor_ark_kernel_dPackV_ttab[kSlot],   qor_ark_kernel_dUnpackI_ttab[kSlot],
          qor_ark_kernel_dUnpackM_ttab[kSlot], qor_ark_kernel_dUnpackV_ttab[kSlot]};
}
template <>
Movers<qor_complex_float> Pack<qor_complex_float>::movers() {
  return {qor_ark_kernel_cPackI_ttab[kSlot],   qor_ark_kernel_cPackM_ttab[kSlot],
          qor_ark_kernel_cPackV_ttab[kSlot],   qor_ark_kernel_cUnpackI_ttab[kSlot],
          qor_ark_kernel_cUnpackM_ttab[kSlot], qor_ark_kernel_cUnpackV_ttab[kSlot]};
}
template <>
Movers<qor_complex_double> Pack<qor_complex_double>::movers() {
  return {qor_ark_kernel_zPackI_ttab[kSlot],   qor_ark_kernel_zPackM_ttab[kSlot],
          qor_ark_kernel_zPackV_ttab[kSlot],   qor_ark_kernel_zUnpackI_ttab[kSlot],
          qor_ark_kernel_zUnpackM_ttab[kSlot], qor_ark_kernel_zUnpackV_ttab[kSlot]};
}

using Elements = testing::Types<float, double, qor_complex_float, qor_complex_double>;
TYPED_TEST_SUITE(Pack, Elements);

constexpr int64_t kIncrements[] = {1, 2, 3, 0, -1, -3};
constexpr int64_t kCounts[] = {0, 1, 2, 7, 8, 23, -4};

TYPED_TEST(Pack, ByIncrement) {
  using E = TypeParam;
  const auto m = this->movers();
  for (const int64_t n : kCounts) {
    for (const int64_t inc : kIncrements) {
      SCOPED_TRACE(testing::Message() << n << " elements, increment " << inc);
      for (const int32_t flag : {1, 0}) {
        // Of 32-bit arguments only the low words count.
        const int64_t high = flag == 1 ? int64_t{0x7654} << 32 : 0;
        const auto wide = [high](int64_t x) { return high | (high == 0 ? x : x & 0xFFFFFFFF); };
        this->check([&](const E* a, E* y) { m.pack_i(wide(n), a, wide(inc), y, flag); },
                    [&](auto& cells, int64_t a, int64_t y) {
                      for (int64_t i = 0; i < n; ++i) this->move(cells, y + i, a + i * inc);
                    });
        this->check([&](const E* a, E* y) { m.unpack_i(wide(n), a, y, wide(inc), flag); },
                    [&](auto& cells, int64_t a, int64_t y) {
                      for (int64_t i = 0; i < n; ++i) this->move(cells, y + i * inc, a + i);
                    });
      }
    }
  }
}

TYPED_TEST(Pack, ByMask) {
  using E = TypeParam;
  const auto m = this->movers();
  std::mt19937 random(7);
  for (const int64_t n : kCounts) {
    for (const unsigned kept_of_4 : {0u, 1u, 3u, 4u}) {
      std::vector<int64_t> mask(32);
      // Any value but zero counts, also one whose low word is zero.
      for (auto& word : mask) word = random() % 4 < kept_of_4 ? int64_t{-1} << (random() % 20) : 0;
      const std::vector<int32_t> mask32(mask.begin(), mask.end());
      mask[3] = kept_of_4 == 4 ? int64_t{1} << 40 : mask[3];
      for (const int32_t flag : {1, 7}) {
        const void* words = flag == 1 ? static_cast<const void*>(mask32.data()) : mask.data();
        this->check([&](const E* a, E* y) { m.pack_m(n, a, words, y, flag); },
                    [&](auto& cells, int64_t a, int64_t y) {
                      for (int64_t i = 0; i < n; ++i) {
                        if (mask[static_cast<size_t>(i)] != 0) this->move(cells, y++, a + i);
                      }
                    });
        this->check([&](const E* a, E* y) { m.unpack_m(n, a, y, words, flag); },
                    [&](auto& cells, int64_t a, int64_t y) {
                      for (int64_t i = 0; i < n; ++i) {
                        if (mask[static_cast<size_t>(i)] != 0) this->move(cells, y + i, a++);
                      }
                    });
      }
    }
  }
}

TYPED_TEST(Pack, ByIndex) {
  using E = TypeParam;
  const auto m = this->movers();
  std::mt19937 random(8);
  std::vector<int64_t> index(32);
  for (auto& i : index) i = static_cast<int64_t>(random() % 12) - 4;  // repeated, and negative
  const std::vector<int32_t> index32(index.begin(), index.end());
  for (const int64_t n : kCounts) {
    for (const int32_t flag : {1, 0}) {
      const void* words = flag == 1 ? static_cast<const void*>(index32.data()) : index.data();
      this->check([&](const E* a, E* y) { m.pack_v(n, a, words, y, flag); },
                  [&](auto& cells, int64_t a, int64_t y) {
                    for (int64_t i = 0; i < n; ++i) {
                      this->move(cells, y + i, a + index[static_cast<size_t>(i)]);
                    }
                  });
      this->check([&](const E* a, E* y) { m.unpack_v(n, a, y, words, flag); },
                  [&](auto& cells, int64_t a, int64_t y) {
                    for (int64_t i = 0; i < n; ++i) {
                      this->move(cells, y + index[static_cast<size_t>(i)], a + i);
                    }
                  });
    }
  }
}

TEST(PackRows, SharedKernelsAndFlagOfTheEntries) {
  const auto address = [](auto* kernel) { return reinterpret_cast<void*>(kernel); };
  for (int slot = 0; slot < 3; ++slot) {
    EXPECT_EQ(address(qor_ark_kernel_dPackM_ttab[slot]), address(qor_ark_kernel_cPackM_ttab[slot]));
    EXPECT_EQ(address(qor_ark_kernel_dUnpackM_ttab[slot]),
              address(qor_ark_kernel_cUnpackM_ttab[slot]));
  }
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
