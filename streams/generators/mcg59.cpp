// MCG59: x = 13^13 x mod 2^59, a multiplicative congruential generator.
//
// The output is the state before the step. A leapfrog changes the multiplier for good.

#include <bit>

#include "streams/generators/output.h"
#include "streams/generators/refusals.h"
#include "streams/generators/repair.h"
#include "streams/generators/wide.h"
#include "streams/record.h"

namespace {

using namespace qor::streams;

struct State {
  uint64_t x;  // the next output
  uint64_t a;  // multiplier
};
static_assert(sizeof(State) == 16);

constexpr uint64_t kMask = (uint64_t{1} << 59) - 1;
constexpr uint64_t kMultiplier = 302875106592253;  // 13^13
constexpr double kUnit = 0x1p-59;

// Block form: kLanes consecutive outputs, each multiplied by a^kLanes a round.
constexpr int kVectors = 4;
constexpr int32_t kLanes = kVectors * wide_lanes;

int64_t fill_blocks(State& state, int64_t n, void* r) {
  uint64_t power = 1;
  Wide x[kVectors];
  for (int k = 0; k < kLanes; ++k, power = power * state.a)
    x[k / wide_lanes][k % wide_lanes] = state.x * power & kMask;
  int64_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    std::memcpy(at<uint64_t>(r, i), x, sizeof x);
    for (Wide& lanes : x) lanes = lanes * power & kMask;
  }
  state.x = x[0][0];
  return i;
}

void fill_words(State& state, int64_t n, void* r) {
  int64_t i = n >= 2 * kLanes ? fill_blocks(state, n, r) : 0;
  uint64_t x = state.x;
  for (; i < n; ++i, x = x * state.a & kMask) store(r, i, x);
  state.x = x;
}

// The halves of a word as doubles, by their place in the mantissa; exact.
double low_half(uint64_t word) {
  return std::bit_cast<double>((word & 0xFFFFFFFF) | 0x4330000000000000) - 0x1p52;
}
double high_half(uint64_t word) {
  return std::bit_cast<double>((word >> 32) | 0x4530000000000000) - 0x1p84;
}

// The order of the roundings differs between the two types: it is part of what the generator gives.
struct MapWords59 {
  using Word = uint64_t;
  Affine map;
  void operator()(const uint64_t* words, int32_t n, double* r) const {
    for (int32_t i = 0; i < n; ++i)
      store(r, i, low_half(words[i]) * map.scale + high_half(words[i]) * map.scale + map.a);
  }
  void operator()(const uint64_t* words, int32_t n, float* r) const {
    for (int32_t i = 0; i < n; ++i) {
      const double u = low_half(words[i]) + high_half(words[i]);
      store(r, i, static_cast<float>(u * map.scale + map.a));
    }
  }
};

template <class Real>
int32_t fill(StreamState* stream, int32_t n, Real* r, double a, double b) {
  auto& state = state_of<State>(stream);
  fill_reals(
      n, r, [&](int32_t count, uint64_t* words) { fill_words(state, count, words); },
      MapWords59{{a, b, kUnit}});
  return QOR_STREAM_OK;
}

void create(State& state, int32_t n, const uint32_t* seed) {
  uint64_t x = n >= 1 ? seed[0] : 0;
  if (n >= 2) x |= (uint64_t{seed[1]} << 32) & kMask;
  state = {x != 0 ? x : 1, kMultiplier};
}

void skip(State& state, uint64_t count) {
  state.x = state.x * __ostiPowMod2P59(state.a, count) & kMask;
}

void leapfrog(State& state, uint32_t k, int32_t stride) {
  skip(state, k);
  state.a = __ostiPowMod2P59(state.a, static_cast<uint32_t>(stride));
}

}  // namespace

// Under an even multiplier all numbers end at 0.
void qor::streams::repair_mcg59(StreamState* stream) {
  auto& state = state_of<State>(stream);
  const uint64_t x = state.x & kMask, a = state.a & kMask;
  state = {x != 0 ? x : 1, a % 2 != 0 ? a : kMultiplier};
}

int32_t __ostBRngMCG59InitStream(int32_t method, StreamState* stream, int32_t n,
                                 const void* params) {
  switch (method) {
    case QOR_BRNG_CREATE:
      create(state_of<State>(stream), n, static_cast<const uint32_t*>(params));
      return QOR_STREAM_OK;
    case QOR_BRNG_LEAPFROG:
      leapfrog(state_of<State>(stream), *static_cast<const uint32_t*>(params), n);
      return QOR_STREAM_OK;
    case QOR_BRNG_SKIP_AHEAD:
      skip(state_of<State>(stream), *static_cast<const uint64_t*>(params));
      return QOR_STREAM_OK;
    default:
      return refusal_of(method);
  }
}

int32_t __ostsBRngMCG59(StreamState* stream, int32_t n, float* r, float a, float b) {
  return fill(stream, n, r, static_cast<double>(a), static_cast<double>(b));
}
int32_t __ostdBRngMCG59(StreamState* stream, int32_t n, double* r, double a, double b) {
  return fill(stream, n, r, a, b);
}
int32_t __ostiBRngMCG59(StreamState* stream, int32_t n, void* r) {
  fill_words(state_of<State>(stream), n, r);
  return QOR_STREAM_OK;
}
