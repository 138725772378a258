// Several elements of given sorted positions, without sorting.
//
// A sorted sample gives each position a bracket of two keys that holds it nearly always. One pass
// counts the elements between the brackets and keeps those inside, a few in a hundred, which are
// then sorted. A position that its bracket missed is selected by partition: the answer never
// depends on the sample.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "statistics/columns.h"
#include "statistics/quicksort.h"
#include "statistics/radix_sort.h"

namespace qor::statistics {

// The most positions of one call; each needs a bracket unless it shares its neighbour's.
inline constexpr int most_selected = 64;
// Columns of fewer elements are sorted.
inline constexpr int64_t fewest_to_sample = 2048;
inline constexpr int64_t elements_a_sample = 16;
// Half the width of a bracket in standard deviations of a sample position.
inline constexpr double bracket_deviations = 3;

// Classes of keys: class 0 below all bounds, class c from the c-th bound on. Odd classes are
// brackets. The bounds stand as a binary search tree by levels, padded with the largest key, so
// that a search has no branch.
template <class Key>
class Brackets {
 public:
  static constexpr int most_levels = 8;
  static constexpr int most_classes = 1 << most_levels;
  static_assert(most_classes > 2 * most_selected);

  // The bracket [low, high] follows those added before, or joins the last one.
  void add(Key low, Key high) {
    if (bounds_ > 0 && low < bound_[bounds_ - 1]) {
      bound_[bounds_ - 1] = std::max(bound_[bounds_ - 1], above(high));
    } else {
      bound_[bounds_++] = low;
      bound_[bounds_++] = above(high);
    }
  }
  // There is a bracket, thus two bounds and two levels or more.
  void build_tree() {
    while ((1 << levels_) <= bounds_) ++levels_;
    int next = 0;
    fill_tree(1, &next);
  }

  int levels() const { return levels_; }
  int classes() const { return bounds_ + 1; }
  // A bracket of one key: its elements are known.
  bool keeps(int c) const { return c % 2 == 1 && bound_[c] - bound_[c - 1] != 1; }
  Key lowest(int c) const { return bound_[c - 1]; }

  template <int Levels>
  unsigned class_of(Key key) const {
    unsigned node = 1;
    for (int level = 0; level < Levels; ++level) node = 2 * node + (key >= tree_[node] ? 1 : 0);
    return node - (1u << Levels);
  }

 private:
  static Key above(Key key) { return key == ~Key{0} ? key : key + 1; }
  void fill_tree(int node, int* next) {
    if (node >= 1 << levels_) return;
    fill_tree(2 * node, next);
    tree_[node] = *next < bounds_ ? bound_[*next] : ~Key{0};
    ++*next;
    fill_tree(2 * node + 1, next);
  }

  Key bound_[2 * most_selected];
  Key tree_[most_classes];
  int bounds_ = 0, levels_ = 0;
};

// A sample of every sixteenth element or so, sorted, with the brackets of the ascending positions.
// The work has the sorting room of n.
template <class Real>
Brackets<Key<Real>> find_brackets(const Column<Real>& column, const int64_t* position, int count,
                                  Key<Real>* work) {
  const int64_t samples = column.n / elements_a_sample;
  for (int64_t i = 0; i < samples; ++i) {
    // Off the beat of data that repeat.
    const auto jitter = static_cast<int64_t>((static_cast<uint32_t>(i) * 0x9E3779B9u) >> 28);
    work[i] = column.key(i * elements_a_sample + jitter);
  }
  sort_by_key(samples, work, work, work + samples);
  Brackets<Key<Real>> brackets;
  const double size = static_cast<double>(samples);
  for (int k = 0; k < count; ++k) {
    const double part = static_cast<double>(position[k]) / static_cast<double>(column.n);
    const double place = part * size;
    const double reach = bracket_deviations * std::sqrt(part * (1 - part) * size) + 1;
    const auto low = static_cast<int64_t>(place - reach),
               high = static_cast<int64_t>(place + reach);
    brackets.add(low <= 0 ? 0 : work[low], high >= samples - 1 ? ~Key<Real>{0} : work[high]);
  }
  brackets.build_tree();
  return brackets;
}

// Counts the elements of each class, and copies those to keep; returns how many these are.
template <int Levels, class Real>
int64_t classify(const Column<Real>& column, const Brackets<Key<Real>>& brackets, Key<Real>* kept,
                 int64_t* counts) {
  constexpr int classes = 1 << Levels;
  // Neighbours count apart, so that none waits for the other's sum.
  int64_t count[4][classes] = {};
  int64_t keeps[classes] = {};
  for (int c = 0; c < brackets.classes(); ++c) keeps[c] = brackets.keeps(c) ? 1 : 0;
  int64_t places = 0;
  for (int64_t i = 0; i < column.n; ++i) {
    column.fetch_behind(i);
    const Key<Real> key = column.key(i);
    const unsigned c = brackets.template class_of<Levels>(key);
    ++count[i % 4][c];
    kept[places] = key;
    places += keeps[c];
  }
  for (int c = 0; c < classes; ++c) {
    counts[c] = count[0][c] + count[1][c] + count[2][c] + count[3][c];
  }
  return places;
}

template <class Real>
int64_t classify_by(const Column<Real>& column, const Brackets<Key<Real>>& brackets,
                    Key<Real>* kept, int64_t* counts) {
  using Classify =
      int64_t (*)(const Column<Real>&, const Brackets<Key<Real>>&, Key<Real>*, int64_t*);
  constexpr Classify by_levels[] = {classify<2, Real>, classify<3, Real>, classify<4, Real>,
                                    classify<5, Real>, classify<6, Real>, classify<7, Real>,
                                    classify<8, Real>};
  return by_levels[brackets.levels() - 2](column, brackets, kept, counts);
}

template <class Real>
void encode(const Column<Real>& column, Key<Real>* keys) {
  for (int64_t i = 0; i < column.n; ++i) keys[i] = column.key(i);
}

// Those positions that stand in a bracket, from the elements kept; they are no longer missed.
template <class Key>
void read_kept(const Brackets<Key>& brackets, const int64_t* counts, const Key* kept,
               const int64_t* position, int count, Key* selected, bool* missed) {
  int64_t below = 0, kept_below = 0;
  for (int c = 0, k = 0; c < brackets.classes(); ++c) {
    for (; k < count && position[k] < below + counts[c]; ++k) {
      missed[k] = c % 2 == 0;
      if (missed[k]) continue;
      selected[k] = brackets.keeps(c) ? kept[kept_below + position[k] - below] : brackets.lowest(c);
    }
    if (brackets.keeps(c)) kept_below += counts[c];
    below += counts[c];
  }
}

// selected[k] is the key of sorted position position[k], for 1 to most_selected ascending positions
// from 0 to n - 1. The work has the sorting room of n.
template <class Real>
void select_keys(const Column<Real>& column, const int64_t* position, int count,
                 Key<Real>* selected, Key<Real>* work) {
  if (column.n < fewest_to_sample) {
    encode(column, work);
    sort_by_partition(work, column.n);
    for (int k = 0; k < count; ++k) selected[k] = work[position[k]];
    return;
  }
  const Brackets<Key<Real>> brackets = find_brackets(column, position, count, work);
  int64_t counts[Brackets<Key<Real>>::most_classes];
  const int64_t kept = classify_by(column, brackets, work, counts);
  if (2 * kept <= column.n) {
    sort_by_key(kept, work, work, work + kept);
  } else {
    sort_by_partition(work, kept);
  }
  bool missed[most_selected];
  std::fill(missed, missed + count, true);
  read_kept(brackets, counts, work, position, count, selected, missed);
  if (std::find(missed, missed + count, true) == missed + count) return;
  encode(column, work);
  for (int k = 0; k < count; ++k) {
    if (missed[k]) selected[k] = select_by_partition(work, column.n, position[k]);
  }
}

}  // namespace qor::statistics
