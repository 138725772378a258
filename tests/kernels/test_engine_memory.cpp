// Form: lengths, ends of vectors, places, strides. The bits of an element depend on its arguments
// alone.

#include "tests/kernels/engine.h"
#include "tests/support/guarded.h"

namespace qor::test {
namespace {

constexpr size_t kLongest = 67;  // more than the longest block and a tail

class EngineMemory : public KernelTest {};

// Where a call's vectors lie: at a guard page behind them or before them (then each so many
// elements further than the last), the results in memory of their own or the inputs'.
struct Place {
  bool at_end = false, in_place = false;
  size_t shift = 0;
};

// Vectors of a call between guard pages.
template <class T>
class GuardedCall {
 public:
  explicit GuardedCall(const Row<T>& row) : row_(row) {}

  // Runs the kernel on a batch in its place.
  testing::AssertionResult matches(int slot, const Batch<T>& batch, const Results<T>& expected,
                                   const Place& place) {
    Call<T> call = call_on(row_, batch);
    std::array<T*, 2> in{};
    for (size_t k = 0; k < 2; ++k) {
      const size_t n = batch.in[k].size(), m = expected[k].size();
      in[k] = place.at_end ? in_[k].last(n) : in_[k].first() + place.shift * (k + 1);
      std::copy_n(batch.in[k].data(), n, in[k]);
      call.in[k] = in[k];
      call.out[k] = place.at_end ? out_[k].last(m) : out_[k].first() + place.shift * (k + 3);
    }
    if (place.in_place) call.out[0] = in[static_cast<size_t>(row_.shape.inputs - 1)];
    row_.run(slot, call);
    for (size_t k = 0; k < static_cast<size_t>(row_.shape.outputs); ++k) {
      if (auto result = same_bits(call.out[k], expected[k]); !result) {
        return result << " in output " << k << ", n = " << call.n << ", shift " << place.shift
                      << (place.in_place ? ", in place" : "");
      }
    }
    return testing::AssertionSuccess();
  }

 private:
  static constexpr size_t kNumbers = 2 * kLongest;  // elements of two parts, or all shifts
  const Row<T>& row_;
  Guarded<T> in_[2]{Guarded<T>(kNumbers), Guarded<T>(kNumbers)};
  Guarded<T> out_[2]{Guarded<T>(kNumbers), Guarded<T>(kNumbers)};
};

// Every length from every start: no element outside is touched, all come out as in the whole run.
TEST_P(EngineMemory, EveryLengthStaysInsideItsVectors) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    const Batch<T> batch = mixed_batch(row, 2 * kLongest);
    const Results<T> expected = run(row, slot, batch);
    const bool in_place_fits = row.shape.input_parts == row.shape.output_parts;
    GuardedCall<T> call(row);
    for (size_t n = 0; n <= kLongest; ++n) {
      const size_t first = (n * 29) % kLongest;  // every element at many places
      const Batch<T> part{piece(batch.in, row.shape.input_parts, first, n), batch.scalar};
      const Results<T> part_expected = piece(expected, row.shape.output_parts, first, n);
      for (bool at_end : {false, true}) {
        for (bool in_place : {false, true}) {
          if (in_place && !in_place_fits) continue;
          ASSERT_TRUE(call.matches(slot, part, part_expected, {at_end, in_place}));
        }
      }
    }
  });
}

// Pointers aligned to an element only, each vector by its own offset.
TEST_P(EngineMemory, AlignmentChangesNothing) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    const Batch<T> batch = mixed_batch(row, kLongest);
    const Results<T> expected = run(row, slot, batch);
    GuardedCall<T> call(row);
    for (size_t shift = 0; shift < 64 / sizeof(T); ++shift) {
      ASSERT_TRUE(call.matches(slot, batch, expected, {false, false, shift}));
    }
  });
}

// ---- Strides --------------------------------------------------------------------------------

constexpr int kWidest = 3;
constexpr size_t kStridedCount = 37;

// A vector laid out with an increment in the middle of a field of canaries.
template <class T>
struct Field {
  std::vector<T> numbers;
  T* origin;
  int increment, parts;

  static T canary() { return static_cast<T>(-77.25); }
  Field(int inc, int element_parts) : increment(inc), parts(element_parts) {
    const size_t reach = kWidest * kStridedCount * static_cast<size_t>(parts);
    numbers.assign(2 * reach, canary());
    origin = numbers.data() + reach;
  }
  T* element(size_t i) { return origin + static_cast<ptrdiff_t>(i) * increment * parts; }
};

// Whether a field holds these elements (the last of them when the increment is 0), and canaries
// elsewhere.
template <class T>
testing::AssertionResult holds(Field<T>& field, const std::vector<T>& elements) {
  Field<T> expected(field.increment, field.parts);
  for (size_t i = 0; i < kStridedCount; ++i) {
    std::copy_n(&elements[i * static_cast<size_t>(field.parts)], field.parts, expected.element(i));
  }
  return same_bits(field.numbers.data(), expected.numbers);
}

template <class T>
void expect_strided(const Row<T>& row, int slot, const Batch<T>& batch,
                    const std::array<int, 2>& in_inc, const std::array<int, 2>& out_inc) {
  Batch<T> seen = batch;  // an increment of 0 shows element 0 always
  Call<T> call = call_on(row, batch);
  const int parts = row.shape.input_parts, parts_out = row.shape.output_parts;
  Field<T> in[] = {{in_inc[0], parts}, {in_inc[1], parts}};
  Field<T> out[] = {{out_inc[0], parts_out}, {out_inc[1], parts_out}};
  for (size_t k = 0; k < 2; ++k) {
    for (size_t i = kStridedCount; i-- > 0 && k < static_cast<size_t>(row.shape.inputs);) {
      const size_t at = i * static_cast<size_t>(parts);
      std::copy_n(&batch.in[k][at], parts, in[k].element(i));
      if (in_inc[k] == 0) std::copy_n(&batch.in[k][0], parts, &seen.in[k][at]);
    }
    call.in[k] = in[k].origin;
    call.out[k] = out[k].origin;
  }
  call.in_inc = in_inc;
  call.out_inc = out_inc;
  row.run_strided(slot, call);
  const Results<T> expected = run(row, slot, seen);
  for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
    ASSERT_TRUE(holds(out[k], expected[k])) << "increments " << in_inc[0] << ' ' << in_inc[1]
                                            << " -> " << out_inc[0] << ' ' << out_inc[1];
  }
}

TEST_P(EngineMemory, StridedGivesTheBitsOfContiguous) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    const Batch<T> batch = mixed_batch(row, kStridedCount);
    const bool three = row.shape.inputs == 2 || row.shape.outputs == 2;
    const bool second_in = row.shape.inputs == 2;
    for (int a = -kWidest; a <= kWidest; ++a) {
      for (int y = -kWidest; y <= kWidest; ++y) {
        for (int third = three ? -kWidest : 1; third <= (three ? kWidest : 1); ++third) {
          expect_strided<T>(row, slot, batch, {a, second_in ? third : 1},
                            {y, second_in ? 1 : third});
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineMemory);

}  // namespace
}  // namespace qor::test
