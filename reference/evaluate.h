// Runs the kernel of a row over a batch, and finds what a function should have given there.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>

#include "reference/arguments.h"

namespace qor::reference {

template <class T>
using Results = std::array<std::vector<T>, 2>;

// Elements of a batch.
template <class T>
int count_of(const Row<T>& row, const Batch<T>& batch) {
  return static_cast<int>(batch.in[0].size()) / row.shape.input_parts;
}

// A call on the vectors of a batch, with outputs still to be set.
template <class T>
Call<T> call_on(const Row<T>& row, const Batch<T>& batch) {
  Call<T> call;
  call.n = count_of(row, batch);
  for (size_t k = 0; k < batch.in.size(); ++k) call.in[k] = batch.in[k].data();
  call.scalar = batch.scalar;
  return call;
}

// The contiguous kernel of a slot over a batch.
template <class T>
Results<T> run(const Row<T>& row, int slot, const Batch<T>& batch) {
  Results<T> results;
  Call<T> call = call_on(row, batch);
  for (int k = 0; k < row.shape.outputs; ++k) {
    results[k].resize(static_cast<size_t>(call.n * row.shape.output_parts));
    call.out[k] = results[k].data();
  }
  row.run(slot, call);
  return results;
}

// The numbers of element i, as the reference takes them.
template <class T>
using Numbers = std::array<T, Value<T>::most_inputs>;
template <class T>
Numbers<T> numbers_of(const Row<T>& row, const Batch<T>& batch, int i) {
  Numbers<T> numbers{};
  T* next = numbers.data();
  const int parts = row.shape.input_parts;
  for (int k = 0; k < row.shape.inputs; ++k) {
    next = std::copy_n(batch.in[k].data() + i * parts, parts, next);
  }
  std::copy_n(batch.scalar.data(), row.shape.scalars, next);
  return numbers;
}

// Whether two results are the same: any NaN equals any other.
template <class T>
bool equal_results(T x, T y) {
  if (std::isnan(x) || std::isnan(y)) return std::isnan(x) && std::isnan(y);
  return x == y && std::signbit(x) == std::signbit(y);
}

}  // namespace qor::reference
