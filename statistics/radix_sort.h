// Radix sort by keys.
//
// Three stable passes of 11 bits, least significant first, sort by the 33 bits from the highest one
// that varies down; their histograms are counted in one scan. That is all of a 32-bit key. Of
// 64-bit keys few are left alike: runs of equal leading bits are then sorted where they stand. Keys
// that are equal have equal bits, so that every way of sorting gives the same array.
//
// The tables of few keys stand on the stack, 24 KiB; those of many in the work memory.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "services/scratch.h"
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

// places[d][v]: where the next element whose digit d has value v goes.
template <class Place>
struct Places {
  Place of[digit_count][digit_values] = {};
};

// What a sort by lines needs: besides places, the lines that collect, and the first place in each.
struct alignas(line_bytes) LineTables {
  unsigned char lines[digit_values][line_bytes];
  int64_t first[digit_values];
  Places<int64_t> places;
};

template <class T>
bool is_sorted_by_lines(int64_t n) {
  return n >= bytes_written_by_lines / static_cast<int64_t>(sizeof(T));
}

// Elements of work that sorting n takes.
template <class T>
int64_t sorting_room(int64_t n) {
  constexpr int64_t tables =
      (int64_t{sizeof(LineTables)} + line_bytes) / static_cast<int64_t>(sizeof(T));
  return is_sorted_by_lines<T>(n) ? services::counted_sum(n, tables) : n;
}

// The tables behind the n elements of such work.
template <class T>
LineTables* line_tables(T* work, int64_t n) {
  const uintptr_t behind = reinterpret_cast<uintptr_t>(work + n);
  return new (reinterpret_cast<void*>((behind + line_bytes - 1) / line_bytes * line_bytes))
      LineTables;
}

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

// One pass: places[v] is where the next element with digit value v goes.
template <Form from, Form to, class T, class Place>
void scatter(int64_t n, const T* source, T* target, Digit<Key<T>> digit, Place* places) {
  for (int64_t i = 0; i < n; ++i) {
    const Key<T> key = load_key<from>(source[i]);
    target[places[digit.of(key)]++] = stored<to, T>(key);
  }
}

// The same by lines: a line of the target collects in cache until it is full. The target's elements
// are aligned to their size.
template <Form from, Form to, class T>
void scatter_by_lines(int64_t n, const T* source, T* target, Digit<Key<T>> digit, int64_t* places,
                      LineTables& tables) {
  constexpr int64_t length = line_bytes / static_cast<int64_t>(sizeof(T));
  auto* const lines = reinterpret_cast<T(*)[length]>(tables.lines);
  int64_t* const first = tables.first;
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

// One pass with the forms that it needs.
template <class T, class Place>
void pass(int64_t n, const T* source, T* target, bool values, bool to_values, Digit<Key<T>> digit,
          Place* places) {
  using Scatter = void (*)(int64_t, const T*, T*, Digit<Key<T>>, Place*);
  constexpr Scatter scatters[2][2] = {
      {scatter<Form::key, Form::key, T, Place>, scatter<Form::key, Form::value, T, Place>},
      {scatter<Form::value, Form::key, T, Place>, scatter<Form::value, Form::value, T, Place>}};
  scatters[values][to_values](n, source, target, digit, places);
}

// The same by lines, where the target is aligned for it.
template <class T>
void pass_by_lines(int64_t n, const T* source, T* target, bool values, bool to_values,
                   Digit<Key<T>> digit, int64_t* places, LineTables& tables) {
  if (reinterpret_cast<uintptr_t>(target) % sizeof(T) != 0) {
    return pass(n, source, target, values, to_values, digit, places);
  }
  using Scatter = void (*)(int64_t, const T*, T*, Digit<Key<T>>, int64_t*, LineTables&);
  constexpr Scatter scatters[2][2] = {
      {scatter_by_lines<Form::key, Form::key, T>, scatter_by_lines<Form::key, Form::value, T>},
      {scatter_by_lines<Form::value, Form::key, T>, scatter_by_lines<Form::value, Form::value, T>}};
  scatters[values][to_values](n, source, target, digit, places, tables);
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
template <class T, class Place>
void find_places(int64_t n, const T* source, int known, Places<Place>& places) {
  for (int64_t i = 0; i < n; ++i) {
    const Key<T> key = load_key<Form::value>(source[i]) >> known;
    for (int d = 0; d < digit_count; ++d) ++places.of[d][Digit<Key<T>>{d * digit_bits}.of(key)];
  }
  for (int d = 0; d < digit_count; ++d) {
    Place place = 0;
    for (Place& entry : places.of[d]) place += std::exchange(entry, place);
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

// Sorts n elements of `source` into `result` by their keys. `work` has the sorting room of n.
// `source` may be one of the two; when it is `result`, radix sort copies it first.
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

// The digits from bit `known` up that vary, and whether bits below them do not.
struct VaryingDigits {
  int known;
  bool are_all;
  int digit[digit_count];
  int count = 0;

  template <class Key>
  explicit VaryingDigits(Key varying)
      : known(std::max(0, static_cast<int>(std::bit_width(varying)) - digit_count * digit_bits)),
        are_all((varying & ((Key{1} << known) - 1)) == 0) {
    for (int d = 0; d < digit_count; ++d) {
      if (Digit<Key>{d * digit_bits}.of(varying >> known) != 0) digit[count++] = d;
    }
  }
};

// All passes: scatter_once(source, target, values, to_values, digit, places of the digit) for each.
// They alternate between result and work and end in the result.
template <class T, class Place, class ScatterOnce>
void run_passes(int64_t n, const T* source, T* result, T* work, const VaryingDigits& digits,
                Places<Place>& places, const ScatterOnce& scatter_once) {
  find_places(n, source, digits.known, places);
  T* target = digits.count % 2 == 1 ? result : work;
  if (digits.count == 0 || source == target) {
    T* copy = target == result && digits.count > 0 ? work : result;
    if (copy != source) std::memcpy(copy, source, static_cast<size_t>(n) * sizeof(T));
    source = copy;
  }
  for (int k = 0; k < digits.count; ++k) {
    const int d = digits.digit[k];
    scatter_once(source, target, k == 0, digits.are_all && k == digits.count - 1,
                 Digit<Key<T>>{digits.known + d * digit_bits}, places.of[d]);
    source = target;
    target = target == result ? work : result;
  }
}

// Out of line, so that its tables have left the stack when runs are sorted.
template <class T>
[[gnu::noinline]] void run_passes_on_stack(int64_t n, const T* source, T* result, T* work,
                                           const VaryingDigits& digits) {
  Places<uint32_t> places;
  run_passes(n, source, result, work, digits, places,
             [n](const T* from, T* to, bool values, bool to_values, Digit<Key<T>> digit,
                 uint32_t* at) { pass(n, from, to, values, to_values, digit, at); });
}

template <class T>
void run_passes_by_lines(int64_t n, const T* source, T* result, T* work,
                         const VaryingDigits& digits) {
  LineTables& tables = *line_tables(work, n);
  run_passes(n, source, result, work, digits, tables.places,
             [n, &tables](const T* from, T* to, bool values, bool to_values, Digit<Key<T>> digit,
                          int64_t* at) {
               pass_by_lines(n, from, to, values, to_values, digit, at, tables);
             });
}

template <class T>
void sort_many(int64_t n, const T* source, T* result, T* work) {
  const VaryingDigits digits(varying_bits(n, source));
  if (is_sorted_by_lines<T>(n)) {
    run_passes_by_lines(n, source, result, work, digits);
  } else {
    run_passes_on_stack(n, source, result, work, digits);
  }
  if (!digits.are_all) finish_runs(n, result, work, digits.known);
}

}  // namespace qor::statistics
