// The floating-point environment: what the caller had comes back, and what it had does not matter
// to the results where a kernel sets its own.

#include <immintrin.h>

#include <algorithm>
#include <iterator>

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

// Kernels that keep the caller's rounding and denormal modes.
constexpr std::string_view kCallersModes[] = {
    "sAbs",     "sSqr",  "sAdd",  "sSub",       "sMul",        "dAbs",
    "dInv",     "dDiv",  "sCbrt", "sInvCbrt",   "sCdfNormInv", "dCdfNormInv",
    "dErfcInv", "dTanh", "cSqrt", "zSqrt",      "cConj",       "zConj",
    "zExp",     "cDiv",  "cMul",  "cMulByConj", "cConjI",      "zConjI"};
// Base names of kernels that leave MXCSR alone, of these types, strided ones too.
constexpr std::string_view kLeftAlone[] = {
    "cCos",    "cSin",    "cTan",     "cCosh",   "cSinh",  "cTanh", "cAcos",   "cAsin",
    "cAtan",   "cAcosh",  "cAsinh",   "cAtanh",  "cLog10", "cPow",  "cPowx",   "zCos",
    "zSin",    "zTan",    "zCosh",    "zSinh",   "zTanh",  "zAcos", "zAsin",   "zAtan",
    "zAcosh",  "zAsinh",  "zAtanh",   "zLog10",  "zPow",   "zPowx", "sLGamma", "sTGamma",
    "dLGamma", "dTGamma", "sExpInt1", "dExpInt1"};

bool in(auto& list, std::string_view name) {
  return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

// Whether the kernel sets rounding to nearest and the denormal mode of the mode word itself.
bool sets_modes(const std::string& name, bool strided) {
  if (in(kLeftAlone, name) || (name == "dExpm1" && !strided)) return false;
  return !in(kCallersModes, strided ? std::string(name).append("I") : name);
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
constexpr uint32_t kInvalid = 0x01, kDivideByZero = 0x04, kOverflow = 0x08;
constexpr uint16_t kX87Upward = 0x0800;

// Nothing is masked, both units round up, denormals are flushed, x87 works in single precision.
constexpr ControlState kHostile{kUpward | kFlush, 0x0040 | kX87Upward};

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
struct Vectors {
  Batch<T> batch;
  Results<T> results;
  Call<T> call;

  Vectors(const Row<T>& row, size_t n) : batch(mixed_batch(row, n)), call(call_on(row, batch)) {
    for (int k = 0; k < row.shape.outputs; ++k) {
      results[k].resize(n * static_cast<size_t>(row.shape.output_parts));
      call.out[k] = results[k].data();
    }
  }
  // The same vectors, every second element.
  void halve() {
    call.n /= 2;
    call.in_inc = call.out_inc = {2, 2};
  }
};

template <class T>
void expect_own_environment(const Row<T>& row, int slot, bool strided, ControlState entry) {
  Vectors<T> usual(row, 128), other(row, 128);
  if (strided) {
    usual.halve();
    other.halve();
  }
  const auto runner = strided ? row.run_strided : row.run;
  runner(slot, usual.call);
  const ControlState after = run_in(entry, [&] { runner(slot, other.call); });
  EXPECT_EQ(after.mxcsr & ~kStatus, entry.mxcsr & ~kStatus);
  EXPECT_EQ(after.mxcsr & entry.mxcsr & kStatus, entry.mxcsr & kStatus) << "a flag was lost";
  EXPECT_EQ(after.x87, entry.x87);
  if (!sets_modes(row.name(), strided)) return;
  for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
    EXPECT_TRUE(same_bits(other.results[k].data(), usual.results[k])) << "output " << k;
  }
}

TEST_P(EngineEnvironment, ComesBackAndDoesNotMatter) {
  with_row([](const auto& row, int slot) {
    for (bool strided : {false, true}) {
      SCOPED_TRACE(strided ? "strided" : "contiguous");
      // A kernel without a step for MXCSR is safe from traps only as its caller is.
      const bool leaves = in(kLeftAlone, row.name()) || row.name() == "dExpm1";
      ControlState entry = kHostile;
      if (leaves) entry.mxcsr |= kMasks;
      expect_own_environment(row, slot, strided, entry);
      entry.mxcsr |= kDivideByZero;
      entry.mxcsr |= kMasks;  // with a flag that is up already
      expect_own_environment(row, slot, strided, entry);
    }
  });
}

// Inside, denormals count as zeros with the mode's flush field: logarithms tell.
TEST_P(EngineEnvironment, ModeWordFlushesDenormals) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    constexpr std::string_view kTellDenormals[] = {"Ln", "Log2", "Log10"};
    if (!in(kTellDenormals, row.base) || row.shape.input_parts != 1) return;
    Batch<T> tiny;
    tiny.in[0] = {std::numeric_limits<T>::min() / 4};
    EXPECT_GT(run(row, slot, tiny)[0][0], -std::numeric_limits<T>::infinity());
    ReportLog log(QOR_MODE_FLUSH_DENORMALS);
    EXPECT_EQ(run(row, slot, tiny)[0][0], -std::numeric_limits<T>::infinity());
    ASSERT_EQ(log.reports().size(), 1u);
    EXPECT_EQ(log.reports()[0].code, QOR_ERROR_SINGULARITY);
  });
}

// A quiet NaN raises nothing, in any place of a vector.
TEST_P(EngineEnvironment, QuietNanRaisesNothing) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    Vectors<T> vectors(row, 3);
    for (auto& numbers : vectors.batch.in) {
      std::fill(numbers.begin(), numbers.end(), std::numeric_limits<T>::quiet_NaN());
    }
    ControlState quiet = control_state();
    quiet.mxcsr &= ~kStatus;
    const ControlState after = run_in(quiet, [&] { row.run(slot, vectors.call); });
    EXPECT_EQ(after.mxcsr & (kInvalid | kDivideByZero | kOverflow), 0u);
  });
}

QOR_FOR_ALL_KERNELS(EngineEnvironment);

}  // namespace
}  // namespace qor::test
