// The environment option: a value as "ARK_LA,ARK_ERRMODE_IGNORE" turned into bits of a mode word.
#pragma once

#include <cstdint>

namespace qor::frame {

// A pair of words; all ones in both means that there is no usable option.
struct OptionBits {
  uint32_t low, high;
};
inline constexpr OptionBits no_option{~uint32_t{0}, ~uint32_t{0}};
inline constexpr bool operator==(OptionBits a, OptionBits b) {
  return a.low == b.low && a.high == b.high;
}

// Size of the buffer that holds a value with its terminating zero; longer values count as unset.
inline constexpr int option_buffer_size = 256;

// Parses the value in `text`, `length` characters in a buffer of option_buffer_size.
OptionBits parse_option(const char* text, int length);

// The option as the environment holds it now.
OptionBits read_environment_option();

}  // namespace qor::frame
