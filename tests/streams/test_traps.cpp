// A caller who unmasked every floating-point exception: whole numbers do not trap, and his masks
// and flags stay.

#include <xmmintrin.h>

#include <cfenv>

#include "tests/streams/stream_support.h"

namespace {

using namespace qor::test;

// The words of calls of all forms between moves of a stream, as bytes.
Bytes words_and_moves(int32_t brng) {
  Bytes all;
  const Stream stream = new_stream(brng);
  for (int32_t n : {1, 8, 40, 15000}) {
    const auto words = words_of(stream, n);
    const auto* bytes = reinterpret_cast<const unsigned char*>(words.data());
    all.insert(all.end(), bytes, bytes + words.size() * sizeof words[0]);
    __ostSkipAheadStream(stream.get(), 12345678901);
    __ostLeapfrogStream(stream.get(), 1, 3);
  }
  return all;
}

TEST(UnmaskedExceptions, DoNotTrapInWholeNumbers) {
  for (int32_t brng : linear_generators) {
    SCOPED_TRACE(brng);
    const Bytes expected = words_and_moves(brng);
    std::feclearexcept(FE_ALL_EXCEPT);
    feenableexcept(FE_ALL_EXCEPT);
    _mm_setcsr(_mm_getcsr() & ~_MM_MASK_MASK);
    const uint32_t own = _mm_getcsr();
    const Bytes got = words_and_moves(brng);
    const uint32_t left = _mm_getcsr();
    std::fesetenv(FE_DFL_ENV);
    EXPECT_EQ(got, expected);
    EXPECT_EQ(left, own);
  }
}

}  // namespace
