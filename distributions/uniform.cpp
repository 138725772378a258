// Uniform reals and integers, and Bernoulli.

#include <algorithm>
#include <cstring>

#include "distributions/frame.h"
#include "qor/distributions.h"
#include "streams/generators/output.h"
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

// The floor of u, which lies between two 32-bit integers.
int32_t floor_of(double u) {
  const double truncated = static_cast<int32_t>(u);
  return static_cast<int32_t>(u < truncated ? u - 1.0 : u);
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
  double buffer[block_size];
  int32_t status = QOR_STREAM_OK;
  for (int32_t done = 0; done < n;) {
    const int32_t count = std::min(n - done, block_size);
    status = _ostdRngUniform(0, stream, count, buffer, a, b);
    if (status < 0) return status;
    void* out = at<int32_t>(r, done);
    for (int32_t i = 0; i < count; ++i) store(out, i, floor_of(buffer[i]));
    done += count;
  }
  return status;
}

// Both are floats of at least 0, whose order is that of their bits as integers. The uniforms are
// made in r itself.
int32_t _ostiRngBernoulli(int32_t /*method*/, StreamState* stream, int32_t n, int32_t* r,
                          double p) {
  const auto rounded = static_cast<float>(p);
  const int32_t threshold = load<int32_t>(&rounded, 0);
  const int32_t status = _ostsRngUniform(0, stream, n, reinterpret_cast<float*>(r), 0, 1);
  if (status < 0) return status;
  for (int32_t i = 0; i < n; ++i) store(r, i, load<int32_t>(r, i) < threshold ? 1 : 0);
  return status;
}
