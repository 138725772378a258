// What kernels tell beside values: codes and IEEE flags, exactly where an element is due one.

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

class EngineSignals : public KernelTest {};

// What the elements of a batch are due: a code, and the flags that they may raise.
struct Dues {
  std::vector<int> codes, flags;
};

// Invalid where a NaN comes out of numbers, overflow or divide-by-zero where an infinity comes out
// of finite ones, underflow where a result is not exact and small, or was before its last digit was
// rounded up.
template <class T>
int flags_due(const Row<T>& row, const Numbers<T>& numbers, const Value<T>& value) {
  const auto any = [&](auto is) { return std::any_of(numbers.begin(), numbers.end(), is); };
  if (any([](T x) { return std::isnan(x); })) return 0;
  const bool finite = !any([](T x) { return std::isinf(x); });
  int flags = 0;
  for (int k = 0; k < row.shape.outputs * row.shape.output_parts; ++k) {
    const T result = value.rounded(k);
    if (std::isnan(result)) flags |= FE_INVALID;
    if (std::isinf(result) && finite) flags |= FE_OVERFLOW | FE_DIVBYZERO;
    const bool small = std::abs(result) <= std::numeric_limits<T>::min();
    if (small && value.error(k, result) != 0) flags |= FE_UNDERFLOW;
  }
  return flags;
}

template <class T>
Dues dues(const Row<T>& row, const Batch<T>& batch) {
  Dues due;
  Value<T> value;
  for (int i = 0; i < count_of(row, batch); ++i) {
    const Numbers<T> numbers = numbers_of(row, batch, i);
    value.compute(*row.reference, numbers.data(), row.shape.numbers_in());
    due.codes.push_back(value.due_code(*row.reference, numbers.data(), row.shape.numbers_in()));
    due.flags.push_back(flags_due(row, numbers, value));
  }
  return due;
}

// Hard elements, edges, random ones; of scalars several.
template <class T>
std::vector<Batch<T>> batches(const Row<T>& row) {
  Arguments<T> arguments(row, 3);
  std::vector<Batch<T>> list = {arguments.hard(), edge_arguments(row)};
  for (int i = 0; i < (row.shape.scalars > 0 ? 24 : 3); ++i) list.push_back(arguments.random(1024));
  std::erase_if(list, [](const Batch<T>& batch) { return batch.in[0].empty(); });
  return list;
}

// ---- Codes ----------------------------------------------------------------------------------

// A scalar exponent with a row of its own lets that row report, under its name.
template <class T>
std::string reporter(const Row<T>& row, const Batch<T>& batch) {
  constexpr std::pair<double, const char*> kDelegates[] = {
      {-1, "Inv"}, {0.5, "Sqrt"}, {-0.5, "InvSqrt"}, {1.5, "Pow3o2"}};
  std::string base(row.base);
  for (const auto& [exponent, name] : kDelegates) {
    if (base == "Powx" && static_cast<double>(batch.scalar[0]) == exponent) base = name;
  }
  return row.letter + base;
}

template <class T>
void expect_reports(const Row<T>& row, int slot, const Batch<T>& batch, const Dues& due) {
  ReportLog log;
  const Results<T> results = run(row, slot, batch);
  const std::string name = reported_name(reporter(row, batch), false);
  size_t next = 0;
  for (size_t i = 0; i < due.codes.size(); ++i) {
    const bool reported =
        next < log.reports().size() && log.reports()[next].index == static_cast<int32_t>(i);
    const int code = reported ? log.reports()[next].code : QOR_ERROR_NONE;
    ASSERT_EQ(code, due.codes[i]) << text_of(row, numbers_of(row, batch, static_cast<int>(i)));
    if (!reported) continue;
    const ErrorContext& report = log.reports()[next++];
    const auto last = static_cast<size_t>(row.shape.inputs - 1);
    const size_t first = i * static_cast<size_t>(row.shape.input_parts);
    ASSERT_EQ(report.funcName, name);
    EXPECT_TRUE(equal_results(static_cast<T>(report.arg1), batch.in[0][first]));
    EXPECT_TRUE(equal_results(static_cast<T>(report.arg2), batch.in[last][first]));
    const auto y = i * static_cast<size_t>(row.shape.output_parts);
    EXPECT_TRUE(equal_results(static_cast<T>(report.result1), results[0][y]));
  }
  EXPECT_EQ(next, log.reports().size()) << "reports out of order";
  const bool any = !log.reports().empty();
  EXPECT_EQ(_arkGetErrStatus(), any ? log.reports().back().code : QOR_ERROR_NONE);
}

// In ascending order with the row's name, the arguments and results of their element; the status is
// the code of the last. Strided, the same elements are reported.
TEST_P(EngineSignals, ReportsWhatIsDueAndNothingElse) {
  with_row([](const auto& row, int slot) {
    for (const auto& batch : batches(row)) {
      const Dues due = dues(row, batch);
      expect_reports(row, slot, batch, due);
      ReportLog log;
      run_strided(row, slot, batch);
      size_t reported = 0;
      for (const ErrorContext& report : log.reports()) {
        EXPECT_EQ(report.code, due.codes[static_cast<size_t>(report.index)]);
        ++reported;
      }
      EXPECT_EQ(reported, due.codes.size() - static_cast<size_t>(std::ranges::count(
                                                 due.codes, int{QOR_ERROR_NONE})));
    }
  });
}

// ---- Flags ----------------------------------------------------------------------------------

template <class Run>
int flags_of(Run run) {
  std::feclearexcept(FE_ALL_EXCEPT);
  run();
  return std::fetestexcept(kFlags);
}

// The shortest run of elements that raises one of the flags, as far as dropping some from either
// end tells: often a single one.
template <class T, class Runner>
std::string culprits(const Row<T>& row, int slot, const Batch<T>& batch, int flags, Runner runner) {
  size_t first = 0, last = static_cast<size_t>(count_of(row, batch));
  const auto raises = [&](size_t from, size_t to) {
    const Batch<T> part{piece(batch.in, row.shape.input_parts, from, to - from), batch.scalar};
    return (flags_of([&] { runner(row, slot, part); }) & flags) != 0;
  };
  for (size_t step = last; step > 0; step /= 2) {
    while (first + step < last && raises(first + step, last)) first += step;
    while (first + step < last && raises(first, last - step)) last -= step;
  }
  std::string text = std::to_string(last - first) + " from " + std::to_string(first);
  for (size_t i = first; i < std::min(last, first + 8); ++i) {
    text += ", " + text_of(row, numbers_of(row, batch, static_cast<int>(i)));
  }
  return text;
}

// Elements that are due none of the flags, as one vector and in pieces of all lengths, whose tails
// leave lanes unused.
template <class T>
void expect_calm(const Row<T>& row, int slot, const Batch<T>& batch, int flags) {
  constexpr size_t kLongest = 67;
  if (batch.in[0].empty()) return;
  for (const bool strided : {false, true}) {
    const auto runner = strided ? run_strided<T> : run<T>;
    const int raised = flags_of([&] { runner(row, slot, batch); }) & flags;
    ASSERT_EQ(raised, 0) << (strided ? "strided, " : "")
                         << culprits(row, slot, batch, flags, runner);
    const auto n = static_cast<size_t>(count_of(row, batch));
    for (size_t length = 1, first = 0; length <= std::min(n, kLongest); ++length) {
      const Batch<T> part{piece(batch.in, row.shape.input_parts, first, length), batch.scalar};
      const int in_part = flags_of([&] { runner(row, slot, part); }) & flags;
      ASSERT_EQ(in_part, 0) << (strided ? "strided, " : "") << length << " elements from " << first
                            << ": " << culprits(row, slot, part, flags, runner);
      first = (first + length) % std::max<size_t>(n - length, 1);
    }
  }
}

// Underflow is looked at where results are exact or correctly rounded, and in logarithms, which
// have no reason for it.
TEST_P(EngineSignals, RaisesNoFlagThatIsNotDue) {
  with_row([](const auto& row, int slot) {
    const bool exact = row.bound(HA) == 0 || row.base.starts_with("L");
    const int flags = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | (exact ? FE_UNDERFLOW : 0);
    for (const auto& batch : batches(row)) {
      const Dues due = dues(row, batch);
      std::vector<size_t> calm;
      for (size_t i = 0; i < due.flags.size(); ++i) {
        if (due.codes[i] == QOR_ERROR_NONE && (due.flags[i] & flags) == 0) calm.push_back(i);
      }
      expect_calm(row, slot, chosen(row, batch, calm), flags);
      // Kinds that stand apart in the batch, side by side.
      std::shuffle(calm.begin(), calm.end(), std::mt19937_64(29));
      expect_calm(row, slot, chosen(row, batch, calm), flags);
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineSignals);

}  // namespace
}  // namespace qor::test
