// Values: against the reference at hard and random arguments, with no flag that they do not call
// for; and what is reported on the way.

#include <sstream>

#include "tests/kernels/edge_arguments.h"

namespace qor::test {
namespace {

class EngineAccuracy : public KernelTest {};

template <class T>
std::string text_of(const Row<T>& row, const Numbers<T>& numbers) {
  std::ostringstream text;
  text << row.name() << std::hexfloat;
  for (int k = 0; k < row.shape.numbers_in(); ++k) text << ' ' << numbers[static_cast<size_t>(k)];
  return text.str();
}

// The flags that an element may raise: invalid where a NaN comes out of numbers, overflow or
// divide-by-zero for an infinity, underflow for what is small and not exact, or reported as such.
template <class T>
int flags_due(const Row<T>& row, const Numbers<T>& numbers, T result, double error) {
  if (std::any_of(numbers.begin(), numbers.end(), [](T x) { return std::isnan(x); })) return 0;
  if (std::isnan(result)) return FE_INVALID;
  if (std::isinf(result)) return FE_OVERFLOW | FE_DIVBYZERO;
  const bool reported = (row.reference->codes >> QOR_ERROR_UNDERFLOW & 1u) != 0;
  const bool small = std::abs(result) < std::numeric_limits<T>::min();
  return small && (error != 0 || reported) ? FE_UNDERFLOW : 0;
}

// With a bound of 0 the results are the correctly rounded ones. Stops at the first element outside
// the bound: it tells enough.
template <class T>
void expect_accurate(const Row<T>& row, int slot, const Batch<T>& batch, double bound) {
  if (batch.in[0].empty()) return;
  std::feclearexcept(FE_ALL_EXCEPT);
  const Results<T> results = run(row, slot, batch);
  const int flags = std::fetestexcept(kFlags);
  int due = 0;
  const int parts = row.shape.output_parts;
  Value<T> value;
  for (int i = 0; i < count_of(row, batch); ++i) {
    const Numbers<T> numbers = numbers_of(row, batch, i);
    value.compute(*row.reference, numbers.data(), row.shape.numbers_in());
    for (int k = 0; k < row.shape.outputs * parts; ++k) {
      const T computed =
          results[static_cast<size_t>(k / parts)][static_cast<size_t>(i * parts + k % parts)];
      const double error = value.error(k, computed);
      const bool good = bound == 0 ? equal_results(computed, value.rounded(k)) : error < bound;
      ASSERT_TRUE(good) << text_of(row, numbers) << " -> " << computed << ", exactly "
                        << value.rounded(k) << ": " << error << " ulp";
      due |= flags_due(row, numbers, computed, error);
    }
  }
  // Inexact functions may raise flags on their way; logarithms have no reason to.
  if (row.bound(HA) == 0 || row.base.starts_with("L")) {
    EXPECT_EQ(flags & ~due, 0);
  }
  const Results<T> strided = run_strided(row, slot, batch);
  for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
    EXPECT_TRUE(same_bits(strided[k].data(), results[k])) << "strided";
  }
}

TEST_P(EngineAccuracy, StaysBelowItsBound) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    Arguments<T> arguments(row, 2);
    const double bound = row.bound(slot);
    expect_accurate(row, slot, arguments.hard(), bound);
    // Where their reductions could lose it, logarithms and powers keep more than they promise.
    const bool is_logarithm = row.base == "Log2" || row.base == "Log10";
    const bool is_power = row.base == "Pow" || row.base == "Powr";
    const double kept = is_logarithm ? 0.8 : is_power ? 0.6 : bound;
    expect_accurate(row, slot, edge_arguments(row), kept);
    for (int i = 0; i < 16; ++i) expect_accurate(row, slot, arguments.random(512), bound);
    if (row.kernels[slot] == row.kernels[HA]) {
      expect_accurate(row, slot, arguments_with_exact_results<T>(row.base), 0);
    }
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
