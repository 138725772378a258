// The elements with the worst errors so far, at most one of each neighbourhood.
#pragma once

#include <algorithm>
#include <bit>
#include <unordered_map>
#include <vector>

#include "reference/evaluate.h"

namespace qor::tools {

template <class T>
struct Candidate {
  double error = 0;
  reference::Numbers<T> numbers{};
};

template <class T>
class Pool {
 public:
  // `numbers` count for the neighbourhood: those of the vectors.
  explicit Pool(int numbers) : numbers_(numbers) {}

  void offer(double error, const reference::Numbers<T>& numbers) {
    if (error <= least_) return;
    const auto [entry, fresh] = worst_.try_emplace(neighbourhood(numbers), Candidate<T>{});
    if (error > entry->second.error) entry->second = {error, numbers};
    if (worst_.size() >= 4 * most_) prune();
  }

  // The worst that it keeps or fewer, the worst first.
  std::vector<Candidate<T>> worst() const {
    std::vector<Candidate<T>> list;
    for (const auto& [key, candidate] : worst_) list.push_back(candidate);
    std::ranges::sort(list, [](const Candidate<T>& a, const Candidate<T>& b) {
      return a.error != b.error ? a.error > b.error : a.numbers < b.numbers;
    });
    if (list.size() > most_) list.resize(most_);
    return list;
  }

  double largest() const {
    double error = 0;
    for (const auto& [key, candidate] : worst_) error = std::max(error, candidate.error);
    return error;
  }

  // Keeps so many from here on.
  void keep(size_t count) {
    most_ = count;
    prune();
  }

 private:
  // The leading bits of the numbers: sign, exponent and some of the fraction.
  uint64_t neighbourhood(const reference::Numbers<T>& numbers) const {
    using Image = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    const int exponent_bits = 8 * static_cast<int>(sizeof(T)) - reference::format_of<T>.digits;
    const int bits = 1 + exponent_bits + (numbers_ == 1 ? 12 : 4);
    uint64_t key = 0;
    for (int k = 0; k < numbers_; ++k) {
      const auto image = std::bit_cast<Image>(numbers[static_cast<size_t>(k)]);
      key = key << bits | image >> (8 * sizeof(T) - static_cast<size_t>(bits));
    }
    return key;
  }

  void prune() {
    const std::vector<Candidate<T>> kept = worst();
    worst_.clear();
    for (const Candidate<T>& one : kept) worst_.emplace(neighbourhood(one.numbers), one);
    if (kept.size() == most_) least_ = kept.back().error;
  }

  int numbers_;
  size_t most_ = 1000;
  double least_ = 0;  // errors up to this are not among the worst
  std::unordered_map<uint64_t, Candidate<T>> worst_;
};

}  // namespace qor::tools
