// WH: 273 generators, each the sum of four multiplicative congruential generators with 24-bit prime
// moduli (after Wichmann and Hill 1982).
//
// The output is the state before the step. A leapfrog changes the multipliers for good. All
// products are below 2^48: blocks run their recurrences in double precision, whose quotients alone
// are rounded; single steps are taken in whole numbers.

#include <array>
#include <bit>
#include <iterator>

#include "streams/generators/output.h"
#include "streams/generators/refusals.h"
#include "streams/generators/repair.h"
#include "streams/generators/wh_table.h"
#include "streams/generators/wide.h"
#include "streams/record.h"
#include "streams/registry.h"

namespace {

using namespace qor::streams;

struct State {
  uint32_t x[4];  // the next output
  uint32_t a[4];  // multipliers
};
static_assert(sizeof(State) == 32);

// 1 / m rounded toward zero, m between 2^23 and 2^24: floor(2^76 / m), which has 53 bits, in two
// divisions of 64-bit numbers.
constexpr double reciprocal(uint64_t m) {
  constexpr uint64_t dividend = uint64_t{1} << 52;
  const uint64_t quotient = (dividend / m << 24) + ((dividend % m << 24) / m);
  return static_cast<double>(quotient) * 0x1p-76;
}

// The same in whole numbers: floor(2^55 / m), which has 32 bits.
constexpr uint32_t inverse(uint64_t m) { return static_cast<uint32_t>((uint64_t{1} << 55) / m); }

// f of every modulus.
template <class Value, Value f(uint64_t)>
constexpr auto of_moduli() {
  std::array<std::array<Value, 4>, std::size(wh_rows)> result{};
  for (size_t s = 0; s < result.size(); ++s) {
    for (size_t j = 0; j < 4; ++j) result[s][j] = f(wh_rows[s].m[j]);
  }
  return result;
}
constexpr auto kReciprocals = of_moduli<double, reciprocal>();
constexpr auto kInverses = of_moduli<uint32_t, inverse>();

// ---- One step -----------------------------------------------------------------------------------

constexpr double kRounder = 0x1.8p52;  // added and subtracted, it leaves the nearest integer

// v where the condition holds, else 0; a mask, for a branch would go wrong every other time.
inline double where(bool condition, double v) {
  return std::bit_cast<double>(std::bit_cast<uint64_t>(v) & -uint64_t{condition});
}
inline WideReal where(WideMask condition, WideReal v) {
  return reinterpret_cast<WideReal>(condition & reinterpret_cast<WideMask>(v));
}

// x a mod m for residues x and a. The 32 upper bits of the product and the inverse are off by less
// than 2^-6 of the quotient's unit together, so that one subtraction mends the remainder.
uint32_t multiply(uint32_t x, uint32_t a, uint32_t m, uint32_t inverse_of_m) {
  const uint64_t product = uint64_t{x} * a;
  const uint64_t quotient = (product >> 16) * inverse_of_m >> 39;
  const auto remainder = static_cast<uint32_t>(product - quotient * m);
  return remainder >= m ? remainder - m : remainder;
}

// The same in lanes, where rounding is to nearest: a quotient, less a half, rounds to its floor. No
// product of residues is a multiple of the prime m < 2^24, so that no quotient is nearer to a whole
// number than 2^-24; the error is below 2^-27.
inline WideReal multiply_nearest(WideReal x, WideReal a, WideReal m, WideReal r) {
  const WideReal product = x * a;
  const WideReal quotient = (product * r - 0.5 + kRounder) - kRounder;
  return product - quotient * m;
}

// The fraction of sum x_j / m_j, added in this order; the r_j are the reciprocals.
template <class V>
inline V fraction(V x1, V x2, V x3, V x4, const std::array<double, 4>& r) {
  const V sum = r[0] * x1 + r[1] * x2 + r[2] * x3 + r[3] * x4;
  const V nearest = (sum + kRounder) - kRounder;
  return sum - (nearest - where(sum < nearest, V{} + 1.0));
}

// A member of the family: its moduli and what stands for divisions by them. The reciprocals are a
// copy, which no store to the output can be taken to change.
struct Member {
  const uint32_t *m, *inverse;
  std::array<double, 4> r;
  explicit Member(int32_t number)
      : m(wh_rows[number].m),
        inverse(kInverses[static_cast<size_t>(number)].data()),
        r(kReciprocals[static_cast<size_t>(number)]) {}
  uint32_t product(uint32_t x, uint32_t a, int j) const { return multiply(x, a, m[j], inverse[j]); }
};

void step(State& state, const Member& member) {
  for (int j = 0; j < 4; ++j) state.x[j] = member.product(state.x[j], state.a[j], j);
}

// ---- Block form ---------------------------------------------------------------------------------

// kSteps consecutive states, each multiplied by a_j^kSteps a round. Generator j of step s stands at
// place(j, s): the two outputs want different orders.
constexpr int kSteps = 16;

constexpr int by_generator(int j, int s) { return j * kSteps + s; }
constexpr int by_step(int j, int s) { return 4 * s + j; }

template <int (*place)(int, int)>
struct Block {
  alignas(64) double x[4 * kSteps], a[4 * kSteps], m[4 * kSteps], r[4 * kSteps];

  Block(const State& state, const Member& member) {
    for (int j = 0; j < 4; ++j) {
      uint32_t next = state.x[j], power = 1;
      for (int s = 0; s < kSteps; ++s) {
        x[place(j, s)] = next;
        next = member.product(next, state.a[j], j);
        power = member.product(power, state.a[j], j);
      }
      for (int s = 0; s < kSteps; ++s) {
        a[place(j, s)] = power;
        m[place(j, s)] = member.m[j];
        r[place(j, s)] = member.r[j];
      }
    }
  }

  void advance() {
    for (int k = 0; k < 4 * kSteps; k += wide_lanes) {
      const WideReal next =
          multiply_nearest(load_wide(x + k), load_wide(a + k), load_wide(m + k), load_wide(r + k));
      std::memcpy(x + k, &next, sizeof next);
    }
  }

  void save(State& state) const {
    for (int j = 0; j < 4; ++j) state.x[j] = static_cast<uint32_t>(x[place(j, 0)]);
  }
};

uint32_t residue_or(uint32_t instead, uint32_t word, uint32_t m) {
  word %= m;
  return word != 0 ? word : instead;
}

// Shorter calls, and those in another rounding mode or with traps, run step by step.
bool runs_in_blocks(int32_t n) { return n >= 2 * kSteps && has_usual_environment(); }

void fill_words(StreamState* stream, int32_t n, void* r) {
  auto& state = state_of<State>(stream);
  const Member member(member_of(stream));
  using Words = std::array<uint32_t, 4>;
  int64_t i = 0;
  if (runs_in_blocks(n)) {
    Block<by_step> block(state, member);
    for (; i + kSteps <= n; i += kSteps, block.advance()) {
      void* out = at<Words>(r, i);
      for (int k = 0; k < 4 * kSteps; ++k) store(out, k, static_cast<int32_t>(block.x[k]));
    }
    block.save(state);
  }
  for (; i < n; ++i, step(state, member)) store(r, i, std::to_array(state.x));
}

template <class Real>
int32_t fill(StreamState* stream, int32_t n, Real* r, double a, double b) {
  auto& state = state_of<State>(stream);
  const Member member(member_of(stream));
  const double scale = b - a;
  int64_t i = 0;
  if (runs_in_blocks(n)) {
    Block<by_generator> block(state, member);
    const double* x = block.x;
    for (; i + kSteps <= n; i += kSteps, block.advance()) {
      void* out = at<Real>(r, i);
      for (int s = 0; s < kSteps; s += wide_lanes) {
        const WideReal f =
            fraction(load_wide(x + s), load_wide(x + kSteps + s), load_wide(x + 2 * kSteps + s),
                     load_wide(x + 3 * kSteps + s), member.r);
        const WideReal values = f * scale + a;
        for (int k = 0; k < wide_lanes; ++k) store(out, s + k, static_cast<Real>(values[k]));
      }
    }
    block.save(state);
  }
  for (; i < n; ++i, step(state, member)) {
    const double f = fraction<double>(state.x[0], state.x[1], state.x[2], state.x[3], member.r);
    store(r, i, static_cast<Real>(f * scale + a));
  }
  return QOR_STREAM_OK;
}

// ---- Creation, skip-ahead, leapfrog -------------------------------------------------------------

void create(State& state, const WhRow& row, int32_t n, const uint32_t* seed) {
  for (uint32_t j = 0; j < 4; ++j) {
    state.x[j] = j < static_cast<uint32_t>(n) ? residue_or(1, seed[j], row.m[j]) : 1;
    state.a[j] = row.a[j];
  }
}

void skip(State& state, const WhRow& row, uint64_t count) {
  for (int j = 0; j < 4; ++j) {
    const uint64_t power = __ostiPowMod(state.a[j], count, row.m[j]);
    state.x[j] = static_cast<uint32_t>(state.x[j] * power % row.m[j]);
  }
}

void leapfrog(State& state, const WhRow& row, uint32_t k, int32_t stride) {
  skip(state, row, k);
  for (int j = 0; j < 4; ++j)
    state.a[j] = __ostiPowMod(state.a[j], static_cast<uint32_t>(stride), row.m[j]);
}

}  // namespace

void qor::streams::repair_wh(StreamState* stream) {
  auto& state = state_of<State>(stream);
  const WhRow& row = wh_rows[member_of(stream)];
  for (int j = 0; j < 4; ++j) {
    state.x[j] = residue_or(1, state.x[j], row.m[j]);
    state.a[j] = residue_or(row.a[j], state.a[j], row.m[j]);
  }
}

int32_t __ostBRngWHInitStream(int32_t method, StreamState* stream, int32_t n, const void* params) {
  const WhRow& row = wh_rows[member_of(stream)];
  switch (method) {
    case QOR_BRNG_CREATE:
      create(state_of<State>(stream), row, n, static_cast<const uint32_t*>(params));
      return QOR_STREAM_OK;
    case QOR_BRNG_LEAPFROG:
      leapfrog(state_of<State>(stream), row, *static_cast<const uint32_t*>(params), n);
      return QOR_STREAM_OK;
    case QOR_BRNG_SKIP_AHEAD:
      skip(state_of<State>(stream), row, *static_cast<const uint64_t*>(params));
      return QOR_STREAM_OK;
    default:
      return refusal_of(method);
  }
}

int32_t __ostsBRngWH(StreamState* stream, int32_t n, float* r, float a, float b) {
  return fill(stream, n, r, static_cast<double>(a), static_cast<double>(b));
}
int32_t __ostdBRngWH(StreamState* stream, int32_t n, double* r, double a, double b) {
  return fill(stream, n, r, a, b);
}
int32_t __ostiBRngWH(StreamState* stream, int32_t n, void* r) {
  fill_words(stream, n, r);
  return QOR_STREAM_OK;
}
