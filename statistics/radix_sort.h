// Radix sort by keys.
//
// Three stable passes of 11 bits, least significant first, sort by the 33 bits from the highest one
// that varies down; their histograms are counted in one scan. That is all of a 32-bit key. Of
// 64-bit keys few are left alike: runs of equal leading bits are then sorted where they stand. Keys
// that are equal have equal bits, so that every way of sorting gives the same array.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "statistics/quicksort.h"
#include "statistics/sort_keys.h"

namespace qor::statistics {

inline constexpr int digit_bits = 11;
inline constexpr int digit_values = 1 << digit_bits;
inline constexpr int digit_count = 3;

// Below this many keys quicksort is faster.
inline constexpr int64_t fewest_for_radix = 600;
// From this many bytes on a pass gathers whole cache lines before it writes them, past the caches.
inline constexpr int64_t bytes_written_by_lines = int64_t{1} << 21;
inline constexpr int64_t line_bytes = 64;

// Element as it comes from the caller, or as key bits between passes.
enum class Form { value, key };

template <Form form, class T>
Key<T> load_key(const T& element) {
  const Key<T> bits = Sortable<T>::bits(element);
  return form == Form::value ? Sortable<T>::encode(bits) : bits;
}
template <Form form, class T>
T stored(Key<T> key) {
  return Sortable<T>::from_bits(form == Form::value ? Sortable<T>::decode(key) : key);
}

template <class Key>
struct Digit {
  int shift;
  unsigned of(Key key) const { return static_cast<unsigned>(key >> shift) & (digit_values - 1); }
};

// One pass: places[d] is where the next element with digit value d goes.
template <Form from, Form to, class T>
void scatter(int64_t n, const T* source, T* target, Digit<Key<T>> digit, int64_t* places) {
  for (int64_t i = 0; i < n; ++i) {
    const Key<T> key = load_key<from>(source[i]);
    target[places[digit.of(key)]++] = stored<to, T>(key);
  }
}

// The same by lines: a line of the target collects in cache until it is full. The target's elements
// are aligned to their size.
template <Form from, Form to, class T>
void scatter_by_lines(int64_t n, const T* source, T* target, Digit<Key<T>> digit, int64_t* places) {
  constexpr int64_t length = line_bytes / static_cast<int64_t>(sizeof(T));
  alignas(line_bytes) T lines[digit_values][length];
  int64_t first[digit_values];
  // Places counted from the line in which the target begins.
  const int64_t skipped = static_cast<int64_t>(reinterpret_cast<uintptr_t>(target) % line_bytes) /
                          static_cast<int64_t>(sizeof(T));
  target -= skipped;
  for (int d = 0; d < digit_values; ++d) first[d] = places[d] += skipped;
  for (int64_t i = 0; i < n; ++i) {
    const Key<T> key = load_key<from>(source[i]);
    const unsigned d = digit.of(key);
    const int64_t place = places[d]++;
    lines[d][place % length] = stored<to, T>(key);
    if ((place + 1) % length != 0) continue;
    const int64_t begin = place + 1 - length;
    if (begin >= first[d]) {
      const auto* line = reinterpret_cast<const __m128i*>(lines[d]);
      auto* out = reinterpret_cast<__m128i*>(target + begin);
      for (int k = 0; k < 4; ++k) _mm_stream_si128(out + k, _mm_load_si128(line + k));
    } else {
      for (int64_t k = first[d]; k <= place; ++k) target[k] = lines[d][k % length];
    }
  }
  for (int d = 0; d < digit_values; ++d) {
    const int64_t end = places[d];
    for (int64_t k = std::max(first[d], end - end % length); k < end; ++k) {
      target[k] = lines[d][k % length];
    }
  }
  _mm_sfence();
}

// One pass with the forms and the way of writing that it needs.
template <class T>
void pass(int64_t n, const T* source, T* target, bool values, bool to_values, Digit<Key<T>> digit,
          int64_t* places) {
  using Scatter = void (*)(int64_t, const T*, T*, Digit<Key<T>>, int64_t*);
  constexpr Scatter whole[2][2] = {
      {scatter<Form::key, Form::key, T>, scatter<Form::key, Form::value, T>},
      {scatter<Form::value, Form::key, T>, scatter<Form::value, Form::value, T>}};
  constexpr Scatter by_lines[2][2] = {
      {scatter_by_lines<Form::key, Form::key, T>, scatter_by_lines<Form::key, Form::value, T>},
      {scatter_by_lines<Form::value, Form::key, T>, scatter_by_lines<Form::value, Form::value, T>}};
  const bool large = n * static_cast<int64_t>(sizeof(T)) >= bytes_written_by_lines &&
                     reinterpret_cast<uintptr_t>(target) % sizeof(T) == 0;
  (large ? by_lines : whole)[values][to_values](n, source, target, digit, places);
}

// Bits in which the keys differ.
template <class T>
Key<T> varying_bits(int64_t n, const T* source) {
  const Key<T> one = load_key<Form::value>(source[0]);
  Key<T> varying = 0;
  for (int64_t i = 1; i < n; ++i) varying |= load_key<Form::value>(source[i]) ^ one;
  return varying;
}

// Counts how many keys have each value of each digit, and makes places of it.
template <class T>
void find_places(int64_t n, const T* source, int known, int64_t (*places)[digit_values]) {
  for (int64_t i = 0; i < n; ++i) {
    const Key<T> key = load_key<Form::value>(source[i]) >> known;
    for (int d = 0; d < digit_count; ++d) ++places[d][Digit<Key<T>>{d * digit_bits}.of(key)];
  }
  for (int d = 0; d < digit_count; ++d) {
    int64_t place = 0;
    for (int64_t& entry : places[d]) place += std::exchange(entry, place);
  }
}

template <class T>
void sort_few(int64_t n, const T* source, T* result) {
  Key<T> keys[fewest_for_radix];
  for (int64_t i = 0; i < n; ++i) keys[i] = load_key<Form::value>(source[i]);
  sort_by_partition(&keys[0], n);
  for (int64_t i = 0; i < n; ++i) result[i] = stored<Form::value, T>(keys[i]);
}

template <class T>
void sort_many(int64_t n, const T* source, T* result, T* work);

// Sorts n elements of `source` into `result` by their keys. `work` has room for n. `source` may be
// one of the two; when it is `result`, radix sort copies it first.
template <class T>
void sort_by_key(int64_t n, const T* source, T* result, T* work) {
  if (n < fewest_for_radix) {
    sort_few(n, source, result);
  } else {
    sort_many(n, source, result, work);
  }
}

// Sorts the runs of keys that agree from bit `known` up, and turns all keys into values.
template <class T>
void finish_runs(int64_t n, T* a, T* work, int known) {
  Key<T> key = load_key<Form::key>(a[0]);
  for (int64_t begin = 0, i = 0; begin < n; begin = i) {
    const Key<T> leading = key >> known;
    do {
      a[i] = stored<Form::value, T>(key);
      if (++i == n) break;
      key = load_key<Form::key>(a[i]);
    } while (key >> known == leading);
    if (i - begin > 1) sort_by_key(i - begin, a + begin, a + begin, work + begin);
  }
}

template <class T>
void sort_many(int64_t n, const T* source, T* result, T* work) {
  const Key<T> varying = varying_bits(n, source);
  const int known =
      std::max(0, static_cast<int>(std::bit_width(varying)) - digit_count * digit_bits);
  int64_t places[digit_count][digit_values] = {};
  find_places(n, source, known, places);
  int digits[digit_count], passes = 0;
  for (int d = 0; d < digit_count; ++d) {
    if (Digit<Key<T>>{d * digit_bits}.of(varying >> known) != 0) digits[passes++] = d;
  }
  // The passes alternate between the two and end in the result.
  T* target = passes % 2 == 1 ? result : work;
  if (passes == 0 || source == target) {
    T* copy = target == result && passes > 0 ? work : result;
    if (copy != source) std::memcpy(copy, source, static_cast<size_t>(n) * sizeof(T));
    source = copy;
  }
  const bool finished = (varying & ((Key<T>{1} << known) - 1)) == 0;
  for (int k = 0; k < passes; ++k) {
    const bool to_values = finished && k == passes - 1;
    pass(n, source, target, k == 0, to_values, Digit<Key<T>>{known + digits[k] * digit_bits},
         places[digits[k]]);
    source = target;
    target = target == result ? work : result;
  }
  if (!finished) finish_runs(n, result, work, known);
}

}  // namespace qor::statistics
