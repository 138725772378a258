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

std::vector<int> printed_numbers() {
  std::vector<int> numbers;
  for (const auto& message : qor::test::take_printed_messages()) numbers.push_back(message.number);
  return numbers;
}

TEST_F(ErrorRoutines, ComplexElementsShowAndTakeBothParts) {
  thread_state().errCallback = [](ErrorContext* context) -> int32_t {
    reports.push_back(*context);
    context->result1 = 10.0;
    context->result1Im = 11.0;
    context->result2 = 20.0;
    context->result2Im = 21.0;
    return 0;
  };
  const qor_complex_double a[2] = {{1, 2}, {3, 4}}, b[2] = {{5, 6}, {7, 8}};
  qor_complex_double y[2] = {}, z[2] = {};
  report_error(3, 1, a, b, y, z, "vzDiv");
  const ErrorContext& seen = reports.at(0);
  EXPECT_EQ(seen.arg1, 3);
  EXPECT_EQ(seen.arg1Im, 4);
  EXPECT_EQ(seen.arg2, 7);
  EXPECT_EQ(seen.arg2Im, 8);
  EXPECT_EQ(y[1].re, 10);
  EXPECT_EQ(y[1].im, 11);
  EXPECT_EQ(z[1].re, 20);
  EXPECT_EQ(z[1].im, 21);
  EXPECT_EQ(y[0].re, 0);

  const qor_complex_float c[3] = {{1, 2}, {3, 4}, {5, 6}};
  qor_complex_float w[3] = {};
  // Results go to the same element: the first, written last, stays.
  report_error_strided(2, 1, c, 2, c, 2, w + 2, -1, w + 2, -1, "vcLnI");
  EXPECT_EQ(reports.at(1).arg1Im, 6);
  EXPECT_EQ(w[1].re, 10);
  EXPECT_EQ(w[1].im, 11);
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
  const auto index = [&]<class E>(E*, int offset) {
    auto* at = reinterpret_cast<E*>(memory + 128 + offset);
    report_error<E>(1, 2, at, at, at, at, "v");
    return reports.back().index;
  };
  EXPECT_EQ(index(static_cast<float*>(nullptr), 32), 2 + 8);
  EXPECT_EQ(index(static_cast<double*>(nullptr), 32), 2 + 4);
  EXPECT_EQ(index(static_cast<qor_complex_float*>(nullptr), 32), 2 + 4);
  EXPECT_EQ(index(static_cast<qor_complex_double*>(nullptr), 32), 2 + 2);
  EXPECT_EQ(index(static_cast<qor_complex_double*>(nullptr), -32), 2 - 2);
}

TEST_F(ErrorRoutines, BadArgumentReportsTouchNoVector) {
  thread_state().mode = QOR_MODE_ERRORS_STDERR | QOR_MODE_ERRORS_ERRNO | QOR_MODE_ERRORS_CALLBACK;
  report_error<double>(-1, 5, nullptr, nullptr, nullptr, nullptr, "vdExp");
  EXPECT_EQ(thread_state().errStatus, -1);
  EXPECT_EQ(reports.at(0).index, 5);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(printed_numbers(), std::vector<int>{748});
  report_error<float>(-2, 0, nullptr, nullptr, nullptr, nullptr, "vsExp");
  EXPECT_EQ(errno, EACCES);
  EXPECT_EQ(printed_numbers(), std::vector<int>{749});
}

TEST_F(ErrorRoutines, ErrnoAndFirstMessageByCode) {
  thread_state().errCallback = nullptr;
  thread_state().mode = QOR_MODE_ERRORS_STDERR | QOR_MODE_ERRORS_ERRNO;
  const struct {
    int code, error;
    std::vector<int> messages;
  } cases[] = {{0, 0, {}},
               {1, EDOM, {750, 755, 756}},
               {2, ERANGE, {751, 755, 756}},
               {3, ERANGE, {752, 755, 756}},
               {4, ERANGE, {753, 755, 756}},
               {17, EFAULT, {754, 755, 756}}};
  const double x = 1.5;
  for (const auto& c : cases) {
    double y = 2.5;
    errno = -1;
    report_error(c.code, 0, &x, &x, &y, &y, "vdLn");
    EXPECT_EQ(errno, c.error) << c.code;
    EXPECT_EQ(printed_numbers(), c.messages) << c.code;
  }
}

TEST_F(ErrorRoutines, MessagesByCountOfInputsAndResults) {
  thread_state().errCallback = nullptr;
  thread_state().mode = QOR_MODE_ERRORS_STDERR;
  const double a = 1, b = 2, none = 0;
  double y = 3, z = 4, zero = 0;
  report_error(1, 0, &a, &a, &y, &z, "vdSinCos");
  EXPECT_EQ(printed_numbers(), (std::vector<int>{750, 757, 758, 759}));
  report_error(1, 0, &a, &b, &y, &y, "vdPow");
  EXPECT_EQ(printed_numbers(), (std::vector<int>{750, 760, 761, 762}));
  report_error(1, 0, &a, &b, &y, &z, "vdTwo");
  EXPECT_EQ(printed_numbers(), (std::vector<int>{750, 763, 764, 765, 766}));
  // A second value of zero counts as none.
  report_error(1, 0, &a, &none, &y, &zero, "vdPow");
  EXPECT_EQ(printed_numbers(), (std::vector<int>{750, 755, 756}));
}

TEST_F(ErrorRoutines, LongNamesAreCut) {
  const std::string name(50, 'x');
  double x = 1;
  report_error(1, 0, &x, &x, &x, &x, name.c_str());
  EXPECT_EQ(reports.at(0).funcNameLength, 47);
  EXPECT_EQ(reports.at(0).funcName, std::string(47, 'x'));
}

TEST_F(ErrorRoutines, MixedSilentBitsRunTheReport) {
  thread_state().errCallback = nullptr;
  thread_state().mode = QOR_MODE_ERRORS_IGNORE | QOR_MODE_ERRORS_STDERR;
  double x = 1;
  report_error(1, 0, &x, &x, &x, &x, "vdLn");
  EXPECT_EQ(printed_numbers().size(), 3u);
  thread_state().mode = QOR_MODE_ERRORS_IGNORE | QOR_MODE_ERRORS_NOERR;
  errno = 0;
  report_error(4, 0, &x, &x, &x, &x, "vdLn");
  EXPECT_EQ(thread_state().errStatus, 4);
  EXPECT_EQ(errno, 0);
  EXPECT_TRUE(printed_numbers().empty());
}

TEST_F(ErrorRoutines, RecordLayoutIsTheCallbacksInterface) {
  EXPECT_EQ(offsetof(ErrorContext, arg1), 8u);
  EXPECT_EQ(offsetof(ErrorContext, result1), 24u);
  EXPECT_EQ(offsetof(ErrorContext, funcName), 40u);
  EXPECT_EQ(offsetof(ErrorContext, funcNameLength), 104u);
  EXPECT_EQ(offsetof(ErrorContext, arg1Im), 112u);
  EXPECT_EQ(sizeof(ErrorContext), 144u);
}

}  // namespace
