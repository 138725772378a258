// Sorting and selection in place by comparison: quicksort on the median of three, with heap sort
// for segments that split badly too often, so that no order of the elements takes quadratic time.
//
// Compares are plain. No scan leaves its segment, also when NaNs compare false to everything: the
// first element that a scan meets at a segment's end is not below, or not above, the pivot.
#pragma once

#include <bit>
#include <cstdint>
#include <utility>

namespace qor::statistics {

// Every stride-th element of an array.
template <class T>
struct Strided {
  T* first;
  int64_t stride;

  T& operator[](int64_t i) const { return first[i * stride]; }
};

// The steps from low to high below which a segment is sorted by insertion.
inline constexpr int64_t insertion_steps = 7;

// Partitions before a segment counts as hopeless: twice those of even halves.
inline int most_partitions(int64_t count) {
  return 2 * static_cast<int>(std::bit_width(static_cast<uint64_t>(count)));
}

template <class Array>
void sort_by_insertion(Array a, int64_t low, int64_t high) {
  for (int64_t i = low + 1; i <= high; ++i) {
    const auto value = a[i];
    int64_t place = i;
    for (; place > low && a[place - 1] > value; --place) a[place] = a[place - 1];
    a[place] = value;
  }
}

// Lets the element at `node` of the heap a[low..low + count - 1] sink to its place.
template <class Array>
void sink_in_heap(Array a, int64_t low, int64_t count, int64_t node) {
  const auto value = a[low + node];
  for (int64_t child = 2 * node + 1; child < count; child = 2 * node + 1) {
    if (child + 1 < count && a[low + child] < a[low + child + 1]) ++child;
    if (!(value < a[low + child])) break;
    a[low + node] = a[low + child];
    node = child;
  }
  a[low + node] = value;
}

template <class Array>
void sort_by_heap(Array a, int64_t low, int64_t high) {
  const int64_t count = high - low + 1;
  for (int64_t node = count / 2; node-- > 0;) sink_in_heap(a, low, count, node);
  for (int64_t rest = count - 1; rest > 0; --rest) {
    std::swap(a[low], a[low + rest]);
    sink_in_heap(a, low, rest, 0);
  }
}

template <class T>
void order_pair(T& a, T& b) {
  if (a > b) std::swap(a, b);
}

// Splits a[low..high], three elements or more, about the median of its first, middle and last
// element, and returns the place of that one: those before are not above it, those behind not
// below.
template <class Array>
int64_t partition_segment(Array a, int64_t low, int64_t high) {
  std::swap(a[low + (high - low) / 2], a[low + 1]);
  order_pair(a[low], a[high]);
  order_pair(a[low + 1], a[high]);
  order_pair(a[low], a[low + 1]);
  const auto pivot = a[low + 1];
  int64_t i = low + 1, j = high;
  for (;;) {
    do ++i;
    while (a[i] < pivot);
    do --j;
    while (a[j] > pivot);
    if (j < i) break;
    std::swap(a[i], a[j]);
  }
  a[low + 1] = a[j];
  a[j] = pivot;
  return j;
}

template <class Array>
void sort_by_partition(Array a, int64_t count) {
  struct Segment {
    int64_t low, high;
    int partitions;
  };
  // The larger side waits, so that each waiting segment is at most half of the one before.
  Segment waiting[64];
  int top = 0;
  Segment s = {0, count - 1, most_partitions(count)};
  for (;;) {
    while (s.high - s.low >= insertion_steps && s.partitions-- > 0) {
      const int64_t place = partition_segment(a, s.low, s.high);
      const Segment below = {s.low, place - 1, s.partitions};
      const Segment above = {place + 1, s.high, s.partitions};
      const bool below_is_larger = below.high - below.low > above.high - above.low;
      waiting[top++] = below_is_larger ? below : above;
      s = below_is_larger ? above : below;
    }
    if (s.high - s.low < insertion_steps) {
      sort_by_insertion(a, s.low, s.high);
    } else {
      sort_by_heap(a, s.low, s.high);
    }
    if (top == 0) return;
    s = waiting[--top];
  }
}

// Reorders a[0..count - 1] until the element of sorted position k stands at k, and returns it.
template <class T>
T select_by_partition(T* a, int64_t count, int64_t k) {
  int64_t low = 0, high = count - 1;
  for (int partitions = most_partitions(count); high - low > 1; --partitions) {
    if (partitions == 0) {
      sort_by_heap(a, low, high);
      return a[k];
    }
    const int64_t place = partition_segment(a, low, high);
    if (place >= k) high = place - 1;
    if (place <= k) low = place + 1;
  }
  if (high - low == 1) order_pair(a[low], a[high]);
  return a[k];
}

}  // namespace qor::statistics
