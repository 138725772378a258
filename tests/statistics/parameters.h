// The table of parameters.txt, and the fields of the record that it names.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "statistics/task.h"
#include "tests/support/tables.h"

namespace qor::test {

struct Parameter {
  int64_t code;
  std::string kind;
  size_t place;
  int null_status;
  std::string name, whole;
};

// By their codes, which count from 1.
inline const std::vector<Parameter>& parameters() {
  static std::vector<Parameter> all;
  if (all.empty()) {
    for (const auto& [place, text] : table_lines("statistics/parameters.txt")) {
      std::istringstream line(text);
      Parameter& p = all.emplace_back();
      line >> p.code >> p.kind >> p.place >> p.null_status >> p.name >> p.whole;
    }
  }
  return all;
}

inline size_t index_of(const std::string& name) {
  for (size_t at = 0; at < parameters().size(); ++at) {
    if (parameters()[at].name == name) return at;
  }
  throw std::invalid_argument(name);
}

// The field of a parameter, by the order of the record: pointers alone from place 4 to 81.
inline const void*& field_of(SsTask& task, const Parameter& parameter) {
  if (parameter.name == "sorted_output_storage") return task.sorted_output_storage;
  char* field = reinterpret_cast<char*>(&task.p) + (parameter.place - 4) * sizeof(void*);
  if (parameter.name == "sorted_output") field = reinterpret_cast<char*>(&task.sorted_output);
  return *reinterpret_cast<const void**>(field);
}

}  // namespace qor::test
