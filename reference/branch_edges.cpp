// The lists that the families' limits export, by row.

#include <algorithm>

#include "kernels/exponential/limits.h"
#include "kernels/logarithm/limits.h"
#include "kernels/power/limits.h"
#include "kernels/root/limits.h"
#include "reference/arguments.h"

namespace qor::reference {
namespace {

namespace limits = kernels::limits;

// The entry of a list that names `name`, null without one.
template <class Entry, std::size_t count>
const Entry* find(const Entry (&list)[count], limits::List<std::string_view> Entry::*names,
                  std::string_view name) {
  for (const Entry& entry : list) {
    if (std::ranges::count(entry.*names, name) != 0) return &entry;
  }
  return nullptr;
}

}  // namespace

limits::Edges branch_edges(std::string_view row) {
  const limits::Edges* found = nullptr;
  const auto look = [&](const auto& list) {
    if (found == nullptr) found = find(list, &limits::Edges::rows, row);
  };
  look(limits::exponential_edges);
  look(limits::logarithm_edges);
  look(limits::power_edges);
  look(limits::root_edges);
  return found == nullptr ? limits::Edges{} : *found;
}

limits::Seams table_seams(std::string_view function) {
  const limits::Seams* found = nullptr;
  const auto look = [&](const auto& list) {
    if (found == nullptr) found = find(list, &limits::Seams::functions, function);
  };
  look(limits::exponential_seams);
  look(limits::logarithm_seams);
  look(limits::power_seams);
  look(limits::root_seams);
  return found == nullptr ? limits::Seams{} : *found;
}

}  // namespace qor::reference
