#include "tools/accuracy/sweep.h"

#include <unistd.h>

#include <atomic>
#include <bit>
#include <cstdio>
#include <thread>

#include "tools/accuracy/estimated_error.h"
#include "tools/accuracy/search.h"

namespace qor::tools {
namespace {

using reference::Batch;
using reference::Results;
using reference::Row;
using reference::Value;

// Pieces of the floats in the order of their images: the positive ones upwards, then the negative
// ones downwards. A piece has one float of the next, so that every step is seen.
constexpr uint64_t kFloats = uint64_t{1} << 32;
constexpr size_t kPiece = size_t{1} << 13, kChunk = 256;

// Whether an estimate in double leaves the error of y no larger than `worst`, without a branch: off
// by less than 2^-26 ulp. False too where the estimate cannot tell.
inline bool surely_within(float y, double r, double worst) {
  constexpr double kLeast = 0x1p-126, kMost = 0x1.8p+127, kBeyond = 0x1p+129;
  constexpr uint64_t kExponent = uint64_t{0x7FF} << 52;
  const double wide = static_cast<double>(y), size = std::abs(r);
  const double above = size > kLeast ? size : kLeast, binade = above < kMost ? above : kMost;
  const uint64_t per_ulp =
      (uint64_t{2 * 1023 + 23} << 52) - (std::bit_cast<uint64_t>(binade) & kExponent);
  const bool near = std::abs(wide - r) * std::bit_cast<double>(per_ulp) <= worst;
  const bool same_sign = (std::bit_cast<uint64_t>(wide) ^ std::bit_cast<uint64_t>(r)) >> 63 == 0;
  const bool infinite = (std::abs(wide) > kBeyond) & (size >= kBeyond);
  const bool both_nan = (wide != wide) & (r != r);
  return ((near | infinite) & same_sign) | both_nan;
}

bool surely_all_within(const float* y, const double* r, size_t count, double worst) {
  unsigned outside = 0;
  for (size_t i = 0; i < count; ++i) outside |= surely_within(y[i], r[i], worst) ? 0u : 1u;
  return outside == 0;
}

// Neighbours whose results step against the slope, the first of them further from 0.
int64_t steps_back(const std::vector<float>& results, bool rises_outwards) {
  int64_t count = 0;
  for (size_t i = 0; i < kPiece; ++i) {
    const float near = results[i], far = results[i + 1];
    count += rises_outwards ? far < near : far > near;
  }
  return count;
}

// One thread's share of a sweep.
class Sweep {
 public:
  // `found` are bad cases to begin with: without them, small errors that rise from float to float
  // would all be worked out exactly.
  Sweep(const std::vector<LevelKernel<float>>& kernels, bool errors,
        const std::vector<Finding<float>>& found)
      : kernels_(kernels), row_(*kernels[0].row), errors_(errors), found_(found) {
    batch_.in[0].resize(kPiece + 1);
    arguments_.resize(kPiece);
    for (auto& exact : exact_) exact.resize(kPiece);
    const reference::Slopes slopes = row_.reference->slopes;
    const bool monotone = slopes.below != 0 || slopes.above != 0;
    for (auto& finding : found_) {
      finding.count = 0;
      finding.steps_back = monotone ? 0 : -1;
    }
  }

  void run(uint64_t first) {
    for (size_t i = 0; i <= kPiece; ++i) {
      batch_.in[0][i] = std::bit_cast<float>(static_cast<uint32_t>(first + i));
    }
    if (errors_) estimate();
    const reference::Slopes slopes = row_.reference->slopes;
    const bool negative = first >= kFloats / 2;
    const int outwards = negative ? -slopes.below : slopes.above;
    for (size_t k = 0; k < kernels_.size(); ++k) {
      kernels_[k].run(batch_, results_);
      // Behind infinity there are NaN alone, whose results are NaN too.
      if (outwards != 0) found_[k].steps_back += steps_back(results_[0], outwards > 0);
      for (size_t output = 0; output < outputs() && errors_; ++output) judge(k, output);
      found_[k].count += kPiece;
    }
  }

  const std::vector<Finding<float>>& found() const { return found_; }

 private:
  size_t outputs() const { return static_cast<size_t>(row_.shape.outputs); }

  void estimate() {
    std::copy_n(batch_.in[0].begin(), kPiece, arguments_.begin());
    const double* const in[] = {arguments_.data()};
    double* const out[] = {exact_[0].data(), exact_[1].data()};
    row_.reference->estimates.in_double(kPiece, in, out);
  }

  void judge(size_t k, size_t output) {
    Finding<float>& finding = found_[k];
    const float* const y = results_[output].data();
    const double* const r = exact_[output].data();
    for (size_t i = 0; i < kPiece; ++i) {
      if (i % kChunk == 0 && surely_all_within(y + i, r + i, kChunk, finding.worst)) {
        i += kChunk - 1;
        continue;
      }
      if (surely_within(y[i], r[i], finding.worst)) continue;
      if (estimated_error(y[i], r[i]) <= finding.worst) continue;
      const reference::Numbers<float> numbers{batch_.in[0][i]};
      value_.compute(*row_.reference, numbers.data(), 1);
      finding.add(value_.error(static_cast<int>(output), y[i]), numbers);
    }
  }

  const std::vector<LevelKernel<float>>& kernels_;
  const Row<float>& row_;
  const bool errors_;
  std::vector<Finding<float>> found_;
  Batch<float> batch_;
  Results<float> results_;
  std::vector<double> arguments_, exact_[2];
  Value<float> value_;
};

// Of equal errors the first in the order of the images counts, whatever thread met it.
bool precedes(const Finding<float>& a, const Finding<float>& b) {
  if (a.worst != b.worst) return a.worst > b.worst;
  return std::bit_cast<uint32_t>(a.at[0]) < std::bit_cast<uint32_t>(b.at[0]);
}

}  // namespace

std::vector<Finding<float>> sweep(const std::vector<LevelLibrary>& libraries,
                                  const std::vector<LevelKernel<float>>& kernels, int threads,
                                  bool errors) {
  const bool talk = isatty(STDERR_FILENO) != 0;
  const std::string name = kernels[0].row->name();
  const auto sampled = sample(*kernels[0].row, kernels, errors ? 1 << 14 : 0);
  std::atomic<uint64_t> next{0};
  std::vector<std::vector<Finding<float>>> shares(static_cast<size_t>(threads));
  std::vector<std::thread> team;
  for (auto& share : shares) {
    team.emplace_back([&] {
      silence(libraries);
      Sweep part(kernels, errors, sampled);
      for (uint64_t first; (first = next.fetch_add(kPiece)) < kFloats;) {
        part.run(first);
        if (talk && first % (kFloats / 64) == 0) {
          std::fprintf(stderr, "\r%s %3d %%", name.c_str(),
                       static_cast<int>(100 * first / kFloats));
        }
      }
      share = part.found();
    });
  }
  for (std::thread& thread : team) thread.join();
  if (talk) std::fprintf(stderr, "\r%*s\r", 20, "");
  std::vector<Finding<float>> found = shares[0];
  for (size_t i = 1; i < shares.size(); ++i) {
    for (size_t k = 0; k < found.size(); ++k) {
      const Finding<float>& other = shares[i][k];
      const Finding<float> first = precedes(other, found[k]) ? other : found[k];
      const auto count = found[k].count + other.count;
      const auto steps = found[k].steps_back + other.steps_back;
      found[k] = {first.worst, first.at, count, first.steps_back < 0 ? -1 : steps};
    }
  }
  return found;
}

}  // namespace qor::tools
