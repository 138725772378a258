// Tasks and their editors: statuses in order, and which field each code and argument reaches.

#include "tests/statistics/api.h"
#include "tests/statistics/parameters.h"

namespace qor::test {
namespace {

template <class Real>
class Tasks : public ::testing::Test {};
TYPED_TEST_SUITE(Tasks, Precisions);

TYPED_TEST(Tasks, AreMadeAndEnd) {
  const int64_t p = int64_t{1} << 32, one = 1, negative = -1, storage = QOR_SS_BY_VARIABLE;
  const TypeParam x[1] = {};
  SsTask* task = nullptr;
  const auto make = [&](const void* ps, const void* ns, int32_t wide) {
    return Api<TypeParam>::new_task(&task, ps, ns, &storage, x, nullptr, nullptr, wide);
  };
  {
    const FailingAllocations none_left(0);
    EXPECT_EQ(make(&one, &one, 0), QOR_SS_NO_MEMORY);
  }
  // With the flag, the high half of each integer counts.
  EXPECT_EQ(make(&p, &one, 0), QOR_SS_BAD_P);
  EXPECT_EQ(make(&one, &negative, 1), QOR_SS_BAD_N);
  EXPECT_EQ(task, nullptr);
  ASSERT_EQ(make(&p, &one, 1), QOR_SS_OK);
  EXPECT_EQ(task->kind, 2);
  EXPECT_EQ(task->precision, sizeof(TypeParam) == sizeof(double) ? 1 : 0);
  EXPECT_EQ(__ostSSDeleteTask(&task), QOR_SS_OK);
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(__ostSSDeleteTask(nullptr), QOR_SS_NULL_TASK);
}

TYPED_TEST(Tasks, EditorsByCode) {
  using Real = TypeParam;
  ASSERT_EQ(parameters().size(), 79u);
  Task<Real> task(1, 1, QOR_SS_BY_VARIABLE, nullptr);
  const Real value = 1;
  const auto edit = [](SsTask* of, bool integer, int64_t code, const Real* v) {
    return integer ? __ostiSSEditTask(of, code, v) : Api<Real>::edit(of, code, v);
  };
  for (const Parameter& parameter : parameters()) {
    SCOPED_TRACE(parameter.name);
    const bool integer = parameter.kind == "integer";
    const void*& field = field_of(task.record(), parameter);
    const void* before = field;
    EXPECT_EQ(edit(task, integer, parameter.code, nullptr), parameter.null_status);
    EXPECT_EQ(edit(task, !integer, parameter.code, nullptr), QOR_SS_BAD_CODE);
    EXPECT_EQ(edit(task, !integer, parameter.code, &value), QOR_SS_BAD_CODE);
    EXPECT_EQ(field, before);
    EXPECT_EQ(edit(task, integer, parameter.code, &value), QOR_SS_OK);
    EXPECT_EQ(field, &value);
  }
  for (const bool integer : {false, true}) {
    for (const int64_t code : {int64_t{-1}, int64_t{0}, int64_t{80}, int64_t{1} << 32}) {
      EXPECT_EQ(edit(task, integer, code, nullptr), QOR_SS_BAD_CODE);
    }
    EXPECT_EQ(edit(nullptr, integer, 99, nullptr), QOR_SS_NULL_TASK);
  }
}

// The arguments of a family's editors, here as codes, reach the fields, null ones none.
template <class... Arguments>
void expect_family(int32_t (*editor)(SsTask*, Arguments...), const std::vector<size_t>& codes) {
  ASSERT_EQ(codes.size(), sizeof...(Arguments));
  char values[sizeof...(Arguments)];
  Task<double> task(1, 1, QOR_SS_BY_VARIABLE, nullptr);
  const auto call = [&]<size_t... i>(SsTask * of, bool given, std::index_sequence<i...>) {
    return editor(of, static_cast<Arguments>(static_cast<void*>(given ? values + i : nullptr))...);
  };
  constexpr auto all = std::index_sequence_for<Arguments...>();
  EXPECT_EQ(call(nullptr, true, all), QOR_SS_NULL_TASK);
  EXPECT_EQ(call(task, true, all), QOR_SS_OK);
  EXPECT_EQ(call(task, false, all), QOR_SS_OK);
  for (size_t i = 0; i < codes.size(); ++i) {
    EXPECT_EQ(field_of(task.record(), parameters()[codes[i] - 1]), values + i) << codes[i];
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
