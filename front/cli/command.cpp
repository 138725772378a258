#include "front/cli/command.h"

#include <algorithm>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

[[noreturn]] void refuse(const Command& command, const std::string& what) {
  throw InputError(what + "\n" + usage(command));
}

const Option& declared(const Command& command, const std::string& name) {
  std::vector<std::string> accepted;
  for (const Option& option : command.options) {
    if (option.name == name) return option;
    accepted.emplace_back(option.name);
  }
  refuse(command, "no option " + quoted(name) +
                      "; accepted: " + (accepted.empty() ? "none" : joined(accepted)));
}

void check_choice(const Command& command, const Option& option, const std::string& value) {
  if (option.choices.empty() || std::ranges::find(option.choices, value) != option.choices.end()) {
    return;
  }
  refuse(command, std::string(option.name) + ": " + quoted(value) +
                      " is not one of: " + joined(option.choices));
}

// As it stands in the help.
std::string form(const Option& option) {
  return std::string(option.name) + (option.value.empty() ? "" : " " + std::string(option.value));
}

// Takes the option at the front of `words`, with its value.
void take_option(const Command& command, std::span<const std::string>& words, Arguments& into) {
  const std::string word = words.front();
  words = words.subspan(1);
  const size_t equals = word.find('=');
  const std::string name = word.substr(0, equals);
  const Option& option = declared(command, name);
  if (into.has(name)) refuse(command, name + ": given twice");
  std::string value;
  if (equals != std::string::npos) {
    if (option.value.empty()) refuse(command, name + ": takes no value");
    value = word.substr(equals + 1);
  } else if (!option.value.empty()) {
    if (words.empty()) refuse(command, name + ": its value is missing");
    value = words.front();
    words = words.subspan(1);
  }
  check_choice(command, option, value);
  into.options.push_back({name, value});
}

}  // namespace

std::string Arguments::option(std::string_view name, std::string_view otherwise) const {
  for (const Given& given : options) {
    if (given.name == name) return given.value;
  }
  return std::string(otherwise);
}

bool Arguments::has(std::string_view name) const {
  return std::ranges::any_of(options, [&](const Given& given) { return given.name == name; });
}

Arguments parse_arguments(const Command& command, std::span<const std::string> words) {
  Arguments arguments;
  bool options_end = false;
  while (!words.empty()) {
    if (!options_end && words.front() == "--") {
      options_end = true;
      words = words.subspan(1);
    } else if (!options_end && words.front().size() > 1 && words.front()[0] == '-') {
      take_option(command, words, arguments);
    } else {
      arguments.operands.push_back(words.front());
      words = words.subspan(1);
    }
  }
  const size_t given = arguments.operands.size();
  if (given < command.operands.size())
    refuse(command, command.operands[given].name + " is missing");
  if (given > command.operands.size()) {
    refuse(command, quoted(arguments.operands[command.operands.size()]) +
                        ": more arguments than are accepted");
  }
  for (const Option& option : command.options) {
    if (option.required && !arguments.has(option.name)) {
      refuse(command, std::string(option.name) + " is missing");
    }
  }
  return arguments;
}

std::string usage(const Command& command) {
  std::string line = "usage: qor " + std::string(command.name);
  for (const Operand& operand : command.operands) line += " " + operand.name;
  for (const Option& option : command.options) {
    line += option.required ? " " + form(option) : " [" + form(option) + "]";
  }
  return line;
}

std::string help(const Command& command) {
  std::string text = usage(command) + "\n\n" + std::string(command.summary) + "\n";
  if (!command.options.empty()) text += "\n";
  for (const Option& option : command.options) {
    text += format("  %-26s %s\n", form(option).c_str(), std::string(option.help).c_str());
  }
  return command.more_help != nullptr ? text + "\n" + command.more_help() : text;
}

}  // namespace qor::cli
