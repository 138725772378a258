// Tasks and their editors: statuses in order, and which field each code and argument reaches.

#include <cstring>
#include <fstream>
#include <sstream>

#include "tests/statistics/api.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

template <class Real>
class Tasks : public ::testing::Test {};
TYPED_TEST_SUITE(Tasks, Precisions);

TYPED_TEST(Tasks, AreMadeInOrderOfChecks) {
  using Real = TypeParam;
  using A = Api<Real>;
  const int32_t p = 2, n = 3, zero = 0, storage = QOR_SS_BY_VARIABLE,
                both = QOR_SS_BY_VARIABLE | QOR_SS_BY_OBSERVATION;
  const Real x[6] = {};
  SsTask* task = nullptr;
  const auto make = [&](const void* ps, const void* ns, const void* storages, const Real* xs) {
    return A::new_task(&task, ps, ns, storages, xs, nullptr, nullptr, 0);
  };
  EXPECT_EQ(A::new_task(nullptr, nullptr, nullptr, nullptr, x, nullptr, nullptr, 0),
            QOR_SS_NULL_TASK);
  EXPECT_EQ(make(nullptr, nullptr, nullptr, x), QOR_SS_BAD_P);
  EXPECT_EQ(make(&zero, nullptr, nullptr, x), QOR_SS_BAD_P);
  EXPECT_EQ(make(&p, nullptr, nullptr, x), QOR_SS_NULL_STORAGE);
  EXPECT_EQ(make(&p, nullptr, &both, x), QOR_SS_BAD_STORAGE);
  EXPECT_EQ(make(&p, nullptr, &storage, x), QOR_SS_BAD_N);
  EXPECT_EQ(make(&p, &zero, &storage, x), QOR_SS_BAD_N);
  {
    const FailingAllocations none_left(0);
    EXPECT_EQ(make(&p, &n, &storage, x), QOR_SS_NO_MEMORY);
  }
  EXPECT_EQ(task, nullptr);
  ASSERT_EQ(make(&p, &n, &storage, x), QOR_SS_OK);
  EXPECT_EQ(task->kind, 2);
  EXPECT_EQ(task->precision, sizeof(Real) == sizeof(double) ? 1 : 0);
  EXPECT_EQ(__ostSSDeleteTask(&task), QOR_SS_OK);
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(__ostSSDeleteTask(nullptr), QOR_SS_NULL_TASK);
  // Without data nothing but p is looked at.
  ASSERT_EQ(make(&p, nullptr, &both, nullptr), QOR_SS_OK);
  EXPECT_EQ(A::basic(task, QOR_SS_ESTIMATE_MEAN, QOR_SS_METHOD_FAST, nullptr), QOR_SS_NULL_MEAN);
  __ostSSDeleteTask(&task);
}

// With the flag, the high half of each integer counts.
TYPED_TEST(Tasks, WideIntegers) {
  using Real = TypeParam;
  const int64_t p = int64_t{1} << 32, one = 1, negative = -1, storage = QOR_SS_BY_VARIABLE;
  const Real x[1] = {};
  SsTask* task = nullptr;
  const auto make = [&](const void* ps, const void* ns, int32_t wide) {
    return Api<Real>::new_task(&task, ps, ns, &storage, x, nullptr, nullptr, wide);
  };
  EXPECT_EQ(make(&p, &one, 0), QOR_SS_BAD_P);
  EXPECT_EQ(make(&one, &negative, 1), QOR_SS_BAD_N);
  ASSERT_EQ(make(&p, &one, 1), QOR_SS_OK);
  __ostSSDeleteTask(&task);
}

struct ParameterLine {
  int64_t code;
  bool integer;
  size_t place;
  int status;
};

std::vector<ParameterLine> parameter_lines() {
  std::ifstream file(QOR_SOURCE "/tests/statistics/parameters.txt");
  std::vector<ParameterLine> lines;
  std::string text, kind;
  while (std::getline(file, text)) {
    if (text.empty() || text[0] == '#') continue;
    ParameterLine line{};
    std::istringstream(text) >> line.code >> kind >> line.place >> line.status;
    line.integer = kind == "integer";
    lines.push_back(line);
  }
  return lines;
}

// The pointer at a place of the record, by the order of its fields: words alone up to the distance
// routine's, which come after place 81.
void* field_at(const SsTask& task, size_t place) {
  if (place == 92) return task.sorted_output;
  if (place == 93) return const_cast<void*>(task.sorted_output_storage);
  void* field;
  const char* from = reinterpret_cast<const char*>(&task.p) + (place - 4) * sizeof(void*);
  std::memcpy(&field, from, sizeof field);
  return field;
}

TYPED_TEST(Tasks, EditorsByCode) {
  using Real = TypeParam;
  using A = Api<Real>;
  const auto lines = parameter_lines();
  ASSERT_EQ(lines.size(), 79u);
  Task<Real> task(1, 1, QOR_SS_BY_VARIABLE, nullptr);
  Real value = 1;
  for (const ParameterLine& line : lines) {
    SCOPED_TRACE(line.code);
    const auto own = [&](const Real* v) {
      return line.integer ? __ostiSSEditTask(task, line.code, v) : A::edit(task, line.code, v);
    };
    const auto other = [&](const Real* v) {
      return line.integer ? A::edit(task, line.code, v) : __ostiSSEditTask(task, line.code, v);
    };
    void* before = field_at(task.record(), line.place);
    EXPECT_EQ(own(nullptr), line.status);
    EXPECT_EQ(other(nullptr), QOR_SS_BAD_CODE);
    EXPECT_EQ(other(&value), QOR_SS_BAD_CODE);
    EXPECT_EQ(field_at(task.record(), line.place), before);
    EXPECT_EQ(own(&value), QOR_SS_OK);
    EXPECT_EQ(field_at(task.record(), line.place), &value);
  }
  for (const int64_t code : {int64_t{-1}, int64_t{0}, int64_t{80}, int64_t{1} << 32}) {
    EXPECT_EQ(__ostiSSEditTask(task, code, &value), QOR_SS_BAD_CODE);
    EXPECT_EQ(A::edit(task, code, nullptr), QOR_SS_BAD_CODE);
  }
  EXPECT_EQ(__ostiSSEditTask(nullptr, 99, nullptr), QOR_SS_NULL_TASK);
  EXPECT_EQ(A::edit(nullptr, 99, nullptr), QOR_SS_NULL_TASK);
}

// Calls a family's editor with the pointers in order.
template <class... Arguments, size_t... index>
int call(int32_t (*editor)(SsTask*, Arguments...), SsTask* task, char* const* values,
         std::index_sequence<index...>) {
  return editor(task, static_cast<Arguments>(static_cast<void*>(values[index]))...);
}

// The arguments reach the fields of the codes, null ones none.
template <class... Arguments>
void expect_family(int32_t (*editor)(SsTask*, Arguments...), const std::vector<size_t>& codes) {
  static const auto lines = parameter_lines();
  constexpr size_t count = sizeof...(Arguments);
  ASSERT_EQ(codes.size(), count);
  char memory[count];
  char *values[count], *nulls[count] = {};
  for (size_t i = 0; i < count; ++i) values[i] = memory + i;
  Task<double> task(1, 1, QOR_SS_BY_VARIABLE, nullptr);
  constexpr auto indices = std::index_sequence_for<Arguments...>();
  EXPECT_EQ(call(editor, nullptr, values, indices), QOR_SS_NULL_TASK);
  EXPECT_EQ(call(editor, task, values, indices), QOR_SS_OK);
  EXPECT_EQ(call(editor, task, nulls, indices), QOR_SS_OK);
  for (const ParameterLine& line : lines) {
    const auto at = std::find(codes.begin(), codes.end(), static_cast<size_t>(line.code));
    if (at == codes.end()) continue;
    EXPECT_EQ(field_at(task.record(), line.place), values[at - codes.begin()]) << line.code;
  }
}

TEST(TaskEditors, ByFamily) {
  const auto both = [](auto d, auto s, const std::vector<size_t>& codes) {
    expect_family(d, codes);
    expect_family(s, codes);
  };
  both(__ostdSSEditMoments, __ostsSSEditMoments, {7, 8, 9, 10, 11, 12, 13});
  both(__ostdSSEditSums, __ostsSSEditSums, {67, 68, 69, 70, 71, 72, 73});
  both(__ostdSSEditCovCor, __ostsSSEditCovCor, {7, 19, 20, 21, 22});
  both(__ostdSSEditCP, __ostsSSEditCP, {7, 67, 74, 75});
  both(__ostdSSEditPartialCovCor, __ostsSSEditPartialCovCor, {45, 19, 20, 21, 22, 46, 47, 48, 49});
  both(__ostdSSEditQuantiles, __ostsSSEditQuantiles, {24, 25, 26, 27, 44});
  both(__ostdSSEditStreamQuantiles, __ostsSSEditStreamQuantiles, {64, 65, 66, 62, 63});
  both(__ostdSSEditPooledCovariance, __ostsSSEditPooledCovariance, {28, 30, 31, 32, 33, 35});
  both(__ostdSSEditRCov, __ostsSSEditRCov, {36, 37, 38, 39, 40});
  both(__ostdSSEditOutDetect, __ostsSSEditOutDetect, {41, 42, 43});
  both(__ostdSSEditMissingVals, __ostsSSEditMissingVals, {50, 51, 52, 53, 58, 59, 54, 55, 56, 57});
  both(__ostdSSEditMtxParametrz, __ostsSSEditMtxParametrz, {21, 22, 60, 61});
}

}  // namespace
}  // namespace qor::test
