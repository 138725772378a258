// What a caller sees of an error: status, callback, errno, floating-point condition.

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <csignal>
#include <thread>
#include <vector>

#include "qor/vector_math.h"
#include "tests/support/services_interposer.h"

namespace {

// The x87 status word's flags of what is reported, and the control word's masks.
unsigned x87_flags() {
  uint16_t status;
  asm volatile("fnstsw %0" : "=m"(status));
  return status & 0x1Du;
}
unsigned x87_masks() {
  uint16_t control;
  asm volatile("fnstcw %0" : "=m"(control));
  return control & 0x3Fu;
}

std::vector<ErrorContext> reports;
int32_t keep_report(ErrorContext* context) {
  reports.push_back(*context);
  return 0;
}

class Errors : public ::testing::Test {
 protected:
  static void reset() {
    _arkClearErrorCallBack();
    _arkSetMode(QOR_MODE_ERRORS_DEFAULT | QOR_MODE_HA);
    _arkClearErrStatus();
    _arkSetInterfInputVectorPointer(nullptr);
    reports.clear();
    qor::test::take_printed_messages();
    errno = 0;
    asm volatile("fninit");
  }
  void SetUp() override { reset(); }
  void TearDown() override { reset(); }
};

constexpr double kTooLarge = 710.0, kTooSmall = -746.0;
const double kInfinity = HUGE_VAL;

std::vector<double> exp_of(const std::vector<double>& x) {
  std::vector<double> y(x.size());
  _arkdExp(static_cast<int32_t>(x.size()), x.data(), y.data());
  return y;
}

TEST_F(Errors, TheModeDecidesWhatFollows) {
  const struct {
    uint32_t errors;
    int32_t status;
    int error;
    unsigned flags;
  } cases[] = {
      {QOR_MODE_ERRORS_DEFAULT, QOR_ERROR_UNDERFLOW, ERANGE, 0x18},
      {QOR_MODE_ERRORS_ERRNO, QOR_ERROR_UNDERFLOW, ERANGE, 0},
      {QOR_MODE_ERRORS_EXCEPT, QOR_ERROR_UNDERFLOW, 0, 0x18},
      {QOR_MODE_ERRORS_STDERR, QOR_ERROR_UNDERFLOW, 0, 0},
      {QOR_MODE_ERRORS_STDERR | QOR_MODE_ERRORS_ERRNO, QOR_ERROR_UNDERFLOW, ERANGE, 0},
      {QOR_MODE_ERRORS_CALLBACK, QOR_ERROR_UNDERFLOW, 0, 0},
      {QOR_MODE_ERRORS_IGNORE, QOR_ERROR_UNDERFLOW, 0, 0},
      {QOR_MODE_ERRORS_IGNORE | QOR_MODE_ERRORS_ERRNO, QOR_ERROR_UNDERFLOW, ERANGE, 0},
      {QOR_MODE_ERRORS_NOERR, 0, 0, 0},
      // With another bit it is not the silent case.
      {QOR_MODE_ERRORS_NOERR | QOR_MODE_ERRORS_ERRNO, QOR_ERROR_UNDERFLOW, ERANGE, 0},
      {QOR_MODE_ERRORS_NOERR | QOR_MODE_ERRORS_IGNORE, QOR_ERROR_UNDERFLOW, 0, 0},
  };
  const std::vector<double> x = {kTooLarge, kTooSmall, 709.5, -740.0, 1.0, -708.9};
  const std::vector<double> expected = exp_of(x);
  EXPECT_EQ(expected[0], kInfinity);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.errors);
    reset();
    _arkSetMode(c.errors);
    EXPECT_EQ(exp_of(x), expected);
    exp_of({1.0});  // a good vector clears nothing
    EXPECT_EQ(_arkGetErrStatus(), c.status);
    EXPECT_EQ(errno, c.error);
    EXPECT_EQ(x87_flags(), c.flags);
    EXPECT_EQ(x87_masks(), 0x3Fu);
    const bool prints = (c.errors & QOR_MODE_ERRORS_STDERR) != 0;
    EXPECT_EQ(qor::test::take_printed_messages().empty(), !prints);
  }
}

TEST_F(Errors, TheFirstUseOfAThreadKeepsItsErrno) {
  std::thread([] {
    errno = EINTR;
    exp_of({1.0});
    EXPECT_EQ(errno, EINTR);
  }).join();
}

TEST_F(Errors, CallbackSeesTheElementsAndTheLastErrorRemains) {
  _arkSetErrorCallBack(keep_report);
  exp_of({1.0, kTooLarge, kTooSmall, 1.0, kTooLarge});
  EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
  ASSERT_EQ(reports.size(), 3u);
  EXPECT_EQ(reports[0].code, QOR_ERROR_OVERFLOW);
  EXPECT_EQ(reports[0].index, 1);
  EXPECT_EQ(reports[0].arg1, kTooLarge);
  EXPECT_EQ(reports[0].arg2, kTooLarge);
  EXPECT_EQ(reports[0].result1, kInfinity);
  EXPECT_STREQ(reports[0].funcName, "vdExp");
  EXPECT_EQ(reports[0].funcNameLength, 5);
  EXPECT_EQ(reports[1].code, QOR_ERROR_UNDERFLOW);
  EXPECT_EQ(reports[1].index, 2);
  EXPECT_EQ(reports[2].index, 4);
}

// What a callback sets and returns.
struct Change {
  double result1, result2;
  int32_t answer;
} change;

TEST_F(Errors, CallbackMayCallAKernelAndChangeTheFirstResult) {
  const struct {
    Change change;
    double result;
    int error;
  } cases[] = {
      {{7.0, kInfinity, 0}, 7.0, ERANGE},  // 0 lets the report follow
      {{kInfinity, 7.0, 0}, kInfinity, ERANGE},
      {{7.0, 7.0, 1}, kInfinity, 0},
  };
  for (const auto& c : cases) {
    reset();
    change = c.change;
    _arkSetErrorCallBack([](ErrorContext* context) {
      EXPECT_EQ(exp_of({0.0})[0], 1.0);
      context->result1 = change.result1;
      context->result2 = change.result2;
      return change.answer;
    });
    EXPECT_EQ(exp_of({0.0, kTooLarge, 0.0}), (std::vector<double>{1.0, c.result, 1.0}));
    EXPECT_EQ(errno, c.error);
    EXPECT_EQ(_arkGetErrStatus(), QOR_ERROR_OVERFLOW);
    float ys;
    const float xs = 100.0f;
    _arksExp(1, &xs, &ys);
    EXPECT_EQ(static_cast<double>(ys), c.result);
  }
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
  _arkdExpI(2, whole + 9, 4, y, 1);
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
  // When it is the only error bit it stays.
  _arkSetMode(QOR_MODE_ERRORS_CALLBACK);
  _arkSetErrorCallBack(nullptr);
  EXPECT_EQ(_arkGetMode() & QOR_MODE_ERRORS, 0x1000u);
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
  double y = 0.0;
  _arkSetMode(mode);
  if (sigsetjmp(after_trap, 1) != 0) return 1;
  _arkdExp(1, &kTooLarge, &y);
  return 0;
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
