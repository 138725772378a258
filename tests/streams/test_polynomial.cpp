// Arithmetic over GF(2), and skip-ahead by it, on a generator of the test's own: a shift register
// of 17 words, w[i] = w[i + 5] xor w[i] with its low bit spread by a twist, whose polynomial is
// found here.

#include <array>

#include "tests/streams/stream_support.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::test;

// ---- The remainder ------------------------------------------------------------------------------

// x^n mod p, bit by bit.
std::vector<bool> remainder_by_steps(uint64_t n, const std::vector<int32_t>& exponents) {
  const auto degree = static_cast<size_t>(exponents.back());
  std::vector<bool> r(degree + 1, false);
  r[0] = true;
  for (; n > 0; --n) {
    r.insert(r.begin(), false);
    r.pop_back();
    if (!r[degree]) continue;
    for (int32_t e : exponents) r[static_cast<size_t>(e)] = !r[static_cast<size_t>(e)];
  }
  return r;
}

std::vector<uint64_t> poly_rem(uint64_t n, const std::vector<int32_t>& exponents, int32_t words) {
  std::vector<uint64_t> out(static_cast<size_t>(words), ~uint64_t{0});
  EXPECT_EQ(__ostPolyRem(n, exponents.back(), static_cast<int32_t>(exponents.size()),
                         exponents.data(), words, out.data()),
            0);
  return out;
}

TEST(PolynomialRemainder, EqualsDivision) {
  const std::vector<std::vector<int32_t>> moduli = {{0, 1, 2},
                                                    {0, 1, 64},
                                                    {0, 63, 64},
                                                    {0, 1, 65},
                                                    {0, 2, 30, 63},
                                                    {0, 3, 100, 130},
                                                    {0, 126, 127, 128},
                                                    {0, 64, 128, 192},
                                                    {5, 7},
                                                    {0, 1, 2, 3, 199, 200},
                                                    {0, 1189, 1416, 1937}};
  for (const auto& p : moduli) {
    const auto degree = static_cast<uint64_t>(p.back());
    const int32_t words = p.back() / 64 + 2;
    for (uint64_t n : {uint64_t{0}, uint64_t{1}, degree - 1, degree, degree + 1, 2 * degree - 1,
                       2 * degree, 3 * degree + 7, uint64_t{5000}}) {
      const auto expected = remainder_by_steps(n, p);
      const auto got = poly_rem(n, p, words);
      for (size_t k = 0; k < got.size() * 64; ++k) {
        const bool bit = (got[k / 64] >> (k % 64) & 1) != 0;
        ASSERT_EQ(bit, k < degree && expected[k])
            << "x^" << n << " degree " << degree << " bit " << k;
      }
    }
  }
}

// x^(2^127) = x modulo a primitive trinomial of degree 127, reached by 2^63 * 2^63 * 2: squarings
// of x^(2^63), which does not fit, are made one by one.
TEST(PolynomialRemainder, LargeExponents) {
  const std::vector<int32_t> p = {0, 1, 127};
  const auto once = poly_rem(uint64_t{1} << 63, p, 2);
  // (x^(2^62))^2 by the squares of its terms.
  const auto half = poly_rem(uint64_t{1} << 62, p, 2);
  std::vector<uint64_t> square(2, 0);
  for (size_t k = 0; k < 127; ++k) {
    if ((half[k / 64] >> (k % 64) & 1) == 0) continue;
    const auto term = poly_rem(2 * k, p, 2);
    for (size_t w = 0; w < 2; ++w) square[w] ^= term[w];
  }
  EXPECT_EQ(once, square);
}

TEST(PolynomialRemainder, WithoutMemory) {
  const int32_t p[] = {0, 1, 127};
  uint64_t out[2];
  const FailingAllocations failing(0);
  EXPECT_EQ(__ostPolyRem(126, 127, 3, p, 2, out), 0);  // no work to do
  EXPECT_EQ(__ostPolyRem(127, 127, 3, p, 2, out), -4);
}

// ---- Skip-ahead of a small register -------------------------------------------------------------

constexpr int32_t kWords = 17, kBits = 32 * kWords;

struct Register {
  StreamState head;
  uint32_t w[kWords];
  int32_t index;  // of the oldest word
};

Register& ring(StreamState* s) { return *reinterpret_cast<Register*>(s); }
const Register& ring(const StreamState* s) { return *reinterpret_cast<const Register*>(s); }

void zero(StreamState* x) {
  std::fill_n(ring(x).w, kWords, 0);
  ring(x).index = 0;
}
void add(StreamState* x, const StreamState* y) {
  for (int32_t k = 0; k < kWords; ++k)
    ring(x).w[(ring(x).index + k) % kWords] ^= ring(y).w[(ring(y).index + k) % kWords];
}
void copy(StreamState* x, const StreamState* y) {
  std::copy_n(ring(y).w, kWords, ring(x).w);
  ring(x).index = ring(y).index;
}
void step(StreamState* x) {
  uint32_t& w = ring(x).w[ring(x).index];
  const uint32_t tap = ring(x).w[(ring(x).index + 5) % kWords];
  w = tap ^ (w >> 1) ^ ((w & 1) != 0 ? 0x9908B0DFu : 0);
  ring(x).index = (ring(x).index + 1) % kWords;
}
void finish(StreamState* stream, const StreamState* x, int32_t remainder) {
  copy(stream, x);
  EXPECT_EQ(remainder, 3);
}
// Skips one step less than it is told to, as generators do that stand inside a batch.
int32_t prepare(StreamState* stream, uint64_t* nskip, int32_t* remainder) {
  *remainder = 3;
  step(stream);
  return --*nskip != 0 ? 1 : 0;
}

Register fresh() {
  Register r{};
  for (uint32_t k = 0; k < kWords; ++k) r.w[k] = 69069 * (k + 1);
  return r;
}

std::vector<uint32_t> logical(const Register& r) {
  std::vector<uint32_t> words;
  for (int32_t k = 0; k < kWords; ++k) words.push_back(r.w[(r.index + k) % kWords]);
  return words;
}

// The minimal polynomial of the register's low output bit, by Berlekamp and Massey; the degree
// proves that it is the characteristic one.
std::vector<int32_t> characteristic_polynomial() {
  Register r = fresh();
  std::vector<int> bits, c = {1}, b = {1};
  for (int k = 0; k < 2 * kBits; ++k) {
    bits.push_back(static_cast<int>(r.w[r.index] & 1));
    step(&r.head);
  }
  int length = 0, gap = 1;
  for (int n = 0; n < 2 * kBits; ++n, ++gap) {
    int discrepancy = 0;
    for (int k = 0; k <= length && k < static_cast<int>(c.size()); ++k)
      discrepancy ^= c[static_cast<size_t>(k)] & bits[static_cast<size_t>(n - k)];
    if (discrepancy == 0) continue;
    const std::vector<int> before = c;
    c.resize(std::max(c.size(), b.size() + static_cast<size_t>(gap)), 0);
    for (size_t k = 0; k < b.size(); ++k) c[k + static_cast<size_t>(gap)] ^= b[k];
    if (2 * length > n) continue;
    length = n + 1 - length;
    b = before;
    gap = 0;
  }
  EXPECT_EQ(length, kBits);
  std::vector<int32_t> exponents;
  for (int32_t e = 0; e <= kBits; ++e) {
    const auto k = static_cast<size_t>(kBits - e);
    if (k < c.size() && c[k] != 0) exponents.push_back(e);
  }
  return exponents;
}

using Skip = decltype(&__ost_SkipAheadHorner);

int32_t skip_by(Skip skip, Register& r, uint64_t count, const std::vector<int32_t>& p) {
  return skip(&r.head, zero, add, copy, step, finish, prepare, count, kWords, kBits,
              static_cast<int32_t>(sizeof(Register)), static_cast<int32_t>(p.size()), p.data());
}

TEST(PolynomialSkip, EqualsSteps) {
  const auto p = characteristic_polynomial();
  for (Skip skip : {&__ost_SkipAheadHorner, &__ost_SkipAheadSWin}) {
    for (int count : {0, 1, 2, 3, 8, 9, 100, 543, 544, 545, 546, 2000, 30001}) {
      Register stepped = fresh(), skipped = fresh();
      for (int k = 0; k < count; ++k) step(&stepped.head);
      ASSERT_EQ(skip_by(skip, skipped, static_cast<uint64_t>(count), p), 0);
      EXPECT_EQ(logical(skipped), logical(stepped)) << count;
    }
  }
  Register horner = fresh(), window = fresh();
  ASSERT_EQ(skip_by(__ost_SkipAheadHorner, horner, 0xFEDCBA9876543210, p), 0);
  ASSERT_EQ(skip_by(__ost_SkipAheadSWin, window, 0xFEDCBA9876543210, p), 0);
  EXPECT_EQ(logical(horner), logical(window));
}

TEST(PolynomialSkip, WithoutMemoryOnlyPreparationIsDone) {
  const auto p = characteristic_polynomial();
  const long before = live_blocks();
  for (Skip skip : {&__ost_SkipAheadHorner, &__ost_SkipAheadSWin}) {
    for (long allowed : {0, 1, 2}) {
      Register prepared = fresh(), r = fresh();
      step(&prepared.head);
      const FailingAllocations failing(allowed);
      EXPECT_EQ(skip_by(skip, r, 100000, p), -4);
      EXPECT_EQ(logical(r), logical(prepared));
      EXPECT_EQ(live_blocks(), before);
    }
  }
}

}  // namespace
