// R250: x(t) = x(t - 147) xor x(t - 250), a generalised feedback shift register (Kirkpatrick and
// Stoll 1981).

#include "streams/generators/output.h"
#include "streams/generators/refusals.h"
#include "streams/generators/repair.h"
#include "streams/record.h"

namespace {

using namespace qor::streams;

constexpr int32_t kRing = 250;
constexpr int32_t kTap = 103;           // the second tap, counted from the oldest word
constexpr int32_t kLag = kRing - kTap;  // 147: how long ago it was made
constexpr int32_t kShortestRun = 16;    // words of a call that takes them in runs
constexpr double kUnit = 0x1p-32;

struct State {
  uint32_t w[kRing];
  uint32_t i;  // the oldest word, which is replaced next
  uint32_t j;  // the second tap
};
static_assert(sizeof(State) == 1008);

// An index moved on by at most a ring.
uint32_t advanced(uint32_t index, uint32_t n) {
  return index + n < kRing ? index + n : index + n - kRing;
}

// Words in place in the ring, one by one.
void step_in_ring(State& s, int64_t n, void* r) {
  uint32_t i = s.i;
  for (int64_t t = 0; t < n; ++t) {
    s.w[i] ^= s.w[advanced(i, kTap)];
    store(r, t, s.w[i]);
    i = advanced(i, 1);
  }
  s.i = i;
  s.j = advanced(i, kTap);
}

// The same in runs: no index passes the ring's end in one, and no word depends on another.
[[gnu::noinline]] void run_in_ring(State& s, int64_t n, void* r) {
  for (int64_t t = 0; t < n;) {
    const auto left = static_cast<uint32_t>(n - t);
    const uint32_t run = std::min({left, kRing - s.i, kRing - s.j, uint32_t{kTap}});
    uint32_t* __restrict oldest = s.w + s.i;
    const uint32_t* __restrict tap = s.w + s.j;
    for (uint32_t k = 0; k < run; ++k) oldest[k] ^= tap[k];
    std::memcpy(at<uint32_t>(r, t), oldest, run * sizeof *oldest);
    s.i = advanced(s.i, run);
    s.j = advanced(s.j, run);
    t += run;
  }
}

// Lets the ring start at its oldest word, as calls of a ring and more leave it.
void normalise(State& s) {
  std::rotate(s.w, s.w + s.i, s.w + kRing);
  s.i = 0;
  s.j = kTap;
}

// r[t] = r[t - 250] xor r[t - 147] for n words from r on; n is at most kLag, so that none depends
// on another.
[[gnu::always_inline]] inline void extend(char* r, int64_t n) {
  constexpr auto bytes = static_cast<ptrdiff_t>(sizeof(uint32_t));
  const char* __restrict oldest = r - kRing * bytes;
  const char* __restrict tap = r - kLag * bytes;
  char* __restrict out = r;
  for (int64_t t = 0; t < n; ++t) store(out, t, load<uint32_t>(oldest, t) ^ load<uint32_t>(tap, t));
}

// Calls of a ring and more: the first words replace the ring, the others come from the output.
[[gnu::noinline]] void fill_from_output(State& s, int64_t n, void* r) {
  constexpr int64_t block = 144;  // whole vectors, at most kLag
  run_in_ring(s, kRing, r);
  int64_t t = kRing;
  for (; t + block <= n; t += block) extend(static_cast<char*>(at<uint32_t>(r, t)), block);
  extend(static_cast<char*>(at<uint32_t>(r, t)), n - t);
  std::memcpy(s.w, at<uint32_t>(r, n - kRing), sizeof s.w);
  s.i = 0;
  s.j = kTap;
}

void fill_words(State& state, int32_t n, void* r) {
  if (n < kShortestRun) {
    step_in_ring(state, n, r);
  } else if (n < kRing) {
    run_in_ring(state, n, r);
  } else {
    fill_from_output(state, n, r);
  }
}

template <class Real>
int32_t fill(StreamState* stream, int32_t n, Real* r, double a, double b) {
  auto& state = state_of<State>(stream);
  fill_reals(
      n, r, [&](int32_t count, uint32_t* words) { fill_words(state, count, words); },
      MapWords32{{a, b, kUnit}});
  // The last block may have been a short one.
  if (n >= kRing) normalise(state);
  return QOR_STREAM_OK;
}

// One seed: powers of 69069, and 32 words whose leading bits are set to a triangle, so that no 32
// bit columns can be dependent.
void create_from_one(State& state, uint32_t seed) {
  for (uint32_t& word : state.w) word = seed *= 69069;
  for (uint32_t k = 0; k < 32; ++k) {
    uint32_t& word = state.w[7 * k + 3];
    word = (word & (0xFFFFFFFFu >> k)) | (0x80000000u >> k);
  }
}

void create(State& state, int32_t n, const uint32_t* seed) {
  if (n >= kRing) {
    std::copy_n(seed, kRing, state.w);
  } else {
    create_from_one(state, n >= 1 && seed[0] != 0 ? seed[0] : 1);
  }
  state.i = 0;
  state.j = kTap;
}

}  // namespace

// Any words will do, and the second index follows from the first.
void qor::streams::repair_r250(StreamState* stream) {
  auto& state = state_of<State>(stream);
  state.i %= kRing;
  state.j = (state.i + kTap) % kRing;
}

int32_t __ostBRngR250InitStream(int32_t method, StreamState* stream, int32_t n,
                                const void* params) {
  if (method != QOR_BRNG_CREATE) return refusal_of(method);
  create(state_of<State>(stream), n, static_cast<const uint32_t*>(params));
  return QOR_STREAM_OK;
}

int32_t __ostsBRngR250(StreamState* stream, int32_t n, float* r, float a, float b) {
  return fill(stream, n, r, static_cast<double>(a), static_cast<double>(b));
}
int32_t __ostdBRngR250(StreamState* stream, int32_t n, double* r, double a, double b) {
  return fill(stream, n, r, a, b);
}
int32_t __ostiBRngR250(StreamState* stream, int32_t n, void* r) {
  fill_words(state_of<State>(stream), n, r);
  return QOR_STREAM_OK;
}
