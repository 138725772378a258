// Values: against the reference at hard and random arguments and at the worst that were ever found,
// within what was measured.

#include <cstdlib>

#include "reference/worst_cases.h"
#include "tests/kernels/exact_arguments.h"

namespace qor::test {
namespace {

class EngineAccuracy : public KernelTest {};

// With a bound of 0 the results are the correctly rounded ones. Stops at the first element outside
// the bound: it tells enough.
template <class T>
void expect_accurate(const Row<T>& row, int slot, const Batch<T>& batch, double bound) {
  if (batch.in[0].empty()) return;
  const Results<T> results = run(row, slot, batch);
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
    }
  }
  const Results<T> strided = run_strided(row, slot, batch);
  for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
    EXPECT_TRUE(same_bits(strided[k].data(), results[k])) << "strided";
  }
}

// The lines about a function.
template <class T>
std::vector<WorstCase> worst_cases(const Row<T>& row) {
  static const std::vector<WorstCase> all =
      read_worst_cases(QOR_SOURCE "/reference/worst_cases.txt");
  std::vector<WorstCase> cases;
  for (const WorstCase& line : all) {
    if (line.function == row.name()) cases.push_back(line);
  }
  return cases;
}

// The worst error measured for a kernel at the level that the tests run at, at any level when they
// are not told, and 0.02 ulp; what is promised where no line holds for this kernel.
template <class T>
double allowed_error(const Row<T>& row, int slot) {
  constexpr double kSlack = 0.02;  // for arguments that a search did not meet
  const double promised = row.bound(slot);
  const char* const level = std::getenv("QOR_TEST_LEVEL");
  double allowed = 0;
  for (const WorstCase& line : worst_cases(row)) {
    if (line.kernel != kernel_key(row, slot)) continue;
    if (level != nullptr && line.level != level) continue;
    EXPECT_LT(line.ulp, promised) << "measured at " << line.level << ", above what is promised";
    allowed = std::max(
        allowed, line.found == Found::earlier ? promised : std::min(promised, line.ulp + kSlack));
  }
  EXPECT_GT(allowed, 0) << "not in worst_cases.txt: accuracy --only " << row.name();
  return allowed;
}

// The arguments that are the worst for some kernel of the function, each with its scalars.
template <class T>
std::vector<Batch<T>> worst_arguments(const Row<T>& row) {
  std::vector<Batch<T>> batches;
  for (const WorstCase& line : worst_cases(row)) {
    if (line.at.empty()) continue;
    Batch<T> batch;
    const auto inputs = static_cast<size_t>(row.shape.inputs);
    for (size_t k = 0; k < line.at.size(); ++k) {
      const T number = static_cast<T>(line.at[k]);
      k < inputs ? batch.in[k].push_back(number) : void(batch.scalar[k - inputs] = number);
    }
    batches.push_back(batch);
  }
  return batches;
}

TEST_P(EngineAccuracy, StaysBelowItsBound) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    const double bound = row.bound(slot) == 0 ? 0 : allowed_error(row, slot);
    for (const Batch<T>& batch : worst_arguments(row)) expect_accurate(row, slot, batch, bound);
    Arguments<T> arguments(row, 2);
    expect_accurate(row, slot, arguments.hard(), bound);
    expect_accurate(row, slot, edge_arguments(row), bound);
    for (int i = 0; i < 16; ++i) expect_accurate(row, slot, arguments.random(512), bound);
    if (row.kernels[slot] == row.kernels[HA]) {
      expect_accurate(row, slot, arguments_with_exact_results<T>(row.base), 0);
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineAccuracy);

}  // namespace
}  // namespace qor::test
