// Values as JSON.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qor::cli {

std::string json_text(std::string_view text);
std::string json_number(double value);  // null when it is not finite
std::string json_numbers(std::span<const double> values);

}  // namespace qor::cli
