// The worst errors that were found, by function, kernel and level: worst_cases.txt, which
// tools/accuracy writes and the tests hold the kernels to.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reference/rows.h"

namespace qor::reference {

// How the arguments were chosen: all of them, by climbing to the worst, at random. Or the kernel
// was another one: earlier lines are of levels that the machine which measured last does not run.
enum class Found { swept, searched, sampled, earlier };

struct WorstCase {
  std::string function, kernel, level;  // sExp; the slots that it serves, as LA+EP; v3
  double ulp = 0;
  Found found = Found::sampled;
  uint64_t count = 0;           // of arguments tried
  int64_t steps_back = -1;      // of results between neighbours, against the slope; -1: not counted
  std::vector<double> at = {};  // the numbers of the element that shows it; none for an error of 0

  bool same_key(const WorstCase& other) const {
    return function == other.function && kernel == other.kernel && level == other.level;
  }
};

std::string_view name_of(Found found);

// The table's lines; none when there is no such file.
std::vector<WorstCase> read_worst_cases(const std::string& path);

// Writes the file anew: lines in the order of the row list; those without a row go.
void write_worst_cases(const std::string& path, std::vector<WorstCase> cases);

// The slots that share the kernel of this one, as a line has them.
template <class T>
std::string kernel_key(const Row<T>& row, int slot) {
  std::string key = row.sharing(slot);
  std::ranges::replace(key, ' ', '+');
  return key;
}

}  // namespace qor::reference
