#include "front/cli/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <system_error>

namespace qor::cli {

std::string lower_case(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string_view trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    result += code < 0x20 || code == 0x7F ? format("\\x%02x", code) : std::string(1, c);
  }
  return result + '"';
}

std::string joined(std::span<const std::string> items) {
  std::string result;
  for (const std::string& item : items) {
    if (&item != items.data()) result += ", ";
    result += item;
  }
  return result;
}

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (size_t at = 0; at <= text.size();) {
    const size_t end = std::min(text.find(separator, at), text.size());
    parts.emplace_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

std::vector<std::string> trimmed_parts(std::string_view text) {
  std::vector<std::string> parts = split(text, ',');
  for (std::string& part : parts) part = std::string(trimmed(part));
  return parts;
}

std::string list_of_lines(const std::vector<size_t>& lines) {
  std::string text = lines.size() == 1 ? "line " : "lines ";
  for (size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) {
    text += (i > 0 ? ", " : "") + std::to_string(lines[i]);
  }
  return lines.size() > kMostLines ? text + ", ..." : text;
}

std::string shortest(double value) {
  if (std::isnan(value)) return "NaN";
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

std::optional<double> parse_number(std::string_view text) {
  text = trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  double value;
  const char* const start = text.data();
  const char* const end = start + text.size();
  const auto [stop, error] = std::from_chars(start, end, value);
  if (error != std::errc{} || stop != end || std::isnan(value)) return std::nullopt;
  return value;
}

std::string format(const char* form, ...) {
  va_list arguments;
  va_start(arguments, form);
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, form, arguments);
  std::string result(static_cast<size_t>(std::max(length, 0)), '\0');
  std::vsnprintf(result.data(), result.size() + 1, form, again);
  va_end(again);
  va_end(arguments);
  return result;
}

std::string TextTable::text() const {
  std::vector<size_t> widths(lines_.front().size());
  for (const auto& line : lines_) {
    for (size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  std::string result;
  for (const auto& line : lines_) {
    result.append(indent_, ' ');
    for (size_t i = 0; i < line.size(); ++i) {
      const std::string blanks(widths[i] - line[i].size(), ' ');
      if (i > 0) result += "  " + blanks + line[i];
      if (i == 0) result += line[i] + blanks;
    }
    result.resize(result.find_last_not_of(' ') + 1);
    result += '\n';
  }
  return result;
}

}  // namespace qor::cli
