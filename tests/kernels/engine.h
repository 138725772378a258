// The engine's tests run for every kernel of every function row: a new row brings its own.
#pragma once

#include <gtest/gtest.h>

#include <cfenv>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "qor/vector_math.h"
#include "reference/evaluate.h"
#include "tests/support/reports.h"

namespace qor::test {

using namespace reference;

// The IEEE flags that tests look at: all but inexact.
inline constexpr int kFlags = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW;

struct Kernel {
  size_t row;  // in rows()
  int slot;    // the first that the kernel serves
};

inline std::vector<Kernel> all_kernels() {
  std::vector<Kernel> kernels;
  for (size_t i = 0; i < rows().size(); ++i) {
    for (int slot : std::visit([](const auto& row) { return row.distinct_slots(); }, rows()[i])) {
      kernels.push_back({i, slot});
    }
  }
  return kernels;
}

inline std::string kernel_name(const testing::TestParamInfo<Kernel>& info) {
  const auto name = std::visit([](const auto& row) { return row.name(); }, rows()[info.param.row]);
  constexpr const char* kSlots[slots] = {"LA", "HA", "EP"};
  return name + "_" + kSlots[info.param.slot];
}

// Runs check(row, slot) with the row in its own type. Errors set the status and nothing else.
class KernelTest : public testing::TestWithParam<Kernel> {
 protected:
  template <class Check>
  void with_row(Check check) {
    std::visit([&](const auto& row) { check(row, GetParam().slot); }, rows()[GetParam().row]);
  }

 private:
  ModeScope quiet_{QOR_MODE_ERRORS_IGNORE};
};

#define QOR_FOR_ALL_KERNELS(Suite) \
  INSTANTIATE_TEST_SUITE_P(Rows, Suite, testing::ValuesIn(all_kernels()), kernel_name)

// The strided kernel of a slot over a batch, into every second element.
template <class T>
Results<T> run_strided(const Row<T>& row, int slot, const Batch<T>& batch) {
  Results<T> spread, results;
  Call<T> call = call_on(row, batch);
  call.out_inc = {2, 2};
  const auto n = static_cast<size_t>(call.n), parts = static_cast<size_t>(row.shape.output_parts);
  for (size_t k = 0; k < 2; ++k) {
    spread[k].resize(2 * n * parts);
    results[k].resize(n * parts);
    call.out[k] = spread[k].data();
  }
  row.run_strided(slot, call);
  for (size_t i = 0; i < n * parts; ++i) {
    const size_t from = i / parts * 2 * parts + i % parts;
    for (size_t k = 0; k < 2; ++k) results[k][i] = spread[k][from];
  }
  return results;
}

// Elements `first` to `first` + n of vectors whose elements have so many parts.
template <class T>
std::array<std::vector<T>, 2> piece(const std::array<std::vector<T>, 2>& vectors, int parts,
                                    size_t first, size_t n) {
  std::array<std::vector<T>, 2> part;
  for (size_t k = 0; k < 2; ++k) {
    if (vectors[k].empty()) continue;
    const T* from = vectors[k].data() + first * static_cast<size_t>(parts);
    part[k].assign(from, from + n * static_cast<size_t>(parts));
  }
  return part;
}

// A batch for tests of form: random elements with special ones strewn in, so that blocks with and
// without lanes that need care occur, in every position.
template <class T>
Batch<T> mixed_batch(const Row<T>& row, size_t n) {
  Arguments<T> arguments(row, 7);
  Batch<T> batch = arguments.random(n);
  const Batch<T> hard = arguments.hard();
  const auto parts = static_cast<size_t>(row.shape.input_parts);
  for (size_t i = 5; i < n; i += 1 + i % 11) {
    for (int k = 0; k < row.shape.inputs; ++k) {
      const size_t from = (i * 37) % (hard.in[k].size() / parts) * parts;
      std::copy_n(&hard.in[k][from], parts, &batch.in[k][i * parts]);
    }
  }
  return batch;
}

// The elements of a batch with these indices.
template <class T>
Batch<T> chosen(const Row<T>& row, const Batch<T>& batch, const std::vector<size_t>& indices) {
  Batch<T> part{{}, batch.scalar};
  const auto parts = static_cast<size_t>(row.shape.input_parts);
  for (size_t k = 0; k < static_cast<size_t>(row.shape.inputs); ++k) {
    for (const size_t i : indices) {
      const T* const from = &batch.in[k][i * parts];
      part.in[k].insert(part.in[k].end(), from, from + parts);
    }
  }
  return part;
}

template <class T>
std::string text_of(const Row<T>& row, const Numbers<T>& numbers) {
  std::ostringstream text;
  text << row.name() << std::hexfloat;
  for (int k = 0; k < row.shape.numbers_in(); ++k) text << ' ' << numbers[static_cast<size_t>(k)];
  return text.str();
}

// Elements of results whose bits differ from those of `expected`; a NaN is its bits too.
template <class T>
testing::AssertionResult same_bits(const T* computed, const std::vector<T>& expected) {
  for (size_t i = 0; i < expected.size(); ++i) {
    if (std::memcmp(computed + i, &expected[i], sizeof(T)) != 0) {
      return testing::AssertionFailure()
             << "number " << i << " is " << computed[i] << ", not " << expected[i];
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace qor::test
