// Runs this program again on the library of each build level, and gathers what it prints.
#pragma once

#include <string>
#include <vector>

namespace qor::tools {

// Whether this machine runs a level.
bool processor_has(const std::string& level);

// The levels below `folder` (build/<preset>/levels) that this machine can run, in order.
std::vector<std::string> runnable_levels(const std::string& folder);

// The lines that this program prints when run with these arguments on a level's library; its
// standard error passes through. Ends the program when that run fails.
std::vector<std::string> run_on_level(const std::string& folder, const std::string& level,
                                      const std::vector<std::string>& arguments);

}  // namespace qor::tools
