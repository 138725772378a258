// Sections of documents that tools write: a head, then one table with a line per function, kernel
// and level.
#pragma once

#include <string>
#include <vector>

namespace qor::tools {

// The fields of a line; the first three (function, kernel, level) are its key.
using PageLine = std::vector<std::string>;

inline constexpr size_t key_fields = 3;

// A line of the table, and back; empty when the text is none.
std::string to_text(const PageLine& line);
PageLine from_text(const std::string& text);

// Writes the section anew, in the order of the row list. A measured line takes the place of the one
// with its key; lines of functions that are no more go.
void write_page(const std::string& path, const std::string& title, const char* head,
                const PageLine& titles, const std::vector<PageLine>& measured);

}  // namespace qor::tools
