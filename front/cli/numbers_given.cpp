#include "front/cli/numbers_given.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

// Returns whether all of the text is one number.
template <class Number, class... Base>
bool parse(std::string_view text, Number& value, Base... base) {
  const char* begin = text.data();
  const char* end = begin + text.size();
  const auto [stop, error] = std::from_chars(begin, end, value, base...);
  return error == std::errc{} && stop == end;
}

// words * 10 + digit, in words of 32 bits.
void append_digit(std::vector<uint32_t>& words, unsigned digit) {
  uint64_t carry = digit;
  for (uint32_t& word : words) {
    carry += uint64_t{word} * 10;
    word = static_cast<uint32_t>(carry);
    carry >>= 32;
  }
  if (carry != 0) words.push_back(static_cast<uint32_t>(carry));
}

}  // namespace

void refuse_value(std::string_view option, std::string_view text, std::string_view accepted) {
  throw InputError(std::string(option) + ": " + quoted(text) + " is not accepted; " +
                   std::string(accepted) + " is");
}

uint64_t whole_number(std::string_view option, std::string_view text, uint64_t low, uint64_t high) {
  uint64_t value = 0;
  const bool hexadecimal = text.starts_with("0x");
  const bool good = hexadecimal ? parse(text.substr(2), value, 16) : parse(text, value, 10);
  if (!good || value < low || value > high) {
    refuse_value(option, text,
                 "a whole number from " + std::to_string(low) + " to " + std::to_string(high));
  }
  return value;
}

double number_between(std::string_view option, std::string_view text, double low, double high,
                      bool whole) {
  double value = 0;
  if (!parse(text, value) || !(value >= low && value <= high) ||
      (whole && value != std::floor(value))) {
    refuse_value(option, text,
                 (whole ? "a whole number from " : "a number from ") + shortest(low) + " to " +
                     shortest(high));
  }
  return value;
}

std::vector<uint64_t> long_count(std::string_view option, std::string_view text) {
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  if (text.empty() || !std::ranges::all_of(text, is_digit)) {
    refuse_value(option, text, "a whole number of at least 0");
  }
  std::vector<uint32_t> halves;
  for (const char c : text) append_digit(halves, static_cast<unsigned>(c - '0'));
  std::vector<uint64_t> words((halves.size() + 1) / 2);
  for (size_t k = 0; k < halves.size(); ++k) words[k / 2] |= uint64_t{halves[k]} << (32 * (k % 2));
  return words;
}

}  // namespace qor::cli
