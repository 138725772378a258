// The report routine: numbered messages, errno, floating-point condition. Printing may set errno,
// so that what is printed comes first.

#include <cerrno>
#include <cstring>

#include "frame/error.h"
#include "services/services.h"

namespace qor::frame {
namespace {

int errno_of(int32_t code) {
  switch (code) {
    case QOR_ERROR_NONE:
      return 0;
    case QOR_ERROR_DOMAIN:
      return EDOM;
    case QOR_ERROR_SINGULARITY:
    case QOR_ERROR_OVERFLOW:
    case QOR_ERROR_UNDERFLOW:
      return ERANGE;
    case QOR_ERROR_ARGUMENT_INDEXED:
      return EINVAL;
    case QOR_ERROR_ARGUMENT:
      return EACCES;
    default:
      return EFAULT;
  }
}

// ---- Messages -------------------------------------------------------------------------------

constexpr int kLevel = 1;

// Prints what happened. Returns whether values follow.
bool print_error(const ErrorContext& context) {
  switch (context.code) {
    case QOR_ERROR_NONE:
      return false;
    case QOR_ERROR_ARGUMENT_INDEXED:
      qor_serv_print(kLevel, 748, 2, context.funcName, context.index);
      return false;
    case QOR_ERROR_ARGUMENT:
      qor_serv_print(kLevel, 749, 1, context.funcName);
      return false;
    case QOR_ERROR_DOMAIN:
    case QOR_ERROR_SINGULARITY:
    case QOR_ERROR_OVERFLOW:
    case QOR_ERROR_UNDERFLOW:
      qor_serv_print(kLevel, 749 + context.code, 1, context.funcName);
      return true;
    default:
      qor_serv_print(kLevel, 754, 1, context.funcName);
      return true;
  }
}

// A second value that is zero, or the first one again, counts as none.
bool stands_alone(double first, double second) {
  return second == 0.0 || std::memcmp(&first, &second, sizeof first) == 0;
}

void print_values(const ErrorContext& context) {
  const bool two_arguments = !stands_alone(context.arg1, context.arg2);
  const bool two_results = !stands_alone(context.result1, context.result2);
  // First messages of the groups: 755 one and one, 757 one and two, 760 two and one, 763 both two.
  int message = two_arguments ? (two_results ? 763 : 760) : (two_results ? 757 : 755);
  const auto print = [&](double value) {
    qor_serv_print(kLevel, message++, 2, context.index, value);
  };
  print(context.arg1);
  if (two_arguments) print(context.arg2);
  print(context.result1);
  if (two_results) print(context.result2);
}

// ---- Floating-point condition ---------------------------------------------------------------

// x87 exception bits, the same in the control word (masks) and the status word (flags).
constexpr uint16_t kInvalid = 0x1;
constexpr uint16_t kZeroDivide = 0x4;
constexpr uint16_t kOverflow = 0x8;
constexpr uint16_t kUnderflow = 0x10;
constexpr uint16_t kAllExceptions = 0x3F;

// The image of fnstenv in 32-bit protected and in 64-bit mode.
struct X87Environment {
  uint16_t control, control_high;
  uint16_t status, status_high;
  uint32_t rest[5];
};
static_assert(sizeof(X87Environment) == 28);

uint16_t condition_of(int32_t code) {
  switch (code) {
    case QOR_ERROR_DOMAIN:
      return kInvalid;
    case QOR_ERROR_SINGULARITY:
      return kZeroDivide;
    case QOR_ERROR_OVERFLOW:
      return kOverflow;
    case QOR_ERROR_UNDERFLOW:
      return kUnderflow;
    default:
      return 0;
  }
}

uint16_t trapped_conditions(uint32_t mode) {
  uint16_t conditions = 0;
  if ((mode & QOR_MODE_TRAP_INVALID) != 0) conditions |= kInvalid;
  if ((mode & QOR_MODE_TRAP_DIVBYZERO) != 0) conditions |= kZeroDivide;
  if ((mode & QOR_MODE_TRAP_OVERFLOW) != 0) conditions |= kOverflow;
  if ((mode & QOR_MODE_TRAP_UNDERFLOW) != 0) conditions |= kUnderflow;
  return conditions;
}

// Loads an environment in which the condition is pending, then one in which all is masked. When the
// mode traps the condition, the second load, which waits, delivers the exception.
void raise_condition(uint32_t mode, int32_t code) {
  const uint16_t condition = condition_of(code);
  X87Environment taken;
  asm volatile("fnstenv %0" : "=m"(taken));
  X87Environment pending = taken;
  pending.control = static_cast<uint16_t>(pending.control & ~trapped_conditions(mode));
  pending.status = static_cast<uint16_t>((pending.status & ~kAllExceptions) | condition);
  taken.control |= kAllExceptions;
  taken.status |= condition;
  asm volatile(
      "fldenv %0\n\t"
      "fldenv %1"
      :
      : "m"(pending), "m"(taken)
      : "memory");
}

}  // namespace

void run_report(uint32_t mode, const ErrorContext& context) {
  if ((mode & QOR_MODE_ERRORS_STDERR) != 0) {
    const services::ErrnoKept kept;
    if (print_error(context)) print_values(context);
  }
  if ((mode & QOR_MODE_ERRORS_ERRNO) != 0) errno = errno_of(context.code);
  if ((mode & QOR_MODE_ERRORS_EXCEPT) != 0) raise_condition(mode, context.code);
}

}  // namespace qor::frame
