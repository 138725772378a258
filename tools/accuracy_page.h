// docs/accuracy.md: a line per function, kernel and level.
#pragma once

#include <string>
#include <vector>

namespace qor::tools {

// Marks a line that holds for all arguments there are.
inline constexpr const char* every_argument = "all 2^32";

struct AccuracyLine {
  std::string function, level, slots;  // together the key of a line
  std::string worst, at, mean, arguments;

  bool same_key(const AccuracyLine& other) const {
    return function == other.function && level == other.level && slots == other.slots;
  }
  bool exhaustive() const { return arguments == every_argument; }
};

// A line of the page's table, and back; the result has no function when the text is none.
std::string to_text(const AccuracyLine& line);
AccuracyLine from_text(const std::string& text);

// Writes the page anew, in the order of the row list: `measured` in place of what the page said of
// the same kernels. A sample leaves a line over all arguments standing unless it shows a worse
// case.
void write_accuracy_page(const std::string& path, const std::vector<AccuracyLine>& measured);

}  // namespace qor::tools
