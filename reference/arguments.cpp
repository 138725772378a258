#include "reference/arguments.h"

#include <algorithm>
#include <cmath>

namespace qor::reference {
namespace {

constexpr struct { double first, last; } kNearOne = {0.1, 10.1};

// The last number before the class of the result changes, for every change that a walk in half
// binades sees.
template <class T>
std::vector<T> class_edges(const Reference& reference) {
  Value<T> value;
  const auto class_at = [&](int64_t position) {
    const T x = at_position<T>(position);
    value.compute(reference, &x, 1);
    return std::fpclassify(value.rounded(0));
  };
  constexpr int64_t kStep = int64_t{1} << (format_of<T>.digits - 2);
  std::vector<T> edges;
  int before = class_at(-last_position<T>);
  for (int64_t i = -last_position<T>; i < last_position<T>; i += kStep) {
    const int after = class_at(i + kStep);
    if (after != before) {
      int64_t left = i, right = i + kStep;
      while (right - left > 1) {
        const int64_t middle = left + (right - left) / 2;
        (class_at(middle) == before ? left : right) = middle;
      }
      edges.push_back(at_position<T>(left));
    }
    before = after;
  }
  return edges;
}

// A number and its neighbours, up to `reach` on either side.
template <class T>
void add_neighbourhood(std::vector<T>& to, T x, int reach) {
  const int64_t centre = position(x);
  for (int64_t i = centre - reach; i <= centre + reach; ++i) {
    if (std::abs(i) <= last_position<T>) to.push_back(at_position<T>(i));
  }
}

template <class T>
std::vector<T> extremes() {
  using Limits = std::numeric_limits<T>;
  std::vector<T> list;
  for (T x : {T{0}, Limits::denorm_min(), Limits::min(), T(0.5), T(1), T(1.5), T(2), T(3), T(7),
              T(1e5), Limits::max(), Limits::infinity()}) {
    list.push_back(x);
    list.push_back(-x);
  }
  list.push_back(Limits::quiet_NaN());
  return list;
}

// Pairs, and elements of complex numbers, of all extremes.
template <class T>
Batch<T> hard_pairs(const Row<T>& row) {
  const bool tame = row.reference->pairing == Pairing::near_one;
  const std::vector<T> list = tame ? std::vector<T>{T(0.5), 1, T(1.5), 2, 3, 7} : extremes<T>();
  const auto parts = static_cast<size_t>(row.shape.input_parts);
  Batch<T> batch;
  for (T a : list) {
    for (T b : list) {
      batch.in[0].insert(batch.in[0].end(), parts, a);
      batch.in[1].insert(batch.in[1].end(), parts, b);
    }
  }
  return batch;
}

}  // namespace

template <class T>
Arguments<T>::Arguments(const Row<T>& row, uint64_t seed) : row_(row), engine_(seed) {
  edges_ = {-std::numeric_limits<T>::max(), std::numeric_limits<T>::max()};
  if (row.shape.numbers_in() == 1) {
    const std::vector<T> changes = class_edges<T>(*row.reference);
    edges_.insert(edges_.end(), changes.begin(), changes.end());
  }
  const kernels::limits::Edges edges = branch_edges(row.name());
  for (const double edge : edges.first) edges_.push_back(static_cast<T>(edge));
  for (const double edge : edges.second) second_edges_.push_back(static_cast<T>(edge));
  std::sort(edges_.begin(), edges_.end());
  std::erase_if(edges_, [](T x) { return !std::isfinite(x); });
}

template <class T>
Batch<T> Arguments<T>::hard() const {
  constexpr Format format = format_of<T>;
  Batch<T> batch = row_.shape.inputs == 2 ? hard_pairs(row_) : Batch<T>{};
  if (row_.shape.inputs == 1) {
    std::vector<T>& x = batch.in[0];
    x = extremes<T>();
    for (T edge : edges_) add_neighbourhood(x, edge, 64);
    for (int e = format.min_exponent - format.digits; e < format.max_exponent; ++e) {
      for (T sign : {T(1), T(-1)}) add_neighbourhood(x, std::ldexp(sign, e), 2);
    }
    for (int i = -128; i <= 128; ++i) add_neighbourhood(x, static_cast<T>(i) / 2, 3);
    if (x.size() % static_cast<size_t>(row_.shape.input_parts) != 0) x.push_back(T(1));
  }
  if (row_.shape.scalars > 0) batch.scalar = {T(2.5), T(0.5), T(1.5), T(0.25)};
  return batch;
}

template <class T>
T Arguments<T>::by_exponent() {
  constexpr Format format = format_of<T>;
  const int lowest = format.min_exponent - format.digits;
  const auto count = static_cast<size_t>(format.max_exponent - lowest);
  const int exponent = lowest + static_cast<int>(below(count));
  const T x = std::ldexp(static_cast<T>(1.0 + unit()), exponent);
  const T finite = std::min(x, std::numeric_limits<T>::max());
  return below(2) == 0 ? finite : -finite;
}

template <class T>
T Arguments<T>::between_edges() {
  const size_t i = below(edges_.size() - 1);
  const double t = unit(), left = static_cast<double>(edges_[i]);
  return static_cast<T>(left * (1.0 - t) + static_cast<double>(edges_[i + 1]) * t);
}

// Within a random power of two of steps.
template <class T>
T Arguments<T>::near(T x) {
  const auto reach = int64_t{1} << below(static_cast<size_t>(format_of<T>.digits));
  const auto steps = static_cast<int64_t>(engine_() % static_cast<uint64_t>(2 * reach + 1)) - reach;
  return at_position<T>(
      std::clamp(position(x) + steps, -last_position<T> + 1, last_position<T> - 1));
}

// Positive and not far from one.
template <class T>
T Arguments<T>::near_one() {
  return static_cast<T>(kNearOne.first + (kNearOne.last - kNearOne.first) * unit());
}
template <class T>
T Arguments<T>::kept_in_domain(T x) const {
  if (row_.reference->pairing != Pairing::near_one) return x;
  return std::clamp(x, static_cast<T>(kNearOne.first), static_cast<T>(kNearOne.last));
}

template <class T>
T Arguments<T>::first() {
  if (row_.reference->pairing == Pairing::near_one) return near_one();
  switch (below(4)) {
    case 0:
      return between_edges();
    case 1:
      return near(below(2) == 0 ? edges_[below(edges_.size())] : T(1));
    default:
      return by_exponent();
  }
}

// A number for the pair: of any exponent, of a near one, near an edge or the first, or a small
// integer.
template <class T>
T Arguments<T>::second(T first) {
  if (row_.reference->pairing == Pairing::power) return exponent_for(first);
  if (row_.reference->pairing == Pairing::near_one) return near_one();
  switch (below(4)) {
    case 0:
      return by_exponent();
    case 1: {
      const int shift = static_cast<int>(below(static_cast<size_t>(2 * format_of<T>.digits + 6)));
      const T other = std::ldexp(first, shift - format_of<T>.digits - 3);
      return std::isfinite(other) ? near(below(2) == 0 ? other : -other) : by_exponent();
    }
    case 2:
      if (!second_edges_.empty() && below(2) == 0) {
        const T edge = near(second_edges_[below(second_edges_.size())]);
        return below(2) == 0 ? edge : -edge;
      }
      return near(below(2) == 0 ? first : -first);
    default:
      return static_cast<T>(static_cast<int>(below(2001)) - 1000);
  }
}

// An exponent that keeps the power in the range, or a little outside.
template <class T>
T Arguments<T>::exponent_for(T base) {
  constexpr Format format = format_of<T>;
  const double lowest = format.min_exponent - format.digits - 2, highest = format.max_exponent + 2;
  const double logarithm = std::log2(std::fabs(static_cast<double>(base)));
  if (logarithm == 0 || !std::isfinite(logarithm)) return by_exponent();
  const double y = (lowest + (highest - lowest) * unit()) / logarithm;
  const double kept = base < 0 || below(8) == 0 ? std::rint(y) : y;
  constexpr double kLargest = std::numeric_limits<T>::max();
  return static_cast<T>(std::clamp(kept, -kLargest, kLargest));
}

template <class T>
void Arguments<T>::add_scalars(Batch<T>& batch) {
  if (row_.reference->pairing == Pairing::near_one) {
    for (T& scalar : batch.scalar) scalar = near_one();
  } else {
    constexpr T kExponents[] = {3, -2, T(1) / 3, T(2.5),  T(-0.1), T(7.25), T(0.999), T(-1.5),
                                2, 1,  T(0.5),   T(-0.5), T(1.5),  -1,      0};
    const bool common = below(2) == 0;
    for (T& scalar : batch.scalar) {
      scalar = common ? kExponents[below(std::size(kExponents))] : exponent_for(first());
    }
  }
}

template <class T>
Batch<T> Arguments<T>::with_others(std::vector<T> first_numbers) {
  Batch<T> batch;
  batch.in[0] = std::move(first_numbers);
  if (row_.shape.inputs == 2) {
    for (const T x : batch.in[0]) batch.in[1].push_back(second(x));
  }
  if (row_.shape.scalars > 0) add_scalars(batch);
  return batch;
}

template <class T>
Batch<T> Arguments<T>::random(size_t count) {
  std::vector<T> numbers(count * static_cast<size_t>(row_.shape.input_parts));
  for (T& x : numbers) x = first();
  return with_others(std::move(numbers));
}

template <class T>
Batch<T> Arguments<T>::ordinary(size_t count) {
  const auto parts = static_cast<size_t>(row_.shape.input_parts);
  const auto draw = [this] { return static_cast<T>(40 * unit() - 20); };
  Batch<T> batch;
  batch.scalar = {T(2.25), T(0.5), T(1.5), T(0.25)};
  Value<T> value;
  while (batch.in[0].size() < count * parts) {
    std::array<T, Value<T>::most_inputs> numbers;
    std::generate(numbers.begin(), numbers.end(), draw);
    const size_t in_vectors = parts * static_cast<size_t>(row_.shape.inputs);
    std::copy_n(batch.scalar.begin(), row_.shape.scalars, numbers.begin() + in_vectors);
    value.compute(*row_.reference, numbers.data(), row_.shape.numbers_in());
    const int results = row_.shape.outputs * row_.shape.output_parts;
    bool ordinary = true;
    for (int k = 0; k < results; ++k)
      ordinary = ordinary && !std::isnan(value.rounded(k)) && !std::isinf(value.rounded(k));
    if (!ordinary) continue;
    for (size_t k = 0; k < static_cast<size_t>(row_.shape.inputs); ++k) {
      batch.in[k].insert(batch.in[k].end(), numbers.begin() + k * parts,
                         numbers.begin() + (k + 1) * parts);
    }
  }
  return batch;
}

template class Arguments<float>;
template class Arguments<double>;

}  // namespace qor::reference
