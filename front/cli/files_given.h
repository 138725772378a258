// The files of a call, before any of them is touched.
#pragma once

#include "front/cli/command.h"

namespace qor::cli {

// Throws an InputError when a file that the call writes, or standard output, is one that it reads
// or writes as something else too, whatever the names that are given for it.
void check_files(const Command& command, const Arguments& arguments);

}  // namespace qor::cli
