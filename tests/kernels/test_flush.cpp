// Flushed denormals: where arguments and results are normal numbers, the mode changes nothing. An
// intermediate value that is denormal there would show.

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

template <class T>
bool is_denormal(T x) {
  return x != 0 && std::abs(x) < std::numeric_limits<T>::min();
}

template <class T>
void expect_same_when_flushed(const Row<T>& row, int slot, const Batch<T>& batch) {
  const Results<T> kept = run(row, slot, batch);
  const ModeScope flush(QOR_MODE_FLUSH_DENORMALS);
  const Results<T> flushed = run(row, slot, batch);
  for (int i = 0; i < count_of(row, batch); ++i) {
    const Numbers<T> numbers = numbers_of(row, batch, i);
    if (std::any_of(numbers.begin(), numbers.end(), is_denormal<T>)) continue;
    for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
      const T expected = kept[k][static_cast<size_t>(i)];
      // What rounds up to the smallest normal number was denormal before, and may be flushed.
      if (std::abs(expected) <= std::numeric_limits<T>::min()) continue;
      ASSERT_TRUE(equal_results(flushed[k][static_cast<size_t>(i)], expected))
          << row.name() << std::hexfloat << " of " << numbers[0] << ' ' << numbers[1] << " is "
          << flushed[k][static_cast<size_t>(i)] << " flushed, else " << expected;
    }
  }
}

class EngineFlush : public KernelTest {};

TEST_P(EngineFlush, ChangesNoNormalResult) {
  with_row([](const auto& row, int slot) {
    Arguments<typename std::decay_t<decltype(row)>::Real> arguments(row, 3);
    expect_same_when_flushed(row, slot, arguments.hard());
    for (int i = 0; i < 20; ++i) expect_same_when_flushed(row, slot, arguments.random(512));
  });
}

QOR_FOR_ALL_KERNELS(EngineFlush);

}  // namespace
}  // namespace qor::test
