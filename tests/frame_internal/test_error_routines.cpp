// The error routines of all element types, with the codes that no real kernel raises. The frame's
// sources are built into this program.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cerrno>
#include <string>
#include <vector>

#include "frame/error.h"
#include "frame/mode.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::frame;

std::vector<ErrorContext> reports;
int32_t keep(ErrorContext* context) {
  reports.push_back(*context);
  return 0;
}

class ErrorRoutines : public ::testing::Test {
 protected:
  void SetUp() override {
    thread_state().mode = QOR_MODE_DEFAULT;
    thread_state().errStatus = 0;
    thread_state().errCallback = keep;
    thread_state().interfInputVector = nullptr;
    reports.clear();
    qor::test::take_printed_messages();
  }
};

using Parts = std::vector<double>;
template <class Complex>
Parts parts_of(const Complex& z) {
  return {static_cast<double>(z.re), static_cast<double>(z.im)};
}

Parts arguments_of(const ErrorContext& c) { return {c.arg1, c.arg1Im, c.arg2, c.arg2Im}; }

TEST_F(ErrorRoutines, ComplexElementsShowAndTakeBothParts) {
  thread_state().errCallback = [](ErrorContext* context) -> int32_t {
    keep(context);
    context->result1 = 10.0;
    context->result1Im = 11.0;
    context->result2 = 20.0;
    context->result2Im = 21.0;
    return 0;
  };
  const qor_complex_double a[2] = {{1, 2}, {3, 4}}, b[2] = {{5, 6}, {7, 8}};
  qor_complex_double y[2] = {}, z[2] = {};
  report_error(3, 1, a, b, y, z, "vzDiv");
  EXPECT_EQ(arguments_of(reports.at(0)), (Parts{3, 4, 7, 8}));
  EXPECT_EQ(parts_of(y[0]), (Parts{0, 0}));
  EXPECT_EQ(parts_of(y[1]), (Parts{10, 11}));
  EXPECT_EQ(parts_of(z[1]), (Parts{20, 21}));

  const qor_complex_float c[3] = {{1, 2}, {3, 4}, {5, 6}};
  qor_complex_float w[3] = {};
  // Results go to the same element: the first, written last, stays.
  report_error_strided(2, 1, c, 2, c, 1, w + 2, -1, w + 2, -1, "vcLnI");
  EXPECT_EQ(arguments_of(reports.at(1)), (Parts{5, 6, 3, 4}));
  EXPECT_EQ(parts_of(w[1]), (Parts{10, 11}));
  report_error_strided(2, 1, c, 1, c, 1, w, 0, w, 2, "vcLnI");
  EXPECT_EQ(parts_of(w[0]), (Parts{10, 11}));
  EXPECT_EQ(parts_of(w[2]), (Parts{20, 21}));
}

TEST_F(ErrorRoutines, StridedPositionsAreComputedIn64Bits) {
  if (sizeof(void*) < 8) GTEST_SKIP() << "no vector is that long here";
  constexpr int32_t index = 1 << 16, increment = 1 << 16;
  constexpr size_t bytes = (size_t{index} * increment + 1024) * sizeof(float);
  void* line = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(line, MAP_FAILED);
  auto* x = static_cast<float*>(line);
  x[size_t{index} * increment] = 2.5f;
  report_error_strided(4, index, x, increment, x, increment, x, increment, x, increment, "vsPow");
  EXPECT_EQ(reports.at(0).arg1, 2.5);
  munmap(line, bytes);
}

TEST_F(ErrorRoutines, WholeVectorDistanceByElementSize) {
  alignas(16) char memory[256] = {};
  thread_state().interfInputVector = memory + 128;
  const auto index = [&]<class E>(E, int offset) {
    auto* at = reinterpret_cast<E*>(memory + 128 + offset);
    report_error<E>(1, 2, at, at, at, at, "v");
    return reports.back().index;
  };
  EXPECT_EQ(index(float{}, 32), 2 + 8);
  EXPECT_EQ(index(double{}, 32), 2 + 4);
  EXPECT_EQ(index(qor_complex_float{}, 32), 2 + 4);
  EXPECT_EQ(index(qor_complex_double{}, 32), 2 + 2);
  EXPECT_EQ(index(qor_complex_double{}, -32), 2 - 2);
}

TEST_F(ErrorRoutines, ErrnoAndMessagesByCodeAndValuesAndLongNamesAreCut) {
  const struct {
    int code, error;
    double a, b, y, z;
    std::vector<int> messages;
  } cases[] = {
      {0, 0, 1, 1, 2, 2, {}},
      {1, EDOM, 1, 1, 2, 2, {750, 755, 756}},
      {2, ERANGE, 1, 1, 2, 2, {751, 755, 756}},
      {3, ERANGE, 1, 1, 2, 2, {752, 755, 756}},
      {4, ERANGE, 1, 1, 2, 2, {753, 755, 756}},
      {17, EFAULT, 1, 1, 2, 2, {754, 755, 756}},
      {-1, EINVAL, 0, 0, 0, 0, {748}},
      {-2, EACCES, 0, 0, 0, 0, {749}},
      {1, EDOM, 1, 1, 3, 4, {750, 757, 758, 759}},
      {1, EDOM, 1, 2, 3, 3, {750, 760, 761, 762}},
      {1, EDOM, 1, 2, 3, 4, {750, 763, 764, 765, 766}},
      {1, EDOM, 1, 0, 3, 0, {750, 755, 756}},  // a second value of zero counts as none
  };
  thread_state().mode = QOR_MODE_ERRORS_STDERR | QOR_MODE_ERRORS_ERRNO | QOR_MODE_ERRORS_CALLBACK;
  const std::string name(50, 'x'), cut(47, 'x');
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    double y = c.y, z = c.z;
    errno = -1;
    if (c.code < 0) {  // an argument that is bad: no vector is touched
      report_error<double, double>(c.code, 5, nullptr, nullptr, nullptr, nullptr, name.c_str());
      EXPECT_EQ(reports.back().index, 5);
    } else {
      report_error(c.code, 0, &c.a, &c.b, &y, &z, name.c_str());
    }
    EXPECT_EQ(reports.back().funcName, cut);
    EXPECT_EQ(reports.back().funcNameLength, 47);
    EXPECT_EQ(thread_state().errStatus, c.code);
    EXPECT_EQ(errno, c.error);
    const auto printed = qor::test::take_printed_messages();
    ASSERT_EQ(printed.size(), c.messages.size());
    for (size_t i = 0; i < printed.size(); ++i) {
      EXPECT_EQ(printed[i].level, 1);
      EXPECT_EQ(printed[i].number, c.messages[i]);
      EXPECT_EQ(printed[i].count, i > 0 || c.code == -1 ? 2 : 1);
    }
  }
}

TEST_F(ErrorRoutines, RecordLayoutIsTheCallbacksInterface) {
  const size_t places[] = {offsetof(ErrorContext, arg1),     offsetof(ErrorContext, result1),
                           offsetof(ErrorContext, funcName), offsetof(ErrorContext, funcNameLength),
                           offsetof(ErrorContext, arg1Im),   sizeof(ErrorContext)};
  EXPECT_EQ(std::vector<size_t>(std::begin(places), std::end(places)),
            (std::vector<size_t>{8, 24, 40, 104, 112, 144}));
}

}  // namespace
