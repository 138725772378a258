// What a caller sees of an error: status, callback, errno, messages, floating-point condition.

#include <gtest/gtest.h>

#include <cerrno>
#include <cfenv>
#include <cmath>
#include <csetjmp>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "qor/vector_math.h"
#include "tests/support/services_interposer.h"

namespace {

// The x87 status word's exception flags, and its control word.
unsigned x87_flags() {
  uint16_t status;
  asm volatile("fnstsw %0" : "=m"(status));
  return status & 0x3Fu;
}
uint16_t x87_control() {
  uint16_t control;
  asm volatile("fnstcw %0" : "=m"(control));
  return control;
}

std::vector<ErrorContext> reports;
int32_t keep_report(ErrorContext* context) {
  reports.push_back(*context);
  return 0;
}

class Errors : public ::testing::Test {
 protected:
  void SetUp() override {
    _arkSetMode(QOR_MODE_ERRORS_DEFAULT | QOR_MODE_HA);
    _arkClearErrStatus();
    _arkSetInterfInputVectorPointer(nullptr);
    reports.clear();
    errno = 0;
    asm volatile("fnclex");
    qor::test::take_printed_messages();
  }
  void TearDown() override {
    _arkClearErrorCallBack();
    _arkSetMode(QOR_MODE_ERRORS_DEFAULT | QOR_MODE_HA);
    _arkClearErrStatus();
    _arkSetInterfInputVectorPointer(nullptr);
    asm volatile("fninit");
  }
};

constexpr double kTooLarge = 710.0, kTooSmall = -746.0;
const double kInfinity = HUGE_VAL;

TEST_F(Errors, DefaultModeSetsStatusErrnoAndTheX87Flag) {
  const double x[3] = {1.0, kTooLarge, 2.0};
  double y[3];
  _arkdExp(3, x, y);
  EXPECT_EQ(y[1], kInfinity);
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(x87_flags(), 0x8u);
  EXPECT_EQ(x87_control() & 0x3F, 0x3F);
  EXPECT_TRUE(qor::test::take_printed_messages().empty());
  const double good = 1.0;
  _arkdExp(1, &good, y);
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);  // a good vector clears nothing
}

TEST_F(Errors, TheLastErrorOfAVectorRemains) {
  const double x[4] = {kTooLarge, kTooSmall, 1.0, kTooLarge};
  double y[4];
  _arkSetErrorCallBack(keep_report);
  _arkdExp(4, x, y);
  ASSERT_EQ(reports.size(), 3u);
  EXPECT_EQ(reports[0].index, 0);
  EXPECT_EQ(reports[1].index, 1);
  EXPECT_EQ(reports[1].code, QOR_ERROR_UNDERFLOW);
  EXPECT_EQ(reports[2].index, 3);
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
}

TEST_F(Errors, IgnoreSetsTheStatusAndNothingElse) {
  _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  double y;
  _arkdExp(1, &kTooLarge, &y);
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(x87_flags(), 0u);
}

TEST_F(Errors, NoErrAloneLeavesNoTraceAndGivesTheSameValues) {
  const double x[6] = {kTooLarge, kTooSmall, 709.5, -740.0, 1.0, -708.9};
  double expected[6], y[6];
  _arkdExp(6, x, expected);
  _arkClearErrStatus();
  errno = 0;
  _arkSetMode(QOR_MODE_ERRORS_NOERR);
  _arkdExp(6, x, y);
  EXPECT_EQ(_arkGetErrStatus(), 0);
  EXPECT_EQ(errno, 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(y[i], expected[i]) << x[i];
  // With another bit it is not the silent case.
  _arkSetMode(QOR_MODE_ERRORS_NOERR | QOR_MODE_ERRORS_ERRNO);
  _arkdExp(6, x, y);
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_UNDERFLOW);
  EXPECT_EQ(errno, ERANGE);
}

TEST_F(Errors, CallbackSeesTheElementAndMayChangeTheFirstResult) {
  _arkSetErrorCallBack([](ErrorContext* context) -> int32_t {
    reports.push_back(*context);
    context->result1 = 7.0;
    return 0;
  });
  const double x[2] = {1.0, kTooLarge};
  double y[2];
  _arkdExp(2, x, y);
  EXPECT_EQ(y[1], 7.0);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].code, QOR_ERROR_OVERFLOW);
  EXPECT_EQ(reports[0].index, 1);
  EXPECT_EQ(reports[0].arg1, kTooLarge);
  EXPECT_EQ(reports[0].arg2, kTooLarge);
  EXPECT_EQ(reports[0].result1, kInfinity);
  EXPECT_STREQ(reports[0].funcName, "vdExp");
  EXPECT_EQ(reports[0].funcNameLength, 5);
  EXPECT_EQ(errno, ERANGE);  // 0 lets the report follow

  float ys;
  const float xs = 100.0f;
  _arksExp(1, &xs, &ys);
  EXPECT_EQ(ys, 7.0f);
  EXPECT_STREQ(reports[1].funcName, "vsExp");
}

TEST_F(Errors, CallbackThatChangesOnlyTheSecondResultOfOneIsOverwritten) {
  _arkSetErrorCallBack([](ErrorContext* context) -> int32_t {
    context->result2 = 7.0;
    return 0;
  });
  double y;
  _arkdExp(1, &kTooLarge, &y);
  EXPECT_EQ(y, kInfinity);
}

TEST_F(Errors, CallbackThatEndsTheReportLeavesTheKernelsResult) {
  _arkSetErrorCallBack([](ErrorContext* context) -> int32_t {
    context->result1 = 7.0;
    return 1;
  });
  double y;
  _arkdExp(1, &kTooLarge, &y);
  EXPECT_EQ(y, kInfinity);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
}

TEST_F(Errors, InPlaceCallShowsTheResultAsInput) {
  _arkSetErrorCallBack(keep_report);
  double x[2] = {kTooLarge, 0.0};
  _arkdExp(2, x, x);
  EXPECT_EQ(reports.at(0).arg1, kInfinity);
  EXPECT_EQ(x[1], 1.0);
}

TEST_F(Errors, IndexCountsFromTheWholeVectorWhenItIsKnown) {
  _arkSetErrorCallBack(keep_report);
  double whole[20] = {}, y[20];
  whole[13] = kTooLarge;
  EXPECT_EQ(_arkSetInterfInputVectorPointer(whole), whole);
  _arkdExp(5, whole + 10, y);
  EXPECT_EQ(reports.at(0).index, 13);
  // Increments play no part in the distance.
  _arkdExpI(2, whole + 9, 4, y, -1 + 2);
  EXPECT_EQ(reports.at(1).index, 9 + 1);
  EXPECT_EQ(reports.at(1).arg1, kTooLarge);
}

TEST_F(Errors, CallbackOperationsAndTheModeBit) {
  _arkSetMode(QOR_MODE_ERRORS_ERRNO);
  EXPECT_EQ(_arkSetErrorCallBack(keep_report), nullptr);
  EXPECT_EQ(_arkGetMode() & QOR_MODE_ERRORS, 0x1200u);
  EXPECT_EQ(_arkGetErrorCallBack(), keep_report);
  EXPECT_EQ(_arkClearErrorCallBack(), keep_report);
  EXPECT_EQ(_arkGetMode() & QOR_MODE_ERRORS, 0x200u);
  // When it is the only error bit it stays, and the null keeps anything from being called.
  _arkSetMode(QOR_MODE_ERRORS_CALLBACK);
  _arkSetErrorCallBack(keep_report);
  _arkSetErrorCallBack(nullptr);
  EXPECT_EQ(_arkGetMode() & QOR_MODE_ERRORS, 0x1000u);
  double y;
  _arkdExp(1, &kTooLarge, &y);
  EXPECT_TRUE(reports.empty());
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
}

TEST_F(Errors, CallbackMayCallAKernel) {
  _arkSetErrorCallBack([](ErrorContext* context) -> int32_t {
    double x = 1.0;
    _arkdExp(1, &x, &x);
    context->result1 = x;
    return 0;
  });
  const double x[3] = {0.0, kTooLarge, 0.0};
  double y[3];
  _arkdExp(3, x, y);
  EXPECT_NEAR(y[1], 2.718281828, 1e-9);
  EXPECT_EQ(y[2], 1.0);
}

TEST_F(Errors, MessagesShowTheErrorThenTheValues) {
  _arkSetMode(QOR_MODE_ERRORS_STDERR);
  double y;
  _arkdExp(1, &kTooLarge, &y);
  const auto printed = qor::test::take_printed_messages();
  ASSERT_EQ(printed.size(), 3u);
  const int numbers[] = {752, 755, 756}, counts[] = {1, 2, 2};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(printed[i].level, 1);
    EXPECT_EQ(printed[i].number, numbers[i]);
    EXPECT_EQ(printed[i].count, counts[i]);
  }
}

sigjmp_buf after_trap;
volatile std::sig_atomic_t trapped_code;

void on_trap(int, siginfo_t* info, void*) {
  trapped_code = info->si_code;
  asm volatile("fninit");
  siglongjmp(after_trap, 1);
}

// The traps of a call under the mode, which may deliver one.
int traps_of_overflow(uint32_t mode) {
  volatile int traps = 0;
  double y = 0.0;
  _arkSetMode(mode);
  if (sigsetjmp(after_trap, 1) == 0) {
    _arkdExp(1, &kTooLarge, &y);
  } else {
    traps = 1;
  }
  return traps;
}

TEST_F(Errors, TrappedConditionDeliversAHardwareException) {
  struct sigaction action {
  }, old;
  action.sa_sigaction = on_trap;
  action.sa_flags = SA_SIGINFO;
  sigaction(SIGFPE, &action, &old);
  // A thread of its own: trap bits cannot be emptied again.
  std::thread([] {
    EXPECT_EQ(traps_of_overflow(QOR_MODE_TRAP_UNDERFLOW), 0);
    EXPECT_EQ(traps_of_overflow(QOR_MODE_TRAP_UNDERFLOW | QOR_MODE_TRAP_OVERFLOW), 1);
    EXPECT_EQ(trapped_code, FPE_FLTOVF);
    EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
  }).join();
  sigaction(SIGFPE, &old, nullptr);
}

}  // namespace
