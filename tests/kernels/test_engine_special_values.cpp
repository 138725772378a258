// Special values: the cases of special_values.txt through every kernel of their function,
// contiguous and strided, with what is reported and which flags rise.

#include <cfenv>
#include <fstream>
#include <optional>
#include <sstream>

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

struct Case {
  int line;
  std::string function, name;
  std::vector<std::string> arguments, results;
  int code;
  bool flush;
};

std::optional<Case> parse(const std::string& text, int line) {
  std::istringstream stream(text.substr(0, text.find('#')));
  Case one{line, "", "", {}, {}, 0, false};
  if (!(stream >> one.function)) return std::nullopt;
  std::string word;
  while (stream >> word && word != "->") one.arguments.push_back(word);
  std::vector<std::string> rest;
  while (stream >> word) rest.push_back(word);
  if (!rest.empty() && rest.back() == "flush") {
    one.flush = true;
    rest.pop_back();
  }
  if (!rest.empty() && rest.back()[0] == 'v') {
    one.name = rest.back();
    rest.pop_back();
  }
  if (rest.size() < 2) throw std::runtime_error("special_values.txt, line " + std::to_string(line));
  one.code = std::stoi(rest.back());
  one.results.assign(rest.begin(), rest.end() - 1);
  return one;
}

std::vector<Case> read_cases() {
  std::vector<Case> cases;
  std::ifstream file(QOR_SOURCE "/tests/kernels/special_values.txt");
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    if (auto one = parse(line, ++number)) cases.push_back(*one);
  }
  return cases;
}

template <class T>
T value_of(const std::string& word) {
  using Limits = std::numeric_limits<T>;
  const bool negative = word[0] == '-';
  const std::string magnitude = word.substr(negative ? 1 : 0);
  T x;
  if (magnitude == "max") {
    x = Limits::max();
  } else if (magnitude == "min") {
    x = Limits::min();
  } else if (magnitude == "tiny") {
    x = Limits::denorm_min();
  } else if constexpr (sizeof(T) == sizeof(float)) {
    x = std::strtof(magnitude.c_str(), nullptr);
  } else {
    x = std::strtod(magnitude.c_str(), nullptr);
  }
  return negative ? -x : x;
}

// The flags that a result owes: invalid for a NaN out of numbers, overflow where it is reported or
// an infinity comes out of finite numbers, divide-by-zero where that is a pole.
template <class T>
int flags_due(const std::vector<T>& arguments, T result, int code) {
  const auto all = [&](auto test) { return std::all_of(arguments.begin(), arguments.end(), test); };
  if (std::isnan(result)) {
    return all([](T x) { return !std::isnan(x); }) ? FE_INVALID : 0;
  }
  if (code == QOR_ERROR_OVERFLOW) return FE_OVERFLOW;
  if (!std::isinf(result) || !all([](T x) { return std::isfinite(x); })) return 0;
  const bool pole = code == QOR_ERROR_DOMAIN || code == QOR_ERROR_SINGULARITY;
  return pole ? FE_DIVBYZERO : FE_OVERFLOW;
}

// The flags to look at. With an infinite argument a pole may raise its own or not.
template <class T>
int flags_watched(const std::vector<T>& arguments) {
  const bool infinite =
      std::any_of(arguments.begin(), arguments.end(), [](T x) { return std::isinf(x); });
  return FE_INVALID | FE_OVERFLOW | (infinite ? 0 : FE_DIVBYZERO);
}

class EngineSpecialValues : public KernelTest {};

template <class T>
void expect_case(const Row<T>& row, int slot, const Case& one, bool strided) {
  SCOPED_TRACE("special_values.txt:" + std::to_string(one.line) + (strided ? " strided" : ""));
  std::vector<T> numbers;
  for (const std::string& word : one.arguments) numbers.push_back(value_of<T>(word));
  ASSERT_EQ(static_cast<int>(numbers.size()), row.shape.numbers_in());
  // The case stands at element 1 of 3, in every vector.
  constexpr size_t kAt = 1, kCount = 3;
  Batch<T> batch;
  for (int k = 0; k < row.shape.inputs; ++k) {
    batch.in[k].assign(kCount, T(1));
    batch.in[k][kAt] = numbers[static_cast<size_t>(k)];
  }
  std::copy(numbers.begin() + row.shape.inputs, numbers.end(), batch.scalar.begin());
  Results<T> results{std::vector<T>(2 * kCount), std::vector<T>(2 * kCount)};
  Call<T> call = call_on(row, batch);
  call.out = {results[0].data(), results[1].data()};
  if (strided) call.out_inc = {2, 2};

  ReportLog log(one.flush ? QOR_MODE_FLUSH_DENORMALS : 0);
  std::feclearexcept(FE_ALL_EXCEPT);
  (strided ? row.run_strided : row.run)(slot, call);
  const int flags = std::fetestexcept(flags_watched(numbers));  // of MXCSR or, in x87 code, of x87

  const size_t y = kAt * (strided ? 2 : 1);
  for (int k = 0; k < row.shape.outputs; ++k) {
    const T computed = results[k][y];
    if (one.results.at(static_cast<size_t>(k)) == "~") {
      Value<T> value;
      value.compute(*row.reference, numbers.data(), row.shape.numbers_in());
      EXPECT_LE(value.error(k, computed), std::max(0.5, row.bound(slot)));
    } else {
      const T expected = value_of<T>(one.results[static_cast<size_t>(k)]);
      EXPECT_TRUE(equal_results(computed, expected)) << computed << " for " << expected;
    }
  }
  EXPECT_EQ(log.reports().size(), one.code == 0 ? 0u : 1u);
  for (const ErrorContext& report : log.reports()) {
    EXPECT_EQ(report.code, one.code);
    EXPECT_EQ(report.index, static_cast<int32_t>(kAt));
    // A kernel that another one stands in for reports as that one.
    const bool own = one.name.empty();
    EXPECT_EQ(report.funcName, own ? reported_name(row.name(), strided)
                                   : reported_name(one.name.substr(1), strided));
  }
  EXPECT_EQ(flags, flags_due(numbers, results[0][y], one.code));
}

TEST_P(EngineSpecialValues, AreTheirCases) {
  static const std::vector<Case> cases = read_cases();
  ASSERT_FALSE(cases.empty());
  with_row([](const auto& row, int slot) {
    for (const Case& one : cases) {
      const bool both = one.function[0] == '*';
      if (both ? one.function.substr(1) != row.base : one.function != row.name()) continue;
      for (bool strided : {false, true}) expect_case(row, slot, one, strided);
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineSpecialValues);

}  // namespace
}  // namespace qor::test
