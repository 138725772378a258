// Searches for the worst errors of functions that have too many arguments to try all.
#pragma once

#include <vector>

#include "tools/accuracy/levels.h"

namespace qor::tools {

// Tries about `budget` arguments, the same in every run: those of the `known` elements, hard ones
// and edges, every binade and every cell of the tables; then it climbs from the thousand worst of
// each kernel, with bits flipped, by steps and in zooms. Errors are estimated in the wider type;
// the thousand that look worst at the end are worked out exactly.
template <class T>
std::vector<Finding<T>> search(const reference::Row<T>& row,
                               const std::vector<LevelKernel<T>>& kernels,
                               const std::vector<reference::Numbers<T>>& known, uint64_t budget);

// At hard arguments, edges and random ones, `count` at least, all exactly: for functions that are
// right everywhere or nowhere.
template <class T>
std::vector<Finding<T>> sample(const reference::Row<T>& row,
                               const std::vector<LevelKernel<T>>& kernels, uint64_t count);

}  // namespace qor::tools
