#include "front/cli/json.h"

#include <cmath>

#include "front/cli/text.h"

namespace qor::cli {

std::string json_text(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') result += '\\';
    result += code < 0x20 ? format("\\u%04x", code) : std::string(1, c);
  }
  return result + '"';
}

std::string json_number(double value) { return std::isfinite(value) ? shortest(value) : "null"; }

std::string json_numbers(std::span<const double> values) {
  std::string text = "[";
  for (const double& value : values) {
    if (&value != values.data()) text += ", ";
    text += json_number(value);
  }
  return text + "]";
}

}  // namespace qor::cli
