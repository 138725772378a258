#include "tools/accuracy_measure.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdio>
#include <deque>
#include <thread>
#include <vector>

#include "qor/vector_math.h"
#include "reference/evaluate.h"

namespace qor::tools {

using reference::Batch;
using reference::Row;
using reference::Value;

void Measurement::add(const Measurement& other) {
  if (other.worst > worst) {
    worst = other.worst;
    at = other.at;
  }
  sum += other.sum;
  count += other.count;
}

namespace {

// ---- Samples --------------------------------------------------------------------------------

// The same for complex elements, whose two parts are judged by themselves.
template <class T>
Measurement measure_batch(const Row<T>& row, int slot, const Batch<T>& batch) {
  const reference::Results<T> results = reference::run(row, slot, batch);
  Value<T> value;
  Measurement found;
  for (int i = 0; i < reference::count_of(row, batch); ++i) {
    const auto numbers = reference::numbers_of(row, batch, i);
    value.compute(*row.reference, numbers.data(), row.shape.numbers_in());
    for (int k = 0; k < row.shape.outputs * row.shape.output_parts; ++k) {
      const int parts = row.shape.output_parts;
      const double error = value.error(k, results[k / parts][i * parts + k % parts]);
      if (error > found.worst) {
        found.worst = error;
        std::copy(numbers.begin(), numbers.end(), found.at.begin());
      }
      if (std::isfinite(error)) found.sum += error;
      ++found.count;
    }
  }
  return found;
}

// ---- All floats -----------------------------------------------------------------------------

constexpr uint64_t kFloats = uint64_t{1} << 32;
constexpr uint64_t kPiece = uint64_t{1} << 13;

// The error of y where the value is about r, to some 2^-26 ulp; NaN where only the reference can
// tell: where y is of another kind or sign than r, and at the edge of overflow.
inline double quick_error(float y, double r) {
  constexpr double surely_beyond = 0x1.0000000001p+128;
  if (std::isnan(r) && std::isnan(y)) return 0;
  if (std::isnan(r) || std::isnan(y) || std::signbit(r) != std::signbit(y)) return std::nan("");
  if (std::isinf(y)) return std::fabs(r) > surely_beyond ? 0 : std::nan("");
  const auto image = std::bit_cast<int64_t>(r);
  const auto biased = (image >> 52) & 0x7FF;
  const int64_t exponent =
      std::max<int64_t>(biased - 1022, reference::format_of<float>.min_exponent);
  if (exponent > reference::format_of<float>.max_exponent) return std::nan("");
  const double per_ulp = std::bit_cast<double>((1023 + 24 - exponent) << 52);
  return std::fabs(static_cast<double>(y) - r) * per_ulp;
}

// Finds errors of one argument after another: the reference is asked only where the estimate from
// double could make a new worst case.
class Sweep {
 public:
  explicit Sweep(const Row<float>& row) : row_(row) {}

  // The result of x in output k.
  void add(float x, int k, float y) {
    const auto in_double = k == 0 ? row_.reference->in_double : row_.reference->second_in_double;
    double error = quick_error(y, in_double(static_cast<double>(x)));
    if (!(error <= found_.worst)) {
      value_.compute(*row_.reference, &x, 1);
      error = value_.error(k, y);
      if (error > found_.worst) {
        found_.worst = error;
        found_.at[0] = static_cast<double>(x);
      }
    }
    if (std::isfinite(error)) found_.sum += error;
    ++found_.count;
  }
  const Measurement& found() const { return found_; }

 private:
  const Row<float>& row_;
  Value<float> value_;
  Measurement found_;
};

void sweep_pieces(const Row<float>& row, int slot, std::atomic<uint64_t>& next, Sweep& sweep) {
  _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  const bool talk = isatty(STDERR_FILENO) != 0;
  Batch<float> batch;
  batch.in[0].resize(kPiece);
  for (uint64_t first; (first = next.fetch_add(kPiece)) < kFloats;) {
    for (uint64_t i = 0; i < kPiece; ++i) {
      batch.in[0][i] = std::bit_cast<float>(static_cast<uint32_t>(first + i));
    }
    const auto results = reference::run(row, slot, batch);
    for (int k = 0; k < row.shape.outputs; ++k) {
      for (uint64_t i = 0; i < kPiece; ++i) sweep.add(batch.in[0][i], k, results[k][i]);
    }
    if (talk && first % (kFloats / 64) == 0) {
      std::fprintf(stderr, "\r%s %3d %%", row.name().c_str(),
                   static_cast<int>(100 * first / kFloats));
    }
  }
  if (talk) std::fprintf(stderr, "\r%*s\r", 20, "");
}

}  // namespace

template <class T>
Measurement measure_sample(const Row<T>& row, int slot, uint64_t count) {
  constexpr uint64_t kBatch = 4096;
  reference::Arguments<T> arguments(row);
  Measurement found = measure_batch(row, slot, arguments.hard());
  for (uint64_t done = 0; done < count; done += kBatch) {
    found.add(measure_batch(row, slot, arguments.random(kBatch)));
  }
  return found;
}

template Measurement measure_sample(const Row<float>&, int, uint64_t);
template Measurement measure_sample(const Row<double>&, int, uint64_t);

Measurement measure_all(const Row<float>& row, int slot, int threads) {
  std::atomic<uint64_t> next{0};
  std::deque<Sweep> sweeps;
  std::vector<std::thread> team;
  for (int i = 0; i < threads; ++i) {
    Sweep& sweep = sweeps.emplace_back(row);
    team.emplace_back([&row, &next, &sweep, slot] { sweep_pieces(row, slot, next, sweep); });
  }
  Measurement found;
  for (std::thread& thread : team) thread.join();
  for (const Sweep& sweep : sweeps) found.add(sweep.found());
  return found;
}

}  // namespace qor::tools
