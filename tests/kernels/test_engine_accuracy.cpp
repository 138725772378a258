// Values: against the reference at hard and random arguments, and what is reported on the way.

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

class EngineAccuracy : public KernelTest {};

template <class T>
std::string text_of(const Row<T>& row, const Numbers<T>& numbers) {
  std::string text = row.name();
  for (int k = 0; k < row.shape.numbers_in(); ++k) {
    char number[64];
    std::snprintf(number, sizeof number, " %a",
                  static_cast<double>(numbers[static_cast<size_t>(k)]));
    text += number;
  }
  return text;
}

// Stops at the first element outside the bound: it tells enough.
template <class T>
void expect_accurate(const Row<T>& row, int slot, const Batch<T>& batch) {
  const Results<T> results = run(row, slot, batch);
  const double bound = row.bound(slot);
  const int parts = row.shape.output_parts;
  Value<T> value;
  for (int i = 0; i < count_of(row, batch); ++i) {
    const Numbers<T> numbers = numbers_of(row, batch, i);
    value.compute(*row.reference, numbers.data(), row.shape.numbers_in());
    for (int k = 0; k < row.shape.outputs * parts; ++k) {
      const T computed =
          results[static_cast<size_t>(k / parts)][static_cast<size_t>(i * parts + k % parts)];
      const bool good =
          bound == 0 ? equal_results(computed, value.rounded(k)) : value.error(k, computed) < bound;
      ASSERT_TRUE(good) << text_of(row, numbers) << " -> " << computed << ", exactly "
                        << value.rounded(k) << ": " << value.error(k, computed) << " ulp";
    }
  }
}

TEST_P(EngineAccuracy, StaysBelowItsBound) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    Arguments<T> arguments(row, 2);
    expect_accurate(row, slot, arguments.hard());
    for (int i = 0; i < 16; ++i) expect_accurate(row, slot, arguments.random(512));
  });
}

// Reports come in ascending order with the row's name, the arguments and results of their element,
// and codes that the function may have; the status is that of the last.
TEST_P(EngineAccuracy, ReportsWhatItSaw) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    const Batch<T> batch = Arguments<T>(row).hard();
    ReportLog log;
    const Results<T> results = run(row, slot, batch);
    int32_t previous = -1;
    for (const ErrorContext& report : log.reports()) {
      ASSERT_GT(report.index, previous);
      ASSERT_LT(report.index, count_of(row, batch));
      previous = report.index;
      ASSERT_EQ(report.funcName, reported_name(row.name(), false));
      EXPECT_TRUE((row.reference->codes >> report.code & 1u) != 0) << report.code;
      const auto first = static_cast<size_t>(report.index * row.shape.input_parts);
      const auto last = static_cast<size_t>(row.shape.inputs - 1);
      EXPECT_TRUE(equal_results(static_cast<T>(report.arg1), batch.in[0][first]));
      EXPECT_TRUE(equal_results(static_cast<T>(report.arg2), batch.in[last][first]));
      const auto y = static_cast<size_t>(report.index * row.shape.output_parts);
      EXPECT_TRUE(equal_results(static_cast<T>(report.result1), results[0][y]));
    }
    const bool any = !log.reports().empty();
    EXPECT_EQ(_arkGetErrStatus(), any ? log.reports().back().code : QOR_ERROR_NONE);
    EXPECT_EQ(any, row.reference->codes != 0);
  });
}

QOR_FOR_ALL_KERNELS(EngineAccuracy);

}  // namespace
}  // namespace qor::test
