// Small helpers for text in messages and tables.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qor::cli {

std::string lower_case(std::string_view text);  // ASCII letters only
std::string_view trimmed(std::string_view text);
std::string quoted(std::string_view text);  // in double quotes, control characters as \xNN
std::string joined(std::span<const std::string> items);
std::vector<std::string> split(std::string_view text, char separator);
std::vector<std::string> trimmed_parts(std::string_view text);  // between commas

// "line 3", "lines 3, 5"; behind so many of them, "...".
inline constexpr size_t kMostLines = 8;
std::string list_of_lines(const std::vector<size_t>& lines);

// A number with the fewest digits that read back as the same double; NaN without a sign.
std::string shortest(double value);

// The number that the text is, blanks around it and a plus sign allowed; NaN is none.
std::optional<double> parse_number(std::string_view text);

// printf into a string, for numbers.
[[gnu::format(printf, 1, 2)]] std::string format(const char* form, ...);

// Lines of cells aligned under their headings: the first column to the left, the others to the
// right, two blanks between, `indent` before.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headings, size_t indent = 2)
      : lines_{std::move(headings)}, indent_(indent) {}
  void add(std::vector<std::string> cells) { lines_.push_back(std::move(cells)); }
  std::string text() const;

 private:
  std::vector<std::vector<std::string>> lines_;
  size_t indent_;
};

}  // namespace qor::cli
