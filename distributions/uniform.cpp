// Uniform reals and integers, and Bernoulli.

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "distributions/frame.h"
#include "qor/distributions.h"
#include "streams/generators/output.h"
#include "streams/generators/wide.h"
#include "streams/registry.h"

namespace {

using qor::distributions::block_size;
using namespace qor::streams;

template <class Real>
void clamp(int32_t n, Real* r, Real a, Real b) {
  for (int32_t i = 0; i < n; ++i) store(r, i, std::min(b, std::max(a, load<Real>(r, i))));
}

// Only a negative status means that r is not filled.
template <class Real>
int32_t within(int32_t status, int32_t method, int32_t n, Real* r, Real a, Real b) {
  if (status >= 0 && (method & QOR_RNG_ACCURATE) != 0) clamp(n, r, a, b);
  return status;
}

// The integers from a to b - 1; all where there are none, for parameters are trusted.
struct IntegerRange {
  double least = std::numeric_limits<int32_t>::min();
  double greatest = std::numeric_limits<int32_t>::max();
  IntegerRange(int32_t a, int32_t b) {
    if (a >= b) return;
    least = a;
    greatest = b - 1;
  }
};

// The floor of a real, or of lanes of them, between two 32-bit integers: what lies below its
// truncation loses 1 first. The real may have been rounded up to b and, just above a power of two,
// the difference down to a - 1.
template <class V>
auto floor_of(V u, const IntegerRange& range) {
  const V least = range.least - V{}, greatest = range.greatest - V{};
  const V truncated = to_real(truncate(u));
  const V lowered = u < truncated ? u - 1.0 : u;
  const V raised = lowered < least ? least : lowered;
  return truncate(greatest < raised ? greatest : raised);
}

// Whole registers of floors; returns their count. (Calls of few values go without the aligned frame
// that these want.)
[[gnu::noinline]] int32_t store_registers(const double* u, int32_t n, const IntegerRange& range,
                                          void* r) {
  int32_t i = 0;
  for (; i + wide_lanes <= n; i += wide_lanes) {
    const WideIntegers values = floor_of(load_wide(u + i), range);
    std::memcpy(at<int32_t>(r, i), &values, sizeof values);
  }
  return i;
}

void store_floors(const double* u, int32_t n, const IntegerRange& range, void* r) {
  int32_t i = n >= wide_lanes ? store_registers(u, n, range, r) : 0;
  for (; i < n; ++i) store(r, i, floor_of(u[i], range));
}

// What successes lie below: the bits of p as a float, whose order as integers is that of floats of
// at least 0. A uniform may have been rounded up to 1, which is a success where all are.
int32_t threshold_of(double p) {
  const auto bits = std::bit_cast<int32_t>(static_cast<float>(p));
  return bits < std::bit_cast<int32_t>(1.0F) ? bits : std::numeric_limits<int32_t>::max();
}

}  // namespace

int32_t _ostsRngUniform(int32_t method, StreamState* stream, int32_t n, float* r, float a,
                        float b) {
  return within(row_of(stream).sBRng(stream, n, r, a, b), method, n, r, a, b);
}
int32_t _ostdRngUniform(int32_t method, StreamState* stream, int32_t n, double* r, double a,
                        double b) {
  return within(row_of(stream).dBRng(stream, n, r, a, b), method, n, r, a, b);
}

int32_t _ostiRngUniform(int32_t /*method*/, StreamState* stream, int32_t n, int32_t* r, int32_t a,
                        int32_t b) {
  const IntegerRange range(a, b);
  double buffer[block_size];
  int32_t status = QOR_STREAM_OK;
  for (int32_t done = 0; done < n;) {
    const int32_t count = std::min(n - done, block_size);
    status = _ostdRngUniform(0, stream, count, buffer, a, b);
    if (status < 0) return status;
    store_floors(buffer, count, range, at<int32_t>(r, done));
    done += count;
  }
  return status;
}

// The uniforms are made in r itself.
int32_t _ostiRngBernoulli(int32_t /*method*/, StreamState* stream, int32_t n, int32_t* r,
                          double p) {
  const int32_t threshold = threshold_of(p);
  const int32_t status = _ostsRngUniform(0, stream, n, reinterpret_cast<float*>(r), 0, 1);
  if (status < 0) return status;
  for (int32_t i = 0; i < n; ++i) store(r, i, load<int32_t>(r, i) < threshold ? 1 : 0);
  return status;
}
