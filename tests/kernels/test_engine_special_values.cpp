// Special values: the cases of special_values.txt through every kernel of their function,
// contiguous and strided, with what is reported and which flags rise.

#include <sstream>
#include <utility>

#include "tests/kernels/engine.h"
#include "tests/support/tables.h"

namespace qor::test {
namespace {

struct Case {
  std::string place, function;
  std::vector<std::string> arguments, results;
  int code = 0, flags = 0, watched = kFlags;
  std::string reporter;
  bool flush = false;
};

Case parse(const TableLine& line) {
  std::istringstream stream(line.text.substr(0, line.text.find('#')));
  Case one;
  one.place = line.place;
  std::string word;
  stream >> one.function;
  while (stream >> word && word != "->") one.arguments.push_back(word);
  while (stream >> word && word != ":") one.results.push_back(word);
  stream >> one.code;
  const std::pair<char, int> letters[] = {
      {'i', FE_INVALID}, {'z', FE_DIVBYZERO}, {'o', FE_OVERFLOW}, {'u', FE_UNDERFLOW}};
  while (stream >> word) {
    if (word == "flush") {
      one.flush = true;
    } else if (word == "?") {
      one.watched = 0;
    } else if (std::isupper(word[0]) != 0) {
      one.reporter = word;
    } else {
      for (const auto& [letter, flag] : letters) {
        if (word.find(letter) != std::string::npos) one.flags |= flag;
      }
    }
  }
  return one;
}

std::vector<Case> read_cases() {
  std::vector<Case> cases;
  for (const TableLine& line : table_lines("kernels/special_values.txt")) {
    cases.push_back(parse(line));
  }
  return cases;
}

template <class T>
using ImageOf = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;

// The image of a number: no copy as a number can quiet a signalling NaN.
template <class T>
ImageOf<T> image_of(const std::string& word) {
  using Limits = std::numeric_limits<T>;
  const auto image = [](T x) { return std::bit_cast<ImageOf<T>>(x); };
  if (word[0] == '-') return image(T(-0.0)) | image_of<T>(word.substr(1));
  if (word == "max") return image(Limits::max());
  if (word == "min") return image(Limits::min());
  if (word == "tiny") return image(Limits::denorm_min());
  if (word == "snan") return image(Limits::infinity()) + 1;
  if constexpr (sizeof(T) == sizeof(float)) return image(std::strtof(word.c_str(), nullptr));
  return image(static_cast<T>(std::strtod(word.c_str(), nullptr)));
}

// A case among `count` elements, in every vector at the place `at`.
template <class T>
class CaseRun {
 public:
  CaseRun(const Row<T>& row, int slot, const Case& one, size_t count, size_t at)
      : row_(row), slot_(slot), case_(one), at_(at) {
    for (const std::string& word : one.arguments) {
      const ImageOf<T> image = image_of<T>(word);
      std::memcpy(&numbers_.at(given_++), &image, sizeof image);
    }
    for (size_t k = 0; k < static_cast<size_t>(row.shape.inputs); ++k) {
      batch_.in[k].assign(count, T(1));
      std::memcpy(&batch_.in[k][at], &numbers_[k], sizeof(T));
    }
    std::copy_n(numbers_.begin() + row.shape.inputs, row.shape.scalars, batch_.scalar.begin());
  }

  void expect(bool strided) {
    ASSERT_EQ(static_cast<int>(given_), row_.shape.numbers_in());
    ASSERT_EQ(static_cast<int>(case_.results.size()), row_.shape.outputs);
    ReportLog log(case_.flush ? QOR_MODE_FLUSH_DENORMALS : 0);
    std::feclearexcept(FE_ALL_EXCEPT);
    const Results<T> results = (strided ? run_strided<T> : run<T>)(row_, slot_, batch_);
    EXPECT_EQ(std::fetestexcept(case_.watched), case_.flags);
    for (size_t k = 0; k < case_.results.size(); ++k) {
      expect_result(static_cast<int>(k), results[k][at_]);
    }
    const std::string base = case_.reporter.empty() ? std::string(row_.base) : case_.reporter;
    EXPECT_EQ(log.reports().size(), case_.code == 0 ? 0u : 1u);
    for (const ErrorContext& report : log.reports()) {
      EXPECT_EQ(report.code, case_.code);
      EXPECT_EQ(report.index, static_cast<int32_t>(at_));
      EXPECT_EQ(report.funcName, reported_name(row_.letter + base, strided));
    }
    EXPECT_EQ(_arkGetErrStatus(), case_.code);
  }

 private:
  void expect_result(int k, const T& computed) {
    const std::string& word = case_.results[static_cast<size_t>(k)];
    ImageOf<T> image;
    std::memcpy(&image, &computed, sizeof image);
    if (word == "~") {
      Value<T> value;
      value.compute(*row_.reference, numbers_.data(), row_.shape.numbers_in());
      EXPECT_LE(value.error(k, computed), std::max(0.5, row_.bound(slot_))) << computed;
    } else if (word == "nan") {
      constexpr ImageOf<T> kQuiet = ImageOf<T>{1} << (format_of<T>.digits - 2);
      EXPECT_TRUE(std::isnan(computed) && (image & kQuiet) != 0) << computed;
    } else {
      EXPECT_EQ(image, image_of<T>(word)) << computed << " for " << word;
    }
  }

  const Row<T>& row_;
  int slot_;
  const Case& case_;
  size_t at_, given_ = 0;
  Numbers<T> numbers_{};
  Batch<T> batch_;
};

class EngineSpecialValues : public KernelTest {};

// Inside whole registers of any level, and in a tail.
TEST_P(EngineSpecialValues, AreTheirCases) {
  static const std::vector<Case> cases = read_cases();
  with_row([](const auto& row, int slot) {
    for (const Case& one : cases) {
      const bool both = one.function[0] == '*';
      if (both ? one.function.substr(1) != row.base : one.function != row.name()) continue;
      for (const bool strided : {false, true}) {
        SCOPED_TRACE(one.place + (strided ? " strided" : ""));
        CaseRun(row, slot, one, 35, 17).expect(strided);
        CaseRun(row, slot, one, 3, 1).expect(strided);
      }
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineSpecialValues);

}  // namespace
}  // namespace qor::test
