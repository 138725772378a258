// Numbers that a person gives to options. What does not fit is an InputError that names the option,
// the text and what is accepted.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qor::cli {

// "OPTION: "TEXT" is not accepted; ACCEPTED is"
[[noreturn]] void refuse_value(std::string_view option, std::string_view text,
                               std::string_view accepted);

// A whole number from low to high, in decimal or, with 0x before, hexadecimal digits.
uint64_t whole_number(std::string_view option, std::string_view text, uint64_t low, uint64_t high);

// A finite number from low to high; `whole`: without a fraction.
double number_between(std::string_view option, std::string_view text, double low, double high,
                      bool whole);

// A count of any length as 64-bit words, the least significant first; without words above the
// highest that is not 0.
std::vector<uint64_t> long_count(std::string_view option, std::string_view text);

}  // namespace qor::cli
