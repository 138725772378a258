// The accuracy page: the table of worst cases as a section of a document.
#pragma once

#include <string>
#include <vector>

#include "reference/worst_cases.h"

namespace qor::tools {

// What keeps the page from being built: kernels without a line, functions of one float that were
// swept at no level. Empty when all is there.
std::vector<std::string> missing(const std::vector<reference::WorstCase>& cases);

// The section's title and text.
inline constexpr const char* accuracy_title = "Vector math";
std::string accuracy_section(const std::vector<reference::WorstCase>& cases);

}  // namespace qor::tools
