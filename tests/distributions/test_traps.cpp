// A caller who unmasked every floating-point exception: nothing traps, and nothing else changes.

#include <xmmintrin.h>

#include <cfenv>

#include "qor/distributions.h"
#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

constexpr int32_t kCounts[] = {1, 8, 40, 15000};

// All outputs of a stream, its moves and the uniform entries, as bytes.
Bytes everything_of(int32_t brng) {
  Bytes all;
  const auto keep = [&](const auto& values) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(values.data());
    all.insert(all.end(), bytes, bytes + values.size() * sizeof values[0]);
  };
  const Stream stream = new_stream(brng);
  for (int32_t n : kCounts) {
    keep(words_of(stream, n));
    keep(reals_of<double>(stream, n, 0.1, 0.7));
    keep(reals_of<float>(stream, n, 0.1f, 0.7f));
    std::vector<double> doubles(static_cast<size_t>(n));
    std::vector<float> singles(doubles.size());
    std::vector<int32_t> integers(doubles.size());
    _ostdRngUniform(QOR_RNG_ACCURATE, stream.get(), n, doubles.data(), -0.1, 1.0 / 3);
    keep(doubles);
    _ostsRngUniform(QOR_RNG_ACCURATE, stream.get(), n, singles.data(), -0.1f, 0.3f);
    keep(singles);
    _ostiRngUniform(0, stream.get(), n, integers.data(), -50, 51);
    keep(integers);
    _ostiRngBernoulli(0, stream.get(), n, integers.data(), 0.3);
    keep(integers);
    __ostSkipAheadStream(stream.get(), 12345678901);
    __ostLeapfrogStream(stream.get(), 1, 3);
  }
  return all;
}

template <class Real>
int32_t give_quarters(StreamState*, int32_t*, Real* buffer, int32_t*, int32_t*, int32_t* position) {
  EXPECT_EQ(_mm_getcsr() & _MM_MASK_MASK, 0u);  // the caller's own masks
  buffer[*position] = Real(1) / 4;
  return 1;
}

TEST(UnmaskedExceptions, DoNotTrap) {
  for (int32_t brng : linear_generators) {
    SCOPED_TRACE(brng);
    const Bytes expected = everything_of(brng);
    std::feclearexcept(FE_ALL_EXCEPT);
    feenableexcept(FE_ALL_EXCEPT);
    _mm_setcsr(_mm_getcsr() & ~_MM_MASK_MASK);
    const uint32_t own = _mm_getcsr();
    const Bytes got = everything_of(brng);
    const uint32_t left = _mm_getcsr();
    std::fesetenv(FE_DFL_ENV);
    EXPECT_EQ(got, expected);
    EXPECT_EQ(left, own);
  }
}

TEST(UnmaskedExceptions, DoNotTrapInRingsOfReals) {
  double ring[1], d[3];
  float single_ring[1], s[3];
  const Stream doubles = made(__ostdNewAbstractStream, 1, ring, 0.0, 3.0, give_quarters<double>);
  const Stream singles =
      made(__ostsNewAbstractStream, 1, single_ring, 0.0f, 3.0f, give_quarters<float>);
  _mm_setcsr(_mm_getcsr() & ~(_MM_MASK_MASK | _MM_EXCEPT_MASK));
  __ostdBRngdAbstract(doubles.get(), 3, d, 0.1, 1.1);
  __ostsBRngsAbstract(singles.get(), 3, s, 0.1f, 1.1f);
  std::fesetenv(FE_DFL_ENV);
  EXPECT_EQ(d[2], 0.25 * ((1.1 - 0.1) / 3) + 0.1);
  EXPECT_EQ(s[2], 0.25f * ((1.1f - 0.1f) / 3) + 0.1f);
}

}  // namespace
