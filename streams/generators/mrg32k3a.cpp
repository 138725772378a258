// MRG32K3A: two multiple recursive generators of order 3, combined (L'Ecuyer 1999).
//
//   x' = 1403580 x[1] - 810728 x[0] mod m1,  y' = 527612 y[2] - 1370589 y[0] mod m2
//   word z = x' - y' mod m1
//
// The step comes first: output is the new value.

#include "streams/generators/mrg32k3a_lanes.h"
#include "streams/generators/output.h"
#include "streams/generators/refusals.h"
#include "streams/generators/repair.h"
#include "streams/generators/wide.h"
#include "streams/modular.h"
#include "streams/record.h"

namespace {

using namespace qor::streams;

struct State {
  uint32_t x[3], y[3];  // oldest first
};
static_assert(sizeof(State) == 24);

constexpr uint64_t kM1 = mrg_m1, kM2 = mrg_m2;
constexpr uint64_t kFold1 = 209, kFold2 = 22853;  // 2^32 - m
constexpr double kUnit = 2.328306549837829e-10;   // nearest 1 / m1

// Words beyond a modulus stand for their residues; three zeros cannot be.
void make_sound(State& state) {
  for (int k = 0; k < 3; ++k) {
    if (state.x[k] >= mrg_m1) state.x[k] -= mrg_m1;
    if (state.y[k] >= mrg_m2) state.y[k] -= mrg_m2;
  }
  if ((state.x[0] | state.x[1] | state.x[2]) == 0) state.x[0] = 1;
  if ((state.y[0] | state.y[1] | state.y[2]) == 0) state.y[0] = 1;
}

// ---- Scalar form --------------------------------------------------------------------------------

// t mod m, m = 2^32 - fold: two folds leave less than 2 m, whatever t is.
template <uint64_t m, uint64_t fold>
uint32_t reduce(uint64_t t) {
  t = (t >> 32) * fold + (t & 0xFFFFFFFF);
  t = (t >> 32) * fold + (t & 0xFFFFFFFF);
  return static_cast<uint32_t>(t >= m ? t - m : t);
}

uint32_t step(State& s) {
  // A multiple of m keeps the difference from going below 0.
  const uint32_t x = reduce<kM1, kFold1>(1403580 * uint64_t{s.x[1]} + 810728 * (kM1 - s.x[0]));
  const uint32_t y = reduce<kM2, kFold2>(527612 * uint64_t{s.y[2]} + 1370589 * (kM2 - s.y[0]));
  s = {{s.x[1], s.x[2], x}, {s.y[1], s.y[2], y}};
  return x >= y ? x - y : x - y + mrg_m1;
}

// ---- Block form ---------------------------------------------------------------------------------

// Sixteen steps on: the first row of the 16th power of each transition matrix, whose coefficients
// are small enough for three products to fit 64 bits.
constexpr int32_t kLanes = 16;
constexpr int kVectors = kLanes / wide_lanes;
constexpr uint64_t kX0 = 736416029, kMinusX1 = 1333150987, kX2 = 342112271;
constexpr uint64_t kY0 = 818368950, kMinusY1 = 504169876, kMinusY2 = 752600334;

Wide jump_x(Wide x0, Wide x1, Wide x2) {
  return reduce_wide<kFold1>(mul_low(x0, wide(kX0)) + mul_low(x2, wide(kX2)) + kMinusX1 * kM1 -
                             mul_low(x1, wide(kMinusX1)));
}

Wide jump_y(Wide y0, Wide y1, Wide y2) {
  return reduce_wide<kFold2>(mul_low(y0, wide(kY0)) + (kMinusY1 + kMinusY2) * kM2 -
                             mul_low(y1, wide(kMinusY1)) - mul_low(y2, wide(kMinusY2)));
}

// x - y mod m1
WideWords subtract_words(WideWords x, WideWords y) {
  return x - y + (reinterpret_cast<WideWords>(x < y) & mrg_m1);
}

// Replaces the sixteen values of v by the next sixteen; the last need the first new ones.
template <class Jump>
void advance(Wide* v, Jump jump) {
  for (int k = 0; k < kVectors; ++k) {
    const Wide next = v[(k + 1) % kVectors];
    v[k] = jump(v[k], shift_in<1>(v[k], next), shift_in<2>(v[k], next));
  }
}

int64_t fill_blocks(State& state, int64_t n, void* r) {
  Wide x[kVectors], y[kVectors];
  for (int32_t k = 0; k < kLanes; ++k) {
    store(r, k, step(state));
    x[k / wide_lanes][k % wide_lanes] = state.x[2];
    y[k / wide_lanes][k % wide_lanes] = state.y[2];
  }
  int64_t i = kLanes;
  for (; i + kLanes <= n; i += kLanes) {
    advance(x, jump_x);
    advance(y, jump_y);
    for (int k = 0; k < kVectors; k += 2) {
      const WideWords z = subtract_words(low_halves(x[k], x[k + 1]), low_halves(y[k], y[k + 1]));
      std::memcpy(at<uint32_t>(r, i + k * wide_lanes), &z, sizeof z);
    }
  }
  for (int32_t k = 0; k < 3; ++k) {
    const int32_t lane = kLanes - 3 + k;
    state.x[k] = static_cast<uint32_t>(x[lane / wide_lanes][lane % wide_lanes]);
    state.y[k] = static_cast<uint32_t>(y[lane / wide_lanes][lane % wide_lanes]);
  }
  return i;
}

void fill_words(State& state, int64_t n, void* r) {
  int64_t i = n >= 2 * kLanes ? fill_blocks(state, n, r) : 0;
  State s = state;
  for (; i < n; ++i) store(r, i, step(s));
  state = s;
}

// The rounds of a long call, which has whole ones: put(i, words) as MrgLanes gives them.
template <class Put>
int64_t fill_rounds(State& state, int64_t n, Put put) {
  constexpr int32_t shortest_call = 2 * mrg_block;  // below, the start is not worth it
  if (n < shortest_call || !has_usual_environment()) return 0;
  MrgLanes lanes(state.x, state.y);
  int64_t done = 0;
  for (;;) {
    lanes.round([&](int64_t i, WideReal words) { put(done + i, words); });
    done += mrg_block;
    if (n - done < mrg_block) break;
    lanes.jump();
  }
  lanes.save(state.x, state.y);
  return done;
}

template <class Real>
int32_t fill(StreamState* stream, int32_t n, Real* r, double a, double b) {
  auto& state = state_of<State>(stream);
  const Affine map{a, b, kUnit};
  const int64_t done = fill_rounds(state, n, [&](int64_t i, WideReal words) {
    const WideReal values = words * map.scale + map.a;
    for (int k = 0; k < wide_lanes; ++k) store(r, i + k * mrg_stride, static_cast<Real>(values[k]));
  });
  fill_reals(
      n - done, static_cast<Real*>(at<Real>(r, done)),
      [&](int32_t count, uint32_t* words) { fill_words(state, count, words); }, MapWords32{map});
  return QOR_STREAM_OK;
}

// ---- Creation and skip-ahead --------------------------------------------------------------------

void create(State& state, int32_t n, const uint32_t* seed) {
  uint32_t words[6] = {1, 1, 1, 1, 1, 1};
  if (n > 0) std::copy_n(seed, std::min(n, 6), words);
  state = {{words[0], words[1], words[2]}, {words[3], words[4], words[5]}};
  make_sound(state);
}

constexpr int32_t kTableWords = 3;  // of 64 bits, that the tables of powers reach
constexpr auto kPowers1 = powers_of_two<64 * kTableWords>(mrg_row1, mrg_m1);
constexpr auto kPowers2 = powers_of_two<64 * kTableWords>(mrg_row2, mrg_m2);

void skip_by_table(State& state, int32_t n, const uint64_t* nskip) {
  __ostiVect3PowArrayMod_M1(state.x, n, nskip, kPowers1[0].data());
  __ostiVect3PowArrayMod_M2(state.y, n, nskip, kPowers2[0].data());
}

int32_t skip_ahead_ex(State& state, int32_t n, const uint64_t* nskip) {
  while (n > kTableWords && nskip[n - 1] == 0) --n;
  if (n <= kTableWords) {
    skip_by_table(state, n, nskip);
    return QOR_STREAM_OK;
  }
  State next = state;
  int32_t status = __ostiVect3PowArrayMod(next.x, mrg_row1.data(), mrg_m1, n, nskip);
  if (status == QOR_STREAM_OK)
    status = __ostiVect3PowArrayMod(next.y, mrg_row2.data(), mrg_m2, n, nskip);
  if (status == QOR_STREAM_OK) state = next;
  return status;
}

}  // namespace

void qor::streams::repair_mrg32k3a(StreamState* stream) { make_sound(state_of<State>(stream)); }

int32_t __ostBRngMRG32K3AInitStream(int32_t method, StreamState* stream, int32_t n,
                                    const void* params) {
  auto& state = state_of<State>(stream);
  switch (method) {
    case QOR_BRNG_CREATE:
      create(state, n, static_cast<const uint32_t*>(params));
      return QOR_STREAM_OK;
    case QOR_BRNG_SKIP_AHEAD:
      skip_by_table(state, 1, static_cast<const uint64_t*>(params));
      return QOR_STREAM_OK;
    case QOR_BRNG_SKIP_AHEAD_EX:
      return skip_ahead_ex(state, n, static_cast<const uint64_t*>(params));
    default:
      return refusal_of(method);
  }
}

int32_t __ostsBRngMRG32K3A(StreamState* stream, int32_t n, float* r, float a, float b) {
  return fill(stream, n, r, static_cast<double>(a), static_cast<double>(b));
}
int32_t __ostdBRngMRG32K3A(StreamState* stream, int32_t n, double* r, double a, double b) {
  return fill(stream, n, r, a, b);
}
int32_t __ostiBRngMRG32K3A(StreamState* stream, int32_t n, void* r) {
  auto& state = state_of<State>(stream);
  const int64_t done = fill_rounds(state, n, [&](int64_t i, WideReal words) {
    const Wide bits = MrgLanes::words_of(words);
    for (int k = 0; k < wide_lanes; ++k)
      store(r, i + k * mrg_stride, static_cast<uint32_t>(bits[k]));
  });
  fill_words(state, n - done, at<uint32_t>(r, done));
  return QOR_STREAM_OK;
}
