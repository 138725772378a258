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

// The entry of the families' lists that names it, an empty one where none does.
template <class Entry, class... Lists>
Entry entry_of(std::string_view name, limits::List<std::string_view> Entry::*names,
               const Lists&... lists) {
  const Entry* found = nullptr;
  ((found = found != nullptr ? found : find(lists, names, name)), ...);
  return found != nullptr ? *found : Entry{};
}

}  // namespace

limits::Edges branch_edges(std::string_view row) {
  return entry_of(row, &limits::Edges::rows, limits::exponential_edges, limits::logarithm_edges,
                  limits::power_edges, limits::root_edges);
}

limits::Seams table_seams(std::string_view function) {
  return entry_of(function, &limits::Seams::functions, limits::exponential_seams,
                  limits::logarithm_seams, limits::power_seams, limits::root_seams);
}

}  // namespace qor::reference
