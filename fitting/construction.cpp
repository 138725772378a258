// Entry checks of the construction kernels, and the table of boundary codes.

#include "fitting/construction.h"

namespace qor::fitting {
namespace {

using enum EndKind;

constexpr BoundaryCode kBoundaryCodes[] = {
    {QOR_DF_BC_NOT_A_KNOT, not_a_knot, not_a_knot},
    {QOR_DF_BC_FREE, free, free},
    {QOR_DF_BC_FIRST_FIRST, first_derivative, first_derivative},
    {QOR_DF_BC_FIRST_SECOND, first_derivative, second_derivative},
    {QOR_DF_BC_SECOND_FIRST, second_derivative, first_derivative},
    {QOR_DF_BC_SECOND_SECOND, second_derivative, second_derivative},
    {QOR_DF_BC_PERIODIC, periodic, periodic},
    {QOR_DF_BC_NONE, estimated, estimated},
};

// Types whose periodic end takes a value, whichever kernel is asked.
bool periodic_takes_value(int64_t s_type) { return s_type == 0 || s_type == 3; }

}  // namespace

const BoundaryCode* boundary_code(int64_t bc_type) {
  for (const BoundaryCode& code : kBoundaryCodes) {
    if (code.bc_type == bc_type) return &code;
  }
  return nullptr;
}

int check_boundary(const DFTask& task, const BoundaryRules& rules) {
  const BoundaryCode* code = boundary_code(task.bc_type);
  if (code == nullptr || (code->left == estimated && !rules.takes_none)) return QOR_DF_BAD_BC_TYPE;
  const bool needs = code->left == periodic
                         ? rules.takes_periodic_value || periodic_takes_value(task.s_type)
                         : code->left == first_derivative || code->left == second_derivative;
  return needs && task.bc == nullptr ? QOR_DF_NULL_BC : QOR_DF_OK;
}

}  // namespace qor::fitting
