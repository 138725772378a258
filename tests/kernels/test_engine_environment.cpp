// The floating-point environment: what the caller had comes back, and what it had does not matter
// to the results where a kernel sets its own.

#include <algorithm>
#include <iterator>

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

// Kernels that keep the caller's rounding and denormal modes; strided ones set their own.
constexpr std::string_view kCallersModes[] = {"sAbs", "sSqr", "sAdd", "sSub",  "sMul",
                                              "dAbs", "dInv", "dDiv", "sCbrt", "sInvCbrt"};

bool keeps_callers_modes(const std::string& name, bool strided) {
  return !strided && std::count(std::begin(kCallersModes), std::end(kCallersModes), name) != 0;
}

struct ControlState {
  uint32_t mxcsr;
  uint16_t x87;
};

inline ControlState control_state() {
  ControlState state;
  asm volatile("stmxcsr %0\n\tfnstcw %1" : "=m"(state.mxcsr), "=m"(state.x87) : : "memory");
  return state;
}

// Pending x87 conditions are dropped first: loading a word that unmasks them would trap.
inline void set_control_state(const ControlState& state) {
  asm volatile("fnclex\n\tldmxcsr %0\n\tfldcw %1" : : "m"(state.mxcsr), "m"(state.x87) : "memory");
}

constexpr uint32_t kStatus = 0x3F, kMasks = 0x1F80, kUpward = 0x4000, kFlush = 0x8040;
constexpr uint32_t kDivideByZero = 0x04;
constexpr uint16_t kX87Upward = 0x0800;

// Nothing is masked, both units round up, denormals are flushed, x87 works in single precision.
constexpr ControlState kHostile{kUpward | kFlush, 0x0040 | kX87Upward};
// Denormals are flushed, and a flag is up already.
constexpr ControlState kFlushing{kFlush | kMasks | kDivideByZero, 0x0040 | kX87Upward};

// Calls the kernel in a control state; returns the state it left, with the usual one back.
template <class Run>
ControlState run_in(const ControlState& state, Run run) {
  const ControlState usual = control_state();
  set_control_state(state);
  run();
  const ControlState after = control_state();
  set_control_state(usual);
  return after;
}

class EngineEnvironment : public KernelTest {};

template <class T>
void expect_own_environment(const Row<T>& row, int slot, bool strided, ControlState entry) {
  const Batch<T> batch = mixed_batch(row, 2000);
  const auto runner = strided ? run_strided<T> : run<T>;
  const Results<T> usual = runner(row, slot, batch);
  Results<T> other;
  const ControlState after = run_in(entry, [&] { other = runner(row, slot, batch); });
  EXPECT_EQ(after.mxcsr & ~kStatus, entry.mxcsr & ~kStatus);
  EXPECT_EQ(after.mxcsr & entry.mxcsr & kStatus, entry.mxcsr & kStatus) << "a flag was lost";
  EXPECT_EQ(after.x87, entry.x87);
  if (row.base == "Abs") return;  // is the same in any mode
  bool equal = true;
  for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
    equal = equal && same_bits(other[k].data(), usual[k]);
  }
  EXPECT_EQ(equal, !keeps_callers_modes(row.name(), strided)) << std::hex << entry.mxcsr;
}

TEST_P(EngineEnvironment, ComesBackAndDoesNotMatter) {
  with_row([](const auto& row, int slot) {
    for (bool strided : {false, true}) {
      SCOPED_TRACE(strided ? "strided" : "contiguous");
      expect_own_environment(row, slot, strided, kHostile);
      expect_own_environment(row, slot, strided, kFlushing);
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineEnvironment);

// The x87 flags that Expm1 leaves when `pending` ones are up at entry.
uint16_t x87_flags_after(uint16_t pending, const std::vector<double>& a) {
  struct {
    uint16_t control, none, status, rest[11];
  } environment;
  asm volatile("fnstenv %0" : "=m"(environment) : : "memory");
  environment.status = pending;
  asm volatile("fldenv %0" : : "m"(environment) : "memory");
  std::vector<double> y(a.size() + 1);
  _arkdExpm1(static_cast<int32_t>(a.size()), a.data(), y.data());
  uint16_t status;
  asm volatile("fnstsw %0\n\tfnclex" : "=a"(status) : : "memory");
  return status & kStatus;
}

// The control word changes, so what was pending is lost, and what the arithmetic raises is up.
TEST(X87Flags, OfExpm1ComeFromItsArguments) {
  constexpr int kInvalid = 0x01, kX87DivideByZero = 0x04, kInexact = 0x20;
  const std::vector<double> vectors[] = {{},    {0.0},   {0x1p-60},  {0x1p-54},  {0.01}, {-20.0},
                                         {300}, {710.0}, {0.0, 0.5}, {0.5, 0.0}, {-50.0}};
  for (const auto& a : vectors) {
    const uint16_t raised = x87_flags_after(0, a);
    for (const int pending : {kInexact, kX87DivideByZero, kInexact | kInvalid}) {
      EXPECT_EQ(x87_flags_after(static_cast<uint16_t>(pending), a), raised)
          << pending << " before " << testing::PrintToString(a);
    }
  }
  EXPECT_EQ(x87_flags_after(0, {0.01}), kInexact);
  EXPECT_EQ(x87_flags_after(0, {0.0}), 0);
}

// With nobody to hear of errors the values are the same, and the scalar routine of the exponentials
// (which raises the flags of overflow and underflow) is not called.
template <class T>
void expect_shortcut(void (*exp)(int32_t, const T*, T*)) {
  constexpr T kInfinity = std::numeric_limits<T>::infinity();
  const std::vector<T> a = {2000, -2000, kInfinity, -kInfinity, 1, T(2000.5), T(-2000.5)};
  std::vector<T> loud(a.size()), quiet(a.size());
  const auto n = static_cast<int32_t>(a.size());
  const ModeScope ignore(QOR_MODE_ERRORS_IGNORE);
  exp(n, a.data(), loud.data());
  const ModeScope no_error(QOR_MODE_ERRORS_NOERR);
  _arkSetErrStatus(77);
  std::feclearexcept(FE_ALL_EXCEPT);
  exp(n, a.data(), quiet.data());
  EXPECT_FALSE(std::fetestexcept(FE_OVERFLOW | FE_UNDERFLOW));
  EXPECT_EQ(_arkGetErrStatus(), 77);
  EXPECT_EQ(quiet, loud);
  _arkClearErrStatus();
}

TEST(Exponentials, ShortcutWithoutReports) {
  expect_shortcut(_arksExp);
  expect_shortcut(_arkdExp);
}

}  // namespace
}  // namespace qor::test
