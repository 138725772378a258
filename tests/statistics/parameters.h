// The table of parameters.txt, and the fields of the record that it names.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "statistics/task.h"

namespace qor::test {

// The lines of a text table beside this file, without comments and empty ones.
inline std::vector<std::istringstream> table_lines(const std::string& name) {
  std::ifstream file(QOR_SOURCE "/tests/statistics/" + name);
  EXPECT_TRUE(file) << name;
  std::vector<std::istringstream> lines;
  for (std::string text; std::getline(file, text);) {
    if (!text.empty() && text[0] != '#') lines.emplace_back(text);
  }
  return lines;
}

struct Parameter {
  int64_t code;
  std::string kind;
  size_t place;
  int null_status;
  std::string name, whole;
};

inline const std::vector<Parameter>& parameters() {
  static const auto all = [] {
    std::vector<Parameter> read;
    for (std::istringstream& line : table_lines("parameters.txt")) {
      Parameter p;
      line >> p.code >> p.kind >> p.place >> p.null_status >> p.name >> p.whole;
      read.push_back(p);
    }
    return read;
  }();
  return all;
}

// The field of a parameter, by the order of the record: pointers alone from the fourth place on,
// but for the distance routine's words, which come after place 81.
inline const void*& field_of(SsTask& task, const Parameter& parameter) {
  if (parameter.place == 93) return task.sorted_output_storage;
  char* const first =
      reinterpret_cast<char*>(parameter.place == 92 ? &task.sorted_output : &task.x);
  const size_t steps = parameter.place == 92 ? 0 : parameter.place - 7;
  return *reinterpret_cast<const void**>(first + steps * sizeof(void*));
}

}  // namespace qor::test
