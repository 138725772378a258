// Summaries of a stream's parts: some of a part's keys, ascending, the first and the last among
// them, each with bounds of its rank in the part. (Zhang and Wang, "A fast algorithm for
// approximate quantiles in high speed data streams", 2007.)
//
// The ranks of neighbours in a summary made by i compressions differ by at most 2^i in either
// bound, and the bounds of one key by at most (i - 1) 2^(i-1); a summary of blocks of b keys with i
// levels so answers with an error of at most (i + 1) / (2 b) of its part, and the errors of parts
// add up.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

namespace qor::statistics {

template <class Key>
struct RankedKey {
  Key key;
  int64_t lowest, highest;  // rank, from 1
};

// The entry's rank once the keys behind `other` are counted, of whose `count` entries `passed` come
// before it. The last entry of a summary is its part's largest, so that behind it nothing follows.
template <class Key>
RankedKey<Key> ranked_with(RankedKey<Key> entry, const RankedKey<Key>* other, int64_t passed,
                           int64_t count) {
  if (passed > 0) entry.lowest += other[passed - 1].lowest;
  if (passed < count) {
    entry.highest += other[passed].highest - 1;
  } else if (count > 0) {
    entry.highest += other[count - 1].highest;
  }
  return entry;
}

// sink(place, entry) for all entries of both, in order; of equal keys those of `first` come first.
template <class Key, class Sink>
void merge_summaries(const RankedKey<Key>* first, int64_t m, const RankedKey<Key>* second,
                     int64_t n, Sink sink) {
  int64_t i = 0, j = 0;
  while (i < m && j < n) {
    if (second[j].key < first[i].key) {
      sink(i + j, ranked_with(second[j], first, i, m));
      ++j;
    } else {
      sink(i + j, ranked_with(first[i], second, j, n));
      ++i;
    }
  }
  for (; i < m; ++i) sink(i + j, ranked_with(first[i], second, j, n));
  for (; j < n; ++j) sink(i + j, ranked_with(second[j], first, i, m));
}

// Every second of `total` places, from the first on, and the last.
inline bool survives(int64_t place, int64_t total) { return place % 2 == 0 || place == total - 1; }

// The compressed summary of a sorted block; returns its entries.
template <class Key>
int64_t summarise_block(const Key* sorted, int64_t n, RankedKey<Key>* summary) {
  int64_t entries = 0;
  for (int64_t i = 0; i < n; ++i) {
    if (survives(i, n)) summary[entries++] = {sorted[i], i + 1, i + 1};
  }
  return entries;
}

// The compressed summary of two parts; returns its entries.
template <class Key>
int64_t merge_and_compress(const RankedKey<Key>* first, int64_t m, const RankedKey<Key>* second,
                           int64_t n, RankedKey<Key>* summary) {
  int64_t entries = 0;
  merge_summaries(first, m, second, n, [&](int64_t place, const RankedKey<Key>& entry) {
    if (survives(place, m + n)) summary[entries++] = entry;
  });
  return entries;
}

// Merges `lists` summaries that stand behind one another in `entries`, list k from begin[k] to
// begin[k + 1], pair by pair, with `other` as second memory; returns where the whole stands.
template <class Key>
const RankedKey<Key>* merge_all(RankedKey<Key>* entries, RankedKey<Key>* other, int64_t* begin,
                                int64_t lists) {
  for (; lists > 1; lists = (lists + 1) / 2) {
    for (int64_t k = 0; k < lists; k += 2) {
      const int64_t from = begin[k], middle = begin[k + 1];
      const int64_t to = k + 1 < lists ? begin[k + 2] : middle;
      merge_summaries(
          entries + from, middle - from, entries + middle, to - middle,
          [&](int64_t place, const RankedKey<Key>& entry) { other[from + place] = entry; });
      begin[k / 2] = from;
      begin[k / 2 + 1] = to;
    }
    std::swap(entries, other);
  }
  return entries;
}

}  // namespace qor::statistics
