// Skip-ahead of a generator that is linear over GF(2): (x^nskip mod p)(F) of its state, F the step
// and p the characteristic polynomial of F (Haramoto, Matsumoto, Nishimura, Panneton and L'Ecuyer
// 2008).

#include <cstddef>

#include "services/services.h"
#include "streams/polynomial.h"
#include "streams/record.h"

namespace {

using namespace qor::streams;

// The generator's operations, and where its polynomial goes.
struct Generator {
  qor_ring_zero zero;
  qor_ring_add add;
  qor_ring_copy copy;
  qor_ring_step step;
  qor_ring_finish finish;
  qor_ring_prepare prepare;
  int32_t words, degree, state_bytes, terms;
  const int32_t* exponents;
};

// `count` records of `bytes` bytes in one block.
struct Records {
  char* block;
  size_t stride;
  Records(size_t bytes, size_t count) {
    constexpr size_t alignment = qor::services::work_alignment;
    stride = (bytes + alignment - 1) / alignment * alignment;
    block = static_cast<char*>(qor_serv_allocate(stride * count, alignment));
  }
  ~Records() { qor_serv_deallocate(block); }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  StreamState* operator[](size_t i) const {
    return reinterpret_cast<StreamState*>(block + i * stride);
  }
};

// sum = g(F) of the stream's state, coefficients from the top down.
void horner(const Generator& g, const uint64_t* poly, int64_t degree, const StreamState* stream,
            StreamState* sum) {
  if (degree < 0) return g.zero(sum);
  g.copy(sum, stream);
  for (int64_t b = degree - 1; b >= 0; --b) {
    g.step(sum);
    if (coefficient(poly, b)) g.add(sum, stream);
  }
}

constexpr int32_t kWindow = 7;  // bits below the leading one
constexpr size_t kPatterns = size_t{1} << kWindow;

// table[mask] = (x^7 + sum of x^b over the bits b of mask)(F) of the stream's state. `powers` has
// room for x^0 to x^6.
void fill_window(const Generator& g, const StreamState* stream, const Records& table,
                 size_t powers) {
  g.copy(table[powers], stream);
  for (size_t b = 1; b < kWindow; ++b) {
    g.copy(table[powers + b], table[powers + b - 1]);
    g.step(table[powers + b]);
  }
  g.copy(table[0], table[powers + kWindow - 1]);
  g.step(table[0]);
  for (size_t mask = 1; mask < kPatterns; ++mask) {
    g.copy(table[mask], table[mask & (mask - 1)]);
    g.add(table[mask], table[powers + static_cast<size_t>(std::countr_zero(mask))]);
  }
}

// The seven coefficients below `top`, the highest in front.
size_t window_below(const uint64_t* poly, int64_t top) {
  size_t mask = 0;
  for (int64_t b = top - 1; b >= top - kWindow; --b)
    mask = 2 * mask + (coefficient(poly, b) ? 1 : 0);
  return mask;
}

// As horner, eight coefficients at a time.
void sliding_window(const Generator& g, const uint64_t* poly, int64_t degree,
                    const StreamState* stream, const Records& table, StreamState* sum) {
  g.zero(sum);
  int64_t t = degree;
  while (t >= kWindow) {
    if (!coefficient(poly, t)) {
      g.step(sum);
      --t;
      continue;
    }
    for (int32_t k = 0; k <= kWindow; ++k) g.step(sum);
    g.add(sum, table[window_below(poly, t)]);
    t -= kWindow + 1;
  }
  for (; t >= 0; --t) {
    g.step(sum);
    if (coefficient(poly, t)) g.add(sum, stream);
  }
}

int32_t skip(StreamState* stream, uint64_t nskip, const Generator& g, bool windowed) {
  if (nskip == 0) return QOR_STREAM_OK;
  int32_t remainder = 0;
  if (g.prepare(stream, &nskip, &remainder) == 0) return QOR_STREAM_OK;
  const Records poly_block(sizeof(uint64_t) * static_cast<size_t>(g.words), 1);
  const Records records(static_cast<size_t>(g.state_bytes), windowed ? kPatterns + kWindow + 1 : 1);
  if (poly_block.block == nullptr || records.block == nullptr) return QOR_STREAM_NO_MEMORY;
  auto* poly = reinterpret_cast<uint64_t*>(poly_block.block);
  const int32_t status = __ostPolyRem(nskip, g.degree, g.terms, g.exponents, g.words, poly);
  if (status != QOR_STREAM_OK) return status;
  const int64_t degree = degree_of(poly, g.words);
  StreamState* sum = records[windowed ? kPatterns + kWindow : 0];
  if (windowed) {
    fill_window(g, stream, records, kPatterns);
    sliding_window(g, poly, degree, stream, records, sum);
  } else {
    horner(g, poly, degree, stream, sum);
  }
  g.finish(stream, sum, remainder);
  return QOR_STREAM_OK;
}

}  // namespace

int32_t __ost_SkipAheadHorner(StreamState* stream, qor_ring_zero zero, qor_ring_add add,
                              qor_ring_copy copy, qor_ring_step step, qor_ring_finish finish,
                              qor_ring_prepare prepare, uint64_t nskip, int32_t N, int32_t degree,
                              int32_t stateBytes, int32_t terms, const int32_t* exponents) {
  const Generator g{zero, add,    copy,       step,  finish,   prepare,
                    N,    degree, stateBytes, terms, exponents};
  return skip(stream, nskip, g, false);
}

int32_t __ost_SkipAheadSWin(StreamState* stream, qor_ring_zero zero, qor_ring_add add,
                            qor_ring_copy copy, qor_ring_step step, qor_ring_finish finish,
                            qor_ring_prepare prepare, uint64_t nskip, int32_t N, int32_t degree,
                            int32_t stateBytes, int32_t terms, const int32_t* exponents) {
  const Generator g{zero, add,    copy,       step,  finish,   prepare,
                    N,    degree, stateBytes, terms, exponents};
  return skip(stream, nskip, g, true);
}
