// Keys of reals: unsigned integers whose order is that of the values. -0 comes before +0, NaNs come
// by their bits beyond the infinities.
#pragma once

#include <bit>
#include <cstdint>

namespace qor::statistics {

// What sorting by keys needs of an element: its bits, and its key, which is found from the bits and
// gives them back. Unsigned integers are their own keys.
template <class T>
struct Sortable {
  using Key = T;
  static Key bits(T value) { return value; }
  static T from_bits(Key bits) { return bits; }
  static Key encode(Key bits) { return bits; }
  static Key decode(Key key) { return key; }
};

template <class Real, class Unsigned, class Signed>
struct SortableReal {
  using Key = Unsigned;
  static constexpr int top = 8 * sizeof(Key) - 1;
  static constexpr Key sign = Key{1} << top;

  static Key bits(Real value) { return std::bit_cast<Key>(value); }
  static Real from_bits(Key bits) { return std::bit_cast<Real>(bits); }
  // A negative value has all its bits turned, another one its sign.
  static Key encode(Key bits) { return bits ^ (all_ones_if_negative(bits) | sign); }
  static Key decode(Key key) { return key ^ (all_ones_if_negative(~key) | sign); }

 private:
  static Key all_ones_if_negative(Key bits) {
    return static_cast<Key>(static_cast<Signed>(bits) >> top);
  }
};
template <>
struct Sortable<double> : SortableReal<double, uint64_t, int64_t> {};
template <>
struct Sortable<float> : SortableReal<float, uint32_t, int32_t> {};

template <class T>
using Key = typename Sortable<T>::Key;

template <class Real>
Key<Real> key_of(Real value) {
  return Sortable<Real>::encode(Sortable<Real>::bits(value));
}
template <class Real>
Real value_of(Key<Real> key) {
  return Sortable<Real>::from_bits(Sortable<Real>::decode(key));
}

}  // namespace qor::statistics
