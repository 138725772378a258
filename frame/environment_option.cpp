// The grammar of the environment option, and its look-up.

#include "frame/environment_option.h"

#include <array>
#include <cstring>

#include "services/services.h"

namespace qor::frame {
namespace {

constexpr char kPrefix[] = "ARK_";
constexpr int kPrefixLength = 4;

struct Keyword {
  const char* text;
  int length;
  uint32_t low, high;
};

// "DOUBLE_CONSISTEN" is spelled as it is known: the parser relies on its sixteen letters.
constexpr Keyword kKeywords[] = {
    {"LA", 2, 0x1, 0},
    {"HA", 2, 0x2, 0},
    {"EP", 2, 0x3, 0},
    {"DEFAULT_PRECISION", 17, 0x0, 0},
    {"FLOAT_CONSISTENT", 16, 0x10, 0},
    {"DOUBLE_CONSISTEN", 16, 0x20, 0},
    {"RESTORE", 7, 0x30, 0},
    {"ERRMODE_IGNORE", 14, 0x100, 0},
    {"ERRMODE_ERRNO", 13, 0x200, 0},
    {"ERRMODE_STDERR", 14, 0x400, 0},
    {"ERRMODE_EXCEPT", 14, 0x800, 0},
    {"ERRMODE_CALLBACK", 16, 0x1000, 0},
    {"ERRMODE_NOERR", 13, 0x2000, 0},
    {"ERRMODE_DEFAULT", 15, 0x1A00, 0},
    {"TRAP_INVALID", 12, 0x1000000, 0},
    {"TRAP_DIVBYZERO", 14, 0x2000000, 0},
    {"TRAP_OVERFLOW", 13, 0x4000000, 0},
    {"TRAP_UNDERFLOW", 14, 0x8000000, 0},
};

// The first keyword that stands in full at text + position, or null. Rows that would reach past the
// buffer are skipped.
const Keyword* keyword_at(const char* text, int position) {
  for (const Keyword& row : kKeywords) {
    if (position + row.length >= option_buffer_size) continue;
    if (std::strncmp(text + position, row.text, static_cast<size_t>(row.length)) == 0) return &row;
  }
  return nullptr;
}

constexpr int kNameLength = 12;

constexpr char mask(int i) { return static_cast<char>((2 * i) % 5 + 1); }

// The variable's name, which the library does not hold in plain.
consteval std::array<char, kNameLength + 1> scrambled(const char (&name)[kNameLength + 1]) {
  std::array<char, kNameLength + 1> bytes{};
  for (int i = 0; i < kNameLength; ++i)
    bytes[static_cast<size_t>(i)] = static_cast<char>(name[i] ^ mask(i));
  return bytes;
}
constexpr auto kScrambledName = scrambled("QOR_ARK_MODE");

}  // namespace

OptionBits parse_option(const char* text, int length) {
  if (length < 1 || text[0] != kPrefix[0]) return no_option;
  OptionBits bits{0, 0};
  for (int p = 0;;) {
    if (std::strncmp(text + p, kPrefix, kPrefixLength) != 0) return no_option;
    p += kPrefixLength;
    const Keyword* row = keyword_at(text, p);
    if (row == nullptr) return no_option;
    p += row->length;
    const char separator = text[p];
    if (separator != ',' && separator != '\0') return no_option;
    bits.low |= row->low;
    bits.high |= row->high;
    if (separator == '\0') return bits;
    ++p;
  }
}

OptionBits read_environment_option() {
  char name[kNameLength + 1];
  // Volatile: the compiler must not put the plain name together at build time.
  const volatile char* bytes = kScrambledName.data();
  for (int i = 0; i < kNameLength; ++i) name[i] = static_cast<char>(bytes[i] ^ mask(i));
  name[kNameLength] = '\0';
  char value[option_buffer_size];
  int length = 0;
  {
    const services::LockGuard guard(*qor_serv_process_lock(QOR_SERV_ENVIRONMENT_LOCK));
    length = qor_serv_getenv(name, value, option_buffer_size);
  }
  return parse_option(value, length);
}

}  // namespace qor::frame
