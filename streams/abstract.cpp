// Abstract streams: creation, and the output function of each kind.

#include "streams/abstract.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "services/services.h"
#include "streams/generators/refusals.h"
#include "streams/record.h"
#include "streams/registry.h"

namespace {

using namespace qor::streams;

// ---- Creation -----------------------------------------------------------------------------------

// What the create method receives: addresses of values, the buffer and the callback, in this order.
constexpr int32_t kWordBlock = 6, kRealBlock = 10;

template <class Element>
int32_t new_stream(StreamState** stream, int32_t id, int32_t count, const void* const* block) {
  const BrngProperties* row = usable_row(id);
  if (row == nullptr) return QOR_STREAM_BAD_GENERATOR;
  *stream = allocate_record(*row, id);
  if (*stream == nullptr) return QOR_STREAM_NO_MEMORY;
  return row->initStream(QOR_BRNG_CREATE, *stream, count, block);
}

template <class Element>
int32_t new_real_stream(StreamState** stream, int32_t id, int32_t n, Element* buffer, Element A,
                        Element B, Refill<Element> callback) {
  // A NaN bound passes.
  if (n == 0 || buffer == nullptr || A >= B || callback == nullptr) return QOR_STREAM_BAD_ARGUMENTS;
  const void* const block[] = {&n, buffer, &A, &B, std::bit_cast<const void*>(callback)};
  return new_stream<Element>(stream, id, kRealBlock, block);
}

template <class Element>
const Element& value_at(const void* address) {
  return *static_cast<const Element*>(address);
}

template <class Element>
int32_t init_stream(int32_t method, StreamState* stream, const void* params) {
  if (method != QOR_BRNG_CREATE) return refusal_of(method);
  auto* block = static_cast<const void* const*>(params);
  auto& ring = state_of<Ring<Element>>(stream);
  ring.n = value_at<int32_t>(*block++);
  ring.next = 0;
  ring.free = ring.n;
  ring.buffer = const_cast<Element*>(static_cast<const Element*>(*block++));
  if constexpr (std::is_floating_point_v<Element>) {
    ring.bounds.low = value_at<Element>(*block++);
    ring.bounds.high = value_at<Element>(*block++);
  }
  ring.refill = std::bit_cast<Refill<Element>>(*block);
  return QOR_STREAM_OK;
}

// ---- Output -------------------------------------------------------------------------------------

// Hands elements on as they are.
struct CopyElements {
  void operator()(const uint32_t* from, int32_t count, uint32_t* to) const {
    std::memcpy(to, from, static_cast<size_t>(count) * sizeof *to);
  }
};

// Maps the ring's interval to the caller's.
template <class Real>
struct MapInterval {
  Real low, factor, a;
  MapInterval(const RingBounds<Real>& ring, Real a_, Real b)
      : low(ring.low), factor((b - a_) / (ring.high - ring.low)), a(a_) {}
  void operator()(const Real* from, int32_t count, Real* to) const {
    for (int32_t i = 0; i < count; ++i) to[i] = (from[i] - low) * factor + a;
  }
};

// Reads on from a ring; the stream's own state stays as it is until commit().
template <class Element, class Transfer>
struct Reader {
  StreamState* stream;
  Ring<Element> ring;
  Transfer transfer;
  Element* out;

  // `count` elements of the ring, from `next` on, to the output.
  void take(int32_t count) {
    if (count == 0) return;
    const int32_t straight = std::min(count, ring.n - ring.next);
    transfer(ring.buffer + ring.next, straight, out);
    transfer(ring.buffer, count - straight, out + straight);
    out += count;
    ring.next = static_cast<int32_t>((int64_t{ring.next} + count) % ring.n);
  }

  // Asks for elements until `missing` have gone to the output. The ring is empty before.
  int32_t refill_and_take(int32_t missing) {
    while (missing != 0) {
      int32_t wanted = std::min(ring.n, missing), room = ring.n, n = ring.n, position = ring.next;
      const int32_t got = ring.refill(stream, &n, ring.buffer, &wanted, &room, &position);
      if (got < 0 || got > ring.n) return QOR_STREAM_CALLBACK_COUNT;
      if (got == 0) return QOR_STREAM_CALLBACK_EMPTY;
      const int32_t taken = std::min(got, missing);
      take(taken);
      missing -= taken;
      ring.free = ring.n - (got - taken);
    }
    return QOR_STREAM_OK;
  }

  void commit() { state_of<Ring<Element>>(stream) = ring; }
};

template <class Element, class Transfer>
int32_t read(StreamState* stream, int32_t m, Element* r, Transfer transfer) {
  Reader<Element, Transfer> reader{stream, state_of<Ring<Element>>(stream), transfer, r};
  const int32_t unread = reader.ring.n - reader.ring.free;
  const int32_t at_hand = std::min(m, unread);
  reader.take(at_hand);
  reader.ring.free += at_hand;
  const int32_t status = reader.refill_and_take(m - at_hand);
  if (status == QOR_STREAM_OK) reader.commit();
  return status;
}

template <class Real>
int32_t read_reals(StreamState* stream, int32_t m, Real* r, Real a, Real b) {
  const auto& ring = state_of<Ring<Real>>(stream);
  if (ring.buffer == nullptr) return QOR_STREAM_NULL_POINTER;
  return read(stream, m, r, MapInterval<Real>(ring.bounds, a, b));
}

}  // namespace

int32_t __ostiNewAbstractStream(StreamState** stream, int32_t n, uint32_t* buffer,
                                qor_ring_refill_i callback) {
  if (n == 0 || buffer == nullptr || callback == nullptr) return QOR_STREAM_BAD_ARGUMENTS;
  const void* const block[] = {&n, buffer, std::bit_cast<const void*>(callback)};
  return new_stream<uint32_t>(stream, QOR_BRNG_IABSTRACT, kWordBlock, block);
}
int32_t __ostdNewAbstractStream(StreamState** stream, int32_t n, double* buffer, double A, double B,
                                qor_ring_refill_d callback) {
  return new_real_stream(stream, QOR_BRNG_DABSTRACT, n, buffer, A, B, callback);
}
int32_t __ostsNewAbstractStream(StreamState** stream, int32_t n, float* buffer, float A, float B,
                                qor_ring_refill_s callback) {
  return new_real_stream(stream, QOR_BRNG_SABSTRACT, n, buffer, A, B, callback);
}

int32_t __ostBRngiAbstractInitStream(int32_t method, StreamState* stream, int32_t /*n*/,
                                     const void* params) {
  return init_stream<uint32_t>(method, stream, params);
}
int32_t __ostBRngdAbstractInitStream(int32_t method, StreamState* stream, int32_t /*n*/,
                                     const void* params) {
  return init_stream<double>(method, stream, params);
}
int32_t __ostBRngsAbstractInitStream(int32_t method, StreamState* stream, int32_t /*n*/,
                                     const void* params) {
  return init_stream<float>(method, stream, params);
}

int32_t __ostiBRngiAbstract(StreamState* stream, int32_t n, void* r) {
  if (state_of<Ring<uint32_t>>(stream).buffer == nullptr) return QOR_STREAM_NULL_POINTER;
  return read(stream, n, static_cast<uint32_t*>(r), CopyElements{});
}
int32_t __ostdBRngdAbstract(StreamState* stream, int32_t n, double* r, double a, double b) {
  return read_reals(stream, n, r, a, b);
}
int32_t __ostsBRngsAbstract(StreamState* stream, int32_t n, float* r, float a, float b) {
  return read_reals(stream, n, r, a, b);
}

// Output of another type than the ring's is refused, and nothing looked at: one function that takes
// any arguments, under six names.
extern "C" {
[[gnu::used, gnu::visibility("default")]] int32_t qor_refuse_type(...) {
  return QOR_STREAM_WRONG_TYPE;
}

#define QOR_REFUSED [[gnu::alias("qor_refuse_type")]]
QOR_REFUSED int32_t __ostsBRngiAbstract(StreamState*, int32_t, float*, float, float);
QOR_REFUSED int32_t __ostdBRngiAbstract(StreamState*, int32_t, double*, double, double);
QOR_REFUSED int32_t __ostsBRngdAbstract(StreamState*, int32_t, float*, float, float);
QOR_REFUSED int32_t __ostiBRngdAbstract(StreamState*, int32_t, void*);
QOR_REFUSED int32_t __ostdBRngsAbstract(StreamState*, int32_t, double*, double, double);
QOR_REFUSED int32_t __ostiBRngsAbstract(StreamState*, int32_t, void*);
#undef QOR_REFUSED
}
