// Arithmetic over GF(2), and skip-ahead by it, on shift registers of the test's own.

#include <algorithm>

#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;
using Exponents = std::vector<int32_t>;
using Polynomial = std::vector<uint64_t>;

Polynomial poly_rem(uint64_t n, const Exponents& p, int32_t words) {
  Polynomial out(static_cast<size_t>(words), ~uint64_t{0});
  const auto terms = static_cast<int32_t>(p.size());
  EXPECT_EQ(__ostPolyRem(n, p.back(), terms, p.data(), words, out.data()), 0);
  return out;
}

TEST(PolynomialRemainder, KnownOnes) {
  EXPECT_EQ(poly_rem(127, {0, 1, 127}, 3), (Polynomial{3, 0, 0}));
  // x^63 + x + 1 is primitive: x^(2^63 - 1) = 1.
  EXPECT_EQ(poly_rem(~uint64_t{0}, {0, 1, 63}, 1), Polynomial{2});
  // x^128 = x + x^2 modulo x^127 + x + 1, hence x^(2^63) = x + x^8.
  EXPECT_EQ(poly_rem(uint64_t{1} << 63, {0, 1, 127}, 3), (Polynomial{0x102, 0, 0}));
}

// The register with the characteristic polynomial `p`: a new word is the sum of those that stand at
// the exponents of p below its degree.
Exponents p;
struct Register {
  StreamState head;
  uint32_t w[1937];
  int32_t oldest;

  uint32_t& word(int32_t k) { return w[(oldest + k) % p.back()]; }
};
Register& ring(StreamState* s) { return *reinterpret_cast<Register*>(s); }

void zero(StreamState* x) { ring(x) = {}; }
void copy(StreamState* x, const StreamState* y) { ring(x) = *reinterpret_cast<const Register*>(y); }
void add(StreamState* x, const StreamState* y) {
  Register other = *reinterpret_cast<const Register*>(y);
  for (int32_t k = 0; k < p.back(); ++k) ring(x).word(k) ^= other.word(k);
}
void step(StreamState* x) {
  uint32_t sum = 0;
  for (size_t t = 0; t + 1 < p.size(); ++t) sum ^= ring(x).word(p[t]);
  ring(x).word(0) = sum;
  ring(x).oldest = (ring(x).oldest + 1) % p.back();
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

// The words of a register, oldest first, after some steps and a skip.
using Skip = decltype(&__ost_SkipAheadHorner);
std::vector<uint32_t> words_after(uint64_t steps, Skip skip, uint64_t count, int32_t status = 0) {
  Register r{};
  for (uint32_t k = 0; k < std::size(r.w); ++k) r.w[k] = 69069 * (k + 1);
  for (; steps > 0; --steps) step(&r.head);
  EXPECT_EQ(skip(&r.head, zero, add, copy, step, finish, prepare, count, p.back(), p.back(),
                 static_cast<int32_t>(sizeof r), static_cast<int32_t>(p.size()), p.data()),
            status);
  std::rotate(r.w, r.w + r.oldest, r.w + p.back());
  return {r.w, r.w + p.back()};
}

constexpr Skip horner = &__ost_SkipAheadHorner, window = &__ost_SkipAheadSWin;

TEST(PolynomialSkip, EqualsSteps) {
  for (const Exponents& each :
       {Exponents{0, 1, 2}, Exponents{0, 1, 64}, Exponents{0, 63, 64}, Exponents{0, 1, 65},
        Exponents{0, 2, 30, 63}, Exponents{0, 3, 100, 130}, Exponents{0, 126, 127, 128},
        Exponents{0, 64, 128, 192}, Exponents{5, 7}, Exponents{0, 1, 2, 3, 199, 200},
        Exponents{0, 1189, 1416, 1937}}) {
    p = each;
    const auto degree = static_cast<uint64_t>(p.back());
    for (uint64_t count :
         {uint64_t{0}, uint64_t{1}, uint64_t{9}, degree - 1, degree, degree + 1, degree + 2,
          2 * degree, 2 * degree + 1, 3 * degree + 8, uint64_t{5000}}) {
      const auto expected = words_after(count, horner, 0);
      EXPECT_EQ(words_after(0, horner, count), expected) << degree << " " << count;
      EXPECT_EQ(words_after(0, window, count), expected) << degree << " " << count;
    }
  }
}

TEST(PolynomialSkip, WithoutMemoryOnlyPreparationIsDone) {
  const BlocksInBalance balance;
  p = {0, 38, 89};
  for (Skip skip : {horner, window}) {
    for (long allowed : {0, 1, 2}) {
      const FailingAllocations failing(allowed);
      EXPECT_EQ(words_after(0, skip, 100000, -4), words_after(1, skip, 0));
    }
  }
}

}  // namespace
