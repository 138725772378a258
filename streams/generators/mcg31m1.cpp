// MCG31M1: x = a x mod 2^31 - 1, a multiplicative congruential generator (L'Ecuyer 1999).
//
// The output is the state before the step: values 1 to 2^31 - 2. A leapfrog changes the multiplier
// for good.

#include "streams/generators/output.h"
#include "streams/generators/refusals.h"
#include "streams/generators/repair.h"
#include "streams/generators/wide.h"
#include "streams/record.h"

namespace {

using namespace qor::streams;

struct State {
  uint32_t x;  // the next output
  uint32_t a;  // multiplier
};
static_assert(sizeof(State) == 8);

constexpr uint32_t kModulus = 0x7FFFFFFF;
constexpr uint32_t kMultiplier = 1132489760;
constexpr double kUnit = 4.656612875245797e-10;  // nearest 1 / (2^31 - 1)

uint32_t residue_or(uint32_t instead, uint32_t word) {
  word %= kModulus;
  return word != 0 ? word : instead;
}

// 2^31 is 1: the high part of a product is added to the low one.
uint32_t multiply(uint32_t x, uint32_t a) {
  const uint64_t p = uint64_t{x} * a;
  const auto t = static_cast<uint32_t>((p & kModulus) + (p >> 31));
  return t >= kModulus ? t - kModulus : t;
}

// The second fold stands for the subtraction: no multiple of the modulus comes up, for neither
// factor is one.
Wide multiply(Wide x, Wide a) {
  const Wide p = mul_low(x, a);
  const Wide t = (p & kModulus) + (p >> 31);
  return (t & kModulus) + (t >> 31);
}

// Block form: kLanes consecutive outputs, each multiplied by a^kLanes a round.
constexpr int kVectors = 8;
constexpr int32_t kLanes = kVectors * wide_lanes;

int64_t fill_blocks(State& state, int64_t n, void* r) {
  uint32_t power = 1;  // a^k
  Wide x[kVectors];
  for (int k = 0; k < wide_lanes; ++k, power = multiply(power, state.a))
    x[0][k] = multiply(power, state.x);
  for (int v = 1; v < kVectors; ++v) x[v] = multiply(x[v - 1], wide(power));
  for (int k = 1; k < kVectors; k *= 2) power = multiply(power, power);
  const Wide jump = wide(power);
  int64_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    for (int v = 0; v < kVectors; v += 2) {
      const WideWords words = low_halves(x[v], x[v + 1]);
      std::memcpy(at<uint32_t>(r, i + v * wide_lanes), &words, sizeof words);
      x[v] = multiply(x[v], jump);
      x[v + 1] = multiply(x[v + 1], jump);
    }
  }
  state.x = static_cast<uint32_t>(x[0][0]);
  return i;
}

void fill_words(State& state, int64_t n, void* r) {
  int64_t i = n >= 2 * kLanes ? fill_blocks(state, n, r) : 0;
  uint32_t x = state.x;
  for (; i < n; ++i, x = multiply(x, state.a)) store(r, i, x);
  state.x = x;
}

template <class Real>
int32_t fill(StreamState* stream, int32_t n, Real* r, double a, double b) {
  auto& state = state_of<State>(stream);
  fill_reals(
      n, r, [&](int32_t count, uint32_t* words) { fill_words(state, count, words); },
      MapWords31{{a, b, kUnit}});
  return QOR_STREAM_OK;
}

void create(State& state, int32_t n, const uint32_t* seed) {
  state = {n >= 1 ? residue_or(1, seed[0]) : 1, kMultiplier};
}

void skip(State& state, uint64_t count) {
  state.x = multiply(state.x, __ostiPowMod2P31M1(state.a, count));
}

void leapfrog(State& state, uint32_t k, int32_t stride) {
  skip(state, k);
  state.a = __ostiPowMod2P31M1(state.a, static_cast<uint32_t>(stride));
}

}  // namespace

void qor::streams::repair_mcg31m1(StreamState* stream) {
  auto& state = state_of<State>(stream);
  state = {residue_or(1, state.x), residue_or(kMultiplier, state.a)};
}

int32_t __ostBRngMCG31M1InitStream(int32_t method, StreamState* stream, int32_t n,
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

int32_t __ostsBRngMCG31M1(StreamState* stream, int32_t n, float* r, float a, float b) {
  return fill(stream, n, r, static_cast<double>(a), static_cast<double>(b));
}
int32_t __ostdBRngMCG31M1(StreamState* stream, int32_t n, double* r, double a, double b) {
  return fill(stream, n, r, a, b);
}
int32_t __ostiBRngMCG31M1(StreamState* stream, int32_t n, void* r) {
  fill_words(state_of<State>(stream), n, r);
  return QOR_STREAM_OK;
}
