#include "tools/accuracy/search.h"

#include <unistd.h>

#include <cstdio>
#include <random>

#include "tools/accuracy/judge.h"
#include "tools/accuracy/pool.h"

namespace qor::tools {
namespace {

using reference::Batch;
using reference::Numbers;
using reference::Results;
using reference::Row;
using reference::Value;

template <class T>
class Search {
 public:
  Search(const Row<T>& row, const std::vector<LevelKernel<T>>& kernels, uint64_t budget)
      : row_(row),
        kernels_(kernels),
        budget_(budget),
        judge_(row, kernels),
        arguments_(row, 11),
        pools_(kernels.size(), Pool<T>(row.shape.inputs * row.shape.input_parts)) {}

  std::vector<Finding<T>> run(const std::vector<Numbers<T>>& known) {
    for (const Numbers<T>& numbers : known) look_at(group_at(numbers, 1));
    look_at(arguments_.hard());
    look_at(reference::edge_arguments(row_));
    look_everywhere(budget_ / 3);
    climb_from(1000, budget_ / 3 * 2);
    climb_from(200, budget_ / 6 * 5);
    climb_from(40, budget_);
    return confirmed();
  }

 private:
  static constexpr size_t kGroup = 4096;

  void look_at(const Batch<T>& batch) {
    judge_.judge(batch, [&](size_t k, double error, const Numbers<T>& numbers) {
      pools_[k].offer(error, numbers);
    });
    talk();
  }

  void talk() {
    if (!isatty(STDERR_FILENO) || judge_.spent() < told_ + budget_ / 128) return;
    told_ = judge_.spent();
    double worst = 0;
    for (const Pool<T>& pool : pools_) worst = std::max(worst, pool.largest());
    std::fprintf(stderr, "\r%s %3d %% %.4f ", row_.name().c_str(),
                 static_cast<int>(100 * told_ / budget_), worst);
  }

  uint64_t random_below(uint64_t n) { return engine_() % n; }

  // ---- Everywhere ---------------------------------------------------------------------------

  // Binades, cells and random elements in turn.
  void look_everywhere(uint64_t until) {
    const std::vector<T> seams = reference::seams(row_);
    const auto first_numbers = [&](size_t count, auto draw) {
      std::vector<T> numbers(count);
      for (T& x : numbers) x = draw();
      return numbers;
    };
    const auto in_binade = [&](int exponent) {
      const T x = std::ldexp(1 + fraction(), exponent);
      return random_below(2) == 0 ? x : -x;
    };
    constexpr reference::Format format = reference::format_of<T>;
    const bool near_one = row_.reference->pairing == reference::Pairing::near_one;
    while (judge_.spent() < until) {
      for (int i = 0; i < 64; ++i) look_at(arguments_.random(kGroup));
      if (near_one) continue;
      for (int e = format.min_exponent - format.digits; e < format.max_exponent; ++e) {
        look_at(arguments_.with_others(first_numbers(64, [&] { return in_binade(e); })));
      }
      for (size_t i = 0; i + 1 < seams.size(); i += kGroup / 4) {
        const size_t last = std::min(i + kGroup / 4, seams.size() - 1);
        std::vector<T> numbers;
        for (size_t j = i; j < last; ++j) {
          for (int k = 0; k < 4; ++k) {
            numbers.push_back(seams[j] + fraction() * (seams[j + 1] - seams[j]));
          }
        }
        look_at(arguments_.with_others(std::move(numbers)));
      }
    }
  }

  T fraction() {
    constexpr int digits = reference::format_of<T>.digits;
    return std::ldexp(static_cast<T>(engine_() >> (65 - digits)), 1 - digits);
  }

  // ---- Climbing -----------------------------------------------------------------------------

  // From the `count` worst of each kernel, in zooms from a binade down to the neighbours, over and
  // over.
  void climb_from(size_t count, uint64_t until) {
    for (Pool<T>& pool : pools_) pool.keep(count);
    while (judge_.spent() < until) {
      const uint64_t before = judge_.spent();
      for (int zoom = reference::format_of<T>.digits - 2; zoom > 1; zoom -= 3) {
        for (size_t k = 0; k < pools_.size() && judge_.spent() < until; ++k) climb(k, zoom);
      }
      if (judge_.spent() == before) return;
    }
  }

  // Scalars belong to a call, so that without them many elements share one.
  void climb(size_t k, int zoom) {
    Batch<T> batch;
    for (const Candidate<T>& candidate : pools_[k].worst()) {
      Numbers<T> numbers = candidate.numbers;
      if (row_.shape.scalars > 0) {
        for (int j = row_.shape.inputs; j < row_.shape.numbers_in(); ++j) {
          T& scalar = numbers[static_cast<size_t>(j)];
          if (random_below(2) == 0) scalar = near(scalar, zoom);
        }
        Batch<T> group = group_at(numbers, 0);
        add_variants(group, numbers, zoom);
        look_at(group);
      } else {
        add_variants(batch, numbers, zoom);
        if (batch.in[0].size() < kGroup) continue;
        look_at(batch);
        batch = Batch<T>{};
      }
    }
    look_at(batch);
  }

  // Elements like this one: a flipped bit, some steps away, within 2^zoom steps.
  void add_variants(Batch<T>& batch, const Numbers<T>& numbers, int zoom) {
    constexpr int kZoomed = 48, kSteps = 8;
    constexpr int kBits = reference::format_of<T>.digits - 1;
    for (int i = 0; i < kZoomed + kSteps + kBits; ++i) {
      Numbers<T> variant = numbers;
      const uint64_t which = row_.shape.inputs == 1 ? 0 : random_below(3);
      for (size_t j = 0; j < static_cast<size_t>(row_.shape.inputs); ++j) {
        if (which != 2 && which != j) continue;  // 2: both
        T& x = variant[j];
        if (i < kZoomed) {
          x = near(x, zoom);
        } else if (i < kZoomed + kSteps) {
          x = moved(x, i - kZoomed < kSteps / 2 ? i - kZoomed + 1 : kZoomed + kSteps / 2 - i - 1);
        } else {
          const int64_t bit = int64_t{1} << (i - kZoomed - kSteps);
          x = moved(x, (reference::position(x) & bit) == 0 ? bit : -bit);
        }
      }
      for (size_t j = 0; j < static_cast<size_t>(row_.shape.inputs); ++j) {
        batch.in[j].push_back(variant[j]);
      }
    }
  }

  T near(T x, int zoom) {
    const int64_t reach = int64_t{1} << zoom;
    return moved(x,
                 static_cast<int64_t>(random_below(2 * static_cast<uint64_t>(reach) + 1)) - reach);
  }
  T moved(T x, int64_t steps) const {
    constexpr int64_t kLast = reference::last_position<T> - 1;
    const int64_t to = std::clamp(reference::position(x) + steps, -kLast, kLast);
    return arguments_.kept_in_domain(reference::at_position<T>(to));
  }

  // A batch with the scalars of an element, and it so many times.
  Batch<T> group_at(const Numbers<T>& numbers, size_t times) const {
    Batch<T> batch;
    const auto inputs = static_cast<size_t>(row_.shape.inputs);
    for (size_t j = 0; j < inputs; ++j) batch.in[j].assign(times, numbers[j]);
    std::copy_n(numbers.begin() + inputs, row_.shape.scalars, batch.scalar.begin());
    return batch;
  }

  // ---- The end ------------------------------------------------------------------------------

  std::vector<Finding<T>> confirmed() {
    Value<T> value;
    std::vector<Finding<T>> found(kernels_.size());
    for (size_t k = 0; k < kernels_.size(); ++k) {
      for (const Candidate<T>& candidate : pools_[k].worst()) {
        const Batch<T> batch = group_at(candidate.numbers, 1);
        Results<T> results;
        kernels_[k].run(batch, results);
        value.compute(*row_.reference, candidate.numbers.data(), row_.shape.numbers_in());
        for (int y = 0; y < row_.shape.outputs; ++y) {
          found[k].add(value.error(y, results[static_cast<size_t>(y)][0]), candidate.numbers);
        }
      }
      found[k].count = judge_.spent();
    }
    if (isatty(STDERR_FILENO)) std::fprintf(stderr, "\r%*s\r", 40, "");
    return found;
  }

  const Row<T>& row_;
  const std::vector<LevelKernel<T>>& kernels_;
  const uint64_t budget_;
  Judge<T> judge_;
  reference::Arguments<T> arguments_;
  std::vector<Pool<T>> pools_;
  std::mt19937_64 engine_{17};
  uint64_t told_ = 0;
};

}  // namespace

template <class T>
std::vector<Finding<T>> search(const Row<T>& row, const std::vector<LevelKernel<T>>& kernels,
                               const std::vector<Numbers<T>>& known, uint64_t budget) {
  return Search<T>(row, kernels, budget).run(known);
}

template <class T>
std::vector<Finding<T>> sample(const Row<T>& row, const std::vector<LevelKernel<T>>& kernels,
                               uint64_t count) {
  Judge<T> judge(row, kernels);
  std::vector<Finding<T>> found(kernels.size());
  const auto look_at = [&](const Batch<T>& batch) {
    judge.judge(batch, [&](size_t k, double error, const Numbers<T>& numbers) {
      found[k].add(error, numbers);
      ++found[k].count;
    });
  };
  reference::Arguments<T> arguments(row);
  look_at(arguments.hard());
  look_at(reference::edge_arguments(row));
  while (found[0].count < count) look_at(arguments.random(4096));
  return found;
}

#define QOR_INSTANTIATE(T)                                                                   \
  template std::vector<Finding<T>> search(const Row<T>&, const std::vector<LevelKernel<T>>&, \
                                          const std::vector<Numbers<T>>&, uint64_t);         \
  template std::vector<Finding<T>> sample(const Row<T>&, const std::vector<LevelKernel<T>>&, \
                                          uint64_t);
QOR_INSTANTIATE(float)
QOR_INSTANTIATE(double)
#undef QOR_INSTANTIATE

}  // namespace qor::tools
