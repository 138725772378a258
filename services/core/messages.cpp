// Message service: the numbered texts and the one place that prints them.

#include <cstdarg>
#include <cstdio>

#include "qor/services.h"

namespace {

enum class Arguments { none, name, name_and_index, index_and_value };

struct Message {
  int number;
  Arguments arguments;
  const char* text;
};

// The value messages come in groups by how many inputs and results a function has:
// 755 756 one and one, 757 to 759 one and two, 760 to 762 two and one, 763 to 766 two and two.
constexpr Message kMessages[] = {
    {748, Arguments::name_and_index, "%s: argument %d has an illegal value"},
    {749, Arguments::name, "%s: an argument is illegal"},
    {750, Arguments::name, "%s: domain error: the result is not defined for this argument"},
    {751, Arguments::name, "%s: singularity: the function has a pole at this argument"},
    {752, Arguments::name, "%s: overflow"},
    {753, Arguments::name, "%s: underflow"},
    {754, Arguments::name, "%s: unknown error"},
    {755, Arguments::index_and_value, "  argument[%d] = %.17g"},
    {756, Arguments::index_and_value, "  result[%d] = %.17g"},
    {757, Arguments::index_and_value, "  argument[%d] = %.17g"},
    {758, Arguments::index_and_value, "  first result[%d] = %.17g"},
    {759, Arguments::index_and_value, "  second result[%d] = %.17g"},
    {760, Arguments::index_and_value, "  first argument[%d] = %.17g"},
    {761, Arguments::index_and_value, "  second argument[%d] = %.17g"},
    {762, Arguments::index_and_value, "  result[%d] = %.17g"},
    {763, Arguments::index_and_value, "  first argument[%d] = %.17g"},
    {764, Arguments::index_and_value, "  second argument[%d] = %.17g"},
    {765, Arguments::index_and_value, "  first result[%d] = %.17g"},
    {766, Arguments::index_and_value, "  second result[%d] = %.17g"},
    {773, Arguments::none, "qor_ark_base: the state of a thread cannot be created"},
};

int arguments_of(Arguments kind) {
  switch (kind) {
    case Arguments::none:
      return 0;
    case Arguments::name:
      return 1;
    default:
      return 2;
  }
}

void print_line(const Message& message, va_list arguments) {
  char line[256];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::vsnprintf(line, sizeof line, message.text, arguments);
#pragma GCC diagnostic pop
  std::fprintf(stderr, "%s\n", line);
}

}  // namespace

void qor_serv_print(int level, int message, int count, ...) {
  if (level < 1) return;
  for (const Message& known : kMessages) {
    if (known.number != message || arguments_of(known.arguments) != count) continue;
    va_list arguments;
    va_start(arguments, count);
    print_line(known, arguments);
    va_end(arguments);
    return;
  }
  std::fprintf(stderr, "qor_ark_base: message %d\n", message);
}
