// The variables that take part in an estimate, and their values one after another.
#pragma once

#include "services/scratch.h"
#include "statistics/sort_keys.h"
#include "statistics/view.h"

namespace qor::statistics {

// One variable's values.
template <class Real>
struct Column {
  const Real* x;
  int64_t n, stride;

  Real operator[](int64_t i) const { return x[i * stride]; }
  Key<Real> key(int64_t i) const { return key_of(x[i * stride]); }
  // Asks for the memory of an element some steps on, which may lie behind the last.
  void fetch_behind(int64_t i) const {
    constexpr int64_t steps = 32;
    if (stride == 1) return;
    __builtin_prefetch(
        reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(x) +
                                      static_cast<uintptr_t>((i + steps) * stride) * sizeof(Real)));
  }
};

template <class Real>
Column<Real> column(const Observations<Real>& data, int64_t variable) {
  return {data.variable(variable), data.n, data.observation_stride()};
}

template <class Real>
void copy_values(const Column<Real>& column, Real* values) {
  for (int64_t i = 0; i < column.n; ++i) {
    column.fetch_behind(i);
    values[i] = column[i];
  }
}

// The numbers of the variables taking part, which are the items of the work.
class SelectedVariables {
 public:
  template <class TakesPart>
  SelectedVariables(int64_t p, const TakesPart& takes_part) : numbers_(p) {
    if (numbers_.data() == nullptr) return;
    for (int64_t j = 0; j < p; ++j) {
      if (takes_part(j)) numbers_.data()[count_++] = j;
    }
  }
  template <class Real>
  explicit SelectedVariables(const Observations<Real>& data)
      : SelectedVariables(data.p, [&](int64_t j) { return data.takes_part(j); }) {}

  bool allocated() const { return numbers_.data() != nullptr; }
  int64_t count() const { return count_; }
  int64_t operator[](int64_t item) const { return numbers_.data()[item]; }

 private:
  services::HeapScratch<int64_t> numbers_;
  int64_t count_ = 0;
};

// Where the values of an item go: a row of n values, or a column of a table of p columns.
template <class Real>
struct ItemOutput {
  Real* values;
  int64_t n, p;
  bool by_variable;

  Real* row(int64_t item) const { return values + item * n; }
  void write_column(int64_t item, const Real* sorted) const {
    for (int64_t i = 0; i < n; ++i) values[i * p + item] = sorted[i];
  }
};

}  // namespace qor::statistics
