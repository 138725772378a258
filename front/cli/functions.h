// The vector functions that the command can apply by name: the double functions of the row list
// with one or two vector inputs and one output.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "front/cpp/qor.hpp"

namespace qor::cli {

struct Function {
  std::string name;  // base name, as Exp
  const UnaryRow<double>* unary = nullptr;
  const BinaryRow<double>* binary = nullptr;  // one of the two is set

  size_t inputs() const { return unary != nullptr ? 1 : 2; }
  // Applies it to as many vectors of one length as it has inputs.
  std::vector<double> operator()(std::span<const std::vector<double>> inputs) const;
};

// All of them, in table order.
const std::vector<Function>& functions();

// The function of this name, upper and lower case alike; null when there is none.
const Function* find_function(std::string_view name);

}  // namespace qor::cli
