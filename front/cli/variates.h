// Distributions as the command line names them.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "front/cli/generators.h"
#include "front/cli/values.h"

namespace qor::cli {

// A parameter of a distribution, which is an option of the command.
struct Parameter {
  std::string_view option;
  std::string_view otherwise;  // its value when it is not given; empty: it must be
  double low, high;            // what is accepted
  bool whole = false;
};

using Parameters = std::array<double, 2>;

// What a distribution gives, in one type.
struct Distribution {
  std::string_view name;
  std::string_view type;  // what --type calls it
  Element element;
  std::vector<Parameter> parameters;
  std::string_view summary;
  // n values to r; method is 0 or the accuracy flag. Returns the stream's status.
  int32_t (*draw)(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters& p);
  // Of parameters that are accepted by themselves, what is accepted together; empty when they are.
  std::string_view (*wrong)(const Parameters& p) = nullptr;
  bool has_accuracy = false;  // whether it honours the accuracy flag
};

// The distribution that --distribution and --type name; without --type the first of its name.
const Distribution& find_distribution(const Arguments& arguments);

// Its parameters, checked; options of other distributions are refused.
Parameters parameters_of(const Distribution& distribution, const Arguments& arguments);

// What the stream's generator gives for it: its own words are as wide as they are.
Layout layout_of(const Distribution& distribution, const Stream& stream);

// Lines of help, one for each.
std::string describe_distributions();

}  // namespace qor::cli
