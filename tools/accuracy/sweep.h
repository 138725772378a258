// All 2^32 arguments of the functions of one float.
#pragma once

#include <vector>

#include "tools/accuracy/levels.h"

namespace qor::tools {

// The worst errors, for functions with an estimate, and the steps back of the monotone ones, on
// this many threads. Without `errors` the steps alone, in a tenth of the time. Progress goes to
// standard error when that is a terminal.
std::vector<Finding<float>> sweep(const std::vector<LevelLibrary>& libraries,
                                  const std::vector<LevelKernel<float>>& kernels, int threads,
                                  bool errors);

}  // namespace qor::tools
