// Documents that several tools write, each its own section.
#pragma once

#include <string>

namespace qor::tools {

// The text below the heading "## title", up to the next heading of that level; empty when there is
// no such section.
std::string read_section(const std::string& path, const std::string& title);

// Puts `text` there; a new section comes last. The rest of the document stays as it is.
void write_section(const std::string& path, const std::string& title, const std::string& text);

}  // namespace qor::tools
