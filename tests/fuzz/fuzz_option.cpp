// Any text of the environment option gives what a plain reading of its grammar gives.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "frame/environment_option.h"

namespace {

using qor::frame::no_option;
using qor::frame::option_buffer_size;
using qor::frame::OptionBits;

const std::map<std::string_view, uint32_t> kKeywords = {{"LA", 0x1},
                                                        {"HA", 0x2},
                                                        {"EP", 0x3},
                                                        {"DEFAULT_PRECISION", 0},
                                                        {"FLOAT_CONSISTENT", 0x10},
                                                        {"DOUBLE_CONSISTEN", 0x20},
                                                        {"RESTORE", 0x30},
                                                        {"ERRMODE_IGNORE", 0x100},
                                                        {"ERRMODE_ERRNO", 0x200},
                                                        {"ERRMODE_STDERR", 0x400},
                                                        {"ERRMODE_EXCEPT", 0x800},
                                                        {"ERRMODE_CALLBACK", 0x1000},
                                                        {"ERRMODE_NOERR", 0x2000},
                                                        {"ERRMODE_DEFAULT", 0x1A00},
                                                        {"TRAP_INVALID", 0x1000000},
                                                        {"TRAP_DIVBYZERO", 0x2000000},
                                                        {"TRAP_OVERFLOW", 0x4000000},
                                                        {"TRAP_UNDERFLOW", 0x8000000}};

// The tokens split at commas, each the prefix and a keyword that ends before the buffer does.
OptionBits plain_reading(std::string_view text) {
  if (text.empty()) return no_option;
  uint32_t word = 0;
  for (size_t start = 0;;) {
    const size_t end = std::min(text.find(',', start), text.size());
    const std::string_view token = text.substr(start, end - start);
    if (token.substr(0, 4) != "ARK_" || end >= option_buffer_size) return no_option;
    const auto keyword = kKeywords.find(token.substr(4));
    if (keyword == kKeywords.end()) return no_option;
    word |= keyword->second;
    if (end == text.size()) return {word, 0};
    start = end + 1;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string value(reinterpret_cast<const char*>(data),
                          strnlen(reinterpret_cast<const char*>(data), size));
  if (value.size() >= option_buffer_size) return 0;
  // A buffer of its own, so that a step past it is seen; as long as the library's.
  char* buffer = static_cast<char*>(std::malloc(option_buffer_size));
  std::memcpy(buffer, value.c_str(), value.size() + 1);
  const OptionBits bits = qor::frame::parse_option(buffer, static_cast<int>(value.size()));
  std::free(buffer);
  if (!(bits == plain_reading(value))) std::abort();
  return 0;
}
