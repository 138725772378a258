#include "front/cli/functions.h"

#include <type_traits>

#include "front/cli/text.h"

namespace qor::cli {
namespace {

// Rows of other element types and shapes are passed over.
template <class Row>
void add(std::vector<Function>& list, const char* name, const Row& row) {
  if constexpr (std::is_same_v<Row, UnaryRow<double>>) {
    list.push_back({name, &row, nullptr});
  } else if constexpr (std::is_same_v<Row, BinaryRow<double>>) {
    list.push_back({name, nullptr, &row});
  }
}

std::vector<Function> list_functions() {
  std::vector<Function> list;
#define QOR_LIST(t, name, shape, ...) add(list, #name, qor_ark_kernel_##t##name##_ttab);
  QOR_FUNCTION_ROWS(QOR_LIST)
#undef QOR_LIST
  return list;
}

}  // namespace

std::vector<double> Function::operator()(std::span<const std::vector<double>> inputs) const {
  return unary != nullptr ? apply<double>(*unary, inputs[0])
                          : apply<double>(*binary, inputs[0], inputs[1]);
}

const std::vector<Function>& functions() {
  static const std::vector<Function> list = list_functions();
  return list;
}

const Function* find_function(std::string_view name) {
  for (const Function& function : functions()) {
    if (lower_case(function.name) == lower_case(name)) return &function;
  }
  return nullptr;
}

}  // namespace qor::cli
