// The table of parameters: for each code the field it selects and the status of a null value.
#pragma once

#include "statistics/task.h"

namespace qor::statistics {

struct IntegerParameter {
  int64_t code;
  const void* SsTask::*field;
  int null_status;
};

struct RealParameter {
  int64_t code;
  void* SsTask::*field;
  int null_status;
};

// The row of a code, or null.
const IntegerParameter* integer_parameter(int64_t code);
const RealParameter* real_parameter(int64_t code);

}  // namespace qor::statistics
