// Text tables of cases: one case a line, remarks on lines that begin with #.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace qor::test {

struct TableLine {
  std::string place;  // "checks.txt:12", for messages
  std::string text;
};

// The lines of a file below tests/ that are cases; at least `fewest`.
inline std::vector<TableLine> table_lines(const std::string& name, size_t fewest = 1) {
  std::ifstream file(QOR_SOURCE "/tests/" + name);
  const std::string short_name = name.substr(name.find('/') + 1);
  std::vector<TableLine> lines;
  int number = 0;
  for (std::string text; std::getline(file, text);) {
    ++number;
    if (text.empty() || text[0] == '#') continue;
    lines.push_back({short_name + ":" + std::to_string(number), text});
  }
  EXPECT_GE(lines.size(), fewest) << name;
  return lines;
}

}  // namespace qor::test
